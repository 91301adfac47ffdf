// The tagged text file: "[" key "]" CR LF value CR LF "[/" key "]". CP1252 on disk, UTF-8 here.
//
// Any of CR LF, LF and CR ends a line of it, mixed too: an editor or a copy from another system must not turn
// every option off. All that is read here, and all that is written, has CR LF alone; a value never holds a
// line end of another kind.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "settings/settings.h"

namespace settings {

// The value of a key, any case; "" when absent. The key "*" gives the whole text. Creates the file empty when
// missing. A key without its closing tag gives the whole text. Of what is given, one CR LF is taken off the
// end and then one off the start. Never throws.
std::string LeerConfig(std::string_view ruta, std::string_view clave);
// Stores one value; an existing entry is removed and the key goes last. Never throws; a failure (a key that
// lost its closing tag is one) leaves the file as it was and returns false.
bool GrabarConfig(std::string_view ruta, std::string_view clave, std::string_view valor);

// The whole file, for whoever must know why there is no text: options that cannot be read are no options at
// their defaults, which would write other quantities.
enum class EstadoAjustes { Falta, Leido, Ilegible };
struct Ajustes {
  EstadoAjustes estado = EstadoAjustes::Falta;
  std::string texto;   // UTF-8, lines ended by CR LF; "" unless it was read
  std::string motivo;  // Spanish, names the file and what failed; "" unless it could not be read
};
// Creates nothing. A path that leads to no file is Falta; no permission, a folder in its place and an error
// of the disk are Ilegible. Never throws.
Ajustes LeerAjustes(std::string_view ruta);
// Replaces the file by the text; false, and the old file as it was, when any step failed or when it cannot be
// read. Never throws.
bool GuardarAjustes(std::string_view ruta, std::string_view texto);

// The text with every line end made CR LF.
std::string ConCrLf(std::string_view texto);

// The same over a text in memory, for many keys at once. A key that lost its closing tag: the text unchanged.
std::string ValorDeTexto(std::string_view texto, std::string_view clave);
std::string TextoConValor(std::string_view texto, std::string_view clave, std::string_view valor);

// carpeta + "ImportDeMarcas.ini".
std::string RutaDeAjustes(std::string_view carpeta);

// Whether a text holds a tag of a key of the importer, which inside a value would be taken for it.
bool NombraUnaClave(std::string_view texto);

// The keys that are options, in the order of start-up.
std::span<const std::string_view> ClavesDeOpciones();

// Value forms, uneven as they are: how the text of a key becomes the option, and back. `clave`, any case, is
// one of ClavesDeOpciones(); another one (also Conceptos and TomaConceptosDeBD, which are no options) returns
// false and "". An empty value gives the option's default. SumarAyaIng going on sets TotalizarConc.
bool AplicarValor(Settings& opciones, std::string_view clave, std::string_view valor);
std::string ValorDeClave(const Settings& opciones, std::string_view clave);
// All options from a settings text, in the reading order of start-up, with the implied one worked out.
Settings LeerSettings(std::string_view texto);
// The text with every option stored in it, in the writing order of shutdown; "Conceptos" only when given.
std::string TextoConSettings(std::string_view texto, const Settings& opciones,
                             const std::optional<std::string>& conceptos);

// One line a column, pieces 0 to 2 of each at "*": leading number, rounded half to even, held within 16 bits;
// a missing or unreadable piece is 0. Empty: the default layout. Columns without a line keep the default's
// field number and become unused.
FixedWidthLayout LayoutDeTexto(std::string_view valor);
std::string TextoDeLayout(const FixedWidthLayout& layout);

}  // namespace settings
