// The texts of the statements, blanks included: other programs of the installation log and compare them.
#include "liquidation/sql.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "liquidation/importar.h"

using namespace liquidation;

namespace {
const base::Date kOctubre = base::MakeDate(2026, 10, 1);
}

TEST(Sql, ThePreloadAsksForTheConceptsOfTheMonth) {
  EXPECT_EQ(sql::Precarga(3, kOctubre, "7,2"),
            "Select clh.id_Concepto &'*'& iif(clh.TipoDato=2,clh.Coeficiente,clh.Cantidad) &'*'& "
            "clh.id_Contrato &'*'& "
            "iif(isnull(id_Pago),'-1',id_Pago) &'*'& idAgrupa &'*'& Coeficiente as Dato From "
            "cLiq_HistoricoSimple as "
            "clh where clh.idEmpresa=3  and (Not clh.Terminado) and clh.MesdeLiq=#10/01/2026# and "
            "clh.id_Concepto in "
            "(7,2) ");
}

TEST(Sql, OpenHeadersAreThoseOfTheMonthAndTheType) {
  EXPECT_EQ(
      sql::EncabezadosAbiertos(3, kOctubre, "TiposLiquidacion.id_TipoLiq=4"),
      " Select E.id_Encabezado,MesDeLiq,Terminado,TiposLiquidacion.id_TipoLiq,Contrato.*,val(P.Numero) as "
      "Numero, iif(isnull(DE.idDE),'0',DE.idDE) as Dat From  ((((Select * From Encabezados Where idEmpresa=3 "
      "and "
      "Terminado=False and MesdeLiq=#10/01/2026#) as E inner join Contrato on "
      "E.id_contrato=Contrato.id_Contrato "
      "and E.idEmpresa=Contrato.idEmpresa) inner join  (Select * From  TiposLiquidacion where idEmpresa=3  "
      "and "
      "TiposLiquidacion.id_TipoLiq=4) as TL on E.id_TipoLiq=TL.id_TipoLiq and E.idEmpresa=TL.idEmpresa) "
      "inner "
      "join Personas as P on P.id_Persona=Contrato.id_Persona and Contrato.idEmpresa=P.idEmpresa) Left Join "
      "(Select * From DatExtDatos Where idEmpresa=3  and  idTDE=1) as DE on DE.idLoc=Contrato.id_Contrato "
      "and "
      "DE.idEmpresa=Contrato.idEmpresa   Order by Contrato.id_Contrato,TiposLiquidacion.id_TipoLiq");
}

TEST(Sql, OneOpenHeaderIsAskedByItsKey) {
  const std::string all = sql::EncabezadosAbiertos(3, kOctubre, "TL");
  EXPECT_EQ(sql::EncabezadosAbiertos(3, kOctubre, "TL", 52),
            base::Replace(all, "MesdeLiq=#10/01/2026#)", "MesdeLiq=#10/01/2026# and id_Encabezado=52)"));
}

// Of several the oldest, so that each line of a contract finds the same one.
TEST(Sql, AnOpenHeaderIsFoundByItsContract) {
  EXPECT_EQ(sql::EncabezadoDeContrato(3, kOctubre, 10, 4),
            "Select id_Encabezado From Encabezados Where idEmpresa=3 and id_Contrato=10 and id_TipoLiq=4 and "
            "MesDeLiq=#10/01/2026# and Terminado=False order by id_Encabezado");
}

// The type after the first dash of its entry, whatever follows; without a combo no centre is named.
TEST(Question, NamesTheTypeAfterTheFirstDash) {
  liquidation::DatosConfirmacion data;
  data.mes = kOctubre;
  data.cmbLiquidaciones = "3 - Sueldo anual - mitad";
  data.LiqAgrup = true;
  EXPECT_EQ(liquidation::TextoConfirmacion(data),
            "Asegúrese que el mes que esta marcado para importar los datos (10 - 2026), es el correcto.\r\n"
            "Se importarán los datos en las liquidaciones de tipo 'SUELDO ANUAL - MITAD'\r\n"
            "-> Asociado al Centro de Costo ''.\r\n"
            "¿Confirma importar los datos?");
}

