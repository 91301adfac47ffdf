// A bare folder with a base and a file: what the file seems to be is proposed before it is read.
#include "app/banco.h"

namespace {

class PrimerUso : public prueba::Banco, public ::testing::WithParamInterface<demo::Motor> {
 protected:
  void SetUp() override {
    Banco::SetUp();
    Demo(GetParam());
    std::filesystem::remove(demo_.ajustes);  // a bare folder
    proponer_ = true;
    Escribir("horas2.txt", "007008;HC;160\r\n007031;HE;8,5\r\n007001;HC;90");
  }
  app::Programa& P() { return *programa_; }
};

TEST_P(PrimerUso, YesMakesTheFirstImportPossible) {
  ASSERT_TRUE(Crear().IniciarCon(demo_.referencia, Ruta("horas2.txt")));
  cajas_.respuestas = {true};
  P().Activate();
  ASSERT_EQ(cajas_.detalles.size(), 1U);
  EXPECT_NE(cajas_.detalles[0].find("• Delimitado: los datos están separados por \";\""), std::string::npos)
      << cajas_.detalles[0];
  EXPECT_NE(cajas_.detalles[0].find("\r\n   007008 | HC | 160\r\n"), std::string::npos);
  EXPECT_EQ(P().Ver().opciones.Separador, ";");
  EXPECT_EQ(P().Ver().txtSeparador.text, ";");
  EXPECT_FALSE(P().Ver().chkCodigoNumerico.checked);
  EXPECT_TRUE(P().Ver().chkVincAutConOrsa.checked);
  EXPECT_EQ(P().Ver().cbTipoClave.ListIndex, P().Ver().opciones.Configura);
  ASSERT_EQ(P().Ver().filas.size(), 3U);
  for (const auto& fila : P().Ver().filas) EXPECT_NE(fila.campo[importfile::kNombre], "");
  EXPECT_EQ(app::TextoDeDiferencias(P().Ver()), "");
  EXPECT_TRUE(P().Ver().causas.causas.empty());
  cajas_.respuestas = {true};
  P().Importador().cbImportar_Click(1);
  EXPECT_GE(P().Ver().importacion.importadas, 2U);
  // It is kept, and does not come back.
  EXPECT_TRUE(P().Unload());
  ASSERT_TRUE(Crear().IniciarCon(demo_.referencia, Ruta("horas2.txt")));
  P().Activate();
  EXPECT_EQ(P().Ver().filas.size(), 3U);
  EXPECT_EQ(cajas_.preguntas.size(), 2U);
}

// The load goes on as ever, the cause is named, and it asks no second time about the same file.
TEST_P(PrimerUso, NoLeavesEverythingAsItWas) {
  ASSERT_TRUE(Crear().IniciarCon(demo_.referencia, Ruta("horas2.txt")));
  cajas_.respuestas = {false};
  cajas_.esperadas = {"Formato incorrecto"};
  P().Activate();
  EXPECT_EQ(P().Ver().opciones.Separador, " ");
  EXPECT_TRUE(P().Ver().filas.empty());
  ASSERT_EQ(P().Ver().causas.causas.size(), 1U);
  EXPECT_EQ(P().Ver().causas.causas[0], "El separador elegido es un espacio, y no está en el archivo");
  EXPECT_TRUE(P().Ver().causas.graves);
  cajas_.esperadas = {"Formato incorrecto"};
  P().Archivo().cbActualizar_Click();
  EXPECT_EQ(cajas_.preguntas.size(), 1U);
  // Another file is another question.
  Escribir("horas3.txt", "007008;HC;160\r\n007031;HE;8,5");
  P().Archivo().txtRuta_Change(Ruta("horas3.txt"));
  cajas_.respuestas = {true};
  P().Archivo().cbActualizar_Click();
  EXPECT_EQ(P().Ver().filas.size(), 2U);
}

TEST_P(PrimerUso, NothingIsProposedForWhatWorksNorForWhatCannotBeUnderstood) {
  ASSERT_TRUE(Crear().IniciarCon(demo_.referencia, ""));
  Escribir("carta.txt", "Estimados:\r\nmandamos las horas.");
  P().Archivo().txtRuta_Change(Ruta("carta.txt"));
  cajas_.aceptar_todo = true;
  P().Archivo().cbActualizar_Click();
  P().Archivo().txtRuta_Change(Ruta("no.txt"));
  P().Archivo().cbActualizar_Click();
  EXPECT_TRUE(cajas_.preguntas.empty());
}

INSTANTIATE_TEST_SUITE_P(Engines, PrimerUso, testing::Values(demo::Motor::Sqlite, demo::Motor::Mdb),
                         [](const auto& caso) { return caso.param == demo::Motor::Mdb ? "mdb" : "sqlite"; });

class SinPropuesta : public prueba::Banco {};

// Only who can ask proposes: the command line takes the options as they are.
TEST_F(SinPropuesta, WithoutTheWordOfTheStartThereIsNone) {
  Demo();
  std::filesystem::remove(demo_.ajustes);
  Escribir("horas2.txt", "007008;HC;160");
  ASSERT_TRUE(Crear().IniciarCon(demo_.referencia, Ruta("horas2.txt")));
  cajas_.esperadas = {"Formato incorrecto"};
  programa_->Activate();
  EXPECT_TRUE(cajas_.preguntas.empty());
}

}  // namespace
