#include "refdata/sql.h"

namespace refdata::sql {

std::string GuardarMes(std::int32_t idEmpresa, base::Date mes) {
  return "Update valores set Valor='#" + base::DateMMddyyyy(mes) +
         "#'  where  idEmpresa=" + std::to_string(idEmpresa) + " and codigo='PARFECHA'";
}

std::string Contratos(std::int32_t idEmpresa, base::Date desde, base::Date hasta) {
  const std::string empresa = std::to_string(idEmpresa);
  return "Select id_Contrato,Numero_Alternativo,iif(isnull(CC.Tarjeta),'0',CC.Tarjeta) as Tarjeta, "
         "iif(isnull(DE.idDE),'0',DE.idDE) as Dat,Val(NumeroSinGuion) as Numero, id_Persona "
         ",Nombre_1,Apellido_1,CantDiasXMes*Horas  as Total,id_TipoRem,CC.idCC From Con_Contrato as CC "
         "Left Join (Select * From DatExtDatos Where idEmpresa=" +
         empresa +
         " and idTDE=1) as DE on DE.idLoc=CC.id_Contrato and DE.idEmpresa=CC.idEmpresa Where CC.idEmpresa=" +
         empresa + "  and cdate(FECINI)<=#" + base::DateMMddyyyy(hasta) +
         "# and (Vigente OR CDATE(FECFIN)>=#" + base::DateMMddyyyy(desde) + "#) order by Nombre_1";
}

std::string Conceptos(std::int32_t idEmpresa, bool solo_datos_de_reloj, bool con_cuotas) {
  const std::string empresa = std::to_string(idEmpresa);
  std::string texto =
      "Select  id_Concepto &'*'& Nombre &'*'&  TipoDato &'*'&  TipoOperacion & '*' & TipoCuota as "
      "Datos,Nombre, Codigo From Conceptos as C Where idEmpresa=" +
      empresa + " and ";
  texto += solo_datos_de_reloj ? "C.TipoDato=3 " : "C.TipoDato in (3,2,5)";
  if (!con_cuotas) texto += " and C.TipoCuota=0";
  texto +=
      " and Not TipoImpuesto Union All Select Id+1000  & '*'&  Nombre & '*0*T*0' as Datos,T.NombreCampo & "
      "'->(Tabla Usuario)' as Nombre,  T.Nombre as Codigo From Tablas as T Where T.idEmpresa=" +
      empresa + " and T.TipoDato=1 And T.Tipo in (1,3) Order by Codigo";
  return texto;
}

std::string TiposActivos(std::int32_t idEmpresa) {
  return "Select T.id_TipoLiq, T.Salarial, T.Cond From TiposLiquidacion as T Where T.idEmpresa=" +
         std::to_string(idEmpresa) + " and (Not T.ParaEmp) and T.Activa";
}

std::string Calendario(std::int32_t idEmpresa) {
  return "Select CL.*, TL.ParaEmp From Calendario_Liq as CL Inner Join TiposLiquidacion as TL on  "
         "TL.id_TipoLiq=CL.id_TipoLiq  and TL.idEmpresa=CL.idEmpresa where TL.idEmpresa=" +
         std::to_string(idEmpresa) +
         " and  (Not ParaEmp) and Fecha>=dateadd('M',-48,date()) order by CL.id_TipoLiq,Fecha, iif( "
         "isnull(CondCalLiq) or CondCalLiq='',0,1), CondCalLiq";
}

std::string GruposDeTipos(std::int32_t idEmpresa) {
  return "Select Distinct iif(Salarial and (not ParaEmp),0,id_TipoLiq) , ParaEmp, iif(Salarial and (not "
         "ParaEmp),0,id_TipoLiq) &' - '&iif(Salarial and (not ParaEmp),'Sueldos',Nombre) as Nomb From "
         "TiposLiquidacion Where idEmpresa=" +
         std::to_string(idEmpresa) + " order by iif(Salarial and (not ParaEmp),0,id_TipoLiq)";
}

std::string CentrosDeCosto() {
  return "Select  idCC,idCC &' - '& NombreCC From CentroCosto order by NombreCC";
}

}  // namespace refdata::sql
