// Texts made to exhaust the evaluator: each must end soon, with a box and without harm to the next
// evaluation.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <random>

#include "avisos_de_prueba.h"
#include "conexion_falsa.h"
#include "formula/evaluador/line_formula.h"

namespace {

constexpr std::size_t kMuchos = 100'000;
constexpr const char* kNiveles = "La fórmula tiene demasiados niveles";
constexpr const char* kLarga = "La fórmula es demasiado larga o compleja";

std::string Repetir(std::string_view texto, std::size_t veces) {
  std::string r;
  r.reserve(texto.size() * veces);
  for (std::size_t i = 0; i < veces; ++i) r += texto;
  return r;
}

// A connection whose every query gives one row of one text.
class SiempreLoMismo : public db::Connection {
 public:
  explicit SiempreLoMismo(std::string texto) : texto_(std::move(texto)) {}
  std::size_t consultas = 0;

  bool IsOpen() const override { return true; }
  void Close() override {}
  db::Recordset Execute(std::string_view) override { throw db::Error("the evaluator may only read"); }
  db::Recordset Query(std::string_view sql) override {
    ++consultas;
    auto columnas = std::make_shared<db::Columns>(db::Columns{{"a", base::Type::Text}});
    return db::Recordset(columnas, {base::Value(texto_)}, std::string(sql));
  }
  std::int64_t AffectedRows() const override { return 0; }
  void BeginTrans() override {}
  void CommitTrans() override {}
  void RollbackTrans() override {}
  bool InTransaction() const override { return false; }
  void SetSavepoint() override {}
  void RollbackToSavepoint() override {}
  void ReleaseSavepoint() override {}

 private:
  std::string texto_;
};

// One whose queries take more than they may.
class NoTermina final : public SiempreLoMismo {
 public:
  explicit NoTermina(db::QueryInterrupted::By por) : SiempreLoMismo("7"), por_(por) {}
  db::Recordset QueryBounded(std::string_view, db::QueryBudget&) override {
    throw db::QueryInterrupted(por_);
  }

 private:
  db::QueryInterrupted::By por_;
};

class Limites : public ::testing::Test {
 protected:
  Limites() { ev.prompts = &avisos; }

  // The value, after checking that it did not take long and that the evaluator works as before.
  std::string Evaluar(const std::string& texto) {
    avisos.cajas.clear();
    const auto antes = std::chrono::steady_clock::now();
    std::string valor = formula::EvaluarTexto(ev, texto);
    const std::chrono::duration<double> segundos = std::chrono::steady_clock::now() - antes;
    EXPECT_LT(segundos.count(), 60);
    EXPECT_EQ(ev.profundidad, 0);
    cajas = avisos.cajas;
    EXPECT_EQ(formula::EvaluarTexto(ev, "[2+3]*SI(1=1;2;3)"), "10");
    EXPECT_EQ(avisos.cajas.size(), cajas.size());
    return valor;
  }
  void EsperarUnaCaja(std::string_view descripcion) {
    ASSERT_EQ(cajas.size(), 1U) << (cajas.empty() ? "" : cajas[0]);
    EXPECT_NE(cajas[0].find(descripcion), std::string::npos) << cajas[0];
  }

