// The menu at the company line, and the button that rests with its reason.
#include <QMenu>
#include <QSettings>

#include "gui/banco_gui.h"
#include "gui/bases_recientes.h"

namespace {

constexpr const char* kAyuda = "Importar los datos Cargados en la grilla";

class Bases : public prueba::Ventana {
 protected:
  std::vector<std::string> Menu() {
    auto* menu = Hallar<QMenu>("menuBases");
    Q_EMIT menu->aboutToShow();
    std::vector<std::string> textos;
    for (const QAction* accion : menu->actions())
      if (!accion->isSeparator())
        textos.push_back(gui::A(accion->toolTip().isEmpty() ? accion->text() : accion->toolTip()));
    return textos;
  }
  std::string Estado() const { return gui::A(Hallar<QLabel>("lblEstado")->text()); }
  std::string Ayuda() const { return gui::A(Hallar<QPushButton>("cbImportar")->toolTip()); }
};

TEST_F(Bases, TheMenuOpensAnotherBaseAndComesBack) {
  const app::CarpetaDemo otra = app::CrearCarpetaDemo(Ruta("otra"), kMes, reloj_);
  AbrirCargada();
  EXPECT_EQ(Menu(), (std::vector<std::string>{"Abrir otra base…", demo_.referencia}));
  EXPECT_EQ(gui::A(Hallar<QMenu>("menuBases")->actions().front()->text()), "Abrir otra base…");
  cajas_.archivo = otra.referencia;
  cajas_.esperadas = {"Formato incorrecto en la linea 45"};
  Hallar<QMenu>("menuBases")->actions().front()->trigger();
  EXPECT_EQ(gui::A(Hallar<QLabel>("LblEmpresa")->text()), "Empresa: " + otra.referencia);
  EXPECT_EQ(Menu(), (std::vector<std::string>{"Abrir otra base…", otra.referencia, demo_.referencia}));
  cajas_.esperadas = {"Formato incorrecto en la linea 45"};
  Hallar<QMenu>("menuBases")->actions().back()->trigger();
  EXPECT_EQ(gui::A(Hallar<QLabel>("LblEmpresa")->text()), "Empresa: " + demo_.referencia);
  EXPECT_EQ(Grilla("GridAImportar")->model()->rowCount(), 53);
}

TEST_F(Bases, TheButtonOpensTheMenu) {
  Abrir();
  QTest::mouseClick(Hallar<QWidget>("cbBases"), Qt::LeftButton);
  EXPECT_TRUE(Hallar<QMenu>("menuBases")->isVisible());
  Hallar<QMenu>("menuBases")->close();
}

TEST_F(Bases, TheLastFiveAreKeptInTheDesktopsSettings) {
  const QString archivo = gui::De(Ruta("escritorio.ini"));
  {
    QSettings ajustes(archivo, QSettings::IniFormat);
    gui::BasesRecientes recientes;
    recientes.Guardar(&ajustes);
    for (const char* base : {"/b/1", "/b/2", "/b/3", "/b/4", "/b/5", "/b/6", "/b/3"})
      recientes.Anotar(QLatin1String(base));
  }
  QSettings ajustes(archivo, QSettings::IniFormat);
  gui::BasesRecientes recientes;
  recientes.Guardar(&ajustes);
  EXPECT_EQ(recientes.Lista(),
            (QStringList{QStringLiteral("/b/3"), QStringLiteral("/b/6"), QStringLiteral("/b/5"),
                         QStringLiteral("/b/4"), QStringLiteral("/b/2")}));
}

TEST_F(Bases, ABaseThatDoesNotOpenIsNotRemembered) {
  Abrir();
  cajas_.archivo = Ruta("no.mdb");
  cajas_.aceptar_todo = true;
  Menu();
  Hallar<QMenu>("menuBases")->actions().front()->trigger();
  EXPECT_EQ(Menu(), (std::vector<std::string>{"Abrir otra base…", demo_.referencia}));
  EXPECT_EQ(gui::A(Hallar<QLabel>("LblEmpresa")->text()), "Empresa: " + demo_.referencia);
}

TEST_F(Bases, ImportarRestsUntilThereAreLines) {
  Abrir();
  EXPECT_FALSE(Hallar<QPushButton>("cbImportar")->isEnabled());
  EXPECT_EQ(Ayuda(), std::string(kAyuda) + "\nNo hay ninguna línea cargada.");
  EXPECT_EQ(Estado(), "No hay ninguna línea cargada.");
  cajas_.esperadas = {"Formato incorrecto en la linea 45"};
  Caja("txtRuta")->setText(gui::De(demo_.archivo));
  Pulsar("cbActualizar");
  EXPECT_TRUE(Hallar<QPushButton>("cbImportar")->isEnabled());
  EXPECT_EQ(Ayuda(), kAyuda);
  EXPECT_EQ(Estado(), "");
}

TEST_F(Bases, WithoutABaseTheColumnSaysWhy) {
  cajas_.aceptar_todo = true;
  ASSERT_TRUE(Iniciar(Ruta("nada.mdb") + "*"));
  Mostrar();
  EXPECT_FALSE(Hallar<QPushButton>("cbImportar")->isEnabled());
  EXPECT_EQ(Estado(), "La base no está abierta: " + programa_->Ver().motivo_base);
  // All of it can be read there, over the buttons.
  const auto* estado = Hallar<QLabel>("lblEstado");
  EXPECT_GT(estado->height(), 2 * estado->fontMetrics().height());
  EXPECT_LE(estado->geometry().bottom(), Hallar<QWidget>("cbConfigurar_0")->y());
}

}  // namespace
