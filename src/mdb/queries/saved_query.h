// Saved queries: rows of MSysQueries, and the SQL text that they stand for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mdb/pages/bytes.h"

namespace mdb {

struct FilaDeConsulta {
  std::uint8_t atributo = 0;
  std::uint32_t orden = 0;  // counter within the attribute, from 1 (0 for those without)
  std::optional<std::string> nombre1, nombre2, expresion;
  std::optional<std::int16_t> bandera;
  std::optional<std::int32_t> extra;  // LvExtra
};

enum class ClaseConsulta {
  Seleccion,
  CrearTabla,
  Agregar,
  Actualizar,
  Eliminar,
  Cruzada,
  Definicion,
  Directa,
  Union
};

struct ConsultaGuardada {
  std::string nombre;
  std::uint32_t banderas = 0;         // of its row in MSysObjects
  std::vector<FilaDeConsulta> filas;  // in any order
};

ClaseConsulta ClaseDe(const ConsultaGuardada& consulta);
// In Spanish, for messages: "de selección", "de creación de tabla", …
const char* NombreDeClase(ClaseConsulta clase);
// Whether it gives rows and takes no parameter of a form: what may stand in a FROM.
bool DaFilas(ClaseConsulta clase);
// The text of the query in the dialect, as its author would read it. Throws base::Error when the rows do not
// make one.
std::string TextoDeConsulta(const ConsultaGuardada& consulta);

}  // namespace mdb
