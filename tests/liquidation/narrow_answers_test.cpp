// An engine that answers with fewer columns than it was asked for, with none, or with no rows: each query of
// a run in turn, from the persons to the last bulk update. It may cost lines, which say so; never a crash,
// and never a quantity that nobody worked.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "base/text.h"
#include "demo/demo_base.h"
#include "engine_sqlite/sqlite_connection.h"
#include "liquidation/cajas.h"
#include "liquidation/importar.h"
#include "refdata/concepts_catalogue.h"
#include "refdata/liquidation_types.h"
#include "support/temp_folder.h"

namespace {

enum class Answer { OneColumnFewer, NoColumns, NoRows };

// The embedded engine, where the n-th query (0: every one) is answered so.
class NarrowConnection final : public db::Connection {
 public:
  explicit NarrowConnection(const ports::Clock& reloj) {
    engine_sqlite::Options opciones;
    opciones.clock = &reloj;
    motor_ = engine_sqlite::Open(":memory:", opciones);
  }
  void Narrow(Answer answer, int which) {
    answer_ = answer;
    which_ = which;
    queries_ = 0;
    on_ = true;
  }
  void Whole() { on_ = false; }
  int Queries() const { return queries_; }

  bool IsOpen() const override { return motor_->IsOpen(); }
  void Close() override { motor_->Close(); }
  db::Recordset Execute(std::string_view sql) override { return Cut(motor_->Execute(sql)); }
  db::Recordset Query(std::string_view sql) override { return Cut(motor_->Query(sql)); }
  std::int64_t AffectedRows() const override { return motor_->AffectedRows(); }
  void BeginTrans() override { motor_->BeginTrans(); }
  void CommitTrans() override { motor_->CommitTrans(); }
  void RollbackTrans() override { motor_->RollbackTrans(); }
  bool InTransaction() const override { return motor_->InTransaction(); }
  void SetSavepoint() override { motor_->SetSavepoint(); }
  void RollbackToSavepoint() override { motor_->RollbackToSavepoint(); }
  void ReleaseSavepoint() override { motor_->ReleaseSavepoint(); }

 private:
  db::Recordset Cut(db::Recordset whole) {
    if (!on_ || whole.Fields().empty()) return whole;
    ++queries_;
    if (which_ != 0 && which_ != queries_) return whole;
    auto columns = std::make_shared<db::Columns>(whole.Fields());
    if (answer_ == Answer::NoColumns) columns->clear();
    if (answer_ == Answer::OneColumnFewer) columns->pop_back();
    std::vector<base::Value> cells;
    for (std::size_t row = 0; answer_ != Answer::NoRows && row < whole.Count(); ++row)
      for (std::size_t c = 0; c < columns->size(); ++c) cells.push_back(whole.At(c, row));
    return {std::move(columns), std::move(cells), whole.Source()};
  }

