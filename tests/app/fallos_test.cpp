// A base that stops answering, and a base that lacks something: nothing is imported on half of the data, and
// it is told.
#include "app/banco.h"
#include "app/conexion_que_falla.h"

namespace {

using prueba::Falla;

constexpr const char* kAviso =
    "Falló la base: no contesta\r\nNo se importa nada hasta volver a leerla entera.";
constexpr const char* kNoImporta =
    "Falló la base: no contesta\r\nNo se importa nada hasta leerla de nuevo con Actualizar.";

class Fallos : public prueba::Banco, public ::testing::WithParamInterface<demo::Motor> {
 protected:
  void SetUp() override {
    Banco::SetUp();
    Demo(GetParam());
    conectar_ = prueba::ConectarQueFalla(desperfecto_);
    Escribir("pocas.txt", "007001;HC;8\r\n007001;HE;2,5\r\n007003;HE;4");
  }
  app::Programa& Cargado() {
    app::Programa& p = Crear();
    EXPECT_TRUE(p.IniciarCon(demo_.referencia, Ruta("pocas.txt")));
    p.Activate();
    EXPECT_EQ(p.Ver().filas.size(), 3U);
    return p;
  }
  void Romper(Falla falla, const std::string& en = {}) { *desperfecto_ = {falla, en, 0}; }
  void Sanar() { *desperfecto_ = {}; }
  std::string Datos() { return Consulta("Select Count(*) & '/' & Sum(Cantidad) From Datos_Liquidacion"); }
  // The button says why, does not ask, and leaves the base alone.
  void NadaSeImporta(app::Programa& p, const std::string& caja) {
    const std::string antes = Datos();
    cajas_.esperadas = {caja};
    p.Importador().cbImportar_Click(1);
    EXPECT_TRUE(cajas_.esperadas.empty());
    EXPECT_TRUE(cajas_.preguntas.empty());
    EXPECT_EQ(Datos(), antes);
  }
  void SeImporta(app::Programa& p) {
    EXPECT_EQ(p.MotivoParaNoImportar(), "");
    cajas_.respuestas = {true};
    p.Importador().cbImportar_Click(1);
    EXPECT_EQ(p.Ver().importacion.importadas, 3U);
  }

