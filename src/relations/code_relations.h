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
#include "refdata/concepts_catalogue.h"
#include "settings/settings.h"

namespace relations {

// Fields of a relation: 0 code, 1 colour (decimal, red in the low byte), 2 external codes between commas
// (",07,HC,"), 3 concept id, 4 concept name, 5 cost centre.
enum CampoRelacion { kCodigo, kColor, kExternos, kConcepto, kNombre, kCC };

struct FilaGridRelaciones {  // one row of GridRelaciones
  std::string Codigo, Nombre, CodigosVincConReloj, CC;
};

class CodeRelations {
 public:
  std::size_t Cantidad() const { return tabla_.Cantidad(); }
  const std::string& Campo(CampoRelacion campo, std::size_t relacion) const {
    return tabla_.Campo(campo, relacion);
  }
  const formula::Vector& Tabla() const { return tabla_; }
  const std::vector<FilaGridRelaciones>& Grid() const { return grid_; }
  std::int32_t tipo_dato_externo = 0;  // TomaConceptosDeBD

  // First relation whose external codes hold "," + code + "," (exact), or -1. Answers are remembered.
  int PosEnVecConc(std::string_view codigo) const;

  void Reemplazar(std::string_view texto);  // from the text form: lines of six "*"-joined fields
  void Agregar(std::string_view registro);
  void Quitar(std::size_t relacion, std::size_t fila_grid);
  std::string Texto() const;  // UnirVector with "*" and CR LF

 private:
  formula::Vector tabla_;
  std::vector<FilaGridRelaciones> grid_;
  mutable std::unordered_map<std::string, int> vistos_;
};

// The external codes without their outer commas, for the grid: only when the list holds a comma and has at
// least two characters.
std::string SinComasExternas(std::string_view externos);

// Rebuilds the table from its source. `ajustes` is the text of the settings file.
void LevantarRelaciones(const db::DbSession& sesion, const settings::Settings& opciones,
                        std::string_view ajustes, CodeRelations& relaciones,
                        base::SumideroErrores* errores = nullptr);

// The record that cbAgrQuit(0) appends.
struct DatosRelacion {
  std::string texto_combo;  // "HC - Horas Comunes"
  std::int32_t color = 0xFFFFFF;
  std::string txtTipo;
  std::string id_concepto;
  std::string lblConcepto;
  std::int64_t cc = 0;
};
std::string RegistroDeRelacion(const DatosRelacion& datos);

// Saving to DatExtDatos, when the external-data type is not 0: delete all of the type, insert one a relation.
// Failing statements are noted and passed over.
void GuardarRelacionesEnBase(const db::DbSession& sesion, const CodeRelations& relaciones,
                             base::SumideroErrores* errores = nullptr);

}  // namespace relations
