// A fault of the storage under a formula is no failing step: it travels out of every trap of the evaluator,
// without a box, and leaves an evaluator that works as before.
#include <gtest/gtest.h>

#include "avisos_de_prueba.h"
#include "conexion_falsa.h"
#include "formula/evaluador/evaluator.h"
#include "formula/evaluador/line_formula.h"
#include "formula/tablas_usuario/user_tables.h"

namespace {

class StorageFault : public testing::TestWithParam<const char*> {
 protected:
  StorageFault() {
    ev.sesion = &sesion;
    ev.prompts = &avisos;
    auto falsa = std::make_unique<prueba::ConexionFalsa>();
    conexion = falsa.get();
    sesion.conexion = std::move(falsa);
  }
  void Responder(base::ErrorKind kind) {
    prueba::Respuesta r;
    r.error = "No se pudo leer la página 7";
    r.kind = kind;
    conexion->respuestas.push_back(std::move(r));
  }
  void ExpectAsBefore() const {
    EXPECT_TRUE(avisos.cajas.empty()) << avisos.cajas.front();
    EXPECT_EQ(ev.profundidad, 0);
    EXPECT_EQ(ev.avisos_mostrados, 0);
  }

  prueba::AvisosDePrueba avisos;
  prueba::ConexionFalsa* conexion = nullptr;
  sesion::DbSession sesion;
  formula::Evaluador ev;
};

TEST_P(StorageFault, TravelsOut) {
  Responder(base::ErrorKind::Storage);
  try {
    formula::EvaluarTexto(ev, GetParam());
    FAIL() << "passed over";
  } catch (const base::Error& e) {
    EXPECT_TRUE(e.IsStorageFault());
    EXPECT_EQ(e.Description(), "No se pudo leer la página 7");
  }
  EXPECT_EQ(conexion->textos.size(), 1U) << "it went on after the fault";
  ExpectAsBefore();
  EXPECT_EQ(formula::EvaluarTexto(ev, "ENTERO([1+2]*3)"), "9");
  EXPECT_FALSE(ev.sin_valor);
}

TEST_P(StorageFault, AFailingStatementDoesNot) {
  Responder(base::ErrorKind::Statement);
  EXPECT_NO_THROW(formula::EvaluarTexto(ev, GetParam()));
  EXPECT_EQ(ev.profundidad, 0);
}

TEST_P(StorageFault, TravelsOutOfTheLineFormula) {
  Responder(base::ErrorKind::Storage);
  formula::CamposDeLinea linea;
  linea[3] = "8";
  EXPECT_THROW(formula::CalcularFormula(ev, std::string("+") + GetParam(), linea), base::Error);
  ExpectAsBefore();
  EXPECT_EQ(formula::CalcularFormula(ev, "+1", linea), 9.0F);
}

// The run is undone: nothing is put back on top of what could not be written.
TEST(StorageFaultInASeries, EndsTheWriting) {
  sesion::DbSession sesion;
  auto falsa = std::make_unique<prueba::ConexionFalsa>();
  prueba::ConexionFalsa* conexion = falsa.get();
  sesion.conexion = std::move(falsa);
  conexion->respuestas.resize(4);  // series, number, delete, insert
  conexion->respuestas.back().error = "No se pudo escribir la página 7";
  conexion->respuestas.back().kind = base::ErrorKind::Storage;
  try {
    formula::GuardarValorTablaUsuario(sesion, 5, "101", "9", base::MakeDate(2024, 6, 1));
    FAIL() << "passed over";
  } catch (const base::Error& e) {
    EXPECT_TRUE(e.IsStorageFault());
  }
  EXPECT_EQ(conexion->textos.size(), 4U);
}

INSTANTIATE_TEST_SUITE_P(Traps, StorageFault,
                         testing::Values("SQL(CAMPO A EN T)", "LISTA(CAMPO A EN T;,)",
                                         "2*SQL(CAMPO A EN T)+1", "[SQL(CAMPO A EN T)]*[SQL(CAMPO B EN T)]",
                                         "ENTERO(SQL(CAMPO A EN T))",
                                         "PROM(1;SQL(CAMPO A EN T);SQL(CAMPO B EN T))",
                                         "P(SQL(CAMPO A EN T))", "EVAL(SQL(CAMPO A EN T)>SQL(CAMPO B EN T))",
                                         "EVAL(1=2 OR SQL(CAMPO A EN T)=1 AND 1=1)",
                                         "SI(SQL(CAMPO A EN T)>1;SQL(CAMPO B EN T);2)",
                                         "COND(SQL(CAMPO A EN T)>1;1;2>1;SQL(CAMPO B EN T))",
                                         "ENTRE(5;SQL(CAMPO A EN T);SQL(CAMPO B EN T))",
                                         "CFECHA(SQL(CAMPO A EN T))", "FOO([SQL(CAMPO A EN T)])"));

}  // namespace
