#include "formula/tablas_usuario/sql.h"

#include "base/text.h"

namespace formula::sql {
namespace {

std::string Entero(std::int32_t n) { return std::to_string(n); }

}  // namespace

std::string CargarTablas(std::int32_t idEmpresa, std::int32_t id_Tabla) {
  const std::string empresa = Entero(idEmpresa);
  std::string sql =
      "Select DatosUsuTablas.id, Tablas.id as id_Tabla,iif(isnull(DatosUsuTablas.codigo),'-1',"
      "DatosUsuTablas.codigo) as Codigo, iif(isnull(DatosUsuTablas.valor),'',DatosUsuTablas.valor) as valor "
      ", DatosUsuTablas.fecha ,Tablas.Nombre,Tablas.Tipo,Tablas.TipoDato, Tablas.DatoOp from Tablas left "
      "join "
      "DatosUsuTablas on tablas.id=DatosUsuTablas.id_Tabla and tablas.idEmpresa=DatosUsuTablas.idEmpresa "
      "Where Tablas.idEmpresa=" +
      empresa + " and  DatosUsuTablas.idEmpresa=" + empresa;
  if (id_Tabla != -1) sql += " and id_Tabla=" + Entero(id_Tabla);
  return sql;
}

std::string Serie(std::int32_t idEmpresa, std::int32_t id_Tabla, std::string_view codigo) {
  return "Select id,id_Tabla,Codigo,Valor, iif(isnull(Fecha),cdate('00:00'),fecha) From DatosUsuTablas Where "
         "idEmpresa=" +
         Entero(idEmpresa) + " and  id_Tabla=" + Entero(id_Tabla) + " And Codigo='" +
         base::EscapeQuotes(codigo) + "' order by Fecha Asc";
}

std::string BorrarAnterior(std::int32_t idEmpresa, std::int32_t id_Tabla, std::string_view codigo,
                           base::Date fecha) {
  return "Delete * from DatosUsuTablas Where idEmpresa=" + Entero(idEmpresa) +
         " and id=(Select Top 1 id from DatosUsuTablas where id_Tabla=" + Entero(id_Tabla) +
         " and Codigo ='" + base::EscapeQuotes(codigo) + "' and iif(isnull(fecha),cdate('00:00'),fecha)<#" +
         base::DateMMddyyyy(fecha) + "# order by iif(isnull(fecha),cdate('00:00'),fecha) desc )";
}

std::string BorrarSerie(std::int32_t idEmpresa, std::int32_t id_Tabla, std::string_view codigo) {
  return "Delete * from DatosUsuTablas where idEmpresa=" + Entero(idEmpresa) + " and  Codigo='" +
         base::EscapeQuotes(codigo) + "' And id_Tabla=" + Entero(id_Tabla);
}

std::string InsertarValor(std::int32_t idEmpresa, std::string_view id, std::string_view id_Tabla,
                          std::string_view codigo, std::string_view valor, base::Date fecha) {
  std::string sql =
      "Insert into DatosUsuTablas (idEmpresa,Id,Id_Tabla,Codigo,Valor,Fecha) Values(" + Entero(idEmpresa);
  sql.append(",").append(id).append(",").append(id_Tabla);
  sql.append(",'").append(base::EscapeQuotes(codigo));
  sql.append("','").append(base::EscapeQuotes(valor)).append("',");
  if (fecha.serial == 0) return sql.append("Null)");
  return sql.append("#").append(base::DateMMddyyyy(fecha)).append("#)");
}

}  // namespace formula::sql
