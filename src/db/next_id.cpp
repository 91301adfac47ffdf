#include "db/next_id.h"

#include <string>

namespace db {

std::int32_t NextId(Connection& conexion, std::string_view tabla, std::string_view campo) {
  std::string sql = "select max(";
  sql.append(campo).append(")as maxcod from ").append(tabla);
  std::int32_t mayor = 0;
  base::ErrorIgnorado("NextId", nullptr, [&] { mayor = conexion.Ejecutar(sql).Campo("maxcod").Entero(); });
  return mayor;
}

}  // namespace db
