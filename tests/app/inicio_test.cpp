#include "app/banco.h"

namespace {

class Inicio : public prueba::Banco {
 protected:
  void SetUp() override {
    Banco::SetUp();
    Demo();
  }
};

TEST_F(Inicio, BaseAndFileOnTheCommandLineLoadOnceOnActivation) {
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar("\"" + demo_.referencia + "*" + demo_.archivo + "\""));
  EXPECT_EQ(p.Ver().caption, "Datos A Importar 1.0.0");
  EXPECT_EQ(p.Ver().LblEmpresa, "Empresa: " + demo_.referencia);
  EXPECT_EQ(p.Ver().cmbConceptos_ancho, 450);
  EXPECT_EQ(p.Ver().txtRuta.text, demo_.archivo);
  EXPECT_TRUE(p.Ver().carga_pendiente);
  EXPECT_FALSE(p.Ver().cargando);
  EXPECT_TRUE(p.Ver().filas.empty());
  EXPECT_GT(p.Ver().personas.Cantidad(), 0U);
  p.Archivo().txtRuta_Change(Ruta("unica.txt"));
  Escribir("unica.txt", "1;1;8\r\n1;1;9");
  p.Archivo().OptFiltro_Click(0);  // loads at once
  EXPECT_EQ(p.Ver().lineas, 2U);
  Escribir("unica.txt", "1;1;8");
  p.Activate();
  EXPECT_EQ(p.Ver().lineas, 1U);
  EXPECT_FALSE(p.Ver().carga_pendiente);
  Escribir("unica.txt", "1;1;8\r\n1;1;9\r\n1;1;9");
  p.Activate();
  EXPECT_EQ(p.Ver().lineas, 1U);
}

TEST_F(Inicio, ABaseWithAStarAndNothingElseLoadsNothing) {
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar(demo_.referencia + "*"));
  EXPECT_EQ(p.Ver().txtRuta.text, "");
  EXPECT_FALSE(p.Ver().carga_pendiente);
  p.Activate();
  EXPECT_TRUE(p.Ver().filas.empty());
}

TEST_F(Inicio, FurtherStarsAreIgnored) {
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar(demo_.referencia + "*uno.txt*dos.txt"));
  EXPECT_EQ(p.Ver().txtRuta.text, "uno.txt");
}

TEST_F(Inicio, AnExistingPathAloneIsTheBase) {
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar(demo_.referencia));
  EXPECT_TRUE(p.Sesion().Abierta());
  EXPECT_EQ(p.Ver().mes, kMes);
  EXPECT_EQ(p.Ver().OptFiltro, 1);
}

TEST_F(Inicio, APathThatDoesNotExistEndsTheProgram) {
  cajas_.esperadas = {"Ruta de Base de Datos Inexistente"};
  EXPECT_FALSE(Crear().Iniciar(Ruta("nada.mdb")));
}

// With a "*" the path is never checked: opening fails, and the window stays.
TEST_F(Inicio, AFailingOpenLeavesTheWindow) {
  cajas_.esperadas = {"Error al abrir la base ubicada en " + Ruta("nada.mdb")};
  app::Programa& p = Crear();
  EXPECT_TRUE(p.Iniciar(Ruta("nada.mdb") + "*"));
  EXPECT_FALSE(p.Sesion().Abierta());
  EXPECT_EQ(p.Ver().LblEmpresa, "Empresa: " + Ruta("nada.mdb"));
  EXPECT_EQ(p.Ver().motivo_base, "El archivo '" + Ruta("nada.mdb") + "' no existe");
}

TEST_F(Inicio, BlanksAskForTheBase) {
  cajas_.archivo = demo_.referencia;
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar("   "));
  ASSERT_EQ(cajas_.dialogos.size(), 1U);
  EXPECT_EQ(cajas_.dialogos[0], "Seleccionar la base a ingresar las Horas|Bases de Access (*.mdb)|*.mdb|");
  EXPECT_TRUE(p.Sesion().Abierta());
  // The later search for a file has its own title, no filter, and starts from the path box.
  cajas_.archivo.clear();
  p.Archivo().cbBuscar_Click();
  EXPECT_EQ(cajas_.dialogos[1], "Seleccionar archivo a importar||");
}

TEST_F(Inicio, ACancelledDialogEndsTheProgram) {
  EXPECT_FALSE(Crear().Iniciar(""));
  EXPECT_EQ(cajas_.dialogos.size(), 1U);
}

// Quotes are taken away after the test for blanks: two of them are a path, and an empty one does not exist.
TEST_F(Inicio, TwoQuotesDoNotOpenTheDialog) {
  cajas_.esperadas = {"Ruta de Base de Datos Inexistente"};
  EXPECT_FALSE(Crear().Iniciar("\"\""));
  EXPECT_TRUE(cajas_.dialogos.empty());
}

TEST_F(Inicio, ABaseOfAnotherNameHasNoCompany) {
  std::filesystem::rename(Ruta("Personal.mdb"), Ruta("otra.mdb"));
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar(Ruta("otra.mdb")));
  EXPECT_TRUE(p.Sesion().Abierta());
  EXPECT_EQ(p.Sesion().idEmpresa, 0);
  EXPECT_FALSE(p.Sesion().LiqAgrup);
  EXPECT_TRUE(p.Ver().tipos.cmbLiquidaciones.items.empty());
  EXPECT_EQ(p.Ver().tablas.Cantidad(), 0U);
}

