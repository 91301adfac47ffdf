// What a run does when a statement, or the transaction itself, fails: no quantity is lost to, or added from,
// a datum that was never written.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/text.h"
#include "demo/demo_base.h"
#include "engine_sqlite/sqlite_connection.h"
#include "liquidation/agregar_datos_a_liq.h"
#include "liquidation/cajas.h"
#include "liquidation/conexion_con_fallas.h"
#include "liquidation/importar.h"
#include "refdata/liquidation_types.h"

namespace {

using prueba::Cajas;
using prueba::ConexionConFallas;

// The demo's month. Contract 117, card 7005, has no header in it and nothing of concept 7 or table 5.
class Fallas : public ::testing::Test {
 protected:
  Fallas() {
    engine_sqlite::Options de_motor;
    de_motor.clock = &reloj_;
    auto propia = std::make_unique<ConexionConFallas>(engine_sqlite::Open(":memory:", de_motor));
    conexion_ = propia.get();
    sesion_.conexion = std::move(propia);
    sesion_.reloj = &reloj_;
    sesion_.idEmpresa = 1;
    demo::LlenarBase(*conexion_, kMes);
    opciones_.Configura = 2;
    opciones_.TotalizarConc = true;
    refdata::CargarVecDePersonas(sesion_, kMes, personas_, cajas_);
    refdata::CargarTiposLiquidacion(sesion_, opciones_, tipos_);
    relaciones_.Reemplazar("NOR*65535*,1,*7*Horas Comunes*0\r\nTK*65535*,9,*1005*Tickets*0");
    evaluador_.sesion = &sesion_;
  }

  liquidation::EntradaImportacion Entrada() {
    liquidation::EntradaImportacion e{sesion_, opciones_, personas_, relaciones_, conceptos_, evaluador_,
                                      tablas_, cajas_,    progreso_, kMes,        {},         {}};
    e.condiciones = {liquidation::TypeFilterDe(tipos_.cmbLiquidaciones), tipos_.TypeCondition,
                     tipos_.CalendarCondition};
    e.texto_liquidacion = "0 - Sueldos";
    e.deshacer = deshacer_;
    return e;
  }

  // Lines of a code and a quantity; the results, parted by "|".
  std::string Importar(const std::vector<std::pair<std::string, std::string>>& lineas,
                       const std::string& tarjeta = "7005") {
    std::vector<importfile::ImportRow> filas;
    for (const auto& [tipo, cantidad] : lineas) {
      importfile::ImportRow& fila = filas.emplace_back();
      fila.campo[importfile::kClave] = tarjeta;
      fila.campo[importfile::kTipo] = tipo;
      fila.campo[importfile::kCantidad] = cantidad;
      fila.campo[importfile::kTipoDato] = "3";
      fila.campo[importfile::kTipoCuota] = "0";
    }
    importacion_ = liquidation::Importar(Entrada(), filas);
    std::vector<std::string> resultados;
    for (const auto& fila : filas) resultados.push_back(fila.resultado);
    return base::Join(resultados, "|");
  }

  std::string Valor(const std::string& sql) {
    const db::Recordset rs = conexion_->Query(sql);
    std::string texto;
    for (std::size_t i = 0; i < rs.Count(); ++i) texto += (i > 0 ? "|" : "") + rs.At(0, i).CsvText();
    return texto;
  }
  std::string Horas() {
    return Valor(
        "Select D.Cantidad From Datos_Liquidacion as D inner join Encabezados as E on "
        "D.id_Encabezado=E.id_Encabezado Where E.id_Contrato=117 and D.id_Concepto=7 Order by D.id_Dato");
  }
  std::string Encabezados() { return Valor("Select Count(*) From Encabezados Where id_Contrato=117"); }

