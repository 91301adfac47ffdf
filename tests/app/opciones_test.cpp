#include "app/banco.h"

namespace {

class Opciones : public prueba::Banco {
 protected:
  // Two contracts of the demo, and a file of one line for the grid.
  app::Programa& Abrir() {
    Demo();
    app::Programa& p = Crear();
    EXPECT_TRUE(p.Iniciar(demo_.referencia));
    return p;
  }
};

TEST_F(Opciones, WithoutASettingsFileTheDefaultsShow) {
  app::Programa& p = Crear();
  cajas_.esperadas = {"Error al abrir la base ubicada en nada"};
  ASSERT_TRUE(p.Iniciar("nada*"));
  const app::Estado& e = p.Ver();
  EXPECT_TRUE(e.chkSoloDReloj.checked);
  EXPECT_EQ(e.optTipoArch, 0);
  EXPECT_EQ(e.txtSeparador.text, " ");
  EXPECT_TRUE(e.txtSeparador.enabled);
  EXPECT_TRUE(e.chkCodigoNumerico.checked);
  EXPECT_TRUE(e.chkTotalizarConc.checked);
  EXPECT_FALSE(e.chkTotalizarConc.enabled);
  EXPECT_TRUE(e.chkSumarAyaIng.checked);
  EXPECT_FALSE(e.chkImportarCuotas.checked);
  EXPECT_FALSE(e.txtTextoTipoCuota.enabled);
  EXPECT_EQ(e.txtTextoTipoCuota.text, "Ref:[DatoExtra]");
  EXPECT_EQ(e.cbTipoClave.ListIndex, 5);
  EXPECT_FALSE(e.chkConCC.checked);
  EXPECT_FALSE(e.chkCCDefEnDatExt.checked);
  EXPECT_FALSE(e.chkCCDefEnDatExt.enabled);
  EXPECT_FALSE(e.chkVincAutConOrsa.checked);
  EXPECT_FALSE(e.chkLiqHCaMensuales.checked);
  EXPECT_FALSE(e.chkNoImpValEnCero.checked);
  EXPECT_EQ(e.txtFiltro.text, "");
  EXPECT_EQ(e.txtFormulaSGN.text, "");
  EXPECT_EQ(e.txtAE[0][0].text, "1");
  EXPECT_EQ(e.txtAE[0][1].text, "6");
  EXPECT_EQ(e.txtAE[3][0].text, "-1");
  EXPECT_FALSE(e.txtAE[0][0].enabled);
  EXPECT_EQ(Leer("ImportDeMarcas.ini"), "");
  EXPECT_TRUE(std::filesystem::exists(Ruta("ImportDeMarcas.ini")));
  // The two relations of a new installation.
  ASSERT_EQ(e.relaciones.Grid().size(), 2U);
  EXPECT_EQ(e.relaciones.Grid()[0].Codigo, "HC");
}

TEST_F(Opciones, KindsOfKey) {
  app::Programa& p = Crear();
  std::string textos;
  for (const auto& item : p.Ver().cbTipoClave.items)
    textos += item.texto + "=" + std::to_string(item.dato) + ";";
  EXPECT_EQ(textos, "Id Interno=0;Nº Alternativo=1;Nº Tarjeta=2;Cod.Sist. Ext.=3;Documento=4;Nº Persona=5;");
}

TEST_F(Opciones, TheGridsHaveTheirColumns) {
  const app::Estado& e = Crear().Ver();
  const auto columnas = [](const app::Grid& grid) {
    std::string textos;
    for (const auto& columna : grid.columnas) textos += columna.nombre + "=" + columna.caption + ";";
    return textos;
  };
  EXPECT_EQ(
      columnas(e.GridAImportar),
      "Id=Id;Nombre=Nombre;Apellido=Apellido;Horas=Horas;Valor=Valor;Tipo=Tipo;NomConcVinc=Vinculado Con:;"
      "A_Realizar=A_Realizar;DatoExtra=Dat.Ext.;CC=C. Costo;Resultado=Resultado;");
  EXPECT_EQ(columnas(e.GridRelaciones),
            "Codigo=Codigo;Nombre=Nombre;CodigosVincConReloj=Cod. de Sis. Externo;CC=C.Costo;");
  EXPECT_EQ(columnas(e.GridPVConf),
            "Persona=Persona;TipoDato=Tipo Dato;Dato=Dato;DatExt=Dato Extra;Valor=Valor;");
}

TEST_F(Opciones, ClockDataDecideTheGridsColumns) {
  app::Programa& p = Abrir();
  app::Grid grid = p.Ver().GridAImportar;
  EXPECT_FALSE(grid.Columna("Resultado")->visible);
  p.Opciones().chkSoloDReloj_Click(false);
  grid = p.Ver().GridAImportar;
  EXPECT_EQ(grid.Columna("Horas")->caption, "Dato");
  EXPECT_FALSE(grid.Columna("A_Realizar")->visible);
  EXPECT_TRUE(grid.Columna("DatoExtra")->visible);
  const std::size_t todos = p.Ver().conceptos.tabla.Cantidad();
  p.Opciones().chkSoloDReloj_Click(true);
  grid = p.Ver().GridAImportar;
  EXPECT_EQ(grid.Columna("Horas")->caption, "Horas");
  EXPECT_TRUE(grid.Columna("A_Realizar")->visible);
  EXPECT_FALSE(grid.Columna("DatoExtra")->visible);
  // The persons were loaded anew, and with them the concepts: fewer, of kind 3 alone.
  EXPECT_LT(p.Ver().conceptos.tabla.Cantidad(), todos);
}

TEST_F(Opciones, AddingImpliesTotalising) {
  app::Programa& p = Abrir();
  p.Opciones().chkSumarAyaIng_Click(false);
  EXPECT_TRUE(p.Ver().chkTotalizarConc.enabled);
  p.Opciones().chkTotalizarConc_Click(false);
  EXPECT_FALSE(p.Ver().opciones.TotalizarConc);
  p.Opciones().chkSumarAyaIng_Click(true);
  EXPECT_FALSE(p.Ver().chkTotalizarConc.enabled);
  EXPECT_TRUE(p.Ver().chkTotalizarConc.checked);
  EXPECT_TRUE(p.Ver().opciones.TotalizarConc);
}

TEST_F(Opciones, InstalmentsBringTheirConcepts) {
  app::Programa& p = Abrir();
  p.Opciones().chkSoloDReloj_Click(false);
  p.Opciones().chkImportarCuotas_Click(false);
  const std::size_t sin = p.Ver().conceptos.cmbConceptos.items.size();
  EXPECT_FALSE(p.Ver().txtTextoTipoCuota.enabled);
  p.Opciones().chkImportarCuotas_Click(true);
  EXPECT_TRUE(p.Ver().txtTextoTipoCuota.enabled);
  EXPECT_GT(p.Ver().conceptos.cmbConceptos.items.size(), sin);
}

TEST_F(Opciones, CostCentreShowsItsColumnsInAGroupedCompany) {
  app::Programa& p = Abrir();
  ASSERT_TRUE(p.Sesion().LiqAgrup) << "the demo's first company liquidates by cost centre";
  p.Opciones().chkConCC_Click(false);
  EXPECT_FALSE(app::Grid(p.Ver().GridAImportar).Columna("CC")->visible);
  EXPECT_FALSE(p.Ver().chkCCDefEnDatExt.enabled);
  p.Opciones().chkConCC_Click(true);
  EXPECT_TRUE(app::Grid(p.Ver().GridAImportar).Columna("CC")->visible);
  EXPECT_TRUE(app::Grid(p.Ver().GridRelaciones).Columna("CC")->visible);
  EXPECT_EQ(app::Grid(p.Ver().GridAImportar).Columna("CC")->ancho, 825);
  EXPECT_TRUE(p.Ver().chkCCDefEnDatExt.enabled);
}

TEST_F(Opciones, NumericCodesReloadTheAutomaticRelations) {
  app::Programa& p = Abrir();
  p.Opciones().chkVincAutConOrsa_Click(true);
  ASSERT_GT(p.Ver().relaciones.Cantidad(), 0U);
  p.Opciones().chkCodigoNumerico_Click(true);
  const std::string por_numero = p.Ver().relaciones.Campo(relations::kExternos, 0);
  EXPECT_EQ(por_numero, "," + p.Ver().relaciones.Campo(relations::kConcepto, 0) + ",");
  p.Opciones().chkCodigoNumerico_Click(false);
  EXPECT_EQ(p.Ver().relaciones.Campo(relations::kExternos, 0),
            "," + p.Ver().relaciones.Campo(relations::kCodigo, 0) + ",");
  p.Opciones().chkVincAutConOrsa_Click(false);
  EXPECT_FALSE(p.Ver().opciones.MismoCodigoDeOrsa);
}

TEST_F(Opciones, AKeyKindThatIsNoneChangesNothing) {
  app::Programa& p = Abrir();
  const int clave = p.Ver().opciones.Configura;
  p.Opciones().cbTipoClave_Click(-1);
  EXPECT_EQ(p.Ver().opciones.Configura, clave);
}

// A change that comes while the rows are loading takes effect at once, and its reload waits.
TEST_F(Opciones, AReloadAskedForDuringALoadRunsAfterIt) {
  app::Programa& p = Abrir();
  std::string texto;
  for (int i = 0; i < 500; ++i) texto += "1;1;8\r\n";
  Escribir("largo.txt", texto + "1;1;8");
  p.Archivo().txtRuta_Change(Ruta("largo.txt"));
  p.Archivo().OptFiltro_Click(0);
  int veces = 0;
  eventos_.al_correr = [&] {
    if (++veces != 50) return;
    p.Lineas().CargarDatos();  // ignored
    p.Opciones().cbTipoClave_Click(0);
    EXPECT_EQ(p.Ver().opciones.Configura, 0);
  };
  p.Lineas().CargarDatos();
  EXPECT_EQ(p.Ver().lineas, 501U);
  EXPECT_GT(veces, 900) << "the file was loaded twice: once asked for, once because of the key";
}

TEST_F(Opciones, ClosingStopsALoad) {
  app::Programa& p = Abrir();
  std::string texto;
  for (int i = 0; i < 500; ++i) texto += "1;1;8\r\n";
  Escribir("largo.txt", texto + "1;1;8");
  p.Archivo().txtRuta_Change(Ruta("corto.txt"));
  Escribir("corto.txt", "1;1;8");
  p.Archivo().OptFiltro_Click(0);
  p.Archivo().txtRuta_Change(Ruta("largo.txt"));
  int veces = 0;
  eventos_.al_correr = [&] {
    if (++veces == 10) {
      EXPECT_FALSE(p.Unload());
    }
  };
  p.Lineas().CargarDatos();
  eventos_.al_correr = nullptr;
  EXPECT_LT(veces, 30);
  EXPECT_EQ(p.Ver().lineas, 1U) << "the rows of the load before stay";
  EXPECT_TRUE(p.CierrePedido());
  EXPECT_TRUE(p.Unload());
}

}  // namespace
