#include "app/banco.h"

namespace {

class Relaciones : public prueba::Banco {
 protected:
  void SetUp() override {
    Banco::SetUp();
    Demo();
    std::filesystem::remove(Ruta("ImportDeMarcas.ini"));  // the two default relations
    ASSERT_TRUE(Crear().Iniciar(demo_.referencia));
  }
  // Chooses the combo's first concept that is no user table, or that is one.
  int Elegir(bool tabla_de_usuario) {
    const auto& items = programa_->Ver().conceptos.cmbConceptos.items;
    for (std::size_t i = 0; i < items.size(); ++i) {
      if ((items[i].dato > 1000) != tabla_de_usuario) continue;
      programa_->Relaciones().cmbConceptos_Click(static_cast<int>(i));
      return static_cast<int>(i);
    }
    ADD_FAILURE() << "no such concept";
    return -1;
  }
};

TEST_F(Relaciones, AddingNeedsAConcept) {
  cajas_.esperadas = {"Debe seleccionar un concepto"};
  programa_->Relaciones().txtTipo_Change("07");
  programa_->Relaciones().cbAgrQuit_Click(0);
  EXPECT_EQ(programa_->Ver().relaciones.Cantidad(), 2U);
}

TEST_F(Relaciones, AddingNeedsCodes) {
  Elegir(false);
  cajas_.esperadas = {"Debe seleccionar la relación con los codigos del sistema de reloj"};
  programa_->Relaciones().txtTipo_Change("   ");
  programa_->Relaciones().cbAgrQuit_Click(0);
  EXPECT_EQ(programa_->Ver().relaciones.Cantidad(), 2U);
}

TEST_F(Relaciones, RemovingNeedsARow) {
  cajas_.esperadas = {"Debe seleccionar una relación para quitar"};
  programa_->Relaciones().GridRelaciones_RowChange(-1);
  programa_->Relaciones().cbAgrQuit_Click(1);
  EXPECT_EQ(programa_->Ver().relaciones.Cantidad(), 2U);
}

TEST_F(Relaciones, AddsWhatTheControlsSay) {
  const auto i = static_cast<std::size_t>(Elegir(false));
  const auto& e = programa_->Ver();
  cajas_.color = 0x00FF00;
  programa_->Relaciones().cbColor_Click();
  programa_->Relaciones().txtTipo_Change("07,HX");
  programa_->Relaciones().cbAgrQuit_Click(0);
  ASSERT_EQ(e.relaciones.Cantidad(), 3U);
  const std::string texto = e.conceptos.cmbConceptos.items[i].texto;
  EXPECT_EQ(e.relaciones.Campo(relations::kCodigo, 2), texto.substr(0, texto.find(" - ")));
  EXPECT_EQ(e.relaciones.Campo(relations::kColor, 2), "65280");
  EXPECT_EQ(e.relaciones.Campo(relations::kExternos, 2), ",07,HX,");
  EXPECT_EQ(e.relaciones.Campo(relations::kConcepto, 2),
            std::to_string(e.conceptos.cmbConceptos.items[i].dato));
  EXPECT_EQ(e.relaciones.Campo(relations::kNombre, 2), e.lblConcepto);
  EXPECT_EQ(e.relaciones.Campo(relations::kCC, 2), "0");
  EXPECT_EQ(e.relaciones.Grid()[2].CodigosVincConReloj, "07,HX");
  EXPECT_EQ(e.relaciones.PosEnVecConc("HX"), 2);
  EXPECT_EQ(e.relaciones.PosEnVecConc("7"), -1);
}

TEST_F(Relaciones, TheCostCentreCountsOnlyWhenItIsInUse) {
  ASSERT_TRUE(programa_->Sesion().LiqAgrup);
  Elegir(false);
  programa_->Relaciones().cmbAgrupaDef_Click(1);
  programa_->Relaciones().txtTipo_Change("1");
  programa_->Relaciones().cbAgrQuit_Click(0);
  EXPECT_EQ(programa_->Ver().relaciones.Campo(relations::kCC, 2), "0");
  programa_->Opciones().chkConCC_Click(true);
  programa_->Relaciones().cmbAgrupaDef_Click(1);
  programa_->Relaciones().txtTipo_Change("2");
  programa_->Relaciones().cbAgrQuit_Click(0);
  EXPECT_EQ(programa_->Ver().relaciones.Campo(relations::kCC, 3),
            std::to_string(programa_->Ver().tipos.cmbAgrupaDef.items[1].dato));
  programa_->Relaciones().cmbAgrupaDef_Click(0);  // "[Por Defecto]"
  programa_->Relaciones().txtTipo_Change("3");
  programa_->Relaciones().cbAgrQuit_Click(0);
  EXPECT_EQ(programa_->Ver().relaciones.Campo(relations::kCC, 4), "0");
}

TEST_F(Relaciones, AUserTableIsMarkedAndTakesNoCostCentre) {
  programa_->Opciones().chkConCC_Click(true);
  Elegir(true);
  const std::string nombre = programa_->Ver().lblConcepto;
  EXPECT_EQ(nombre.substr(nombre.size() - 8), "  (T.U.)");
  EXPECT_FALSE(programa_->Ver().tipos.cmbAgrupaDef.enabled);
  Elegir(false);
  EXPECT_EQ(programa_->Ver().lblConcepto.find("(T.U.)"), std::string::npos);
  EXPECT_TRUE(programa_->Ver().tipos.cmbAgrupaDef.enabled);
}

TEST_F(Relaciones, NoConceptEmptiesTheEditingRow) {
  Elegir(false);
  programa_->Relaciones().txtTipo_Change("07");
  programa_->Relaciones().cmbConceptos_Click(-1);
  EXPECT_EQ(programa_->Ver().lblConcepto, "");
  EXPECT_EQ(programa_->Ver().txtTipo.text, "");
}

TEST_F(Relaciones, RemovingPutsTheRelationBackIntoTheControls) {
  programa_->Opciones().chkConCC_Click(true);
  const int i = Elegir(false);
  cajas_.color = 0x123456;
  programa_->Relaciones().cbColor_Click();
  programa_->Relaciones().cmbAgrupaDef_Click(1);
  programa_->Relaciones().txtTipo_Change("07,HX");
  programa_->Relaciones().cbAgrQuit_Click(0);
  const std::string nombre = programa_->Ver().lblConcepto;
  // Another choice meanwhile.
  cajas_.color = 0;
  programa_->Relaciones().cbColor_Click();
  programa_->Relaciones().cmbConceptos_Click(-1);
  programa_->Relaciones().cmbAgrupaDef_Click(0);
  programa_->Relaciones().GridRelaciones_RowChange(2);
  programa_->Relaciones().cbAgrQuit_Click(1);
  EXPECT_EQ(programa_->Ver().relaciones.Cantidad(), 2U);
  EXPECT_EQ(programa_->Ver().relaciones.Grid().size(), 2U);
  EXPECT_EQ(programa_->Ver().txtTipo.text, "07,HX");
  EXPECT_EQ(programa_->Ver().cbColor, 0x123456);
  EXPECT_EQ(programa_->Ver().conceptos.cmbConceptos.ListIndex, i);
  EXPECT_EQ(programa_->Ver().lblConcepto, nombre);
  EXPECT_EQ(programa_->Ver().tipos.cmbAgrupaDef.ListIndex, 1);
}

// A default relation has no codes: nothing to take commas from.
TEST_F(Relaciones, RemovingARelationWithoutCodes) {
  programa_->Relaciones().GridRelaciones_RowChange(0);
  programa_->Relaciones().cbAgrQuit_Click(1);
  EXPECT_EQ(programa_->Ver().txtTipo.text, "");
  EXPECT_EQ(programa_->Ver().cbColor, 65535);
  ASSERT_EQ(programa_->Ver().relaciones.Cantidad(), 1U);
  EXPECT_EQ(programa_->Ver().relaciones.Grid()[0].Codigo, "HE");
}

TEST_F(Relaciones, ACancelledColourStays) {
  const auto antes = programa_->Ver().cbColor;
  programa_->Relaciones().cbColor_Click();
  EXPECT_EQ(programa_->Ver().cbColor, antes);
}

TEST_F(Relaciones, TheTwoPanelsNeverShowTogether) {
  programa_->Opciones().cbConfigurar_Click(0);
  EXPECT_TRUE(programa_->Ver().AreConf_visible[0]);
  programa_->Opciones().cbConfigurar_Click(1);
  EXPECT_FALSE(programa_->Ver().AreConf_visible[0]);
  EXPECT_TRUE(programa_->Ver().AreConf_visible[1]);
  EXPECT_EQ(programa_->Ver().AreConf_al_frente, 1);
  programa_->Opciones().cbConfigurar_Click(1);
  EXPECT_FALSE(programa_->Ver().AreConf_visible[1]);
}

TEST(Enter, MovesOnAsTabDoes) {
  EXPECT_TRUE(app::Archivo::EnterEsTab(13));
  EXPECT_FALSE(app::Archivo::EnterEsTab(65));
}

// The two default relations lead to their concepts by name and know no code: relating makes the list of the
// one.
TEST_F(Relaciones, RelatesACodeWithWhatIsProposed) {
  const auto& e = programa_->Ver();
  const auto por_nombre = informe::ProponerConcepto("he", e.relaciones, e.conceptos);
  EXPECT_EQ(por_nombre.por, informe::Parecido::Relacion);
  EXPECT_EQ(programa_->Relaciones().Relacionar("he", por_nombre), "");
  EXPECT_EQ(programa_->Relaciones().Relacionar("07", por_nombre), "");
  ASSERT_EQ(e.relaciones.Cantidad(), 2U);
  EXPECT_EQ(e.relaciones.Campo(relations::kExternos, 1), ",he,07,");
  EXPECT_EQ(e.relaciones.Grid()[1].CodigosVincConReloj, "he,07");
  EXPECT_EQ(e.relaciones.PosEnVecConc("07"), 1);

  const auto nueva = informe::ProponerConcepto("horas nocturnas", e.relaciones, e.conceptos);
  EXPECT_EQ(nueva.por, informe::Parecido::Nombre);
  EXPECT_EQ(programa_->Relaciones().Relacionar("horas nocturnas", nueva), "");
  ASSERT_EQ(e.relaciones.Cantidad(), 3U);
  EXPECT_EQ(e.relaciones.Campo(relations::kConcepto, 2), "3");
  EXPECT_EQ(e.relaciones.Campo(relations::kExternos, 2), ",horas nocturnas,");
  EXPECT_EQ(e.relaciones.Color(2), 0xFFFFFF);

  EXPECT_EQ(programa_->Relaciones().Relacionar("07", nueva), "El código '07' ya está relacionado");
  EXPECT_NE(programa_->Relaciones().Relacionar("a,b", nueva), "");
  EXPECT_NE(programa_->Relaciones().Relacionar(" ", nueva), "");
  EXPECT_NE(programa_->Relaciones().Relacionar("qq", {}), "");
  EXPECT_EQ(e.relaciones.Cantidad(), 3U);
}

TEST_F(Relaciones, ProposesTheSurestConcept) {
  const auto& e = programa_->Ver();
  const auto por = [&](const char* codigo) {
    return informe::ProponerConcepto(codigo, e.relaciones, e.conceptos).por;
  };
  EXPECT_EQ(por("HORAS NOCTURNAS"), informe::Parecido::Nombre);
  EXPECT_EQ(por("H. Nocturnas"), informe::Parecido::NombreParecido);
  EXPECT_EQ(por("003"), informe::Parecido::Id);
  EXPECT_EQ(por("zzz"), informe::Parecido::Ninguno);
  EXPECT_EQ(por(""), informe::Parecido::Ninguno);
  EXPECT_EQ(por("-"), informe::Parecido::Ninguno);
}

TEST_F(Relaciones, ATableOfASpreadsheetTakesTheirPlace) {
  const auto leidas = programa_->Relaciones().LeerCsv(programa_->Relaciones().Csv());
  EXPECT_TRUE(leidas.errores.empty());
  const std::string antes = programa_->Ver().relaciones.Texto();
  EXPECT_EQ(programa_->Relaciones().Reemplazar(leidas.relaciones), "");
  EXPECT_EQ(programa_->Ver().relaciones.Texto(), antes);
}

}  // namespace
