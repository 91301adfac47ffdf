// A window without a base, and one with a great many lines.
#include <QHeaderView>
#include <QScrollBar>
#include <ctime>

#include "gui/banco_gui.h"
#include "gui/bomba.h"

namespace {

// Answers anything with "no", and counts.
class Paciente final : public ports::Prompts, public ports::FilePicker {
 public:
  bool Show(const ports::Notice&) override { return ++avisos > 0; }
  bool Confirm(const std::string&) override { return ++preguntas % 2 == 0; }
  std::string PickFile(const std::string&, const std::string&, const std::string&) override { return {}; }
  std::int32_t PickColor(std::int32_t inicial) override { return inicial ^ 0xFF; }
  int avisos = 0, preguntas = 0;
};

class Robustez : public prueba::Ventana {
 protected:
  void AbrirCon(ports::EventPump* eventos, gui::Bomba* bomba, const std::string& linea) {
    ventana_.reset();
    programa_ = std::make_unique<app::Programa>(app::Puertos{paciente_, paciente_, reloj_, eventos},
                                                app::Arranque{carpeta_.string(), "1.0.0", {}, {}, false});
    ventana_ = std::make_unique<gui::FrmPrincipal2>(*programa_, gui::Tema::Claro(), bomba);
    ASSERT_TRUE(ventana_->Iniciar(gui::De(linea)));
    Mostrar();
  }
  // Everything but the exit, in turn, twice over.
  void TocarTodo() {
    for (int vuelta = 0; vuelta < 2; ++vuelta) {
      for (auto* boton : ventana_->findChildren<QAbstractButton*>())
        if (boton->objectName() != QLatin1String("cbSalir")) boton->click();
      for (auto* combo : ventana_->findChildren<QComboBox*>())
        for (int i = -1; i < std::min(combo->count(), 3); ++i) combo->setCurrentIndex(i);
      for (auto* caja : ventana_->findChildren<QLineEdit*>()) {
        if (caja->isReadOnly()) continue;
        caja->setText(QStringLiteral("x'*\"["));
        QTest::keyClick(caja, Qt::Key_Return);
        caja->clear();
      }
      for (auto* grilla : ventana_->findChildren<QTableView*>()) {
        grilla->selectAll();
        QTest::keyClick(grilla, Qt::Key_C, Qt::ControlModifier);
        for (int i = 0; i < grilla->model()->columnCount(); ++i)
          QTest::mouseClick(grilla->horizontalHeader()->viewport(), Qt::LeftButton, Qt::NoModifier,
                            QPoint(grilla->horizontalHeader()->sectionViewportPosition(i) + 9, 9));
      }
      Hallar<QDateEdit>("ObjSelMes")->setDate(QDate(2025, 2, 28));
      Esperar();
    }
  }
  Paciente paciente_;
};

TEST_F(Robustez, WithoutABaseEverythingCanBePressed) {
  AbrirCon(nullptr, nullptr, Ruta("nada.mdb") + "*" + Ruta("nada.txt"));
  TocarTodo();
  EXPECT_GT(paciente_.avisos, 5);
  EXPECT_EQ(paciente_.preguntas, 0) << "without a base there is nothing to ask";
  EXPECT_TRUE(ventana_->isVisible());
  Pulsar("cbSalir");
  EXPECT_TRUE(ventana_->Cerrada());
}

TEST_F(Robustez, WithABaseToo) {
  Demo();
  AbrirCon(nullptr, nullptr, demo_.referencia + "*" + demo_.archivo);
  TocarTodo();
  EXPECT_EQ(paciente_.preguntas, 2);
  Pulsar("cbSalir");
  EXPECT_TRUE(ventana_->Cerrada());
}

#ifdef __SANITIZE_ADDRESS__
constexpr int kLineas = 20000;
#else
constexpr int kLineas = 100000;
#endif

class Muchas : public Robustez {
 protected:
  void SetUp() override {
    Robustez::SetUp();
    Demo();
    std::string texto;
    const char* codigos[] = {"HC", "HE", "HN", "HF", "zz"};
    for (int i = 0; i < kLineas; ++i)
      texto += "00" + std::to_string(7001 + i * 7919 % 52) + ";" + codigos[i % 5] + ";" +
               std::to_string(i % 97) + ",5;x" + std::to_string(i) + "\r\n";
    texto.erase(texto.size() - 2);
    Escribir("muchas.txt", texto);
  }
  // Milliseconds that this program worked; what others do on the machine does not count.
  static double Trabajo() { return 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }
};

// Counts what the window may not see: the longest work between two looks at the event queue.
class BombaMedida final : public ports::EventPump {
 public:
  explicit BombaMedida(gui::Bomba& bomba) : bomba_(bomba) {}
  void DoEvents() override {
    const double ahora = 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
    if (desde_ > 0) mayor = std::max(mayor, ahora - desde_);
    bomba_.DoEvents();
    desde_ = 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
  }
  // The command is over: what it did since the last look counts too.
  void Terminar() {
    mayor = std::max(mayor, 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC - desde_);
    desde_ = 0;
  }
  double mayor = 0;

