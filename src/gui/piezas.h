// The small widgets that the window is made of: labels with an access key, combo boxes that the wheel does
// not turn, the panel that rises over the grid.
#pragma once

#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <QString>

#include "gui/tema.h"

class QAbstractButton;
class QLineEdit;
class QPushButton;
class QScrollArea;

namespace gui {

// A caption beside its control (its buddy). The access key is underlined without an "&" in the text.
class Etiqueta final : public QLabel {
 public:
  Etiqueta(const QString& nombre, const QString& texto, QWidget* padre);
  // Makes `control` the buddy, and Alt + the letter its access key; no letter, no key.
  void Acompanar(QWidget* control, const QString& tecla = {});

 protected:
  void paintEvent(QPaintEvent* evento) override;

 private:
  QString tecla_;
};

// A long text without blanks (a path), broken anywhere over at most `lineas` lines; the whole is its tooltip.
class EtiquetaRuta final : public QLabel {
 public:
  EtiquetaRuta(const QString& nombre, int lineas, QWidget* padre);
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int ancho) const override;
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* evento) override;

 private:
  int lineas_;
};

// The wheel scrolls what lies behind and never changes a choice: a liquidation type turned by accident would
// be somebody's wage.
class Combo final : public QComboBox {
 public:
  Combo(const QString& nombre, QWidget* padre);
  bool enter_es_tab = false;

 protected:
  void wheelEvent(QWheelEvent* evento) override;
  void keyPressEvent(QKeyEvent* evento) override;
};

// A panel with its heading, its border and a button that closes it.
class Panel final : public QFrame {
 public:
  Panel(const QString& nombre, const QString& titulo, const Tema& tema, QWidget* padre);
  QPushButton* Cerrar() const { return cerrar_; }
  // All that is under the heading, scrolled where the panel is smaller than it.
  void Contener(QWidget* contenido);
  static constexpr int kTitulo = 38;  // height of the heading
  static constexpr int kMargen = 16;

 protected:
  void paintEvent(QPaintEvent* evento) override;
  void resizeEvent(QResizeEvent* evento) override;

 private:
  QString titulo_;
  Tema tema_;
  QPushButton* cerrar_;
  QScrollArea* hoja_ = nullptr;
};

QPushButton* CrearBoton(const QString& nombre, const QString& texto, QWidget* padre);
QLineEdit* CrearCaja(const QString& nombre, QWidget* padre);
// Alt + the letter clicks the button; the letter is underlined in its caption.
void PonerTecla(QAbstractButton* boton, const QString& tecla);

}  // namespace gui
