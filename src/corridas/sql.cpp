#include "corridas/sql.h"

namespace corridas::sql {
namespace {

std::string Literal(base::Date mes) { return "#" + base::DateMMddyyyy(mes) + "#"; }

std::string Empresa(std::int32_t idEmpresa) { return "idEmpresa=" + std::to_string(idEmpresa); }

std::string IdsDelMes(base::Date mes) {
  return "(Select id_Encabezado From Encabezados Where MesDeLiq=" + Literal(mes) + ")";
}

}  // namespace

std::string Encabezados(std::int32_t idEmpresa, base::Date mes) {
  return "Select * From Encabezados Where " + Empresa(idEmpresa) + " and MesDeLiq=" + Literal(mes);
}

std::string Datos(base::Date mes) {
  return "Select * From Datos_Liquidacion Where id_Encabezado in " + IdsDelMes(mes);
}

std::string Pagos(base::Date mes) { return "Select * From PagosEnSueldo Where FechaInicial=" + Literal(mes); }

std::string PagosDeta(base::Date mes) {
  return "Select * From PagosEnSueldoDeta Where FechaDeLiq=" + Literal(mes) +
         " or id_DatosLiq in (Select id_Dato From Datos_Liquidacion Where id_Encabezado in " +
         IdsDelMes(mes) + ")";
}

std::string TablasUsuario(std::int32_t idEmpresa) {
  return "Select * From DatosUsuTablas Where " + Empresa(idEmpresa);
}

std::string EncabezadosDelMes(std::int32_t idEmpresa, base::Date mes) {
  return "Select id_Encabezado,id_Contrato,id_TipoLiq From Encabezados Where " + Empresa(idEmpresa) +
         " and MesDeLiq=" + Literal(mes);
}

std::string Personas(std::int32_t idEmpresa) {
  return "Select C.id_Contrato,C.id_Persona,P.Nombre_1,P.Apellido_1 From Contrato as C inner join Personas "
         "as P on "
         "P.id_Persona=C.id_Persona and P.idEmpresa=C.idEmpresa Where C." +
         Empresa(idEmpresa);
}

std::string Conceptos() { return "Select id_Concepto,Nombre,TipoDato,TipoCuota From Conceptos"; }

std::string Tablas(std::int32_t idEmpresa) {
  return "Select id,NombreCampo From Tablas Where " + Empresa(idEmpresa);
}

}  // namespace corridas::sql
