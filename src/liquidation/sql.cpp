#include "liquidation/sql.h"

#include "base/number.h"
#include "base/text.h"

namespace liquidation::sql {
namespace {

std::string Num(std::int32_t n) { return std::to_string(n); }

// The computed detail text, used as the new value and in the condition; the two differ in their leading
// blanks.
std::string TextoDelDetalle(std::string_view sangria) {
  const std::string s(sangria);
  return "IIf(Conceptos.VerDetalle,IIf(TipoCuota<>0,PS.Nombre & IIf(PS.CantCuotas>1 And "
         "Conceptos.TipoCuota=2,' (' & "
         "PS.Numero & ' de ' & PS.CantCuotas & ' )',' '),'') & " +
         s +
         "Switch(Conceptos.TipoDato=1,Round(Datos_Liquidacion.Cantidad,5)  & ' % de ' & "
         "Round(Datos_Liquidacion.Coeficiente,5),(Conceptos.TipoCuota=0),Round(Datos_Liquidacion.Cantidad,5) "
         " & ' x ' & " +
         s +
         "Round(Datos_Liquidacion.Coeficiente,5)  ,True,'') & IIf(Monedas.principal,'','  (Cot.' & "
         "Datos_Liquidacion.Relacion & ')'),'') ";
}

}  // namespace

std::string Literal(base::Date fecha) { return "#" + base::DateMMddyyyy(fecha) + "#"; }

std::string Precarga(std::int32_t idEmpresa, base::Date mes, std::string_view conceptos) {
  return "Select clh.id_Concepto &'*'& iif(clh.TipoDato=2,clh.Coeficiente,clh.Cantidad) &'*'& "
         "clh.id_Contrato &'*'& "
         "iif(isnull(id_Pago),'-1',id_Pago) &'*'& idAgrupa &'*'& Coeficiente as Dato From "
         "cLiq_HistoricoSimple as clh "
         "where clh.idEmpresa=" +
         Num(idEmpresa) + "  and (Not clh.Terminado) and clh.MesdeLiq=" + Literal(mes) +
         " and clh.id_Concepto in (" + std::string(conceptos) + ") ";
}

std::string EncabezadosAbiertos(std::int32_t idEmpresa, base::Date mes, std::string_view filtro_tipo,
                                std::optional<std::int32_t> id_Encabezado) {
  const std::string empresa = Num(idEmpresa);
  const std::string uno = id_Encabezado ? " and id_Encabezado=" + Num(*id_Encabezado) : "";
  return " Select E.id_Encabezado,MesDeLiq,Terminado,TiposLiquidacion.id_TipoLiq,Contrato.*,val(P.Numero) as "
         "Numero, "
         "iif(isnull(DE.idDE),'0',DE.idDE) as Dat From "
         " ((((Select * From Encabezados Where idEmpresa=" +
         empresa + " and Terminado=False and MesdeLiq=" + Literal(mes) + uno +
         ") as E inner join Contrato on E.id_contrato=Contrato.id_Contrato and "
         "E.idEmpresa=Contrato.idEmpresa) inner "
         "join "
         " (Select * From  TiposLiquidacion where idEmpresa=" +
         empresa + "  and " + std::string(filtro_tipo) +
         ") as TL on E.id_TipoLiq=TL.id_TipoLiq and E.idEmpresa=TL.idEmpresa)"
         " inner join Personas as P on P.id_Persona=Contrato.id_Persona and Contrato.idEmpresa=P.idEmpresa) "
         "Left Join "
         "(Select * From DatExtDatos Where idEmpresa=" +
         empresa +
         "  and  idTDE=1) as DE on DE.idLoc=Contrato.id_Contrato and DE.idEmpresa=Contrato.idEmpresa   Order "
         "by "
         "Contrato.id_Contrato,TiposLiquidacion.id_TipoLiq";
}

std::string ContratosQueTerminan(std::int32_t idEmpresa, base::Date desde, base::Date antes_de) {
  return "Select id_Contrato,FECFIN From Contrato Where idEmpresa=" + Num(idEmpresa) +
         " and cdate(FECFIN)>=" + Literal(desde) + " and cdate(FECFIN)<" + Literal(antes_de) +
         " order by id_Contrato";
}

std::string CantidadesDeMeses(std::int32_t idEmpresa, base::Date desde, base::Date hasta,
                              std::string_view conceptos) {
  return "Select E.id_Contrato,D.id_Concepto,E.MesDeLiq,Sum(D.Cantidad) as Cant,Sum(D.Coeficiente) as Coef "
         "From Datos_Liquidacion as D inner join Encabezados as E on E.id_Encabezado=D.id_Encabezado and "
         "E.idEmpresa=D.idEmpresa Where E.idEmpresa=" +
         Num(idEmpresa) + " and E.MesDeLiq>=" + Literal(desde) + " and E.MesDeLiq<=" + Literal(hasta) +
         " and D.id_Concepto in (" + std::string(conceptos) +
         ") Group by E.id_Contrato,D.id_Concepto,E.MesDeLiq Order by E.id_Contrato,D.id_Concepto,E.MesDeLiq";
}

ConsultaDeTipos::ConsultaDeTipos(std::int32_t idEmpresa, base::Date mes,
                                 const CondicionesDeTipo& condiciones) {
  const std::string id = "\x01contrato\x01";  // in its place; no condition holds it
  const std::string empresa = Num(idEmpresa), fecha = Literal(mes);
  const std::string filtro = base::Replace(condiciones.TypeFilter, "TiposLiquidacion.", "TL.");
  std::string a, b;
  if (!condiciones.TypeCondition.empty())
    a = base::Replace(" and (" + condiciones.TypeCondition + ")", "[Consulta]", "TTL");
  if (!condiciones.CalendarCondition.empty())
    b = base::Replace(" and (" + condiciones.CalendarCondition + ")", "[Consulta]", "CL");
  const std::string texto =
      "SELECT  TTL.id_TipoLiq,C.id_Contrato From (select * From Contrato Where idEmpresa=" + empresa +
      " and id_Contrato=" + id + ") as C, (Select * From TiposLiquidacion as TL Where idEmpresa=" + empresa +
      " and " + filtro + ") as TTL " + " Where ( (TTL.Salarial and (Not TTL.ParaEmp)  " + a + " )" +
      "        or Exists(Select id_Liquidacion From Calendario_Liq as CL Where TTL.idEmpresa=CL.idEmpresa "
      "and "
      "CL.idEmpresa=" +
      empresa + " and TTL.id_TipoLiq=CL.id_TipoLiq and cdate(Format(Fecha,'MM/yyyy'))=" + fecha + " and ( " +
      "  (TTL.ParaEmp  and CL.id_Contrato=" + id + ") or " + "  (Not TTL.ParaEmp   " + b + "))) ) " +
      "  and Not Exists (Select id_Encabezado from Encabezados as E where E.idEmpresa=C.idEmpresa and  "
      "E.Terminado and "
      "E.id_TipoLiq=TTL.id_TipoLiq and E.id_Contrato=" +
      id + " and E.MesDeLiq=" + fecha + ") order by TTL.id_TipoLiq";
  tramos_ = base::Split(base::Replace(texto, "idCCAplic", "idCC"), id);
}

std::string ConsultaDeTipos::De(std::int32_t contrato) const { return base::Join(tramos_, Num(contrato)); }

std::string EncabezadoDeContrato(std::int32_t idEmpresa, base::Date mes, std::int32_t contrato,
                                 std::int32_t tipo) {
  return "Select id_Encabezado From Encabezados Where idEmpresa=" + Num(idEmpresa) +
         " and id_Contrato=" + Num(contrato) + " and id_TipoLiq=" + Num(tipo) +
         " and MesDeLiq=" + Literal(mes) + " and Terminado=False order by id_Encabezado";
}

std::string InsertarEncabezado(std::int32_t idEmpresa, std::int32_t id, base::Date mes, std::int32_t contrato,
                               std::int32_t tipo, std::int32_t usuario) {
  return "Insert into Encabezados (idEmpresa,id_Encabezado,MesDeLiq,id_Contrato,id_TipoLiq,Terminado,Impreso,"
         "id_Usuario) Values(" +
         Num(idEmpresa) + "," + Num(id) + "," + Literal(mes) + "," + Num(contrato) + "," + Num(tipo) +
         ",False,False," + Num(usuario) + ")";
}

std::string BuscarDato(const ClaveDato& k) {
  return "Select id_Dato From Datos_Liquidacion Where idEmpresa=" + Num(k.idEmpresa) +
         " and id_Encabezado=" + Num(k.encabezado) + " and id_Concepto=" + Num(k.concepto) +
         " and idAgrupa=" + Num(k.agrupa);
}

std::string LeerDato(std::int32_t idEmpresa, std::int32_t id_Dato) {
  return "Select Cantidad,Coeficiente From Datos_Liquidacion Where idEmpresa=" + Num(idEmpresa) +
         " and id_Dato=" + Num(id_Dato);
}

std::string BorrarDato(const ClaveDato& k) {
  return "Delete From Datos_Liquidacion Where idEmpresa=" + Num(k.idEmpresa) +
         " and  id_Encabezado=" + Num(k.encabezado) + " and id_Concepto=" + Num(k.concepto) +
         " and idAgrupa=" + Num(k.agrupa);
}

std::string InsertarDato(std::int32_t id_Dato, const ClaveDato& k, std::string_view par) {
  return "insert into Datos_Liquidacion "
         "(id_dato,idEmpresa,id_Concepto,id_Encabezado,Cantidad,Coeficiente,RedoEnLiq,Relacion,idAgrupa) "
         "Values(" +
         Num(id_Dato) + "," + Num(k.idEmpresa) + "," + Num(k.concepto) + "," + Num(k.encabezado) + "," +
         std::string(par) + ",2,1," + Num(k.agrupa) + ")";
}

std::string ActualizarDato(std::int32_t idEmpresa, std::int32_t id_Dato, std::string_view campo,
                           std::string_view cantidad) {
  return "Update Datos_Liquidacion Set " + std::string(campo) + "=" + std::string(cantidad) +
         "  where idEmpresa=" + Num(idEmpresa) + " and  id_Dato=" + Num(id_Dato);
}

std::string ActualizarDatoYCoeficiente(std::int32_t idEmpresa, std::int32_t id_Dato,
                                       std::string_view cantidad, std::string_view coeficiente) {
  return "Update Datos_Liquidacion Set Cantidad=" + std::string(cantidad) +
         ", Coeficiente=" + std::string(coeficiente) + "  where idEmpresa=" + Num(idEmpresa) +
         " and id_Dato=" + Num(id_Dato);
}

std::string InsertarPago(const Cuota& c, base::Date mes) {
  return "Insert into PagosEnSueldo (idEmpresa, Id_Pago      ,       id_Contrato                 ,Valor     "
         ",id_Moneda,CantCuotas,Nombre,               FechaInicial,                 "
         "id_Concepto,MesesFinanciado,Activa,MonTotal) "
         " Values(" +
         Num(c.idEmpresa) + "," + Num(c.id_Pago) + "," + Num(c.contrato) + "," + c.cantidad +
         ",1,         1,'" + base::EscapeQuotes(c.nombre) + "'," + Literal(mes) + "," + Num(c.concepto) +
         ",  0      ,    False," + c.cantidad + ")";
}

std::string InsertarPagoDeta(const Cuota& c, base::Date mes) {
  return "Insert into PagosEnSueldoDeta (idEmpresa, Id_Pago ,    Numero, Pagado,       FechaDeLiq,           "
         "       "
         "       id_DatosLiq, MontoPagado) "
         " Values(" +
         Num(c.idEmpresa) + "," + Num(c.id_Pago) + ",1,       True," + Literal(mes) + "," + Num(c.id_Dato) +
         "," + c.cantidad + ")";
}

std::string ActualizarPago(const Cuota& c) {
  return "Update PagosEnSueldo Set Valor=" + c.cantidad + ",MonTotal=" + c.cantidad +
         " Where idEmpresa=" + Num(c.idEmpresa) + " and  id_Pago=" + Num(c.id_Pago);
}

std::string ActualizarPagoDeta(const Cuota& c) {
  return "Update PagosEnSueldoDeta Set MontoPagado=" + c.cantidad + " Where idEmpresa=" + Num(c.idEmpresa) +
         " and  id_Pago=" + Num(c.id_Pago);
}

std::string ActualizarDias(std::int32_t idEmpresa, base::Date mes) {
  return "UPDATE Datos_Liquidacion INNER JOIN CDetaLiq_DiasTrab AS PP ON "
         "PP.id_Dato=Datos_Liquidacion.id_Dato SET "
         "Datos_Liquidacion.DTE = PP.DTE, Datos_Liquidacion.DTP = PP.DTP where Datos_Liquidacion.idEmpresa=" +
         Num(idEmpresa) + " and pp.MesDeLiq=" + Literal(mes);
}

std::string ActualizarMontos(std::int32_t idEmpresa, base::Date mes) {
  return "UPDATE Datos_Liquidacion INNER JOIN ACambiarMontos ON "
         "Datos_Liquidacion.id_Dato=ACambiarMontos.id_Dato SET "
         "Datos_Liquidacion.Monto = ACambiarMontos.Monto, Datos_Liquidacion.Cantidad = ACambiarMontos.Cant, "
         "Datos_Liquidacion.Coeficiente = ACambiarMontos.Coef Where Datos_Liquidacion.idEmpresa=" +
         Num(idEmpresa) + " and ACambiarMontos.MesDeLiq=" + Literal(mes);
}

std::string ActualizarDetalle(base::Date mes) {
  return "Update  ((Conceptos INNER JOIN Monedas ON Conceptos.id_Moneda = Monedas.id_Moneda) INNER JOIN "
         "(Datos_Liquidacion LEFT JOIN Con_PagosEnSueldoSimple AS PS ON Datos_Liquidacion.id_dato = "
         "PS.id_DatosLiq) ON "
         "Conceptos.ID_Concepto = Datos_Liquidacion.id_Concepto) inner join encabezados as E on "
         "E.id_Encabezado=Datos_Liquidacion.id_Encabezado "
         "     Set DetLiq=" +
         TextoDelDetalle("                 ") + "       Where E.MesDeLiq=" + Literal(mes) + " and       " +
         TextoDelDetalle("      ") + " <>iif(isnull(Datos_Liquidacion.DetLiq),'',Datos_Liquidacion.DetLiq) ";
}

}  // namespace liquidation::sql
