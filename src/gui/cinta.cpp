#include "gui/cinta.h"

#include <QPainter>
#include <algorithm>

namespace gui {
namespace {

constexpr int kMargen = 8, kFranja = 4;  // around the text; the coloured edge at the left
constexpr int kLineas = 3;
constexpr int kPartida = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap;

}  // namespace

Cinta::Cinta(const QString& nombre, const Tema& tema, QWidget* padre) : QLabel(padre), tema_(tema) {
  setObjectName(nombre);
  setTextFormat(Qt::PlainText);
  hide();
}

bool Cinta::Poner(const QString& nuevo) {
  if (nuevo == text()) return false;
  setText(nuevo);
  setToolTip(nuevo);
  setVisible(!nuevo.isEmpty());
  return true;
}

int Cinta::AltoPara(int ancho) const {
  if (text().isEmpty()) return 0;
  const QRect lugar(0, 0, ancho - 2 * kMargen - kFranja, 10000);
  const int alto = fontMetrics().boundingRect(lugar, kPartida, text()).height();
  return std::min(alto, kLineas * fontMetrics().lineSpacing()) + 2 * kMargen;
}

void Cinta::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.fillRect(rect(), tema_.aviso);
  p.fillRect(QRect(0, 0, kFranja, height()), tema_.aviso_borde);
  p.setPen(tema_.aviso_texto);
  p.drawText(rect().adjusted(kFranja + kMargen, kMargen, -kMargen, -kMargen), kPartida, text());
}

}  // namespace gui