TEST(Sql, ApplicableTypesNeedNoConditions) {
  EXPECT_EQ(
      sql::ConsultaDeTipos(3, kOctubre, {"TiposLiquidacion.Salarial and (Not ParaEmp)", "", ""}).De(10),
      "SELECT  TTL.id_TipoLiq,C.id_Contrato From (select * From Contrato Where idEmpresa=3 and "
      "id_Contrato=10) as "
      "C, (Select * From TiposLiquidacion as TL Where idEmpresa=3 and TL.Salarial and (Not ParaEmp)) as TTL  "
      "Where ( (TTL.Salarial and (Not TTL.ParaEmp)   )        or Exists(Select id_Liquidacion From "
      "Calendario_Liq as CL Where TTL.idEmpresa=CL.idEmpresa and CL.idEmpresa=3 and "
      "TTL.id_TipoLiq=CL.id_TipoLiq "
      "and cdate(Format(Fecha,'MM/yyyy'))=#10/01/2026# and (   (TTL.ParaEmp  and CL.id_Contrato=10) or   "
      "(Not "
      "TTL.ParaEmp   ))) )   and Not Exists (Select id_Encabezado from Encabezados as E where "
      "E.idEmpresa=C.idEmpresa and  E.Terminado and E.id_TipoLiq=TTL.id_TipoLiq and E.id_Contrato=10 and "
      "E.MesDeLiq=#10/01/2026#) order by TTL.id_TipoLiq");
}

// The placeholder becomes the type table in one condition and the calendar in the other, and the old name of
// the cost centre is put right wherever it stands.
TEST(Sql, ApplicableTypesMeetTheirConditions) {
  const std::string texto =
      sql::ConsultaDeTipos(3, kOctubre,
                           {"TiposLiquidacion.id_TipoLiq=2", "([Consulta].id_TipoLiq=2 and C.idCCAplic=4)",
                            "([Consulta].id_TipoLiq=3)"})
          .De(10);
  EXPECT_NE(texto.find("idEmpresa=3 and TL.id_TipoLiq=2) as TTL "), std::string::npos);
  EXPECT_NE(texto.find("(Not TTL.ParaEmp)   and ((TTL.id_TipoLiq=2 and C.idCC=4)) )        or Exists"),
            std::string::npos);
  EXPECT_NE(texto.find("(Not TTL.ParaEmp    and ((CL.id_TipoLiq=3))))) )   and Not Exists"),
            std::string::npos);
  EXPECT_EQ(texto.find("Consulta"), std::string::npos);
  EXPECT_EQ(texto.find("idCCAplic"), std::string::npos);
}

TEST(Sql, AHeaderIsWrittenOpen) {
  EXPECT_EQ(
      sql::InsertarEncabezado(3, 41, kOctubre, 10, 1, 6),
      "Insert into Encabezados (idEmpresa,id_Encabezado,MesDeLiq,id_Contrato,id_TipoLiq,Terminado,Impreso,"
      "id_Usuario) Values(3,41,#10/01/2026#,10,1,False,False,6)");
}

TEST(Sql, ADatumIsFoundByItsKey) {
  const sql::ClaveDato clave{3, 41, 7, 9};
  EXPECT_EQ(
      sql::BuscarDato(clave),
      "Select id_Dato From Datos_Liquidacion Where idEmpresa=3 and id_Encabezado=41 and id_Concepto=7 and "
      "idAgrupa=9");
  EXPECT_EQ(sql::LeerDato(3, 500),
            "Select Cantidad,Coeficiente From Datos_Liquidacion Where idEmpresa=3 and id_Dato=500");
  EXPECT_EQ(sql::BorrarDato(clave),
            "Delete From Datos_Liquidacion Where idEmpresa=3 and  id_Encabezado=41 and id_Concepto=7 and "
            "idAgrupa=9");
  EXPECT_EQ(sql::InsertarDato(500, clave, "8.5,0"),
            "insert into Datos_Liquidacion "
            "(id_dato,idEmpresa,id_Concepto,id_Encabezado,Cantidad,Coeficiente,RedoEnLiq,Relacion,idAgrupa) "
            "Values(500,3,7,41,8.5,0,2,1,9)");
  EXPECT_EQ(sql::ActualizarDato(3, 500, "Cantidad", "10.5"),
            "Update Datos_Liquidacion Set Cantidad=10.5  where idEmpresa=3 and  id_Dato=500");
  EXPECT_EQ(sql::ActualizarDatoYCoeficiente(3, 500, "10.5", "2"),
            "Update Datos_Liquidacion Set Cantidad=10.5, Coeficiente=2  where idEmpresa=3 and id_Dato=500");
}

