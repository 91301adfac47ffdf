// Another base while the program runs, and when there is nothing to import or nowhere to.
#include "app/banco.h"
#include "engine_mdb/mdb_connection.h"

namespace {

class CambioDeBase : public prueba::Banco, public ::testing::WithParamInterface<demo::Motor> {
 protected:
  void SetUp() override {
    Banco::SetUp();
    Demo(GetParam());
    otra_ = app::CrearCarpetaDemo(Ruta("otra"), kMes, reloj_, GetParam());
    Escribir("pocas.txt", "007001;HC;8\r\n007001;HE;2,5\r\n007003;HE;4");
    ASSERT_TRUE(Crear().IniciarCon(demo_.referencia, Ruta("pocas.txt")));
    P().Activate();
    ASSERT_EQ(P().Ver().filas.size(), 3U);
  }
  app::Programa& P() { return *programa_; }
  std::string Filas() {
    std::string todo;
    for (const auto& fila : P().Ver().filas) todo += fila.campo[importfile::kNombre] + " ";
    return todo;
  }
  app::CarpetaDemo otra_;
};

// The same person key is somebody else there, and the base of before is not touched any more.
TEST_P(CambioDeBase, GoesThroughTheOrderOfTheStartAndLoadsTheFileAgain) {
  const std::string antes = Filas();
  const std::string datos = Consulta("Select Count(*) From Datos_Liquidacion");
  {
    const app::Conexion c = app::AbrirReferencia(otra_.referencia, reloj_);
    c.conexion->Execute("Update Personas Set Nombre_1='Otra'");
  }
  const unsigned tipos = P().Ver().revision.tipos;
  ASSERT_TRUE(P().CambioDeBase().Abrir(otra_.referencia));
  EXPECT_EQ(P().Ver().referencia, otra_.referencia);
  EXPECT_EQ(P().Ver().LblEmpresa, "Empresa: " + otra_.referencia);
  EXPECT_GT(P().Ver().revision.tipos, tipos);
  EXPECT_EQ(P().Ver().filas.size(), 3U);
  EXPECT_NE(Filas(), antes);
  EXPECT_EQ(Filas(), "Otra Otra Otra ");
  EXPECT_EQ(app::TextoDeDiferencias(P().Ver()), "");
  EXPECT_EQ(P().MotivoParaNoImportar(), "");
  cajas_.respuestas = {true};
  P().Importador().cbImportar_Click(1);
  EXPECT_EQ(P().Ver().importacion.importadas, 3U);
  EXPECT_TRUE(P().Unload());
  programa_.reset();
  const app::Conexion c = app::AbrirReferencia(demo_.referencia, reloj_);
  EXPECT_EQ(c.conexion->Query("Select Count(*) From Datos_Liquidacion").At(0, 0).CsvText(), datos);
}

TEST_P(CambioDeBase, OneThatCannotBeOpenedLeavesTheOtherOpen) {
  const unsigned filas = P().Ver().revision.filas;
  Escribir("ConfBase.cfg.malo", "x");
  cajas_.esperadas = {"Error al abrir la base ubicada en " + Ruta("no.mdb") + "\r\nEl archivo '" +
                      Ruta("no.mdb") + "' no existe\r\nSigue abierta " + demo_.referencia};
  EXPECT_FALSE(P().CambioDeBase().Abrir(Ruta("no.mdb")));
  EXPECT_EQ(P().Ver().referencia, demo_.referencia);
  EXPECT_EQ(P().Ver().LblEmpresa, "Empresa: " + demo_.referencia);
  EXPECT_EQ(P().Ver().revision.filas, filas);
  EXPECT_EQ(P().Importador().MotivoApagado(), "");
  cajas_.respuestas = {true};
  P().Importador().cbImportar_Click(1);
  EXPECT_EQ(P().Ver().importacion.importadas, 3U);
}

TEST_P(CambioDeBase, TheDialogIsThatOfTheStartAndCancellingItChangesNothing) {
  EXPECT_FALSE(P().CambioDeBase().Elegir());
  ASSERT_EQ(cajas_.dialogos.size(), 1U);
  EXPECT_EQ(cajas_.dialogos[0],
            "Seleccionar la base a ingresar las Horas|Bases de Access (*.mdb)|*.mdb|" + demo_.referencia);
  EXPECT_EQ(P().Ver().referencia, demo_.referencia);
  cajas_.archivo = otra_.referencia;
  EXPECT_TRUE(P().CambioDeBase().Elegir());
  EXPECT_EQ(P().Ver().referencia, otra_.referencia);
}

// An edited relation is not lost with the base that it was edited in.
TEST_P(CambioDeBase, SavesFirstWhatClosingSaves) {
  const std::size_t antes = P().Ver().relaciones.Cantidad();
  P().Relaciones().GridRelaciones_RowChange(0);
  P().Relaciones().cbAgrQuit_Click(1);
  ASSERT_TRUE(P().CambioDeBase().Abrir(otra_.referencia));
  EXPECT_EQ(P().Ver().relaciones.Cantidad(), antes - 1);
}

TEST_P(CambioDeBase, TheSameReferenceIsOpenedAnew) {
  ASSERT_TRUE(P().CambioDeBase().Abrir(demo_.referencia));
  EXPECT_EQ(P().Importador().MotivoApagado(), "");
  EXPECT_EQ(P().Ver().filas.size(), 3U);
}

TEST_P(CambioDeBase, NotWhileALoadRuns) {
  bool visto = false;
  eventos_.al_correr = [&] {
    if (visto) return;
    visto = true;
    EXPECT_FALSE(P().CambioDeBase().Abrir(otra_.referencia));
    EXPECT_FALSE(P().CambioDeBase().Elegir());
  };
  P().Archivo().cbActualizar_Click();
  eventos_.al_correr = nullptr;
  EXPECT_TRUE(visto);
  EXPECT_EQ(P().Ver().referencia, demo_.referencia);
}

TEST_P(CambioDeBase, TheButtonRestsWithItsReason) {
  EXPECT_EQ(P().Importador().MotivoApagado(), "");
  Escribir("vacio.txt", "");
  P().Archivo().txtRuta_Change(Ruta("vacio.txt"));
  P().Archivo().cbActualizar_Click();
  EXPECT_EQ(P().Importador().MotivoApagado(), "No hay ninguna línea cargada.");
  Escribir("nada.txt", "007001;XX;8");
  P().Archivo().txtRuta_Change(Ruta("nada.txt"));
  P().Archivo().cbActualizar_Click();
  EXPECT_EQ(P().Importador().MotivoApagado(), "Ninguna línea del archivo quedó en la grilla.");
  // A base of another name has no company.
  std::filesystem::copy_file(Ruta("otra/" + std::string(demo::NombreDeBase(GetParam()))),
                             Ruta("sueldos.dat"));
  cajas_.aceptar_todo = true;
  ASSERT_TRUE(P().CambioDeBase().Abrir(Ruta("sueldos.dat")));
  EXPECT_EQ(P().Importador().MotivoApagado(),
            "La base no tiene empresa: su nombre no es Personal.mdb, Proyec.mdb ni ConfBase.cfg.");
  EXPECT_EQ(P().Sesion().idEmpresa, 0);
  EXPECT_TRUE(P().Ver().tipos.cmbLiquidaciones.items.empty());
  P().Importador().cbImportar_Click(1);
  EXPECT_TRUE(cajas_.preguntas.empty());
}

INSTANTIATE_TEST_SUITE_P(Engines, CambioDeBase, testing::Values(demo::Motor::Sqlite, demo::Motor::Mdb),
                         [](const auto& caso) { return caso.param == demo::Motor::Mdb ? "mdb" : "sqlite"; });

class SinBase : public prueba::Banco {};

TEST_F(SinBase, WithoutABaseTheReasonIsThatOfTheOpening) {
  cajas_.esperadas = {"Error al abrir la base ubicada en nada"};
  ASSERT_TRUE(Crear().Iniciar("nada*"));
  EXPECT_EQ(programa_->Importador().MotivoApagado(),
            "La base no está abierta: " + programa_->Ver().motivo_base);
  // And a base can be opened after all.
  Demo();
  ASSERT_TRUE(programa_->CambioDeBase().Abrir(demo_.referencia));
  EXPECT_EQ(programa_->Importador().MotivoApagado(), "No hay ninguna línea cargada.");
}

TEST_F(SinBase, ABaseThatAnotherProgramHasIsTriedAgainByActualizar) {
  Demo();
  Escribir("pocas.txt", "007001;HC;8");
  auto otro = engine_mdb::Open(Ruta("Personal.mdb"));
  cajas_.aceptar_todo = true;
  ASSERT_TRUE(Crear().IniciarCon(demo_.referencia, Ruta("pocas.txt")));
  programa_->Activate();
  ASSERT_NE(programa_->Ver().solo_lectura, "");
  EXPECT_EQ(programa_->Importador().MotivoApagado(), programa_->Ver().solo_lectura);
  programa_->Archivo().cbActualizar_Click();
  EXPECT_NE(programa_->Importador().MotivoApagado(), "");
  otro.reset();
  programa_->Archivo().cbActualizar_Click();
  EXPECT_EQ(programa_->Importador().MotivoApagado(), "");
}

}  // namespace
