#include "app/banco.h"

namespace {

class Cierre : public prueba::Banco {};

TEST_F(Cierre, WritesEveryKeyInItsOrder) {
  app::Programa& p = Crear();
  cajas_.esperadas = {"Error al abrir la base ubicada en nada"};
  ASSERT_TRUE(p.Iniciar("nada*"));
  p.Formato().txtSeparador_Change(";");
  p.Archivo().txtFiltro_Change("Tipo=7");
  p.Opciones().chkConCC_Click(true);
  EXPECT_TRUE(p.Unload());
  EXPECT_EQ(Leer("ImportDeMarcas.ini"),
            "[TextoDeFiltro]\r\nTipo=7\r\n[/TextoDeFiltro]\r\n"
            "[Conceptos]\r\nHC*65535**7*Horas Comunes*0\r\nHE*65280**2*Horas Extras*0\r\n[/Conceptos]\r\n"
            "[Configura]\r\n5\r\n[/Configura]\r\n"
            "[Separador]\r\n;\r\n[/Separador]\r\n"
            "[LiqHCaMensuales]\r\nNO\r\n[/LiqHCaMensuales]\r\n"
            "[NoImpCantEn0]\r\nNO\r\n[/NoImpCantEn0]\r\n"
            "[SoloDatosDeRel]\r\nSI\r\n[/SoloDatosDeRel]\r\n"
            "[TipoArchivo]\r\n1\r\n[/TipoArchivo]\r\n"
            "[ConfDeAF]\r\n1*1*6\r\n2*8*3\r\n3*12*9\r\n4*-1*0\r\n5*-1*0\r\n[/ConfDeAF]\r\n"
            "[FactMultiplica]\r\n\r\n[/FactMultiplica]\r\n"
            "[CodTipoNumerico]\r\nSI\r\n[/CodTipoNumerico]\r\n"
            "[TotalizarConc]\r\nSI\r\n[/TotalizarConc]\r\n"
            "[SumarAyaIng]\r\nSI\r\n[/SumarAyaIng]\r\n"
            "[ImportarCuotas]\r\nNO\r\n[/ImportarCuotas]\r\n"
            "[TextoTipoCuota]\r\nRef:[DatoExtra]\r\n[/TextoTipoCuota]\r\n"
            "[CCDefEnArch]\r\nSI\r\n[/CCDefEnArch]\r\n"
            "[CCEnDE]\r\nNO\r\n[/CCEnDE]\r\n"
            "[MismoCodigoDeOrsa]\r\nNO\r\n[/MismoCodigoDeOrsa]");
}

// The user's configuration folder is not there before the first run of an installed program.
TEST_F(Cierre, TheSettingsFolderIsMadeWhenItIsMissing) {
  cajas_.esperadas = {"Error al abrir la base ubicada en nada"};
  app::Programa p(app::Puertos{cajas_, cajas_, reloj_, &eventos_},
                  app::Arranque{Ruta("de/nadie"), "1.0.0", {}, {}, false});
  ASSERT_TRUE(p.Iniciar("nada*"));
  EXPECT_EQ(Leer("de/nadie/ImportDeMarcas.ini"), "");
  EXPECT_TRUE(std::filesystem::exists(Ruta("de/nadie/ImportDeMarcas.ini")));
  p.Archivo().txtFiltro_Change("Tipo=7");
  EXPECT_TRUE(p.Unload());
  EXPECT_EQ(Leer("de/nadie/ImportDeMarcas.ini").substr(0, 23), "[TextoDeFiltro]\r\nTipo=7");
}

// Settings given as a text belong to no folder, and none is made for them.
TEST_F(Cierre, GivenSettingsTouchNoFolder) {
  cajas_.esperadas = {"Error al abrir la base ubicada en nada"};
  app::Programa p(app::Puertos{cajas_, cajas_, reloj_, &eventos_},
                  app::Arranque{Ruta("de/nadie"), "1.0.0", "", {}, false});
  ASSERT_TRUE(p.Iniciar("nada*"));
  EXPECT_TRUE(p.Unload());
  EXPECT_FALSE(std::filesystem::exists(Ruta("de")));
}

// The same options come back.
TEST_F(Cierre, AnotherStartFindsWhatWasLeft) {
  cajas_.esperadas = {"Error al abrir la base ubicada en nada", "El Archivo '' no existe",
                      "Error al abrir la base ubicada en nada"};
  {
    app::Programa& p = Crear();
    ASSERT_TRUE(p.Iniciar("nada*"));
    p.Formato().optTipoArch_Click(1);
    p.Formato().txtAE_Change(3, 0, "20");
    p.Formato().txtAE_Change(3, 1, "5");
    p.Formato().txtFormulaSGN_Change("ENTERO(ñ)");
    p.Opciones().chkSumarAyaIng_Click(false);
    p.Opciones().chkTotalizarConc_Click(false);
    p.Opciones().chkNoImpValEnCero_Click(true);
    p.Opciones().chkLiqHCaMensuales_Click(true);
    p.Opciones().cbTipoClave_Click(2);
    p.Unload();
  }
  const app::Estado& e = (Crear().Iniciar("nada*"), programa_->Ver());
  EXPECT_EQ(e.optTipoArch, 1);
  EXPECT_EQ(e.txtAE[3][0].text, "20");
  EXPECT_EQ(e.opciones.ConfDeAF[3], (settings::ColumnaAF{4, 20, 5}));
  EXPECT_EQ(e.txtFormulaSGN.text, "ENTERO(ñ)");
  EXPECT_FALSE(e.chkSumarAyaIng.checked);
  EXPECT_FALSE(e.chkTotalizarConc.checked);
  EXPECT_TRUE(e.chkTotalizarConc.enabled);
  EXPECT_TRUE(e.chkNoImpValEnCero.checked);
  EXPECT_TRUE(e.chkLiqHCaMensuales.checked);
  EXPECT_EQ(e.cbTipoClave.ListIndex, 2);
}

// With the automatic link on the relations of the file are left as they were, though others were read; text
// outside entries stays.
TEST_F(Cierre, TheAutomaticLinkKeepsTheStoredRelations) {
  Demo();
  Escribir("ImportDeMarcas.ini",
           "una "
           "nota\r\n[Conceptos]\r\nX*1*,9,*7*Nombre*0\r\n[/Conceptos]\r\n[MismoCodigoDeOrsa]\r\nSI\r\n[/"
           "MismoCodigoDeOrsa]");
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar(demo_.referencia));
  ASSERT_GT(p.Ver().relaciones.Cantidad(), 1U);
  ASSERT_FALSE(p.Ver().relaciones.carga_fallida);
  EXPECT_TRUE(p.Unload());
  const std::string texto = Leer("ImportDeMarcas.ini");
  EXPECT_EQ(texto.substr(0, 10), "una nota\r\n");
  EXPECT_NE(texto.find("[Conceptos]\r\nX*1*,9,*7*Nombre*0\r\n[/Conceptos]"), std::string::npos);
}

