// Which concept receives the quantities of which external type codes.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/error.h"
#include "formula/vectores/vector.h"
#include "sesion/db_session.h"
#include "settings/settings.h"

namespace relations {

// Fields of a relation: 0 code, 1 colour (decimal, red in the low byte), 2 external codes between commas
// (",07,HC,"), 3 concept id, 4 concept name, 5 cost centre.
enum CampoRelacion { kCodigo, kColor, kExternos, kConcepto, kNombre, kCC };
inline constexpr std::size_t kCamposRelacion = 6;
using Relacion = std::array<std::string, kCamposRelacion>;

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

  // From the text form: lines (of any line end) of six "*"-joined fields; blank lines are passed over,
  // missing fields are empty and so is one that is exactly "^".
  //   A line that had to hide something ends in a seventh field "XR3": in its fields "XR3" is a star, and
  //   line
  // ends, "^", "[" and "XR" itself have forms of their own, so that any relation reads back as it was.
  //   Another line of more than six fields was saved with a bare star in a name or code: it is cut where the
  // stars of the record must stand, at the number of the colour, the list between commas and the concept's
  // number. Where there are no such places the fields beyond the sixth are dropped.
  void Reemplazar(std::string_view texto);
  void Reemplazar(const std::vector<Relacion>& relaciones);
  void Agregar(std::string_view linea);  // of the text form
  void Agregar(const Relacion& relacion);
  void Quitar(std::size_t relacion);  // from table and grid
  void PonerExternos(std::size_t relacion, std::string externos);
  // The text form: CR LF between relations, none behind the last. Of an empty table it is "", which
  // LevantarRelaciones takes for the default relations.
  std::string Texto() const;

 private:
  struct Dispersion {
    using is_transparent = void;
    std::size_t operator()(std::string_view t) const { return std::hash<std::string_view>{}(t); }
  };

  void Vaciar();
  void Indexar() const;

  formula::Vector tabla_{.dimensiones = 2, .registros = {}};
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
void LevantarRelaciones(const sesion::DbSession& sesion, const settings::Settings& opciones,
                        std::string_view ajustes, CodeRelations& relaciones,
                        base::ErrorSink* errores = nullptr);

// The relation that cbAgrQuit(0) appends.
struct DatosRelacion {
  // "HC - Horas Comunes": the code is what stands before the first " - ", also of a code that holds one.
  std::string texto_combo;
  std::int32_t color = 0xFFFFFF;
  std::string txtTipo;      // codes separated by commas
  std::string id_concepto;  // as an integer; a text that is no 32-bit one stays as it is
  std::string lblConcepto;
  std::int64_t cc = 0;
};
Relacion RegistroDeRelacion(const DatosRelacion& datos);

// The 32-bit identifier that field 3 or 5 holds, or none.
std::optional<std::int32_t> IdentificadorDe(std::string_view texto);

// Saving to DatExtDatos, when the external-data type is not 0: delete all of the type, insert one a relation.
// All or nothing: the first statement that fails undoes what ran before it (a transaction of its own, or back
// to a savepoint of the caller's) and is noted. Returns why the relations are not stored, "" when they are or
// when there was nothing to store. A fault of the storage travels on, undone as far as the engine could.
std::string GuardarRelacionesEnBase(const sesion::DbSession& sesion, const CodeRelations& relaciones,
                                    base::ErrorSink* errores = nullptr);

}  // namespace relations
