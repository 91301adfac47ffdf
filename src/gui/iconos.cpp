#include "gui/iconos.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <cmath>
#include <initializer_list>
#include <numbers>

namespace gui {
namespace {

void Linea(QPainterPath& t, std::initializer_list<QPointF> puntos) {
  bool primero = true;
  for (const QPointF& punto : puntos) {
    if (primero)
      t.moveTo(punto);
    else
      t.lineTo(punto);
    primero = false;
  }
}

QPainterPath TrazoEngranaje() {
  QPainterPath t;
  constexpr int kDientes = 8;
  for (int i = 0; i < kDientes * 4; ++i) {
    // Four corners a tooth: two outside, two inside.
    const double radio = i % 4 < 2 ? 6.6 : 4.9;
    const double angulo = (i - 0.5) * 2 * std::numbers::pi / (kDientes * 4);
    const QPointF punto(8 + radio * std::cos(angulo), 8 + radio * std::sin(angulo));
    if (i == 0)
      t.moveTo(punto);
    else
      t.lineTo(punto);
  }
  t.closeSubpath();
  t.addEllipse(QPointF(8, 8), 2.2, 2.2);
  return t;
}

QPainterPath TrazoDe(Dibujo dibujo) {
  QPainterPath t;
  switch (dibujo) {
    case Dibujo::Carpeta:
      Linea(t, {{1.5, 12.5}, {1.5, 3.5}, {6, 3.5}, {7.5, 5.5}, {14.5, 5.5}, {14.5, 12.5}, {1.5, 12.5}});
      break;
    case Dibujo::Actualizar:
      t.arcMoveTo(QRectF(2.5, 2.5, 11, 11), 40);
      t.arcTo(QRectF(2.5, 2.5, 11, 11), 40, 290);
      Linea(t, {{13.6, 1.8}, {12.6, 5.2}, {9.2, 4.4}});
      break;
    case Dibujo::Engranaje:
      return TrazoEngranaje();
    case Dibujo::Relaciones:
      Linea(t, {{1.5, 5}, {13, 5}});
      Linea(t, {{10.2, 2.2}, {13.4, 5}, {10.2, 7.8}});
      Linea(t, {{14.5, 11}, {3, 11}});
      Linea(t, {{5.8, 8.2}, {2.6, 11}, {5.8, 13.8}});
      break;
    case Dibujo::Importar:
      Linea(t, {{8, 1.5}, {8, 9.5}});
      Linea(t, {{4.6, 6.4}, {8, 9.8}, {11.4, 6.4}});
      Linea(t, {{2, 10.5}, {2, 14}, {14, 14}, {14, 10.5}});
      break;
    case Dibujo::Salir:
      Linea(t, {{8, 2}, {2.5, 2}, {2.5, 14}, {8, 14}});
      Linea(t, {{6, 8}, {14, 8}});
      Linea(t, {{11, 5}, {14, 8}, {11, 11}});
      break;
    case Dibujo::Mas:
      Linea(t, {{8, 3}, {8, 13}});
      Linea(t, {{3, 8}, {13, 8}});
      break;
    case Dibujo::Menos:
      Linea(t, {{3, 8}, {13, 8}});
      break;
    case Dibujo::Cerrar:
      Linea(t, {{4, 4}, {12, 12}});
      Linea(t, {{12, 4}, {4, 12}});
      break;
  }
  return t;
}

QPixmap Pintado(QIconEngine& motor, const QSize& tamano, QIcon::Mode modo, QIcon::State estado) {
  QPixmap imagen(tamano);
  imagen.fill(Qt::transparent);
  QPainter p(&imagen);
  motor.paint(&p, QRect(QPoint(0, 0), tamano), modo, estado);
  return imagen;
}

class Motor final : public QIconEngine {
 public:
  Motor(Dibujo dibujo, const QColor& color, const QColor& apagado)
      : dibujo_(dibujo), color_(color), apagado_(apagado) {}

  void paint(QPainter* p, const QRect& r, QIcon::Mode modo, QIcon::State) override {
    p->save();
    p->setRenderHint(QPainter::Antialiasing);
    p->translate(r.topLeft());
    const double escala = r.height() / 16.0;
    p->scale(escala, escala);
    p->setPen(
        QPen(modo == QIcon::Disabled ? apagado_ : color_, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p->drawPath(TrazoDe(dibujo_));
    p->restore();
  }
  QPixmap pixmap(const QSize& tamano, QIcon::Mode modo, QIcon::State estado) override {
    return Pintado(*this, tamano, modo, estado);
  }
  QIconEngine* clone() const override { return new Motor(*this); }

 private:
  Dibujo dibujo_;
  QColor color_, apagado_;
};

class MotorDeAviso final : public QIconEngine {
 public:
  void paint(QPainter* p, const QRect& r, QIcon::Mode, QIcon::State) override {
    QPainterPath triangulo;
    Linea(triangulo, {{16, 3.5}, {29.5, 27.5}, {2.5, 27.5}, {16, 3.5}});
    p->save();
    p->setRenderHint(QPainter::Antialiasing);
    p->translate(r.topLeft());
    p->scale(r.width() / 32.0, r.height() / 32.0);
    const QColor ambar(0xF5B301), tinta(0x3A2A00);
    p->setPen(QPen(ambar, 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p->setBrush(ambar);
    p->drawPath(triangulo);
    p->setPen(QPen(tinta, 3.2, Qt::SolidLine, Qt::RoundCap));
    p->drawLine(QPointF(16, 11.5), QPointF(16, 19));
    p->drawPoint(QPointF(16, 24.3));
    p->restore();
  }
  QPixmap pixmap(const QSize& tamano, QIcon::Mode modo, QIcon::State estado) override {
    return Pintado(*this, tamano, modo, estado);
  }
  QIconEngine* clone() const override { return new MotorDeAviso(*this); }
};

}  // namespace

QIcon IconoDeAviso() { return QIcon(new MotorDeAviso); }

QIcon Icono(Dibujo dibujo, const QColor& color, const QColor& apagado) {
  return QIcon(new Motor(dibujo, color, apagado));
}

}  // namespace gui
