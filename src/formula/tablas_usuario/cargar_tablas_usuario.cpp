#include <algorithm>
#include <tuple>
#include <utility>

#include "base/format.h"
#include "formula/tablas_usuario/sql.h"
#include "formula/tablas_usuario/user_tables_internal.h"

namespace formula {
namespace {

using Clave = std::pair<std::int32_t, std::string_view>;

Clave ClaveDe(const ValorDeTabla& v) { return {v.id_Tabla, v.Codigo}; }

}  // namespace

void TablasUsuario::Vaciar() { valores_.clear(); }

void TablasUsuario::CargarTablasUsuario(const sesion::DbSession& sesion, std::int32_t id_Tabla) {
  if (sesion.conexion == nullptr)
    throw base::Error("No se ha conectado con la base de datos", 0,
                      "Error al cargar Valores de Tablas de Usuarios");
  if (!sesion.conexion->IsOpen())
    throw base::Error("La coneccion esta cerrada !!!", 0, "La Coneccion esta cerrada !!!");
  Vaciar();
  const db::Recordset filas = sesion.conexion->Query(sql::CargarTablas(sesion.idEmpresa, id_Tabla));
  const base::Date hoy = Hoy(sesion);
  valores_.reserve(filas.Count());
  for (std::size_t i = 0; i < filas.Count(); ++i) {
    ValorDeTabla v;
    v.id = static_cast<std::int32_t>(filas.At(0, i).NumberOrZero());
    v.id_Tabla = filas.At(1, i).Integer();
    v.Codigo = filas.At(2, i).Text();
    v.Valor = filas.At(3, i).Text();
    v.Fecha = FechaDeCelda(filas.At(4, i), hoy);
    v.Tipo = static_cast<int>(filas.At(6, i).NumberOrZero());
    valores_.push_back(std::move(v));
  }
  std::stable_sort(valores_.begin(), valores_.end(), [](const ValorDeTabla& a, const ValorDeTabla& b) {
    return std::tie(a.id_Tabla, a.Codigo, a.Fecha.serial) < std::tie(b.id_Tabla, b.Codigo, b.Fecha.serial);
  });
}

TablasUsuario::Rango TablasUsuario::Buscar(std::int32_t id_Tabla, std::string_view codigo) const {
  const Clave clave(id_Tabla, codigo);
  const auto primero = std::partition_point(valores_.begin(), valores_.end(),
                                            [&](const auto& v) { return ClaveDe(v) < clave; });
  const auto fin =
      std::partition_point(primero, valores_.end(), [&](const auto& v) { return ClaveDe(v) == clave; });
  return {primero, fin};
}

Vector TablasUsuario::Serie(std::int32_t id_Tabla, std::string_view codigo) const {
  Vector serie;
  const auto [primero, fin] = Buscar(id_Tabla, codigo);
  if (primero == fin) return serie;
  serie.dimensiones = 2;
  for (auto v = primero; v != fin; ++v)
    serie.registros.push_back({std::to_string(v->id), std::to_string(v->id_Tabla), v->Codigo, v->Valor,
                               base::FormatDate(v->Fecha, "dd/MM/yyyy")});
  return serie;
}

bool TablasUsuario::TieneValores(std::int32_t id_Tabla, std::string_view codigo) const {
  const auto [primero, fin] = Buscar(id_Tabla, codigo);
  return primero != fin;
}

int TablasUsuario::Tipo(std::int32_t id_Tabla) const {
  const auto v = std::partition_point(valores_.begin(), valores_.end(),
                                      [&](const auto& valor) { return valor.id_Tabla < id_Tabla; });
  return v != valores_.end() && v->id_Tabla == id_Tabla ? v->Tipo : 0;
}

}  // namespace formula