  std::shared_ptr<prueba::Desperfecto> desperfecto_ = std::make_shared<prueba::Desperfecto>();
};

// While the window opens, at each of its readings.
TEST_P(Fallos, AtTheStartTheWindowStaysWithoutData) {
  for (const Falla falla : {Falla::Almacenamiento, Falla::Memoria})
    for (const char* en : {"DatosUsuTablas", "Update valores", "Con_Contrato", "TipoOperacion"}) {
      SCOPED_TRACE(en);
      app::Programa& p = Crear();
      bool rota = false;
      p.AlCambiar([&] {  // as soon as the company's types were read
        if (!rota && p.Sesion().Abierta() && !p.Ver().tipos.cmbLiquidaciones.items.empty()) Romper(falla, en);
        rota = rota || p.Sesion().Abierta();
      });
      const std::string motivo = falla == Falla::Memoria ? "No hay memoria suficiente." : "no contesta";
      cajas_.esperadas = {"Falló la base: " + motivo +
                          "\r\nNo se importa nada hasta volver a leerla entera."};
      ASSERT_TRUE(p.IniciarCon(demo_.referencia, Ruta("pocas.txt")));
      EXPECT_TRUE(cajas_.esperadas.empty());
      EXPECT_EQ(desperfecto_->veces, 1);
      p.Activate();
      EXPECT_TRUE(p.Ver().filas.empty());
      EXPECT_FALSE(p.Ver().cargando);
      EXPECT_EQ(p.Ver().fallo_de_base, motivo);
      NadaSeImporta(
          p, "Falló la base: " + motivo + "\r\nNo se importa nada hasta leerla de nuevo con Actualizar.");
      // Still out of order: told again, and nothing else.
      cajas_.esperadas = {"Falló la base: " + motivo +
                          "\r\nNo se importa nada hasta volver a leerla entera."};
      p.Archivo().cbActualizar_Click();
      EXPECT_TRUE(cajas_.esperadas.empty());
      EXPECT_TRUE(p.Ver().filas.empty());
      Sanar();
      p.Archivo().cbActualizar_Click();
      EXPECT_EQ(p.Ver().filas.size(), 3U);
      EXPECT_EQ(p.MotivoParaNoImportar(), "");
      p.AlCambiar(nullptr);
    }
}

// In the hands of the operator: whatever the handler reads.
TEST_P(Fallos, InAHandlerTheyAreToldOnceAndStopImports) {
  const std::pair<const char*, std::function<void(app::Programa&)>> manejadores[] = {
      {"clock data", [](auto& p) { p.Opciones().chkSoloDReloj_Click(false); }},
      {"month", [this](auto& p) { p.Archivo().ObjSelMes_Change(kMes); }},
      {"instalments", [](auto& p) { p.Opciones().chkImportarCuotas_Click(true); }},
      {"cost centre", [](auto& p) { p.Opciones().chkConCC_Click(true); }},
      {"cost centre in the extra datum", [](auto& p) { p.Opciones().chkCCDefEnDatExt_Click(true); }},
      {"automatic link", [](auto& p) { p.Opciones().chkVincAutConOrsa_Click(true); }},
      {"formula", [](auto& p) {
         p.Formato().txtFormulaSGN_Change("SQL(SELECCIONAR Cantidad DE Datos_Liquidacion)");
         p.Archivo().cbActualizar_Click();
       }}};
  for (const auto& [nombre, manejador] : manejadores)
    for (const Falla falla : {Falla::Almacenamiento, Falla::Memoria}) {
      SCOPED_TRACE(nombre);
      app::Programa& p = Cargado();
      ASSERT_TRUE(p.Sesion().LiqAgrup);  // the two of the cost centre read only then
      Romper(falla);
      const std::string motivo = falla == Falla::Memoria ? "No hay memoria suficiente." : "no contesta";
      cajas_.esperadas = {"Falló la base: " + motivo +
                          "\r\nNo se importa nada hasta volver a leerla entera."};
      EXPECT_NO_THROW(manejador(p));
      EXPECT_TRUE(cajas_.esperadas.empty());
      EXPECT_EQ(desperfecto_->veces, 1);
      Sanar();
      NadaSeImporta(
          p, "Falló la base: " + motivo + "\r\nNo se importa nada hasta leerla de nuevo con Actualizar.");
      p.Formato().txtFormulaSGN_Change("");
      // Reading one thing well is not enough: the grid still stands on what was read before.
      p.Opciones().chkImportarCuotas_Click(false);
      EXPECT_NE(p.MotivoParaNoImportar(), "");
      p.Opciones().chkVincAutConOrsa_Click(false);
      p.Opciones().chkConCC_Click(false);
      p.Opciones().chkCCDefEnDatExt_Click(false);
      p.Opciones().chkSoloDReloj_Click(true);
      p.Archivo().cbActualizar_Click();
      EXPECT_EQ(p.MotivoParaNoImportar(), "");
    }
}

TEST_P(Fallos, AnImportThatMeetsOneStandsOnNothingAfterwards) {
  app::Programa& p = Cargado();
  const std::string antes = Datos();
  Romper(Falla::Almacenamiento, "Insert into Datos_Liquidacion");
  cajas_.respuestas = {true};
  cajas_.esperadas = {"no contesta"};
  p.Importador().cbImportar_Click(1);
  EXPECT_EQ(p.Ver().importacion.importadas, 0U);
  Sanar();
  EXPECT_EQ(Datos(), antes);
  cajas_.preguntas.clear();
  NadaSeImporta(p, kNoImporta);
  p.Archivo().cbActualizar_Click();
  SeImporta(p);
}

// Relations that were edited and read well are not read over.
TEST_P(Fallos, ReadingAgainKeepsEditedRelations) {
  app::Programa& p = Cargado();
  p.Relaciones().cmbConceptos_Click(0);
  p.Relaciones().txtTipo_Change("ZZ");
  p.Relaciones().cbAgrQuit_Click(0);
  const std::string editadas = p.Ver().relaciones.Texto();
  Romper(Falla::Almacenamiento);
  cajas_.esperadas = {kAviso};
  p.Archivo().ObjSelMes_Change(kMes);
  Sanar();
  p.Archivo().cbActualizar_Click();
  EXPECT_EQ(p.MotivoParaNoImportar(), "");
  EXPECT_EQ(p.Ver().relaciones.Texto(), editadas);
}

// A statement that fails where an import stands on its rows.
TEST_P(Fallos, WhatCouldNotBeReadIsNamed) {
  const std::pair<const char*, const char*> lecturas[] = {
      {"From Empresa", "la fila de la empresa"},
      {"Calendario_Liq", "la lista de tipos de liquidación"},
      {"DatosUsuTablas", "la lista de tablas de usuario"},
      {"Con_Contrato", "la lista de contratos del mes"},
      {"TipoOperacion", "la lista de conceptos"}};
  for (const auto& [en, que] : lecturas) {
    SCOPED_TRACE(en);
    app::Programa& p = Cargado();
    // One fault makes it read everything again.
    Romper(Falla::Almacenamiento);
    cajas_.esperadas = {kAviso};
    p.Archivo().ObjSelMes_Change(kMes);
    Romper(Falla::Sentencia, en);
    p.Archivo().cbActualizar_Click();
    EXPECT_EQ(p.Ver().fallo_de_base, "");
    Sanar();
    NadaSeImporta(p, std::string("No se pudo leer ") + que +
                         ": no contesta\r\nNo se importa nada hasta leerla de nuevo con Actualizar.");
    p.Archivo().cbActualizar_Click();
    EXPECT_EQ(p.MotivoParaNoImportar(), "");
  }
}

// Rows that were loaded without contracts carry no kind of pay: they are loaded anew before anything is
// imported.
TEST_P(Fallos, AGridLoadedOnHalfOfTheDataIsNotImported) {
  app::Programa& p = Cargado();
  Romper(Falla::Sentencia, "Con_Contrato");
  p.Archivo().ObjSelMes_Change(kMes);
  EXPECT_EQ(p.Ver().filas.size(), 3U);
  Sanar();
  p.Opciones().chkSoloDReloj_Click(true);  // reads the contracts, not the grid
  EXPECT_EQ(p.Ver().personas.motivo_fallo, "");
  EXPECT_NE(p.MotivoParaNoImportar(), "");
  p.Archivo().cbActualizar_Click();
  SeImporta(p);
}

TEST_P(Fallos, ACompanyWithoutARowStopsTheImport) {
  { Cargado().Sesion().conexion->Execute("Delete * From Empresa"); }
  app::Programa& p = Crear();
  ASSERT_TRUE(p.IniciarCon(demo_.referencia, Ruta("pocas.txt")));
  p.Activate();
  EXPECT_EQ(p.Sesion().idEmpresa, 0);
  NadaSeImporta(
      p,
      "No se pudo leer la fila de la empresa: La tabla Empresa no tiene ninguna fila.\r\nNo se importa nada "
      "hasta leerla de nuevo con Actualizar.");
}

// Nor the updates of the month, which no line asked for.
TEST_P(Fallos, AnEmptyGridTouchesNothing) {
  app::Programa& p = Crear();
  Escribir("nada.txt", "007001;XX;8");
  ASSERT_TRUE(p.IniciarCon(demo_.referencia, Ruta("nada.txt")));
  p.Activate();
  ASSERT_TRUE(p.Ver().filas.empty());
  Romper(Falla::Sentencia);
  cajas_.esperadas = {"No hay líneas para importar."};
  p.Importador().cbImportar_Click(1);
  EXPECT_EQ(desperfecto_->veces, 0);
  EXPECT_TRUE(cajas_.preguntas.empty());
}

TEST_P(Fallos, ABulkUpdateThatFailsIsTold) {
  app::Programa& p = Cargado();
  Romper(Falla::Sentencia, "ACambiarMontos");
  cajas_.aceptar_todo = true;
  cajas_.respuestas = {true};
  p.Importador().cbImportar_Click(1);
  cajas_.aceptar_todo = false;
  EXPECT_EQ(p.Ver().importacion.importadas, 3U);
  ASSERT_EQ(p.Ver().importacion.actualizaciones_fallidas.size(), 1U);
  ASSERT_FALSE(cajas_.mostradas.empty());
  EXPECT_EQ(cajas_.mostradas.back(),
            "Las cantidades quedaron importadas.\r\n" + p.Ver().importacion.actualizaciones_fallidas[0]);
}

// The same person and concept in two lines while summing is off: told where the question is answered.
TEST_P(Fallos, WhatMayNotBeMeantIsToldUnderTheQuestion) {
  app::Programa& p = Crear();
  Escribir("dos.txt", "007001;HE;8\r\n007001;HE;2,5");
  ASSERT_TRUE(p.IniciarCon(demo_.referencia, Ruta("dos.txt")));
  p.Opciones().chkSumarAyaIng_Click(false);
  p.Opciones().chkTotalizarConc_Click(false);
  p.Activate();
  const std::vector<std::string> avisos = p.Importador().Avisos();
  ASSERT_EQ(avisos.size(), 1U);
  cajas_.respuestas = {false};
  p.Importador().cbImportar_Click(1);
  ASSERT_EQ(cajas_.detalles.size(), 1U);
  EXPECT_NE(cajas_.detalles[0].find("Avisos:\r\n• " + avisos[0]), std::string::npos) << cajas_.detalles[0];
}

INSTANTIATE_TEST_SUITE_P(Motores, Fallos, ::testing::Values(demo::Motor::Mdb, demo::Motor::Sqlite),
                         [](const auto& i) { return i.param == demo::Motor::Mdb ? "mdb" : "sqlite"; });

}  // namespace
