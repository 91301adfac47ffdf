// The tagged text file: "[" key "]" CR LF value CR LF "[/" key "]". CP1252 on disk, UTF-8 here.
#pragma once

#include <string>
#include <string_view>

#include "settings/settings.h"

namespace settings {

// The value of a key, any case; "" when absent. The key "*" gives the whole text. Creates the file empty when
// missing. A key without its closing tag gives the whole text. Never throws.
std::string LeerConfig(std::string_view ruta, std::string_view clave);
// Stores one value; an existing entry is removed and the key goes last. Never throws; a failure leaves the
// file as it was and returns false.
bool GrabarConfig(std::string_view ruta, std::string_view clave, std::string_view valor);

// The same over a text in memory, for many keys at once.
std::string ValorDeTexto(std::string_view texto, std::string_view clave);
std::string TextoConValor(std::string_view texto, std::string_view clave, std::string_view valor);

// carpeta + "ImportDeMarcas.ini".
std::string RutaDeAjustes(std::string_view carpeta);

// Value forms, uneven as they are: how the text of a key becomes the option, and back.
// `clave` is one of the option keys; an unknown one returns false.
bool AplicarValor(Settings& opciones, std::string_view clave, std::string_view valor);
std::string ValorDeClave(const Settings& opciones, std::string_view clave);
// All options from a settings text, in the reading order of start-up, with the implied ones worked out.
Settings LeerSettings(std::string_view texto);

FixedWidthLayout LayoutDeTexto(std::string_view valor);
std::string TextoDeLayout(const FixedWidthLayout& layout);

}  // namespace settings
