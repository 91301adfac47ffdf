// Loading the import file into the rows that the grid shows and the import works through.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "formula/evaluador/evaluator.h"
#include "formula/evaluador/line_formula.h"
#include "importfile/archivo_leido.h"
#include "ports/progress.h"
#include "ports/prompts.h"
#include "refdata/concepts_catalogue.h"
#include "refdata/persons_index.h"
#include "relations/code_relations.h"
#include "settings/settings.h"

namespace importfile {

// Field numbers of a row.
enum CampoFila {
  kClave,
  kNombre,
  kApellido,
  kCantidad,
  kTipo,
  kHorasMes,
  kTipoRem,
  kSlot,
  kDatoExtra,
  kTipoDato,
  kTipoOperacion,
  kTipoCuota,
  kCC,
  kVinculado,
  kValor
};

// Where the import, or a trial of it, wrote a line; 0 is none.
struct DestinoDeLinea {
  std::int32_t contrato = 0;
  std::int32_t concepto = 0;      // a user table: its number plus 1000
  std::int32_t encabezado = 0;    // of the liquidation; 0 for a user table
  std::int32_t agrupa = 0;        // cost centre
  bool por_clave = false;         // the header was found by the key of the person
  bool encabezado_nuevo = false;  // this line made it
};

struct ImportRow {
  formula::CamposDeLinea campo;
  std::string resultado;  // "", "OK" or the reason why it was not imported
  std::size_t linea = 0;  // of the file, from 1, as an editor numbers it
  // The file's quantity is neither empty (or blank) nor a number, whatever a formula made of it.
  bool cantidad_no_numerica = false;
  std::string rechazo;     // why the load refuses the line, "" for none
  DestinoDeLinea destino;  // of a row with "OK"
};

enum class FiltroPor { Texto = 0, Relacion = 1 };  // the index of OptFiltro

// A line that did not become a row.
struct LineaAparte {
  std::size_t linea = 0;
  bool mal_formada = false;  // else dropped by the filter
  formula::CamposDeLinea
      campo;  // what was found for it; a malformed one has its first two pieces, as they are
};

// How one line became what it is.
struct PasosDeLinea {
  struct Pieza {
    std::size_t inicio = 0,
                largo = 0;  // characters of the line, the first is 1; 0 of a field without a column
    std::string texto;
  };
  std::size_t linea = 0;
  std::vector<Pieza> piezas;     // by field
  bool mal_formada = false;      // then nothing else is known
  int relacion = -1;             // row of the relations
  formula::CamposDeLinea campo;  // before the formula
  bool con_formula = false, con_filtro = false;
  formula::PasosDeFormula formula, filtro;
  std::string cantidad;  // as the row holds it in the end
  bool pasa = true;      // the filter
  std::string rechazo;
};

// What a load works on; everything is read, nothing kept. The options are copied when the load starts; the
// tables must stay as they are while it runs, also when `progreso` lets window events in. The evaluator, the
// prompts and the progress may be null.
struct EntradaCarga {
  std::string txtRuta;
  const settings::Settings* opciones = nullptr;
  FiltroPor filtro = FiltroPor::Relacion;
  int columna_orden = 0;  // row field of the sort
  const refdata::PersonsIndex* personas = nullptr;
  const refdata::ConceptsCatalogue* conceptos = nullptr;
  const relations::CodeRelations* relaciones = nullptr;
  formula::Evaluador* evaluador = nullptr;
  ports::Prompts* prompts = nullptr;
  ports::Progress* progreso = nullptr;
  const ArchivoLeido* leido = nullptr;  // the bytes to load, instead of those of the path
  // Told of each line when it is done, or of this one alone.
  std::function<void(const PasosDeLinea&)> al_cargar;
  std::size_t solo_linea = 0;
};

// Whether the line formula does anything: neither blank nor the number 1 as it stands ("1,00" too, "+1" not).
bool FormulaEnUso(std::string_view formula);

enum class FinDeCarga { Completa, SinArchivo, FormatoIncorrecto, Cancelada };

struct Carga {
  FinDeCarga fin = FinDeCarga::Completa;
  std::vector<ImportRow> filas;     // sorted, kept lines only
  std::vector<LineaAparte> aparte;  // in file order
  std::string previa;               // the first four lines, joined with CR LF
  bool hay_valor = false;           // some line's value is not 0: the "Valor" column shows
  std::size_t lineas = 0;           // of the text, the empty one after a last line end not counted
  ArchivoLeido archivo;             // the same lines as they stand in the file
};

// Reads the file and cuts it into lines at each CR LF, LF and CR; then cuts, matches, filters and sorts; time
// grows with the lines. When it ends early (SinArchivo, FormatoIncorrecto, Cancelada) the caller keeps what
// it had. Messages go to `prompts`; each shows up, until the operator silences those of this load (the
// evaluator's boxes count with them). An empty file is a complete load without lines. Every line counted in
// `lineas` is in `filas` or in `aparte`. A fault of the storage under a formula or a filter travels out as
// base::Error: then there is no load, the caller keeps what it had and hides the progress bar.
Carga CargarDatos(const EntradaCarga& entrada);

}  // namespace importfile
