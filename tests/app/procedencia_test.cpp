// The grid and the controls: what the grid does not show yet is said, and not imported.
#include "app/banco.h"

namespace {

class Procedencia : public prueba::Banco, public ::testing::WithParamInterface<demo::Motor> {
 protected:
  void SetUp() override {
    Banco::SetUp();
    Demo(GetParam());
    Escribir("pocas.txt", "007001;HC;8\r\n007001;HE;2,5\r\n007003;HE;4");
    Escribir("otras.txt", "007003;HC;160");
    ASSERT_TRUE(Crear().IniciarCon(demo_.referencia, Ruta("pocas.txt")));
    EXPECT_EQ(Texto(), "") << "the file of the command line is about to be loaded";
    P().Activate();
    ASSERT_EQ(P().Ver().filas.size(), 3U);
    EXPECT_EQ(Texto(), "");
  }
  app::Programa& P() { return *programa_; }
  std::string Texto() { return app::TextoDeDiferencias(P().Ver()); }
  std::string Cambio() { return base::Join(app::Diferencias(P().Ver()), "; "); }
  std::string Datos() { return Consulta("Select Count(*) & '/' & Sum(Cantidad) From Datos_Liquidacion"); }
};

TEST_P(Procedencia, EachControlThatALoadLooksAtMakesADifferenceUntilItIsAsBefore) {
  const std::string filtro = P().Ver().txtFiltro.text, separador = P().Ver().txtSeparador.text;
  P().Archivo().txtRuta_Change(Ruta("otras.txt"));
  EXPECT_EQ(Cambio(), "la ruta");
  EXPECT_EQ(Texto(), "La grilla no es la de los controles: cambió la ruta.");
  P().Archivo().txtRuta_Change(Ruta("pocas.txt"));
  EXPECT_EQ(Cambio(), "");

  P().Formato().txtSeparador_Change(",");
  EXPECT_EQ(Cambio(), "el separador");
  P().Formato().txtFormulaSGN_Change("/60");
  EXPECT_EQ(Texto(), "La grilla no es la de los controles: cambió el separador y la fórmula.");
  P().Opciones().chkCCDefEnDatExt_Click(!P().Ver().opciones.CCEnDE);
  EXPECT_EQ(
      Texto(),
      "La grilla no es la de los controles: cambió el separador, la fórmula y la opción \"Centro de Costo "
      "definido en dato extra\".");
  P().Opciones().chkCCDefEnDatExt_Click(!P().Ver().opciones.CCEnDE);
  P().Formato().txtSeparador_Change(separador);
  P().Formato().txtFormulaSGN_Change("1");
  EXPECT_EQ(Cambio(), "") << "a formula of 1 changes nothing";
  P().Formato().txtFormulaSGN_Change("");

  P().Formato().optTipoArch_Click(1);
  EXPECT_EQ(Cambio(), "el formato");
  P().Formato().optTipoArch_Click(0);
  P().Formato().txtAE_Change(0, 1, "7");
  EXPECT_EQ(Cambio(), "") << "a delimited file is not cut by columns";
  P().Archivo().txtFiltro_Change("Horas>3");
  EXPECT_EQ(Cambio(), "") << "the filter by relation does not look at the text";
  P().Archivo().txtFiltro_Change(filtro);

  for (const auto& [manejador, nombre] :
       {std::pair{&app::Opciones::chkCodigoNumerico_Click, "Codigo de Dato Numérico"},
        std::pair{&app::Opciones::chkSoloDReloj_Click, "Solo Datos de Reloj"},
        std::pair{&app::Opciones::chkImportarCuotas_Click, "Importar Cuotas"}}) {
    const settings::Settings& o = P().Ver().opciones;
    const bool estaba = manejador == &app::Opciones::chkCodigoNumerico_Click ? o.CodTipoNumerico
                        : manejador == &app::Opciones::chkSoloDReloj_Click   ? o.SoloDatosDeRel
                                                                             : o.ImportarCuotas;
    (P().Opciones().*manejador)(!estaba);
    EXPECT_EQ(Cambio(), "la opción \"" + std::string(nombre) + "\"");
    (P().Opciones().*manejador)(estaba);
    EXPECT_EQ(Cambio(), "");
  }
}

TEST_P(Procedencia, WhatOnlyTheImportLooksAtMakesNone) {
  const settings::Settings o = P().Ver().opciones;
  P().Opciones().chkLiqHCaMensuales_Click(!o.LiqHCaMensuales);
  P().Opciones().chkNoImpValEnCero_Click(!o.NoImpCantEn0);
  P().Opciones().chkSumarAyaIng_Click(!o.SumarAyaIng);
  P().Opciones().chkTotalizarConc_Click(!o.TotalizarConc);
  P().Opciones().chkConCC_Click(!o.CCDefEnArch);
  P().Opciones().txtTextoTipoCuota_Change("otro");
  P().Archivo().cmbLiquidaciones_Click(1);
  EXPECT_EQ(Cambio(), "");
}

TEST_P(Procedencia, HandlersThatReloadByThemselvesLeaveNone) {
  P().Archivo().OptFiltro_Click(0);
  P().Opciones().cbTipoClave_Click(2);
  P().Archivo().ObjSelMes_Change(base::MakeDate(2026, 9, 1));
  EXPECT_EQ(Cambio(), "");
  P().Archivo().txtFiltro_Change("Horas>3");
  EXPECT_EQ(Cambio(), "el filtro");
  P().Archivo().txtFiltro_KeyPress(13);
  EXPECT_EQ(Cambio(), "");
}

// The reload that the handler began came to nothing: the old rows stay, and are of another month.
TEST_P(Procedencia, AReloadThatEndsEarlyLeavesTheDifference) {
  std::filesystem::remove(Ruta("pocas.txt"));
  EXPECT_EQ(Cambio(), "el archivo, que ya no está en esa ruta");
  cajas_.esperadas = {"El Archivo '" + Ruta("pocas.txt") + "' no existe"};
  P().Archivo().ObjSelMes_Change(base::MakeDate(2026, 9, 1));
  EXPECT_EQ(P().Ver().filas.size(), 3U);
  EXPECT_EQ(Cambio(), "el archivo, que ya no está en esa ruta; el mes");
}

TEST_P(Procedencia, AFileThatWasEditedSinceIsNoticed) {
  Escribir("pocas.txt", "007001;HC;9\r\n007001;HE;2,5\r\n007003;HE;41");
  EXPECT_EQ(Cambio(), "el contenido del archivo");
  P().Archivo().cbActualizar_Click();
  EXPECT_EQ(Cambio(), "");
}

// As many bytes as before: the time of the writing tells.
TEST_P(Procedencia, AFileOfTheSameSizeIsNoticedToo) {
  const auto antes = std::filesystem::last_write_time(Ruta("pocas.txt"));
  Escribir("pocas.txt", "007001;HC;9\r\n007001;HE;2,5\r\n007003;HE;4");
  std::filesystem::last_write_time(Ruta("pocas.txt"), antes + std::chrono::seconds(2));
  EXPECT_EQ(Cambio(), "el contenido del archivo");
}

TEST_P(Procedencia, ARelationThatComesOrGoesMakesOneAndItsColourNone) {
  P().Relaciones().GridRelaciones_RowChange(0);
  P().Relaciones().cbAgrQuit_Click(1);
  EXPECT_EQ(Cambio(), "las relaciones");
  const auto color = P().Ver().cbColor;
  cajas_.color = color == 255 ? 0 : 255;
  P().Relaciones().cbColor_Click();
  P().Relaciones().cbAgrQuit_Click(0);
  // It stands last now, and of two relations of one code the first decides.
  EXPECT_EQ(Cambio(), "las relaciones");
  P().Archivo().cbActualizar_Click();
  EXPECT_EQ(Cambio(), "");
}

TEST_P(Procedencia, AGridThatIsNotThatOfTheControlsIsNotImported) {
  const std::string antes = Datos();
  P().Archivo().txtRuta_Change(Ruta("otras.txt"));
  cajas_.respuestas = {false};
  P().Importador().cbImportar_Click(1);
  ASSERT_EQ(cajas_.preguntas.size(), 1U);
  EXPECT_EQ(cajas_.preguntas[0],
            "La grilla no es la de los controles: cambió la ruta.\r\n"
            "No se importa nada hasta leer el archivo de nuevo.\r\n¿Leerlo ahora?");
  EXPECT_EQ(P().Ver().filas.size(), 3U);
  EXPECT_EQ(Datos(), antes);

  // Yes loads, and the new grid is looked at before it is imported.
  cajas_.respuestas = {true};
  P().Importador().cbImportar_Click(1);
  EXPECT_EQ(P().Ver().filas.size(), 1U);
  EXPECT_EQ(Datos(), antes);
  EXPECT_EQ(cajas_.preguntas.size(), 2U);
  cajas_.respuestas = {true};
  P().Importador().cbImportar_Click(1);
  EXPECT_EQ(P().Ver().importacion.importadas, 1U);
  EXPECT_NE(Datos(), antes);
}

// Under the question, whatever the file is called by now.
TEST_P(Procedencia, AFileThatWasImportedBeforeIsToldUnderTheQuestion) {
  cajas_.respuestas = {true, false};
  P().Importador().cbImportar_Click(1);
  std::filesystem::copy_file(Ruta("pocas.txt"), Ruta("renombrada.txt"));
  P().Archivo().txtRuta_Change(Ruta("renombrada.txt"));
  P().Archivo().cbActualizar_Click();
  P().Importador().cbImportar_Click(1);
  ASSERT_EQ(cajas_.detalles.size(), 2U);
  EXPECT_EQ(cajas_.detalles[0].find("Importado antes:"), std::string::npos) << cajas_.detalles[0];
  EXPECT_NE(cajas_.detalles[1].find("Importado antes:\r\n• "), std::string::npos) << cajas_.detalles[1];
}

TEST_P(Procedencia, BeforeTheFirstLoadOnlyThePathIsSomethingToShow) {
  ASSERT_TRUE(Crear().IniciarCon(demo_.referencia, ""));
  P().Activate();
  P().Formato().txtSeparador_Change("|");
  EXPECT_EQ(Texto(), "");
  P().Archivo().txtRuta_Change(Ruta("pocas.txt"));
  EXPECT_EQ(Texto(), "El archivo de la ruta todavía no se leyó.");
}

INSTANTIATE_TEST_SUITE_P(Engines, Procedencia, testing::Values(demo::Motor::Sqlite, demo::Motor::Mdb),
                         [](const auto& caso) { return caso.param == demo::Motor::Mdb ? "mdb" : "sqlite"; });

}  // namespace