TEST_F(Inicio, UpperCaseNamesReadTheCompanyToo) {
  std::filesystem::rename(Ruta("Personal.mdb"), Ruta("PERSONAL.MDB"));
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar(Ruta("PERSONAL.MDB")));
  EXPECT_NE(p.Sesion().idEmpresa, 0);
  EXPECT_FALSE(p.Ver().tipos.cmbLiquidaciones.items.empty());
  EXPECT_GT(p.Ver().tablas.Cantidad(), 0U);
}

TEST_F(Inicio, TheFirstCompanyOfTheTableIsTaken) {
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar(demo_.referencia));
  EXPECT_EQ(std::to_string(p.Sesion().idEmpresa), Consulta("Select idEmpresa From Empresa"));
  EXPECT_EQ(Consulta("Select Count(*) From Empresa"), "2");
}

TEST_F(Inicio, AnEmptyCompanyTableLeavesTheFlagsAndRunsTheLoaders) {
  {
    app::Programa& p = Crear();
    ASSERT_TRUE(p.Iniciar(demo_.referencia));
    p.Sesion().conexion->Execute("Delete * From Empresa");
  }
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar(demo_.referencia));
  EXPECT_EQ(p.Sesion().idEmpresa, 0);
  EXPECT_FALSE(p.Sesion().LiqAgrup);
  EXPECT_TRUE(p.Ver().tipos.cmbLiquidaciones.items.empty());
}

TEST_F(Inicio, ProyecIsABaseOfThePayrollSystemToo) {
  std::filesystem::rename(Ruta("Personal.mdb"), Ruta("mi proyec.MDB"));
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar(Ruta("mi proyec.MDB")));
  EXPECT_NE(p.Sesion().idEmpresa, 0);
}

TEST_F(Inicio, AMissingCompanyTableLeavesTheFlagsAndRunsTheLoaders) {
  {
    app::Programa& p = Crear();
    ASSERT_TRUE(p.Iniciar(demo_.referencia));
    p.Sesion().conexion->Execute("Drop Table Empresa");
    const std::string empresa = std::to_string(p.Sesion().idEmpresa);
    for (const char* tabla : {"TiposLiquidacion", "Tablas", "DatosUsuTablas"})
      p.Sesion().conexion->Execute("Update " + std::string(tabla) +
                                   " Set idEmpresa=0 Where idEmpresa=" + empresa);
  }
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar(demo_.referencia));
  EXPECT_EQ(p.Sesion().idEmpresa, 0);
  EXPECT_FALSE(p.Sesion().LiqAgrup);
  EXPECT_FALSE(p.Sesion().TipoConstruccion);
  EXPECT_FALSE(p.Ver().tipos.cmbLiquidaciones.items.empty());
  EXPECT_GT(p.Ver().tablas.Cantidad(), 0U);
}

// A base that is no payroll base: nothing is shown, and what was passed over says what is missing.
TEST_F(Inicio, ABaseWithoutTheTablesSaysWhatIsMissing) {
  {
    app::Programa& p = Crear();
    ASSERT_TRUE(p.Iniciar(demo_.referencia));
    p.Sesion().conexion->Execute("Update Empresa Set LiqAgrup=True");
    for (const char* tabla : {"CentroCosto", "Conceptos", "Tablas"})
      p.Sesion().conexion->Execute("Drop Table " + std::string(tabla));
  }
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar(demo_.referencia));
  std::string notas;
  for (const auto& error : p.Errores()) notas += error.where + ": " + error.description + "\n";
  EXPECT_EQ(notas,
            "CargarTiposLiquidacion: cmbAgrupa: No se encuentra la tabla o consulta 'CentroCosto'\n"
            "CargarTiposLiquidacion: cmbAgrupaDef: No se encuentra la tabla o consulta 'CentroCosto'\n"
            "Conectar: tablas de usuario: No se encuentra la tabla o consulta 'Tablas'\n"
            "ActuLSTdeConceptos: No se encuentra la tabla o consulta 'Conceptos'\n");
}

// Each of the three is taken by itself: a flag that is none does not take the company along.
TEST_F(Inicio, ACompanyRowIsReadFieldByField) {
  {
    app::Programa& p = Crear();
    ASSERT_TRUE(p.Iniciar(demo_.referencia));
    db::Connection& c = *p.Sesion().conexion;
    c.Execute("Drop Table Empresa");
    c.Execute("Create Table Empresa (TipoConstruccion TEXT(10), LiqAgrup YESNO, idEmpresa LONG)");
    c.Execute("Insert into Empresa (TipoConstruccion,LiqAgrup,idEmpresa) Values('quizá',True,2)");
  }
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar(demo_.referencia));
  EXPECT_FALSE(p.Sesion().TipoConstruccion);
  EXPECT_TRUE(p.Sesion().LiqAgrup);
  EXPECT_EQ(p.Sesion().idEmpresa, 2);
}

}  // namespace