  std::unique_ptr<db::Connection> motor_;
  Answer answer_ = Answer::OneColumnFewer;
  int which_ = 0, queries_ = 0;
  bool on_ = false;
};

struct Outcome {
  int queries = 0;
  std::vector<std::string> results;  // of the rows
  std::size_t noted = 0;             // failures that were passed over, and boxes
  double hours = 0;                  // written for the contract
};

const base::Date kMonth = base::MakeDate(2026, 10, 1);

// A whole run over the demo's month: contract 117, card 7005, 8 and 2 hours and one ticket.
Outcome WholeRun(Answer answer, int which, bool narrow = true) {
  const ports::FixedClock reloj(base::MakeDate(2026, 10, 20));
  auto own = std::make_unique<NarrowConnection>(reloj);
  NarrowConnection& base = *own;
  demo::LlenarBase(base, kMonth);
  sesion::DbSession sesion;
  sesion.conexion = std::move(own);
  sesion.reloj = &reloj;
  sesion.idEmpresa = 1;
  sesion.LiqAgrup = true;
  settings::Settings opciones;
  opciones.Separador = ";";
  opciones.Configura = 2;
  opciones.TotalizarConc = opciones.SumarAyaIng = true;
  opciones.FactMultiplica = "*SQL(CAMPO COUNT(*) EN Empresa SOLOSI idEmpresa=1)";
  opciones.TextoDeFiltro = "LISTA(CAMPO id_Moneda,id_Moneda EN Monedas;,)<>X";
  prueba::Cajas cajas;
  base::ErrorSink errores;
  formula::Evaluador evaluador;
  evaluador.sesion = &sesion;
  evaluador.prompts = &cajas;
  evaluador.reloj = &reloj;
  refdata::PersonsIndex personas;
  refdata::ConceptsCatalogue conceptos;
  refdata::LiquidationTypes tipos;
  relations::CodeRelations relaciones;
  formula::TablasUsuario tablas;
  ports::NoProgress progreso;
  const support::TempFolder carpeta;

  if (narrow) base.Narrow(answer, which);
  refdata::CargarTiposLiquidacion(sesion, opciones, tipos, &errores);
  base::PassOverError("tablas", &errores, [&] { tablas.CargarTablasUsuario(sesion, -1); });
  refdata::CargarVecDePersonas(sesion, kMonth, personas, cajas, &errores);
  refdata::ActuLSTdeConceptos(sesion, opciones, conceptos, &errores);
  relaciones.Reemplazar("NOR*65535*,1,*7*Horas Comunes*0\r\nTK*65535*,9,*1005*Tickets*0");

  importfile::EntradaCarga c;
  c.txtRuta = carpeta.Write("horas.txt", "7005;1;8\r\n7005;1;2\r\n7005;9;1");
  c.opciones = &opciones;
  c.filtro = importfile::FiltroPor::Texto;
  c.personas = &personas;
  c.conceptos = &conceptos;
  c.relaciones = &relaciones;
  c.evaluador = &evaluador;
  c.prompts = &cajas;
  c.progreso = &progreso;
  importfile::Carga carga = importfile::CargarDatos(c);

  liquidation::EntradaImportacion e{sesion, opciones, personas, relaciones, conceptos, evaluador,
                                    tablas, cajas,    progreso, kMonth,     {},        {}};
  e.condiciones = {liquidation::TypeFilterDe(tipos.cmbLiquidaciones), tipos.TypeCondition,
                   tipos.CalendarCondition};
  e.texto_liquidacion = "0 - Sueldos";
  const liquidation::Importacion importacion = liquidation::Importar(e, carga.filas);

  Outcome outcome;
  outcome.queries = base.Queries();
  base.Whole();
  for (const auto& fila : carga.filas) outcome.results.push_back(fila.resultado);
  outcome.noted = errores.size() + importacion.errores.size() + cajas.textos.size();
  const auto rs = base.Query(
      "Select Sum(D.Cantidad) From Datos_Liquidacion as D inner join Encabezados as E on "
      "D.id_Encabezado=E.id_Encabezado Where E.id_Contrato=117 and D.id_Concepto=7");
  outcome.hours = rs.At(0, 0).NumberOrZero();
  return outcome;
}

TEST(NarrowAnswers, AWholeRunHasTenHours) {
  const Outcome whole = WholeRun(Answer::NoRows, 0, false);
  EXPECT_EQ(base::Join(whole.results, "|"), "OK|OK|OK");
  EXPECT_EQ(whole.hours, 10);
  EXPECT_EQ(whole.noted, 0U);
}

class EachQuery : public ::testing::TestWithParam<Answer> {};

TEST_P(EachQuery, OfARunInTurn) {
  int queries = 1, untold = 0;
  for (int which = 1; which <= queries; ++which) {
    const Outcome outcome = WholeRun(GetParam(), which);
    if (which == 1) queries = outcome.queries;
    bool all_ok = outcome.results.size() == 3;
    for (const std::string& result : outcome.results) {
      EXPECT_FALSE(result.empty()) << which;
      all_ok = all_ok && result == "OK";
    }
    EXPECT_LE(outcome.hours, 10) << which;
    untold += outcome.hours != 10 && outcome.noted == 0 && all_ok ? 1 : 0;
  }
  EXPECT_GT(queries, 10);
  // Other hours without a word come of the line formula alone: its query is 0 when it cannot be answered. An
  // answer without rows is an answer like any other.
  if (GetParam() != Answer::NoRows) {
    EXPECT_LE(untold, 2);
  }
  const Outcome all = WholeRun(GetParam(), 0);
  EXPECT_EQ(all.hours, 0);
}

std::string NameOf(const ::testing::TestParamInfo<Answer>& info) {
  constexpr const char* kNames[] = {"OneColumnFewer", "NoColumns", "NoRows"};
  return kNames[static_cast<int>(info.param)];
}

INSTANTIATE_TEST_SUITE_P(Answers, EachQuery,
                         testing::Values(Answer::OneColumnFewer, Answer::NoColumns, Answer::NoRows), NameOf);

}  // namespace
