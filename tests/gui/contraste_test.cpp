// Contrast, measured on the window as it is drawn, in both palettes.
#include "gui/contraste.h"

#include <QHeaderView>
#include <QHoverEvent>
#include <QIcon>
#include <QPainter>
#include <cstdio>

#include "gui/aplicacion.h"
#include "gui/banco_gui.h"
#include "gui/estilo.h"

namespace {

constexpr double kTexto = 4.5, kBorde = 3.0, kApagado = 3.0;

class ContrasteDeLaVentana : public prueba::Ventana, public ::testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    tema_ = GetParam() ? gui::Tema::Oscuro() : gui::Tema::Claro();
    gui::Aplicacion::Vestir(tema_);
    Demo();
    Crear();
    ventana_ = std::make_unique<gui::FrmPrincipal2>(*programa_, tema_, nullptr);
    ASSERT_TRUE(ventana_->Iniciar(gui::De(demo_.referencia)));
    Mostrar();
  }
  void TearDown() override {
    Ventana::TearDown();
    gui::Aplicacion::Vestir(gui::Tema::Claro());
  }

  QImage Foto(const QWidget* w, const QRect& parte = {}) const {
    const QRect r = parte.isNull() ? w->rect() : parte;
    return ventana_->grab(QRect(w->mapTo(ventana_.get(), r.topLeft()), r.size())).toImage();
  }
  // Inside the border, where only letters stand on the ground.
  static QRect Dentro(const QWidget* w) { return w->rect().adjusted(4, 4, -4, -4); }
  static void PonerEncima(QWidget* w, bool encima) {
    w->setAttribute(Qt::WA_UnderMouse, encima);
    QHoverEvent evento(encima ? QEvent::HoverEnter : QEvent::HoverLeave, QPointF(5, 5), QPointF(5, 5),
                       QPointF(-1, -1));
    QApplication::sendEvent(w, &evento);
    w->update();
  }
  void Anotar(const char* que, double medido, double minimo) {
    std::printf("contraste|%s|%s|%.2f|%.1f\n", tema_.oscuro ? "oscura" : "clara", que, medido, minimo);
    EXPECT_GE(medido, minimo) << que << (tema_.oscuro ? ", dark" : ", light");
  }
  // The least of all that are visible, and its name.
  template <typename T, typename F>
  void Menor(const char* que, double minimo, const F& medir) {
    double menor = 22;
    std::string cual;
    for (T* w : ventana_->template findChildren<T*>()) {
      if (!w->isVisible() || w->visibleRegion().isEmpty()) continue;
      const double c = medir(w);
      if (c <= 0 || c >= menor) continue;
      menor = c;
      cual = gui::A(w->objectName());
    }
    ASSERT_LT(menor, 22) << que;
    Anotar((std::string(que) + " (" + cual + ")").c_str(), menor, minimo);
  }
  void Abrir(const char* panel) const {
    Pulsar(panel);
    Esperar();
  }

  gui::Tema tema_;
};

TEST_P(ContrasteDeLaVentana, Labels) {
  std::string lineas;
  for (int i = 0; i < 12; ++i) lineas += "999999;zz;8\r\n";
  Cargar(lineas + "7008;HC;8");
  Menor<QLabel>("cuenta", kTexto, [this](QLabel* w) {
    return w->objectName().startsWith(QLatin1String("lblCuenta_")) && w->text().size() > 1
               ? prueba::ContrasteDeTexto(Foto(w))
               : 0;
  });
  for (const char* panel : {"cbConfigurar_0", "cbConfigurar_1"}) {
    Abrir(panel);
    Menor<QLabel>("texto", kTexto, [this](QLabel* w) {
      return w->isEnabled() && !w->text().isEmpty() && w->text().size() > 1
                 ? prueba::ContrasteDeTexto(Foto(w))
                 : 0;
    });
    if (*(panel + 13) == '0')
      Menor<QLabel>("texto apagado", kApagado, [this](QLabel* w) {
        return !w->isEnabled() && !w->text().isEmpty() ? prueba::ContrasteDeTexto(Foto(w)) : 0;
      });
  }
}