 private:
  gui::Bomba& bomba_;
  double desde_ = 0;
};

TEST_F(Muchas, LoadScrollSortAndCopy) {
  gui::Bomba bomba;
  BombaMedida medida(bomba);
  AbrirCon(&medida, &bomba, demo_.referencia);
  Pulsar("OptFiltro_0");
  paciente_.avisos = 0;
  Caja("txtRuta")->setText(gui::De(Ruta("muchas.txt")));
  int pintadas = 0;
  class Ojo final : public QObject {
   public:
    explicit Ojo(int& n) : n_(n) {}
    bool eventFilter(QObject*, QEvent* e) override {
      n_ += e->type() == QEvent::Paint ? 1 : 0;
      return false;
    }

   private:
    int& n_;
  } ojo(pintadas);
  Hallar<QWidget>("Barra")->installEventFilter(&ojo);
  const double antes = Trabajo();
  QTest::keyClick(Caja("txtRuta"), Qt::Key_Return);
  const double carga = Trabajo() - antes;
  medida.Terminar();
  QTableView* g = Grilla("GridAImportar");
  ASSERT_EQ(g->model()->rowCount(), kLineas);
  EXPECT_EQ(paciente_.avisos, 0);
  EXPECT_GT(pintadas, 0) << "the bar was seen while the file loaded";

  double t = Trabajo();
  for (int i = 0; i <= 100; ++i) {
    g->verticalScrollBar()->setValue(g->verticalScrollBar()->maximum() * i / 100);
    g->viewport()->repaint();
  }
  const double desplazar = (Trabajo() - t) / 101;
  t = Trabajo();
  programa_->Lineas().GridAImportar_HeadClick("Horas");
  g->viewport()->repaint();
  const double ordenar = Trabajo() - t;
  EXPECT_EQ(Celda(g, 0, "Horas"), "0,5");
  EXPECT_EQ(Celda(g, kLineas - 1, "Horas"), "96,5");
  t = Trabajo();
  g->selectAll();
  QTest::keyClick(g, Qt::Key_C, Qt::ControlModifier);
  const double copiar = Trabajo() - t;
  // Figures to read, not to pass or fail by: how long it takes is the machine's matter.
  std::printf("load %.0f ms, longest step %.0f ms, scroll %.1f ms a page, sort %.0f ms, copy all %.0f ms\n",
              carga, medida.mayor, desplazar, ordenar, copiar);
}

TEST_F(Muchas, ClosingInTheMiddle) {
  gui::Bomba bomba;
  AbrirCon(&bomba, &bomba, demo_.referencia);
  Caja("txtRuta")->setText(gui::De(Ruta("muchas.txt")));
  QTimer::singleShot(30, ventana_.get(), [this] { Pulsar("cbSalir"); });
  QTest::keyClick(Caja("txtRuta"), Qt::Key_Return);
  Esperar();
  EXPECT_TRUE(ventana_->Cerrada());
}

}  // namespace