  prueba::AvisosDePrueba avisos;
  sesion::DbSession sesion;
  formula::Evaluador ev;
  std::vector<std::string> cajas;
};

TEST_F(Limites, ParenthesesThatOnlyOpen) {
  EXPECT_EQ(Evaluar(Repetir("(", kMuchos)), "");
  EsperarUnaCaja("Falta un )");
}

TEST_F(Limites, NestedParentheses) {
  const std::string texto = Repetir("(", kMuchos) + Repetir(")", kMuchos);
  EXPECT_TRUE(Evaluar(texto) == texto);
  EsperarUnaCaja(kNiveles);
}

TEST_F(Limites, NestedFunctions) {
  const std::vector<std::pair<const char*, const char*>> funciones = {
      {"ENTERO(", ")"}, {"SI(1=1;", ";0)"}, {"COND(1=1;", ")"},   {"PROM(1;", ")"},
      {"P(", ")"},      {"1+ENTERO(", ")"}, {"2*SI(1=1;", ";0)"}, {"ENTRE(1;1;", ")"}};
  for (const auto& [abre, cierra] : funciones) {
    const std::string texto = Repetir(abre, kMuchos) + "1" + Repetir(cierra, kMuchos);
    EXPECT_TRUE(Evaluar(texto) == texto) << abre;
    EsperarUnaCaja("La fórmula");
    const std::string corto = Repetir(abre, 1000) + "1" + Repetir(cierra, 1000);
    EXPECT_TRUE(Evaluar(corto) == corto) << abre;
    EsperarUnaCaja(kNiveles);
  }
}

TEST_F(Limites, AHundredNestedFunctionsAreNoTrouble) {
  EXPECT_EQ(Evaluar(Repetir("SI(1=1;", 100) + "7" + Repetir(";0)", 100)), "7");
  EXPECT_TRUE(cajas.empty());
}

TEST_F(Limites, NestedUnknownFunctionsAreNotFollowed) {
  EXPECT_TRUE(Evaluar(Repetir("FOO(", kMuchos) + "1" + Repetir(")", kMuchos)) ==
              Repetir("FOO(", kMuchos - 1) + "1" + Repetir(")", kMuchos - 1));
  EXPECT_TRUE(cajas.empty());
}

TEST_F(Limites, BracketsThatOnlyOpen) {
  const std::string texto = Repetir("[", kMuchos);
  EXPECT_TRUE(Evaluar(texto) == texto);
  EsperarUnaCaja("Error en formula / Falta un )");
}

TEST_F(Limites, NestedBrackets) {
  EXPECT_EQ(Evaluar(Repetir("[", 1000) + "1" + Repetir("]", 1000)), "1");
  EXPECT_TRUE(cajas.empty());
  Evaluar(Repetir("[", kMuchos) + "1" + Repetir("]", kMuchos));
  EsperarUnaCaja(kLarga);
  Evaluar(Repetir("1+[", kMuchos) + "1" + Repetir("]", kMuchos));
  EsperarUnaCaja(kLarga);
}

TEST_F(Limites, ManyBracketsSideBySide) {
  std::string texto = "0";
  for (int i = 0; i < 1000; ++i) texto += "+[" + std::to_string(i) + "]";
  EXPECT_EQ(Evaluar(texto), "499500");
  EXPECT_TRUE(cajas.empty());
}

TEST_F(Limites, LongFormulasAreCalculated) {
  EXPECT_EQ(Evaluar("0" + Repetir("+1", kMuchos)), "100000");
  EXPECT_EQ(Evaluar("0" + Repetir("-1", kMuchos)), "-100000");
  EXPECT_EQ(Evaluar("0" + Repetir("+ENTERO(1)", 1000)), "1000");
  EXPECT_EQ(Evaluar("EVAL(1=2" + Repetir(" OR 1=2", 10'000) + " OR 1=1)"), "1");
  EXPECT_EQ(Evaluar("EVAL(1=1" + Repetir(" AND 1=1", 10'000) + ")"), "1");
  EXPECT_EQ(Evaluar("COND(" + Repetir("1=2;5;", 10'000) + "1=1;7)"), "7");
  EXPECT_EQ(Evaluar("EVAL(X ENLIST " + Repetir("A,", kMuchos) + "X)"), "1");
  EXPECT_TRUE(cajas.empty());
}

TEST_F(Limites, SignsAndOperatorsAlone) {
  EXPECT_EQ(Evaluar(Repetir("-", kMuchos)), "0");
  EXPECT_EQ(Evaluar(Repetir("*-", kMuchos)), "0");
  EXPECT_EQ(Evaluar(Repetir("-", kMuchos) + "5"), "-5");  // 0 less 5
  EXPECT_EQ(Evaluar("5" + Repetir("*-1", kMuchos)), "5");
  EXPECT_TRUE(Evaluar(Repetir("#", kMuchos)) == Repetir("#", kMuchos - 2));
  EXPECT_EQ(Evaluar(Repetir(" ", kMuchos)), "");
  EXPECT_TRUE(Evaluar(Repetir("]", kMuchos)) == Repetir("]", kMuchos));
  EXPECT_TRUE(cajas.empty());
}

// A group whose value is a group again, for ever.
TEST_F(Limites, ABaseThatAnswersWithTheQuestion) {
  auto conexion = std::make_unique<SiempreLoMismo>("[LISTA(CAMPO A EN T;,)]");
  const SiempreLoMismo* vista = conexion.get();
  sesion.conexion = std::move(conexion);
  ev.sesion = &sesion;
  Evaluar("[LISTA(CAMPO A EN T;,)]");
  EsperarUnaCaja(kLarga);
  EXPECT_GT(vista->consultas, 0U);
  EXPECT_LT(vista->consultas, 10'000U);
}

TEST_F(Limites, ABaseThatAnswersWithMore) {
  sesion.conexion = std::make_unique<SiempreLoMismo>(Repetir("[LISTA(CAMPO A EN T;,)]", 1000));
  ev.sesion = &sesion;
  Evaluar(Repetir("[LISTA(CAMPO A EN T;,)]", 1000));
  ASSERT_FALSE(cajas.empty());
  EXPECT_NE(cajas[0].find(kLarga), std::string::npos) << cajas[0];
}

class Parametros : public Limites {
 protected:
  std::string ConTabla(std::vector<std::vector<std::string>> tabla, std::string texto) {
    ev.TablaParametros.dimensiones = 2;
    ev.TablaParametros.registros = std::move(tabla);
    bool usar = true;
    const std::string valor = formula::EvaluarExpresion(ev, texto, usar);
    cajas = avisos.cajas;
    return valor;
  }
};

TEST_F(Parametros, BracketedNamesGoBeforeBareOnes) {
  EXPECT_EQ(ConTabla({{"HS", "8"}}, "[HS]*2"), "16");
  EXPECT_EQ(ConTabla({{"HS", "8"}}, "hs*2"), "16");
  // Only the bracketed one is replaced, in the first round; the bare one has no second.
  EXPECT_EQ(ConTabla({{"HS", "8"}}, "[HS]*HS"), "0");
  EXPECT_EQ(ConTabla({{"A", "2"}, {"B", "3"}}, "A*B"), "6");
  EXPECT_EQ(ConTabla({{"A", "2"}, {"AB", "3"}}, "AB"), "2B");
  EXPECT_EQ(ConTabla({{"A", "B"}, {"B", "3"}}, "A"), "3");
  EXPECT_EQ(ConTabla({{"A", "2"}}, "#A#"), "A");
  EXPECT_EQ(ConTabla({{"A", "1000"}}, "1+A+A"), "2001");
  EXPECT_TRUE(cajas.empty());
}

TEST_F(Limites, ParMakesOneParameterWithoutNameOrValue) {
  EXPECT_EQ(formula::EvaluarTexto(ev, "PAR(2)"), "2");
  ASSERT_EQ(ev.TablaParametros.Cantidad(), 1U);
  EXPECT_EQ(ev.TablaParametros.dimensiones, 2);
  EXPECT_EQ(ev.TablaParametros.registros[0], (std::vector<std::string>{"", ""}));
}

TEST_F(Parametros, AFormulaThatStartsWithParKeepsItsNamesThatTime) {
  EXPECT_EQ(ConTabla({{"A", "2"}}, "PAR(A)"), "A");
  EXPECT_EQ(ev.TablaParametros.Cantidad(), 1U);
  EXPECT_EQ(ev.TablaParametros.Campo(0, 0), "A");  // with the flag on, the table is not reset
}

TEST_F(Parametros, WithoutANameThereIsNothingToReplace) {
  EXPECT_EQ(ConTabla({{"", "7"}}, "1+1"), "2");
  EXPECT_TRUE(cajas.empty());
}

// Each is looked for in the whole text.
TEST_F(Parametros, TooManyForTheText) {
  std::vector<std::vector<std::string>> tabla;
  for (int i = 0; i < 1000; ++i) tabla.push_back({"X" + std::to_string(i), "1"});
  ConTabla(std::move(tabla), "1+1" + Repetir(" ", kMuchos) + "+1");
  EsperarUnaCaja(kLarga);
}

TEST_F(Parametros, ValuesThatNameThemselves) {
  ConTabla({{"A", "[A]"}}, "[A]");
  EsperarUnaCaja(kNiveles);
}

TEST_F(Parametros, ValuesThatMultiply) {
  for (const auto& tabla :
       std::vector<std::vector<std::vector<std::string>>>{{{"A", "[A]+[B]"}, {"B", "[B]-[A]"}},
                                                          {{"A", "AA"}},
                                                          {{"A", Repetir("A", 5000)}},
                                                          {{"A", "[1+A]A"}}}) {
    avisos.cajas.clear();
    const auto antes = std::chrono::steady_clock::now();
    ConTabla(tabla, "[1]+[2]+[3]+[4]+[5]+A");
    const std::chrono::duration<double> segundos = std::chrono::steady_clock::now() - antes;
    EXPECT_LT(segundos.count(), 60) << tabla[0][1].substr(0, 20);
    EXPECT_LE(cajas.size(), 2U);
  }
}

TEST_F(Limites, WithoutSessionClockOrPrompts) {
  formula::Evaluador solo;
  EXPECT_EQ(formula::EvaluarTexto(solo, "SI(1)+SQL(CAMPO A EN T)"), "0");
  EXPECT_EQ(formula::EvaluarTexto(solo, "LISTA(CAMPO A EN T;,)"), "");
  EXPECT_EQ(formula::EvaluarTexto(solo, "CFECHA(HOY())"), "0");
}

TEST_F(Limites, TheClockMayBeTheSessions) {
  const ports::FixedClock reloj(base::MakeDate(2024, 8, 15));
  sesion.reloj = &reloj;
  ev.sesion = &sesion;
  EXPECT_EQ(formula::EvaluarTexto(ev, "HOY()"), "15/08/2024");
}

TEST_F(Limites, WildcardsThatMultiply) {
  formula::CamposDeLinea linea;
  linea[4] = Repetir("Horas", 2000);
  linea[3] = Repetir("DatoExtra", 2000);
  linea[8] = Repetir("Monto", 2000);
  linea[14] = Repetir("9", 10'000);
  EXPECT_EQ(formula::ReemplazaComodines("Tipo", linea), "");
  EXPECT_EQ(formula::CalcularFormula(ev, "Tipo", linea), 0.0F);
  EXPECT_STREQ(ev.agotado, "La fórmula es demasiado larga con los datos de la línea");
  linea[3] = "8";
  EXPECT_EQ(formula::ReemplazaComodines("Horas+Tipo", linea), "8+" + Repetir("8", 2000));
}

TEST_F(Limites, WildcardsUpToTheLimit) {
  formula::CamposDeLinea linea;
  linea[4] = Repetir("9", formula::kLargoMaximo);
  EXPECT_EQ(formula::ReemplazaComodines("Tipo", linea).size(), formula::kLargoMaximo);
  EXPECT_EQ(formula::ReemplazaComodines("Tipo1", linea), "");
  linea[4] += "9";
  EXPECT_EQ(formula::ReemplazaComodines("Tipo", linea), "");
}

TEST_F(Limites, AnInterruptedQuerySaysWhatWasTooMuch) {
  ev.sesion = &sesion;
  sesion.conexion = std::make_unique<NoTermina>(db::QueryInterrupted::By::Work);
  Evaluar("1+SQL(CAMPO A EN T)");
  EsperarUnaCaja("La consulta de la fórmula se interrumpió: da demasiado trabajo a la base");
  sesion.conexion = std::make_unique<NoTermina>(db::QueryInterrupted::By::Size);
  Evaluar("1+SQL(CAMPO A EN T)");
  EsperarUnaCaja("La consulta de la fórmula se interrumpió: su resultado es demasiado grande");
}

// A query of many conditions is an ordinary one.
TEST_F(Limites, LongQueriesRun) {
  sesion.conexion = std::make_unique<SiempreLoMismo>("7");
  ev.sesion = &sesion;
  EXPECT_EQ(Evaluar("SQL(CAMPO A EN T SOLOSI B=1" + Repetir(" O B=1", 2000) + ")"), "7");
  EXPECT_TRUE(cajas.empty());
}

// What one evaluation took is not held against the next.
TEST_F(Limites, EachEvaluationStartsAfresh) {
  const std::string texto = "1+" + Repetir(" ", 1'000'000) + "1";
  for (int vez = 0; vez < 40; ++vez) ASSERT_EQ(formula::EvaluarTexto(ev, texto), "2") << vez;
  EXPECT_TRUE(avisos.cajas.empty());
}

// Four million characters, with what a group puts in its place.
TEST_F(Limites, AValueMayNotMakeTheTextTooLong) {
  const std::string grupo = "[LISTA(CAMPO A EN T;,)]", valor = Repetir("9", 2'000'000);
  constexpr std::size_t kMaximo = std::size_t{1} << 22;
  sesion.conexion = std::make_unique<SiempreLoMismo>(valor);
  ev.sesion = &sesion;
  const std::string justo = Repetir("A", kMaximo - valor.size());
  EXPECT_EQ(Evaluar(grupo + justo).size(), kMaximo);
  EXPECT_TRUE(cajas.empty());
  Evaluar(grupo + justo + "A");
  EsperarUnaCaja(kLarga);
}

// Nor may a list be longer, but for its last row.
TEST_F(Limites, AListEndsAtTheSameLength) {
  constexpr std::size_t kMaximo = std::size_t{1} << 22;
  const auto lista = [&](std::size_t primera) {
    auto conexion = std::make_unique<prueba::ConexionFalsa>();
    prueba::Respuesta filas;
    filas.columnas = {"a"};
    filas.celdas = {base::Value(Repetir("9", primera)), base::Value(std::string("8"))};
    conexion->respuestas.push_back(std::move(filas));
    sesion.conexion = std::move(conexion);
    ev.sesion = &sesion;
    return formula::EvaluarTexto(ev, "LISTA(CAMPO A EN T;,)");
  };
  EXPECT_EQ(lista(kMaximo - 1).size(), kMaximo + 1);
  EXPECT_EQ(ev.agotado, nullptr);
  lista(kMaximo);
  EXPECT_NE(ev.agotado, nullptr);
}

TEST_F(Limites, AGivenUpFormulaImportsNothing) {
  formula::CamposDeLinea linea;
  linea[3] = "8";
  EXPECT_EQ(formula::CalcularFormula(ev, "*" + Repetir("(", kMuchos) + Repetir(")", kMuchos), linea), 0.0F);
  ASSERT_EQ(avisos.cajas.size(), 1U);
}

// Random texts of the language's own pieces: none may crash, hang, leave a "-0" or a box without end.
TEST_F(Limites, RandomTexts) {
  const std::vector<std::string> piezas = {
      "(",        ")",     "[",     "]",          ";",      ",",         ".",     "#",    "+",    "-",
      "*",        "/",     "=",     "<",          ">",      " ",         "1",     "2",    "0",    "8,5",
      "SI(",      "COND(", "EVAL(", "ENTERO(",    "MOD(",   "REDONDEO(", "PROM(", "P(",   "PA(",  "HOY()",
      "CFECHA(",  "ANIO(", "MES(",  "ENTRE(",     "LISTA(", "SQL(",      "PAR(",  "FOO(", " OR ", " AND ",
      " ENLIST ", "A",     "abc",   "01/02/2024", "-0",     "1e308",     "\r\n",  "ñ"};
  std::mt19937 azar(20240815);
  std::uniform_int_distribution<std::size_t> cual(0, piezas.size() - 1);
  std::uniform_int_distribution<std::size_t> cuantas(1, 40);
  avisos.callar = 1;
  for (int i = 0; i < 20'000; ++i) {
    std::string texto;
    for (std::size_t n = cuantas(azar); n > 0; --n) texto += piezas[cual(azar)];
    const std::string valor = formula::EvaluarTexto(ev, texto);
    ASSERT_NE(valor, "-0") << texto;
    ASSERT_EQ(ev.profundidad, 0) << texto;
    ASSERT_EQ(ev.agotado, nullptr) << texto;
  }
}

}  // namespace
