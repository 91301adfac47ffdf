#include <algorithm>

#include "app/banco.h"

namespace {

class Archivo : public prueba::Banco {
 protected:
  void SetUp() override {
    Banco::SetUp();
    Demo();
    ASSERT_TRUE(Crear().Iniciar(demo_.referencia));
    Escribir("vacio.txt", "");
    programa_->Archivo().txtRuta_Change(Ruta("vacio.txt"));
    programa_->Archivo().OptFiltro_Click(0);  // by text, with none: every line stays
    programa_->Archivo().txtFiltro_Change("");
  }
  void Cargar(const std::string& bytes) {
    Escribir("x.txt", bytes);
    programa_->Archivo().txtRuta_Change(Ruta("x.txt"));
    programa_->Archivo().txtRuta_KeyPress(13);
  }
};

TEST_F(Archivo, OnlyEnterLoads) {
  Cargar("1;1;8");
  EXPECT_EQ(programa_->Ver().filas.size(), 1U);
  Escribir("x.txt", "1;1;8\r\n2;1;8");
  programa_->Archivo().txtRuta_KeyPress('a');
  programa_->Archivo().txtFiltro_KeyPress(9);
  EXPECT_EQ(programa_->Ver().filas.size(), 1U);
  programa_->Archivo().txtFiltro_KeyPress(13);
  EXPECT_EQ(programa_->Ver().filas.size(), 2U);
}

TEST_F(Archivo, ALoadThatStopsEarlyLeavesRowsAndPreview) {
  Cargar("1;1;8\r\n2;1;8");
  const auto previa = programa_->Ver().filas_previa;
  cajas_.esperadas = {"Formato incorrecto"};
  Cargar("sin separador");
  EXPECT_EQ(programa_->Ver().filas.size(), 2U);
  EXPECT_EQ(programa_->Ver().filas_previa, previa);
  cajas_.esperadas = {"El Archivo '" + Ruta("no.txt") + "' no existe"};
  programa_->Archivo().txtRuta_Change(Ruta("no.txt"));
  programa_->Archivo().cbActualizar_Click();
  EXPECT_EQ(programa_->Ver().filas.size(), 2U);
  EXPECT_FALSE(programa_->BarraDeProgreso().Visible());
  EXPECT_FALSE(std::filesystem::exists(Ruta("no.txt")));
}

TEST_F(Archivo, SearchPutsThePathAndLoads) {
  Escribir("y.txt", "1;1;8");
  cajas_.archivo = Ruta("y.txt");
  programa_->Archivo().cbBuscar_Click();
  EXPECT_EQ(programa_->Ver().txtRuta.text, Ruta("y.txt"));
  EXPECT_EQ(programa_->Ver().filas.size(), 1U);
  EXPECT_EQ(cajas_.dialogos.back(), "Seleccionar archivo a importar||" + Ruta("vacio.txt"));
}

TEST_F(Archivo, TheValueColumnShowsWhenALineHasOne) {
  Cargar("1;1;8;x;0");
  EXPECT_FALSE(app::Grid(programa_->Ver().GridAImportar).Columna("Valor")->visible);
  Cargar("1;1;8;x;2,5");
  EXPECT_TRUE(app::Grid(programa_->Ver().GridAImportar).Columna("Valor")->visible);
}

TEST_F(Archivo, ThePreviewFollowsTheFormat) {
  programa_->Formato().txtSeparador_Change(";");
  cajas_.esperadas = {"Formato incorrecto en la linea 2"};
  Cargar("000123;HC;8,5\r\nx;y");
  using Filas = std::vector<std::vector<std::string>>;
  EXPECT_EQ(programa_->Ver().filas_previa, (Filas{{"000123", "HC", "8,5"}, {"x", "y"}}));
}

TEST_F(Archivo, SwitchingTheFormatEnablesItsBoxes) {
  programa_->Formato().optTipoArch_Click(1);
  EXPECT_TRUE(programa_->Ver().opciones.AnchoFijo);
  EXPECT_FALSE(programa_->Ver().txtSeparador.enabled);
  for (const auto& par : programa_->Ver().txtAE)
    for (const auto& caja : par) EXPECT_TRUE(caja.enabled);
  programa_->Formato().optTipoArch_Click(0);
  EXPECT_TRUE(programa_->Ver().txtSeparador.enabled);
  EXPECT_FALSE(programa_->Ver().txtAE[4][1].enabled);
}

TEST_F(Archivo, ALayoutBoxChangesItsColumnAndArmsTheTimer) {
  programa_->Formato().optTipoArch_Click(1);
  EXPECT_FALSE(programa_->Ver().Timer1_enabled);
  programa_->Formato().txtAE_Change(1, 0, "");
  EXPECT_FALSE(programa_->Ver().Timer1_enabled);
  programa_->Formato().txtAE_Change(1, 0, "9");
  programa_->Formato().txtAE_Change(1, 1, "4x");
  EXPECT_EQ(programa_->Ver().opciones.ConfDeAF[1].inicio, 9);
  EXPECT_EQ(programa_->Ver().opciones.ConfDeAF[1].largo, 4);
  EXPECT_TRUE(programa_->Ver().Timer1_enabled);
  programa_->Formato().Timer1_Timer();
  EXPECT_FALSE(programa_->Ver().Timer1_enabled);
  programa_->Formato().txtAE_Change(1, 0, "nada");
  EXPECT_EQ(programa_->Ver().opciones.ConfDeAF[1].inicio, 0);
  programa_->Formato().txtAE_Change(1, 0, "99999");
  EXPECT_EQ(programa_->Ver().opciones.ConfDeAF[1].inicio, 32767);
}

TEST_F(Archivo, TheSeparatorArmsTheTimerOnce) {
  programa_->Formato().txtSeparador_Change("");
  EXPECT_FALSE(programa_->Ver().Timer1_enabled);
  programa_->Formato().txtSeparador_Change("|");
  programa_->Formato().txtSeparador_Change("||");
  EXPECT_TRUE(programa_->Ver().Timer1_enabled);
  programa_->Formato().Timer1_Timer();
  EXPECT_FALSE(programa_->Ver().Timer1_enabled);
}

// The preview's columns were exchanged: the first piece of the line is then the type code, the second the
// person.
TEST_F(Archivo, MovedPreviewColumnsBecomeTheLayout) {
  std::filesystem::remove(Ruta("ImportDeMarcas.ini"));
  ASSERT_TRUE(Crear().Iniciar(demo_.referencia));
  programa_->Formato().GridPVConf_ColumnasMovidas({1, 0, 2, 3, 4});
  EXPECT_TRUE(programa_->Ver().Timer1_enabled);
  programa_->Formato().Timer1_Timer();
  EXPECT_EQ(programa_->Ver().opciones.ConfDeAF[0].campo, 2);
  EXPECT_EQ(programa_->Ver().opciones.ConfDeAF[1].campo, 1);
  EXPECT_EQ(programa_->Ver().opciones.ConfDeAF[2].campo, 3);
}

// What nobody moved is not written back: with a piece that fills no field, or with two columns of one field,
// the places of the preview are no picture of the layout, and the quantity would change its column.
TEST_F(Archivo, PreviewColumnsThatStayLeaveTheLayout) {
  const auto campos_tras_el_reloj = [&](const std::string& diseno) {
    Escribir("ImportDeMarcas.ini", "[ConfDeAF]\r\n" + diseno + "\r\n[/ConfDeAF]");
    EXPECT_TRUE(Crear().Iniciar(demo_.referencia));
    auto lugares = programa_->Ver().posicion_previa;
    std::sort(lugares.begin(), lugares.end());
    EXPECT_EQ(lugares, (std::array<int, 5>{0, 1, 2, 3, 4})) << diseno;
    programa_->Formato().txtAE_Change(0, 1, "5");
    programa_->Formato().Timer1_Timer();
    std::string campos;
    for (const auto& columna : programa_->Ver().opciones.ConfDeAF) campos += std::to_string(columna.campo);
    return campos;
  };
  EXPECT_EQ(campos_tras_el_reloj("1*1*6\r\n0*7*3\r\n2*10*3\r\n3*13*6"), "10235");
  EXPECT_EQ(campos_tras_el_reloj("1*1*6\r\n3*12*9"), "13345");
  EXPECT_EQ(campos_tras_el_reloj("1*1*2\r\n1*3*2\r\n2*5*2\r\n3*7*2\r\n3*9*2"), "11233");
  EXPECT_EQ(campos_tras_el_reloj("3*1*4\r\n1*5*3\r\n2*8*2\r\n5*10*1\r\n4*11*1"), "31254");
  EXPECT_EQ(campos_tras_el_reloj("7*0*4\r\n1*5*3\r\n2*8*2\r\n3*10*1"), "71235");
}

// A column in use shows its field before one that is not.
TEST_F(Archivo, TheFieldsInUseTakeTheirPlacesFirst) {
  Escribir("ImportDeMarcas.ini", "[ConfDeAF]\r\n1*1*6\r\n3*12*9\r\n3*-1*0\r\n2*8*3\r\n5*-1*0\r\n[/ConfDeAF]");
  ASSERT_TRUE(Crear().Iniciar(demo_.referencia));
  EXPECT_EQ(programa_->Ver().posicion_previa, (std::array<int, 5>{0, 3, 1, 2, 4}));
}

TEST_F(Archivo, AHeaderClickSortsByItsColumn) {
  Cargar("3;1;10\r\n1;1;9\r\n2;1;100");
  const auto claves = [&] {
    std::string s;
    for (const auto& f : programa_->Ver().filas) s += f.campo[importfile::kClave] + " ";
    return s;
  };
  EXPECT_EQ(claves(), "1 2 3 ");
  programa_->Lineas().GridAImportar_HeadClick("Horas");
  EXPECT_EQ(claves(), "1 3 2 ");  // 9, 10, 100: as numbers
  programa_->Archivo().cbActualizar_Click();
  EXPECT_EQ(claves(), "1 3 2 ");  // the column is kept
  programa_->Lineas().GridAImportar_HeadClick("Resultado");
  EXPECT_EQ(claves(), "1 3 2 ");
}

TEST_F(Archivo, ChangingTheMonthReloadsPersonsAndRows) {
  programa_->Archivo().ObjSelMes_Change(base::MakeDate(2026, 9, 17));
  EXPECT_EQ(programa_->Ver().mes, base::MakeDate(2026, 9, 1));
  EXPECT_EQ(Consulta("Select Valor From valores Where codigo='PARFECHA' And idEmpresa=" +
                     std::to_string(programa_->Sesion().idEmpresa)),
            "#09/01/2026#");
  const std::size_t septiembre = programa_->Ver().personas.Cantidad();
  programa_->Archivo().ObjSelMes_Change(base::MakeDate(2026, 10, 31));
  EXPECT_NE(programa_->Ver().personas.Cantidad(), septiembre);
}

// First the persons, then the rows: these are matched with those of the new month.
TEST_F(Archivo, ChangingTheMonthMatchesTheRowsAnew) {
  Cargar("007008;HC;8");
  EXPECT_EQ(programa_->Ver().filas[0].campo[importfile::kNombre], "Ana");
  programa_->Archivo().ObjSelMes_Change(base::MakeDate(1990, 1, 31));
  EXPECT_EQ(programa_->Ver().personas.Cantidad(), 0U);
  EXPECT_EQ(programa_->Ver().filas[0].campo[importfile::kNombre], "");
  EXPECT_EQ(programa_->Ver().filas[0].campo[importfile::kCC], "0");
}

// The same for the key: another kind looks the same text up among other keys.
TEST_F(Archivo, ChangingTheKeyKindMatchesTheRowsAnew) {
  Cargar("007008;HC;8");
  EXPECT_EQ(programa_->Ver().filas[0].campo[importfile::kNombre], "Ana");
  programa_->Opciones().cbTipoClave_Click(0);
  EXPECT_EQ(programa_->Ver().filas[0].campo[importfile::kNombre], "");
  programa_->Opciones().cbTipoClave_Click(2);
  EXPECT_EQ(programa_->Ver().filas[0].campo[importfile::kNombre], "Ana");
}

TEST_F(Archivo, TheImportAsksAndNoChangesNothing) {
  Cargar("1;1;8");
  programa_->Importador().cbImportar_Click(2);  // not the primary button
  EXPECT_TRUE(cajas_.preguntas.empty());
  const std::string antes = Consulta("Select Count(*) From Datos_Liquidacion");
  cajas_.respuestas = {false};
  programa_->Importador().cbImportar_Click(1);
  ASSERT_EQ(cajas_.preguntas.size(), 1U);
  EXPECT_EQ(cajas_.preguntas[0], programa_->Importador().Confirmacion());
  EXPECT_EQ(Consulta("Select Count(*) From Datos_Liquidacion"), antes);
  EXPECT_EQ(programa_->Ver().filas[0].resultado, "");
  EXPECT_FALSE(app::Grid(programa_->Ver().GridAImportar).Columna("Resultado")->visible);
}

TEST_F(Archivo, TheImportAnsweredYesShowsTheResults) {
  Cargar("99999;1;8");
  cajas_.respuestas = {true};
  programa_->Importador().cbImportar_Click(1);
  EXPECT_EQ(programa_->Ver().filas[0].resultado,
            "La Persona no existe o no tiene contrato activo en el mes seleccionado");
  EXPECT_TRUE(app::Grid(programa_->Ver().GridAImportar).Columna("Resultado")->visible);
  EXPECT_FALSE(programa_->Sesion().conexion->InTransaction());
}

// With no base every button may be pressed.
TEST_F(Archivo, WithoutABaseNothingBreaks) {
  cajas_.esperadas = {"Error al abrir la base ubicada en nada"};
  ASSERT_TRUE(Crear().Iniciar("nada*"));
  app::Programa& p = *programa_;
  cajas_.esperadas = {"La Base no está Abierta"};
  p.Opciones().chkSoloDReloj_Click(true);
  p.Opciones().chkImportarCuotas_Click(true);
  p.Opciones().chkConCC_Click(true);
  p.Opciones().chkVincAutConOrsa_Click(true);
  EXPECT_EQ(p.Ver().relaciones.Cantidad(), 0U);
  cajas_.esperadas = {"La Base no está Abierta", "El Archivo '" + Ruta("no.txt") + "' no existe"};
  p.Archivo().txtRuta_Change(Ruta("no.txt"));
  p.Archivo().ObjSelMes_Change(base::MakeDate(2026, 1, 5));
  cajas_.esperadas = {"La Base no está Abierta"};  // and no question
  p.Importador().cbImportar_Click(1);
  EXPECT_TRUE(p.Unload());
}

}  // namespace
