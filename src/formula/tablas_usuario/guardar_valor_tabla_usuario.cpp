#include <limits>

#include "base/dialect_number.h"
#include "base/format.h"
#include "base/number.h"
#include "db/next_id.h"
#include "formula/tablas_usuario/sql.h"
#include "formula/tablas_usuario/user_tables_internal.h"
#include "formula/vectores/vector_utils.h"

namespace formula {
namespace {

enum Campo : std::size_t { kId, kTabla, kCodigo, kValor, kFecha };
constexpr double kSumado = 200;
constexpr base::Date kSinHoy;  // the dates of a series tell their year

std::string TextoDe(base::Date fecha) { return base::FormatDate(fecha, "dd/MM/yyyy"); }

base::Date FechaDe(const Vector& serie, std::size_t i) {
  return base::DateFromText(serie.Campo(kFecha, i), kSinHoy).value_or(base::Date{});
}

Vector LeerSerie(const sesion::DbSession& sesion, std::int32_t id_Tabla, std::string_view codigo) {
  const db::Recordset filas = sesion.conexion->Query(sql::Serie(sesion.idEmpresa, id_Tabla, codigo));
  const base::Date hoy = Hoy(sesion);
  Vector serie{.dimensiones = 2, .registros = {}};
  for (std::size_t i = 0; i < filas.Count(); ++i) {
    std::vector<std::string> registro;
    for (std::size_t campo = kId; campo <= kValor; ++campo) registro.push_back(filas.At(campo, i).Text());
    registro.push_back(TextoDe(FechaDeCelda(filas.At(kFecha, i), hoy)));
    serie.registros.push_back(std::move(registro));
  }
  return serie;
}

std::int32_t NuevoId(const sesion::DbSession& sesion) {
  const std::int32_t maximo = db::NextId(*sesion.conexion, "DatosUsuTablas", "ID");
  if (maximo == std::numeric_limits<std::int32_t>::max()) throw base::Error(base::ErrorDescription(6), 6);
  return maximo + 1;
}

// Field by field: a "*" or a lone "^" in a code or a value is what it is.
void Agregar(Vector& serie, std::int32_t id, std::int32_t id_Tabla, std::string_view codigo,
             std::string_view valor, base::Date fecha) {
  serie.registros.push_back({std::to_string(id), std::to_string(id_Tabla), std::string(codigo),
                             std::string(valor), TextoDe(fecha)});
}

void InsertarSerie(const sesion::DbSession& sesion, const Vector& serie) {
  for (std::size_t i = 0; i < serie.Cantidad(); ++i)
    sesion.conexion->Execute(sql::InsertarValor(sesion.idEmpresa, serie.Campo(kId, i), serie.Campo(kTabla, i),
                                                serie.Campo(kCodigo, i), serie.Campo(kValor, i),
                                                FechaDe(serie, i)));
}

// The series is written whole: all of it is deleted first. When a record then cannot be written (a value too
// long for its column) what stood before is put back, and the failure goes on to the caller.
void Reescribir(const sesion::DbSession& sesion, const Vector& anterior, const Vector& serie,
                std::int32_t id_Tabla, std::string_view codigo) {
  const std::string borrar = sql::BorrarSerie(sesion.idEmpresa, id_Tabla, codigo);
  sesion.conexion->Execute(borrar);
  try {
    InsertarSerie(sesion, serie);
  } catch (const base::Error& error) {
    if (error.IsStorageFault()) throw;  // the whole run is undone
    base::PassOverError("GuardarValorTablaUsuario", nullptr, [&] {
      sesion.conexion->Execute(borrar);
      InsertarSerie(sesion, anterior);
    });
    throw;
  }
}

// Without its 200; a value that is no number would come out as hours that nobody worked.
std::string SinLoSumado(std::string_view valor) {
  constexpr int kTipoNoCoincide = 13;
  const auto numero = base::DialectNumber(valor);
  if (!numero) throw base::Error(base::ErrorDescription(kTipoNoCoincide), kTipoNoCoincide);
  return base::SqlSingle(static_cast<float>(*numero - kSumado));
}

}  // namespace

void GuardarValorTablaUsuario(const sesion::DbSession& sesion, std::int32_t id_Tabla, std::string_view codigo,
                              std::string_view valor, base::Date fecha, bool sumado, bool sin_borrado,
                              int* registros) {
  if (!sesion.Abierta()) throw db::Error("No se ha conectado con la base de datos");
  if (valor.empty() && id_Tabla != -1 && !sin_borrado) {
    sesion.conexion->Execute(sql::BorrarAnterior(sesion.idEmpresa, id_Tabla, codigo, fecha));
    if (registros != nullptr) *registros = static_cast<int>(LeerSerie(sesion, id_Tabla, codigo).Cantidad());
    return;
  }
  std::string guardado(valor);
  if (sumado) guardado = SinLoSumado(valor);
  Vector serie = LeerSerie(sesion, id_Tabla, codigo);
  const Vector anterior = serie;
  const int posicion = PosicionFecha(serie, fecha, kFecha, kSinHoy);
  if (posicion >= 0 && TextoDe(fecha) == serie.Campo(kFecha, static_cast<std::size_t>(posicion))) {
    serie.registros[static_cast<std::size_t>(posicion)][kValor] = guardado;
  } else {
    Agregar(serie, NuevoId(sesion), id_Tabla, codigo, guardado, fecha);
    OrdenarVector(serie, kFecha, kSinHoy);
  }
  Reescribir(sesion, anterior, serie, id_Tabla, codigo);
  if (registros != nullptr) *registros = static_cast<int>(serie.Cantidad());
}

bool CerrarValorTablaUsuario(const sesion::DbSession& sesion, std::int32_t id_Tabla, std::string_view codigo,
                             base::Date fecha) {
  if (!sesion.Abierta()) throw db::Error("No se ha conectado con la base de datos");
  const Vector serie = LeerSerie(sesion, id_Tabla, codigo);
  const std::string dia = TextoDe(fecha);
  for (std::size_t i = 0; i < serie.Cantidad(); ++i)
    if (serie.Campo(kFecha, i) == dia) return false;
  GuardarValorTablaUsuario(sesion, id_Tabla, codigo, "0", fecha);
  return true;
}

}  // namespace formula
