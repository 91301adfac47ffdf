// A load and an import that the operator stops.
#include "app/banco.h"

namespace {

class Cancelar : public prueba::Banco, public ::testing::WithParamInterface<demo::Motor> {
 protected:
  void SetUp() override {
    Banco::SetUp();
    Demo(GetParam());
    Escribir("pocas.txt", "007001;HC;8\r\n007001;HE;2,5\r\n007003;HE;4");
    std::string muchas;
    for (int i = 0; i < 200; ++i) muchas += "007003;HE;1\r\n";
    Escribir("muchas.txt", muchas);
    ASSERT_TRUE(Crear().IniciarCon(demo_.referencia, Ruta("pocas.txt")));
    P().Activate();
    ASSERT_EQ(P().Ver().filas.size(), 3U);
  }
  app::Programa& P() { return *programa_; }
};

TEST_P(Cancelar, ALoadKeepsTheOldGridAndTheBarSaysSo) {
  P().Archivo().txtRuta_Change(Ruta("muchas.txt"));
  eventos_.al_correr = [&] {
    if (P().BarraDeProgreso().Porcentaje() > 30) P().Cancelar();
  };
  P().Archivo().cbActualizar_Click();
  eventos_.al_correr = nullptr;
  EXPECT_EQ(P().Ver().filas.size(), 3U);
  EXPECT_EQ(app::TextoDeDiferencias(P().Ver()), "La grilla no es la de los controles: cambió la ruta.");
  EXPECT_FALSE(P().BarraDeProgreso().Visible());
  // The next one is not stopped by it.
  cajas_.esperadas = {"Formato incorrecto en la linea 201"};
  P().Archivo().cbActualizar_Click();
  EXPECT_EQ(P().Ver().filas.size(), 200U);
}

TEST_P(Cancelar, ABoxOfALoadOffersToStopIt) {
  Escribir("malas.txt", "007001;HC;8\r\nx\r\ny\r\nz\r\n007003;HE;4");
  P().Archivo().txtRuta_Change(Ruta("malas.txt"));
  cajas_.detener = true;
  cajas_.esperadas = {"Formato incorrecto en la linea 2"};  // and none after it
  P().Archivo().cbActualizar_Click();
  EXPECT_EQ(cajas_.detenibles, 1);
  EXPECT_EQ(P().Ver().filas.size(), 3U);
  cajas_.detener = false;
  cajas_.esperadas = {"Formato incorrecto en la linea 2", "Formato incorrecto en la linea 3",
                      "Formato incorrecto en la linea 4"};
  P().Archivo().cbActualizar_Click();
  EXPECT_EQ(P().Ver().filas.size(), 2U);
}

// The evaluator's boxes are of the load too.
TEST_P(Cancelar, SoDoTheBoxesOfAFormula) {
  P().Formato().txtFormulaSGN_Change("SI(1;2)");
  cajas_.detener = true;
  cajas_.aceptar_todo = true;
  P().Archivo().cbActualizar_Click();
  EXPECT_EQ(cajas_.detenibles, 1);
  EXPECT_EQ(cajas_.mostradas.size(), 1U);
  EXPECT_EQ(app::TextoDeDiferencias(P().Ver()), "La grilla no es la de los controles: cambió la fórmula.");
}

TEST_P(Cancelar, ABoxThatEndsTheLoadHasNothingToStop) {
  P().Archivo().txtRuta_Change(Ruta("no.txt"));
  cajas_.esperadas = {"El Archivo '" + Ruta("no.txt") + "' no existe"};
  P().Archivo().cbActualizar_Click();
  EXPECT_EQ(cajas_.detenibles, 0);
}

TEST_P(Cancelar, AnImportIsUndoneAndEveryRowSaysSo) {
  const auto datos = [&] {
    return Consulta("Select Count(*) & '/' & Sum(Cantidad) From Datos_Liquidacion") + "/" +
           Consulta("Select Count(*) From Encabezados");
  };
  const std::string antes = datos();
  constexpr const char* kTexto = "La importación se canceló: no se escribió nada";
  P().BarraDeProgreso().al_pintar = [&] {
    if (P().BarraDeProgreso().Porcentaje() > 50) P().Cancelar();
  };
  cajas_.respuestas = {true};
  cajas_.esperadas = {kTexto};
  P().Importador().cbImportar_Click(1);
  P().BarraDeProgreso().al_pintar = nullptr;
  EXPECT_TRUE(P().Ver().importacion.cancelada);
  for (const auto& fila : P().Ver().filas) EXPECT_EQ(fila.resultado, kTexto);
  EXPECT_EQ(datos(), antes);
  EXPECT_EQ(P().MotivoParaNoImportar(), "") << "nothing is wrong with the base";
  cajas_.respuestas = {true};
  P().Importador().cbImportar_Click(1);
  EXPECT_EQ(P().Ver().importacion.importadas, 3U);
  EXPECT_NE(datos(), antes);
}

// The window that closes lets an import end.
TEST_P(Cancelar, ClosingDoesNotStopAnImport) {
  P().BarraDeProgreso().al_pintar = [&] {
    if (P().PuedeCerrar()) return;
    EXPECT_FALSE(P().Unload());
  };
  cajas_.respuestas = {true};
  P().Importador().cbImportar_Click(1);
  P().BarraDeProgreso().al_pintar = nullptr;
  EXPECT_EQ(P().Ver().importacion.importadas, 3U);
  EXPECT_TRUE(P().CierrePedido());
}

INSTANTIATE_TEST_SUITE_P(Engines, Cancelar, testing::Values(demo::Motor::Sqlite, demo::Motor::Mdb),
                         [](const auto& caso) { return caso.param == demo::Motor::Mdb ? "mdb" : "sqlite"; });

}  // namespace