TEST_F(Cierre, RelationsGoToTheExternalDataToo) {
  Demo();
  Escribir("ImportDeMarcas.ini",
           "[TomaConceptosDeBD]\r\n77\r\n[/TomaConceptosDeBD]\r\n[MismoCodigoDeOrsa]\r\nSI\r\n[/"
           "MismoCodigoDeOrsa]");
  app::Programa& p = Crear();
  ASSERT_TRUE(p.Iniciar(demo_.referencia));
  const std::string relaciones = std::to_string(p.Ver().relaciones.Cantidad());
  ASSERT_NE(relaciones, "0");
  EXPECT_TRUE(p.Unload());
  EXPECT_EQ(Consulta("Select Count(*) From DatExtDatos Where idTDE=77"), relaciones);
}

// Relations that could not be read are not replaced by an empty list, neither in the file nor in the base.
TEST_F(Cierre, AFailedLoadOfRelationsSavesNoneOverThem) {
  Demo();
  Escribir("ImportDeMarcas.ini",
           "[Conceptos]\r\nX*1*,9,*7*Nombre*0\r\n[/Conceptos]\r\n[TomaConceptosDeBD]\r\n77\r\n[/"
           "TomaConceptosDeBD]");
  {
    app::Programa& p = Crear();
    ASSERT_TRUE(p.Iniciar(demo_.referencia));
    p.Sesion().conexion->Execute("Insert into DatExtDatos (idTDE,idLoc,idDE) Values(77,7,'09')");
    p.Sesion().conexion->Execute("Drop Table Conceptos");
    p.Opciones().chkVincAutConOrsa_Click(true);
    p.Opciones().chkVincAutConOrsa_Click(false);
    EXPECT_EQ(p.Ver().relaciones.Cantidad(), 0U);
    EXPECT_TRUE(p.Unload());
    EXPECT_EQ(Consulta("Select Count(*) From DatExtDatos Where idTDE=77"), "1");
  }
  EXPECT_NE(Leer("ImportDeMarcas.ini").find("[Conceptos]\r\nX*1*,9,*7*Nombre*0\r\n[/Conceptos]"),
            std::string::npos);
}

}  // namespace