TEST_P(ContrasteDeLaVentana, Buttons) {
  Abrir("cbConfigurar_0");
  for (const bool encima : {false, true})
    Menor<QPushButton>(encima ? "boton bajo el raton" : "boton", kTexto, [&](QPushButton* w) {
      if (!w->isEnabled() || w->text().isEmpty()) return 0.0;
      PonerEncima(w, encima);
      const double c = prueba::ContrasteDeTexto(Foto(w, Dentro(w)));
      PonerEncima(w, false);
      return c;
    });
  for (const char* boton : {"cbImportar", "cbActualizar", "cbSalir", "cbConfigurar_0"}) {
    auto* w = Hallar<QPushButton>(boton);
    w->setEnabled(true);  // Importar rests without lines
    w->setDown(true);
    Anotar((std::string("boton apretado (") + boton + ")").c_str(),
           prueba::ContrasteDeTexto(Foto(w, Dentro(w))), kTexto);
    w->setDown(false);
    w->setEnabled(false);
    Anotar((std::string("boton apagado (") + boton + ")").c_str(),
           prueba::ContrasteDeTexto(Foto(w, Dentro(w))), kApagado);
    w->setEnabled(true);
  }
}

TEST_P(ContrasteDeLaVentana, FieldsAndTheirTexts) {
  for (const char* panel : {"cbConfigurar_0", "cbConfigurar_1"}) {
    Abrir(panel);
    Hallar<QRadioButton>("optTipoArch_1")->setChecked(true);
    // The border against the field and against what is around it.
    const auto borde = [this](QWidget* w) {
      const QImage foto = Foto(w, w->rect().adjusted(-2, 0, 2, 0));
      const int y = foto.height() / 2;
      const QColor linea = foto.pixelColor(2, y);
      return std::min(prueba::Contraste(linea, foto.pixelColor(4, y)),
                      prueba::Contraste(linea, foto.pixelColor(0, y)));
    };
    for (const bool encima : {false, true}) {
      const auto medir = [&](QWidget* w) {
        if (!w->isEnabled() || w->hasFocus() || w->parentWidget()->inherits("QAbstractSpinBox")) return 0.0;
        PonerEncima(w, encima);
        const double c = borde(w);
        PonerEncima(w, false);
        return c;
      };
      Menor<QLineEdit>(encima ? "borde de casilla bajo el raton" : "borde de casilla", kBorde, medir);
      Menor<QComboBox>(encima ? "borde de lista bajo el raton" : "borde de lista", kBorde, medir);
    }
    Menor<QComboBox>("texto de lista", kTexto, [this](QComboBox* w) {
      return w->isEnabled() && !w->currentText().isEmpty()
                 ? prueba::ContrasteDeTexto(Foto(w, Dentro(w).adjusted(0, 0, -24, 0)))
                 : 0.0;
    });
    Menor<QLineEdit>("texto de casilla", kTexto, [this](QLineEdit* w) {
      return w->isEnabled() && !(w->text() + w->placeholderText()).trimmed().isEmpty()
                 ? prueba::ContrasteDeTexto(Foto(w, Dentro(w)))
                 : 0.0;
    });
  }
  auto* ruta = Caja("txtRuta");
  ruta->setText(QStringLiteral("archivo"));
  ruta->setFocus();
  ruta->selectAll();
  Anotar("texto elegido en una casilla",
         prueba::ContrasteDeTexto(Foto(ruta, QRect(6, 5, 40, ruta->height() - 10))), kTexto);
}

