#include "explicacion/conexion_que_anota.h"

namespace explicacion {

db::Recordset ConexionQueAnota::Execute(std::string_view sql) {
  if (anota) sentencias.emplace_back(sql);
  return otra_.Execute(sql);
}

db::Recordset ConexionQueAnota::Query(std::string_view sql) {
  if (anota) sentencias.emplace_back(sql);
  return otra_.Query(sql);
}

db::Recordset ConexionQueAnota::QueryBounded(std::string_view sql, db::QueryBudget& budget) {
  if (anota) sentencias.emplace_back(sql);
  return otra_.QueryBounded(sql, budget);
}

}  // namespace explicacion