  static inline const base::Date kMes = base::MakeDate(2026, 10, 1);
  ports::FixedClock reloj_{base::MakeDate(2026, 10, 20)};
  sesion::DbSession sesion_;
  ConexionConFallas* conexion_ = nullptr;
  settings::Settings opciones_;
  refdata::PersonsIndex personas_;
  const refdata::ConceptsCatalogue conceptos_;
  refdata::LiquidationTypes tipos_;
  relations::CodeRelations relaciones_;
  formula::TablasUsuario tablas_;
  formula::Evaluador evaluador_;
  ports::NoProgress progreso_;
  Cajas cajas_;
  liquidation::Importacion importacion_;
  bool deshacer_ = false;
};

TEST_F(Fallas, NothingFails) {
  EXPECT_EQ(Importar({{"1", "8"}, {"1", "2"}, {"1", "1"}}), "OK|OK|OK");
  EXPECT_EQ(Horas(), "11");
  EXPECT_EQ(importacion_.importadas, 3U);
  EXPECT_TRUE(importacion_.confirmada);
}

// The writer gives back what the header, or the user table, now holds.
TEST_F(Fallas, TheSumsComeBack) {
  opciones_.SumarAyaIng = true;
  const auto entrada = Entrada();
  base::ErrorSink errores;
  liquidation::Corrida corrida(entrada, errores);
  corrida.encabezados.Abrir(sesion_, kMes, entrada.condiciones.TypeFilter, opciones_.Configura);
  importfile::ImportRow fila;
  fila.campo[importfile::kTipoDato] = "5";
  fila.campo[importfile::kTipoCuota] = "0";
  const auto persona = personas_.Buscar("7005", opciones_.Configura);
  ASSERT_GE(persona, 0);
  conexion_->BeginTrans();
  const auto agregar = [&](std::int32_t concepto, float cantidad, float coeficiente) {
    EXPECT_EQ(liquidation::AgregarDatosALiq(corrida, concepto, cantidad, static_cast<std::size_t>(persona),
                                            fila, 0, coeficiente),
              "");
    return std::pair(cantidad, coeficiente);
  };
  EXPECT_EQ(agregar(7, 8, 2), std::pair(8.0F, 2.0F));
  EXPECT_EQ(agregar(7, 3, 4), std::pair(11.0F, 28.0F / 11.0F));
  EXPECT_EQ(agregar(1005, 8, 0).first, 8.0F);
  EXPECT_EQ(agregar(1005, 4, 0).first, 12.0F);
  opciones_.TotalizarConc = false;
  EXPECT_EQ(agregar(1005, 5, 0).first, 5.0F);
  conexion_->RollbackTrans();
}

TEST_F(Fallas, AnInsertThatFailsIsNotAddedToLater) {
  conexion_->Fallar("insert into Datos_Liquidacion", 1);
  EXPECT_EQ(Importar({{"1", "8"}, {"1", "2"}, {"1", "1"}}), "falla de prueba|OK|OK");
  EXPECT_EQ(Horas(), "3");
  ASSERT_EQ(importacion_.totales.size(), 1U);
  EXPECT_EQ(importacion_.totales[0].lineas, 2U);
  EXPECT_EQ(importacion_.totales[0].cantidad, 3);
}

TEST_F(Fallas, AnUpdateThatFailsIsNotAddedToLater) {
  conexion_->Fallar("Update Datos_Liquidacion", 1);
  EXPECT_EQ(Importar({{"1", "8"}, {"1", "2"}, {"1", "1"}}), "OK|falla de prueba|OK");
  EXPECT_EQ(Horas(), "9");
}

// Another program takes the datum away between finding and reading it: said to be OK, the hours would be
// lost.
TEST_F(Fallas, ADatumThatIsGoneIsNotAddedTo) {
  opciones_.SumarAyaIng = true;
  EXPECT_EQ(Importar({{"1", "8"}}), "OK");
  conexion_->al_ejecutar = [this](std::string_view sql) {
    if (base::StartsWith(sql, "Select Cantidad,Coeficiente From"))
      conexion_->Execute("Delete From Datos_Liquidacion Where id_Concepto=7");
  };
  EXPECT_EQ(Importar({{"1", "2"}}), "No existe la fila 0 en el resultado, que tiene 0");
  EXPECT_EQ(importacion_.importadas, 0U);
}

TEST_F(Fallas, AUserTableThatFailsIsNotAddedToLater) {
  conexion_->Fallar("Insert into DatosUsuTablas", 1);
  EXPECT_EQ(Importar({{"9", "8"}, {"9", "2"}, {"9", "1"}}), "falla de prueba|OK|OK");
  EXPECT_EQ(Valor("Select Valor From DatosUsuTablas Where Codigo='117'"), "3");
}

// The second line finds no header and makes it.
TEST_F(Fallas, AHeaderThatFailsIsMadeByTheNextLine) {
  conexion_->Fallar("Insert into Encabezados", 1);
  EXPECT_EQ(Importar({{"1", "8"}, {"1", "2"}}), "falla de prueba|OK");
  EXPECT_EQ(Horas(), "2");
  EXPECT_EQ(Encabezados(), "1");
}

// The header goes with its line; the next line makes it again.
TEST_F(Fallas, AHeaderThatIsNotReadBackIsNotMadeTwice) {
  conexion_->Fallar("Select E.id_Encabezado,MesDeLiq", 2);
  EXPECT_EQ(Importar({{"1", "8"}, {"1", "2"}}), "falla de prueba|OK");
  EXPECT_EQ(Horas(), "2");
  EXPECT_EQ(Encabezados(), "1");
}

// Only what the line itself brought in goes with it: the header of the line before is still found by its key.
TEST_F(Fallas, AHeaderOfTheLineBeforeStaysKnown) {
  int asked = 0;
  conexion_->al_ejecutar = [&](std::string_view sql) {
    asked += base::StartsWith(sql, "Select id_Encabezado From Encabezados Where") ? 1 : 0;
  };
  conexion_->Fallar("Update Datos_Liquidacion", 1);
  EXPECT_EQ(Importar({{"1", "8"}, {"1", "2"}, {"1", "1"}}), "OK|falla de prueba|OK");
  EXPECT_EQ(asked, 1);
}

TEST_F(Fallas, ATypeQueryThatFailsGivesNoType) {
  conexion_->Fallar("SELECT  TTL.id_TipoLiq", 1);
  EXPECT_EQ(Importar({{"1", "8"}}), "La Liquidaciones de tipo 0 - Sueldos estan terminadas");
  EXPECT_EQ(Encabezados(), "0");
}

// Without totalising the old datum is deleted first; when that fails the line is refused whole.
TEST_F(Fallas, ADeleteThatFailsIsTheLinesResult) {
  opciones_.TotalizarConc = false;
  EXPECT_EQ(Importar({{"1", "8"}}), "OK");
  conexion_->Fallar("Delete From Datos_Liquidacion", 1);
  EXPECT_EQ(Importar({{"1", "2"}}), "falla de prueba");
  EXPECT_EQ(Horas(), "8");
}

// The query of open headers leaves the finished ones out; one that comes all the same is not written to.
TEST_F(Fallas, AFinishedHeaderIsNotWrittenTo) {
  const std::string antes = Valor("Select Count(*) From Datos_Liquidacion");
  conexion_->quitar = " and Terminado=False";
  EXPECT_EQ(Importar({{"1", "8"}}, "7049"), "La Liquidación está terminada");
  EXPECT_EQ(Valor("Select Count(*) From Datos_Liquidacion"), antes);
}

// That of another contract counts as not found: it refuses nobody.
TEST_F(Fallas, AFinishedHeaderOfAnotherContractRefusesNobody) {
  conexion_->Execute("Update Encabezados Set id_Contrato=101 Where Terminado and MesDeLiq=#10/01/2026#");
  conexion_->Execute("Update Contrato Set Tarjeta=7005 Where id_Contrato=101");
  conexion_->quitar = " and Terminado=False";
  EXPECT_EQ(Importar({{"1", "8"}}), "OK");
  EXPECT_EQ(Horas(), "8");
}

TEST_F(Fallas, BulkUpdatesThatFailAreNotedAndTheOthersRun) {
  conexion_->Fallar("UPDATE Datos_Liquidacion INNER JOIN CDeta", 1);
  EXPECT_EQ(Importar({{"1", "8"}}), "OK");
  ASSERT_EQ(importacion_.errores.size(), 1U);
  EXPECT_EQ(importacion_.errores[0].where, "Importar: días trabajados");
  EXPECT_EQ(Valor("Select D.DetLiq From Datos_Liquidacion as D inner join Encabezados as E on "
                  "D.id_Encabezado=E.id_Encabezado Where E.id_Contrato=117"),
            "8 x 281");
}

TEST_F(Fallas, ACommitThatFailsIsEveryLinesResultAndIsShownOnce) {
  conexion_->falla_commit = true;
  EXPECT_EQ(Importar({{"1", "8"}, {"77", "2"}}), "no termina|no termina");
  EXPECT_EQ(cajas_.textos, std::vector<std::string>{"no termina"});
  EXPECT_FALSE(cajas_.ofrece_callar);
  EXPECT_EQ(importacion_.error, "no termina");
  EXPECT_EQ(importacion_.importadas, 0U);
  EXPECT_TRUE(importacion_.totales.empty());
  EXPECT_TRUE(importacion_.errores.empty());
  EXPECT_FALSE(conexion_->InTransaction());
  EXPECT_EQ(Horas(), "");
  EXPECT_EQ(Encabezados(), "0");
}

TEST_F(Fallas, AStorageFaultIsToldApartFromAStatement) {
  conexion_->Fallar("insert into Datos_Liquidacion", 2, base::ErrorKind::Storage);
  EXPECT_EQ(Importar({{"1", "8"}, {"9", "2"}, {"1", "3"}}, "7005"), "OK|OK|OK");
  EXPECT_FALSE(importacion_.fallo_de_almacenamiento);
  conexion_->Execute("Delete From Datos_Liquidacion");
  conexion_->Fallar("insert into Datos_Liquidacion", 1, base::ErrorKind::Storage);
  EXPECT_EQ(Importar({{"1", "8"}, {"77", "2"}}), "falla de prueba|falla de prueba");
  EXPECT_TRUE(importacion_.fallo_de_almacenamiento);
  EXPECT_FALSE(importacion_.confirmada);
  EXPECT_EQ(importacion_.error, "falla de prueba");
  EXPECT_EQ(importacion_.importadas, 0U);
  EXPECT_TRUE(importacion_.totales.empty());
  EXPECT_EQ(cajas_.textos, std::vector<std::string>{"falla de prueba"});
  EXPECT_FALSE(conexion_->InTransaction());
}

TEST_F(Fallas, MemoryThatRunsOutIsAFaultOfTheStorage) {
  conexion_->falla_memoria = true;
  conexion_->Fallar("insert into Datos_Liquidacion", 1);
  EXPECT_EQ(Importar({{"1", "8"}}), "No hay memoria suficiente.");
  EXPECT_TRUE(importacion_.fallo_de_almacenamiento);
  EXPECT_EQ(cajas_.textos, std::vector<std::string>{"No hay memoria suficiente."});
  EXPECT_EQ(Encabezados(), "0");
}

// Left open, the half-written month would be committed by the next import.
TEST_F(Fallas, ARunThatCannotBeUndoneClosesTheBase) {
  conexion_->falla_rollback = true;
  conexion_->Fallar("insert into Datos_Liquidacion", 1, base::ErrorKind::Storage);
  const std::string motivo =
      "falla de prueba; además no se pudo deshacer lo hecho (no deshace) y se cerró la base: ábrala de nuevo "
      "y "
      "revise el mes antes de volver a importar";
  EXPECT_EQ(Importar({{"1", "8"}}), motivo);
  EXPECT_EQ(cajas_.textos, std::vector<std::string>{motivo});
  EXPECT_TRUE(importacion_.fallo_de_almacenamiento);
  EXPECT_FALSE(conexion_->IsOpen());
}

// One that cannot even be closed is the operator's to close.
TEST_F(Fallas, ARunThatCanNeitherBeUndoneNorClosedSaysSo) {
  conexion_->falla_rollback = conexion_->falla_cerrar = true;
  conexion_->Fallar("insert into Datos_Liquidacion", 1, base::ErrorKind::Storage);
  const std::string motivo =
      "falla de prueba; además no se pudo deshacer lo hecho (no deshace): la base puede haber quedado con la "
      "transacción abierta; cierre el programa y revise el mes antes de volver a importar";
  EXPECT_EQ(Importar({{"1", "8"}}), motivo);
  EXPECT_EQ(cajas_.textos, std::vector<std::string>{motivo});
}

// The reason is that of the undoing, not of a step that was passed over before; what failed before a commit
// that failed is no longer news.
TEST_F(Fallas, TheReasonIsThatOfTheUndoing) {
  conexion_->falla_rollback = conexion_->falla_commit = true;
  conexion_->Fallar("UPDATE Datos_Liquidacion INNER JOIN CDeta", 1);
  EXPECT_EQ(
      Importar({{"1", "8"}}),
      "no termina; además no se pudo deshacer lo hecho (no deshace) y se cerró la base: ábrala de nuevo y "
      "revise el mes antes de volver a importar");
  EXPECT_TRUE(importacion_.actualizaciones_fallidas.empty());
  EXPECT_FALSE(importacion_.confirmada);
}

// Where one line cannot be undone, the run is; both reasons are said.
TEST_F(Fallas, ALineThatCannotBeUndoneEndsTheRun) {
  conexion_->falla_savepoint = true;
  conexion_->Fallar("insert into Datos_Liquidacion", 1);
  const std::string motivo = "falla de prueba; y no se pudo deshacer la línea sola: no vuelve";
  EXPECT_EQ(Importar({{"1", "8"}, {"1", "2"}}), motivo + "|" + motivo);
  EXPECT_TRUE(importacion_.fallo_de_almacenamiento);
  EXPECT_EQ(Encabezados(), "0");
}

// A line that had written nothing needs no undoing.
TEST_F(Fallas, ALineWhoseFirstStatementFailsIsRefusedAlone) {
  conexion_->falla_savepoint = true;
  conexion_->Fallar("Insert into Encabezados", 1);
  EXPECT_EQ(Importar({{"1", "8"}, {"1", "2"}}), "falla de prueba|OK");
  EXPECT_EQ(Horas(), "2");
}

TEST_F(Fallas, ADefectTravelsOnAndLeavesNoTransactionOpen) {
  conexion_->al_ejecutar = [](std::string_view sql) {
    if (base::StartsWith(sql, "insert into Datos_Liquidacion")) throw std::logic_error("defect");
  };
  EXPECT_THROW(Importar({{"1", "8"}}), std::logic_error);
  EXPECT_FALSE(conexion_->InTransaction());
  conexion_->al_ejecutar = nullptr;
  EXPECT_EQ(Encabezados(), "0");
}

// The user tables hold what the base holds after a run, and after one that was undone.
TEST_F(Fallas, TheUserTablesAreReadAgainAfterARun) {
  EXPECT_EQ(Importar({{"9", "8"}}), "OK");
  EXPECT_TRUE(tablas_.TieneValores(5, "117"));
  conexion_->Execute("Delete From DatosUsuTablas Where Codigo='117'");
  conexion_->falla_commit = true;
  EXPECT_EQ(Importar({{"9", "8"}}), "no termina");
  EXPECT_FALSE(tablas_.TieneValores(5, "117"));
  EXPECT_TRUE(tablas_.TieneValores(5, "101"));
}

TEST_F(Fallas, TheUserTablesAreReadAgainAfterARunThatIsUndone) {
  deshacer_ = true;
  EXPECT_EQ(Importar({{"9", "8"}}), "OK");
  EXPECT_FALSE(tablas_.TieneValores(5, "117"));
  EXPECT_TRUE(tablas_.TieneValores(5, "101"));
}

// An error without a word is an error all the same: the line was not written.
TEST_F(Fallas, AnErrorWithoutADescriptionIsNoOk) {
  conexion_->al_ejecutar = [](std::string_view sql) {
    if (base::StartsWith(sql, "insert into Datos_Liquidacion")) throw db::Error("");
  };
  EXPECT_EQ(Importar({{"1", "8"}}), "Error");
  EXPECT_EQ(importacion_.importadas, 0U);
  EXPECT_EQ(Horas(), "");
}

TEST_F(Fallas, ATransactionUnderWayIsTheRuns) {
  conexion_->BeginTrans();
  EXPECT_EQ(Importar({{"1", "8"}}), "OK");
  EXPECT_FALSE(conexion_->InTransaction());
  EXPECT_EQ(Horas(), "8");
}

TEST_F(Fallas, ATransactionThatDoesNotBeginWritesNothing) {
  conexion_->falla_begin = true;
  bool corrio = false;
  conexion_->al_ejecutar = [&](std::string_view sql) { corrio = corrio || !base::StartsWith(sql, "Select"); };
  EXPECT_EQ(Importar({{"1", "8"}}), "no comienza");
  EXPECT_FALSE(corrio);
  EXPECT_EQ(cajas_.textos, std::vector<std::string>{"no comienza"});
}

TEST_F(Fallas, AClosedBaseSaysSoOnEveryLine) {
  conexion_->Close();
  EXPECT_EQ(Importar({{"1", "8"}, {"1", "9"}}), "La Base no está Abierta|La Base no está Abierta");
  EXPECT_EQ(cajas_.textos, std::vector<std::string>{"La Base no está Abierta"});
  EXPECT_EQ(importacion_.error, "La Base no está Abierta");
}

}  // namespace
