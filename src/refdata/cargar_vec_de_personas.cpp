#include <utility>

#include "refdata/ejecutar_internal.h"
#include "refdata/persons_index.h"
#include "refdata/sql.h"

namespace refdata {
namespace {

std::vector<PersonsIndex::Fila> LeerFilas(const db::Recordset& rs) {
  // A driver of another program may answer with less than it was asked for.
  if (rs.Fields().size() < kColumnasPersona)
    throw db::Error("La consulta de los contratos no devolvió todas sus columnas.");
  std::vector<PersonsIndex::Fila> filas(rs.Count());
  for (std::size_t fila = 0; fila < filas.size(); ++fila)
    for (std::size_t columna = 0; columna < kColumnasPersona; ++columna)
      filas[fila][columna] = rs.At(columna, fila).CsvText();
  return filas;
}

}  // namespace

bool CargarVecDePersonas(const sesion::DbSession& sesion, base::Date mes, PersonsIndex& indice,
                         ports::Prompts& prompts, base::ErrorSink* errores) {
  if (!sesion.Abierta()) {
    indice.motivo_fallo = kBaseCerrada;
    prompts.Show({.text = "La Base no está Abierta", .icon = ports::Icon::Exclamation});
    return false;
  }
  indice.Vaciar();
  Cargar("CargarVecDePersonas: PARFECHA", errores, indice.motivo_fallo,
         [&] { Ejecutar(sesion, sql::GuardarMes(sesion.idEmpresa, mes)); });
  const bool bien = Cargar("CargarVecDePersonas: contratos", errores, indice.motivo_fallo, [&] {
    // the lower bound is the date as it is held, the upper one always the last day of its month
    const std::string texto = sql::Contratos(sesion.idEmpresa, mes, base::LastDayOfMonth(mes));
    indice.Reemplazar(LeerFilas(Ejecutar(sesion, texto)));
  });
  if (bien) indice.motivo_fallo.clear();
  return true;
}

}  // namespace refdata