TEST_P(ContrasteDeLaVentana, BoxesAndTheirMarks) {
  Abrir("cbConfigurar_0");
  for (const bool puesta : {false, true})
    for (const bool encima : {false, true})
      Menor<QAbstractButton>(
          (std::string(puesta ? "tilde puesto" : "tilde sin poner") + (encima ? " bajo el raton" : ""))
              .c_str(),
          kBorde, [&](QAbstractButton* w) {
            if (!w->isEnabled() || (!w->inherits("QCheckBox") && !w->inherits("QRadioButton"))) return 0.0;
            const QSignalBlocker callado(w);
            const bool antes = w->isChecked();
            w->setAutoExclusive(false);
            w->setChecked(puesta);
            PonerEncima(w, encima);
            const QImage foto = Foto(w, QRect(0, 0, 18, w->height()));
            PonerEncima(w, false);
            w->setChecked(antes);
            w->setAutoExclusive(w->inherits("QRadioButton"));
            // What stands out of the ground around it, and of a box its mark out of its fill.
            const QColor alrededor = foto.pixelColor(17, 0);
            double c = 1;
            for (int x = 0; x < 9; ++x)
              c = std::max(c, prueba::Contraste(foto.pixelColor(x, foto.height() / 2), alrededor));
            if (!puesta || !w->inherits("QCheckBox")) return c;
            const QColor relleno = foto.pixelColor(8, foto.height() / 2 - 6);
            double tilde = 1;
            for (int y = foto.height() / 2 - 5; y < foto.height() / 2 + 5; ++y)
              for (int x = 3; x < 14; ++x)
                tilde = std::max(tilde, prueba::Contraste(foto.pixelColor(x, y), relleno));
            return std::min(c, tilde);
          });
  for (const bool vivo : {true, false})
    Menor<QAbstractButton>(vivo ? "texto de tilde" : "texto de tilde apagado", vivo ? kTexto : kApagado,
                           [&](QAbstractButton* w) {
                             if (!w->inherits("QCheckBox") && !w->inherits("QRadioButton")) return 0.0;
                             const bool antes = w->isEnabled();
                             w->setEnabled(vivo);
                             const double c =
                                 prueba::ContrasteDeTexto(Foto(w, w->rect().adjusted(24, 0, 0, 0)));
                             w->setEnabled(antes);
                             return c;
                           });
}

TEST_P(ContrasteDeLaVentana, RowsOfTheGrid) {
  Cargar("7008;HC;8\r\n7008;HE;8\r\n7008;HN;8\r\n7008;HF;8\r\n7008;VI;8\r\n7008;PR;8\r\n7008;zz;8");
  QTableView* g = Grilla("GridAImportar");
  const auto fila = [&](int i) {
    return Foto(g->viewport(), g->visualRect(g->model()->index(i, 0)).adjusted(2, 3, -2, -3));
  };
  double menor = 22;
  for (int i = 0; i < g->model()->rowCount(); ++i) menor = std::min(menor, prueba::ContrasteDeTexto(fila(i)));
  Anotar("fila de la grilla", menor, kTexto);
  g->setFocus();
  g->selectRow(1);
  g->setCurrentIndex(g->model()->index(0, 0));
  g->selectRow(1);
  Anotar("fila elegida", prueba::ContrasteDeTexto(fila(1)), kTexto);
  const QWidget* cabecera = Hallar<QTableView>("GridAImportar")->horizontalHeader();
  Anotar("titulo de columna",
         prueba::ContrasteDeTexto(Foto(cabecera, QRect(2, 4, 40, cabecera->height() - 8))), kTexto);
}

// The ring against what it stands on, for each kind of control.
TEST_P(ContrasteDeLaVentana, Focus) {
  for (const char* panel : {"cbConfigurar_0", "cbConfigurar_1"}) {
    Abrir(panel);
    double menor = 22;
    std::string cual;
    for (auto* w : ventana_->findChildren<QWidget*>()) {
      if (!w->isVisible() || !w->isEnabled() || w->window() != ventana_.get() || w->focusProxy() != nullptr ||
          (w->focusPolicy() & Qt::TabFocus) == 0 || w->visibleRegion().isEmpty())
        continue;
      ventana_->setFocus();
      const QImage sin = Foto(w);
      w->setFocus(Qt::TabFocusReason);
      const QImage con = Foto(w);
      // Of a ring as long as twice the shorter side.
      const double c = prueba::ContrasteDelCambio(sin, con, 2 * std::min(w->width(), w->height()));
      if (c >= menor) continue;
      menor = c;
      cual = gui::A(w->objectName());
    }
    Anotar(("foco (" + cual + ")").c_str(), menor, kBorde);
  }
}

INSTANTIATE_TEST_SUITE_P(Temas, ContrasteDeLaVentana, ::testing::Bool(),
                         [](const auto& tema) { return tema.param ? "Oscuro" : "Claro"; });

}  // namespace