TEST(Sql, AnInstalmentIsAPaymentAndItsDetail) {
  const sql::Cuota cuota{3, 70, 10, 22, 500, "150.5", "Ref:O'Brien"};
  EXPECT_EQ(
      sql::InsertarPago(cuota, kOctubre),
      "Insert into PagosEnSueldo (idEmpresa, Id_Pago      ,       id_Contrato                 ,Valor     "
      ",id_Moneda,CantCuotas,Nombre,               FechaInicial,                 "
      "id_Concepto,MesesFinanciado,Activa,MonTotal)  Values(3,70,10,150.5,1,         "
      "1,'Ref:O''Brien',#10/01/2026#,22,  0      ,    False,150.5)");
  EXPECT_EQ(sql::InsertarPagoDeta(cuota, kOctubre),
            "Insert into PagosEnSueldoDeta (idEmpresa, Id_Pago ,    Numero, Pagado,       FechaDeLiq,        "
            "         "
            "        id_DatosLiq, MontoPagado)  Values(3,70,1,       True,#10/01/2026#,500,150.5)");
  EXPECT_EQ(sql::ActualizarPago(cuota),
            "Update PagosEnSueldo Set Valor=150.5,MonTotal=150.5 Where idEmpresa=3 and  id_Pago=70");
  EXPECT_EQ(sql::ActualizarPagoDeta(cuota),
            "Update PagosEnSueldoDeta Set MontoPagado=150.5 Where idEmpresa=3 and  id_Pago=70");
}

TEST(Sql, BulkUpdatesNameTheMonth) {
  EXPECT_EQ(sql::ActualizarDias(3, kOctubre),
            "UPDATE Datos_Liquidacion INNER JOIN CDetaLiq_DiasTrab AS PP ON "
            "PP.id_Dato=Datos_Liquidacion.id_Dato SET "
            "Datos_Liquidacion.DTE = PP.DTE, Datos_Liquidacion.DTP = PP.DTP where "
            "Datos_Liquidacion.idEmpresa=3 and "
            "pp.MesDeLiq=#10/01/2026#");
  EXPECT_EQ(
      sql::ActualizarMontos(3, kOctubre),
      "UPDATE Datos_Liquidacion INNER JOIN ACambiarMontos ON "
      "Datos_Liquidacion.id_Dato=ACambiarMontos.id_Dato SET "
      "Datos_Liquidacion.Monto = ACambiarMontos.Monto, Datos_Liquidacion.Cantidad = ACambiarMontos.Cant, "
      "Datos_Liquidacion.Coeficiente = ACambiarMontos.Coef Where Datos_Liquidacion.idEmpresa=3 and "
      "ACambiarMontos.MesDeLiq=#10/01/2026#");
  EXPECT_EQ(sql::ActualizarDetalle(kOctubre),
            "Update  ((Conceptos INNER JOIN Monedas ON Conceptos.id_Moneda = Monedas.id_Moneda) INNER JOIN "
            "(Datos_Liquidacion LEFT JOIN Con_PagosEnSueldoSimple AS PS ON Datos_Liquidacion.id_dato = "
            "PS.id_DatosLiq) ON "
            "Conceptos.ID_Concepto = Datos_Liquidacion.id_Concepto) inner join encabezados as E on "
            "E.id_Encabezado=Datos_Liquidacion.id_Encabezado      Set "
            "DetLiq=IIf(Conceptos.VerDetalle,IIf(TipoCuota<>0,PS.Nombre & IIf(PS.CantCuotas>1 And "
            "Conceptos.TipoCuota=2,' ('"
            " & PS.Numero & ' de ' & PS.CantCuotas & ' )',' '),'') &                  "
            "Switch(Conceptos.TipoDato=1,Round(Datos_Liquidacion.Cantidad,5)  & ' % de ' & "
            "Round(Datos_Liquidacion.Coeficiente,5),(Conceptos.TipoCuota=0),Round(Datos_Liquidacion.Cantidad,"
            "5)  & ' x ' &   "
            "               Round(Datos_Liquidacion.Coeficiente,5)  ,True,'') & IIf(Monedas.principal,'','  "
            "(Cot.' & "
            "Datos_Liquidacion.Relacion & ')'),'')        Where E.MesDeLiq=#10/01/2026# and       "
            "IIf(Conceptos.VerDetalle,IIf(TipoCuota<>0,PS.Nombre & IIf(PS.CantCuotas>1 And "
            "Conceptos.TipoCuota=2,' (' & "
            "PS.Numero & ' de ' & PS.CantCuotas & ' )',' '),'') &       "
            "Switch(Conceptos.TipoDato=1,Round(Datos_Liquidacion.Cantidad,5)  & ' % de ' & "
            "Round(Datos_Liquidacion.Coeficiente,5),(Conceptos.TipoCuota=0),Round(Datos_Liquidacion.Cantidad,"
            "5)  & ' x ' &   "
            "    Round(Datos_Liquidacion.Coeficiente,5)  ,True,'') & IIf(Monedas.principal,'','  (Cot.' & "
            "Datos_Liquidacion.Relacion & ')'),'')  "
            "<>iif(isnull(Datos_Liquidacion.DetLiq),'',Datos_Liquidacion.DetLiq) ");
}
