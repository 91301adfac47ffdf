// Which concept receives the quantities of which external type codes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/error.h"
#include "db/db_session.h"
#include "formula/vector.h"
#include "settings/settings.h"

namespace relations {

// Fields of a relation: 0 code, 1 colour (decimal, red in the low byte), 2 external codes between commas
// (",07,HC,"), 3 concept id, 4 concept name, 5 cost centre.
enum CampoRelacion { kCodigo, kColor, kExternos, kConcepto, kNombre, kCC };
inline constexpr std::size_t kCamposRelacion = 6;

struct FilaGridRelaciones {  // one row of GridRelaciones
  std::string Codigo, Nombre, CodigosVincConReloj, CC;
  bool operator==(const FilaGridRelaciones&) const = default;
};

// The table and its grid: row i of the grid shows relation i, always.
class CodeRelations {
 public:
  std::size_t Cantidad() const { return tabla_.Cantidad(); }
  const std::string& Campo(CampoRelacion campo, std::size_t relacion) const {
    return tabla_.Campo(campo, relacion);
  }
  std::int32_t Color(std::size_t relacion) const;  // field 1 as a number; 0 when it is none
  const formula::Vector& Tabla() const { return tabla_; }
  const std::vector<FilaGridRelaciones>& Grid() const { return grid_; }
  std::int32_t tipo_dato_externo = 0;  // TomaConceptosDeBD
  // The last load's query failed: the table is empty because it could not be read, not because there is
  // nothing. Until a load succeeds nothing is saved over what could not be read.
  bool carga_fallida = false;
  std::string motivo_fallo;  // why it could not, "" when it did

  // First relation whose external codes hold "," + code + "," (exact, letter case included), or -1. The code
  // may be any text. Constant time for a code without commas; the answers for others are remembered.
  int PosEnVecConc(std::string_view codigo) const;
  // First relation of that code (field 0), or -1.
  int PosDeCodigo(std::string_view codigo_relacion) const;

  // From the text form: lines of six "*"-joined fields; blank lines are passed over, missing fields are
  // empty and those beyond the sixth are dropped. A text without CR LF is split at LF.
  void Reemplazar(std::string_view texto);
  void Agregar(std::string_view registro);
  void Quitar(std::size_t relacion);  // from table and grid
  std::string Texto() const;          // UnirVector with "*" and CR LF

 private:
  struct Dispersion {
    using is_transparent = void;
    std::size_t operator()(std::string_view t) const { return std::hash<std::string_view>{}(t); }
  };

  void Indexar() const;

  formula::Vector tabla_;
  std::vector<FilaGridRelaciones> grid_;
  // Each code between two commas of some list, with its first relation; and the remembered ones.
  mutable std::unordered_map<std::string, int, Dispersion, std::equal_to<>> vistos_;
  mutable bool indexada_ = false;
};

// The external codes without their outer commas, for the grid: the first and the last character are dropped
// only when the list holds a comma and has at least two characters.
std::string SinComasExternas(std::string_view externos);

// Rebuilds the table from its source: the concepts themselves (MismoCodigoDeOrsa), else the external-data
// type of TomaConceptosDeBD, else the value "Conceptos" or the two default relations. `ajustes` is the text
// of the settings file. A failing query is noted and leaves the table empty with its reason; so does a fault
// of the storage, which travels on.
void LevantarRelaciones(const db::DbSession& sesion, const settings::Settings& opciones,
                        std::string_view ajustes, CodeRelations& relaciones,
                        base::SumideroErrores* errores = nullptr);

// The record that cbAgrQuit(0) appends, "*"-joined in field order.
struct DatosRelacion {
  std::string texto_combo;  // "HC - Horas Comunes": what stands before the first " - " is the code
  std::int32_t color = 0xFFFFFF;
  std::string txtTipo;      // codes separated by commas
  std::string id_concepto;  // spliced as an integer
  std::string lblConcepto;
  std::int64_t cc = 0;
};
std::string RegistroDeRelacion(const DatosRelacion& datos);

// Saving to DatExtDatos, when the external-data type is not 0: delete all of the type, insert one a relation.
// All or nothing: the first statement that fails undoes what ran before it (a transaction of its own, or back
// to a savepoint of the caller's) and is noted. Returns why the relations are not stored, "" when they are or
// when there was nothing to store. A fault of the storage travels on, undone as far as the engine could.
std::string GuardarRelacionesEnBase(const db::DbSession& sesion, const CodeRelations& relaciones,
                                    base::SumideroErrores* errores = nullptr);

}  // namespace relations
