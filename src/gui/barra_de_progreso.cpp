#include "gui/barra_de_progreso.h"

#include <QLinearGradient>
#include <QPainter>

#include "app/barra.h"
#include "gui/texto.h"

namespace gui {

BarraDeProgreso::BarraDeProgreso(QWidget* padre) : QWidget(padre) {
  setObjectName(QStringLiteral("Barra"));
  const QStringList numeros = QString::fromLatin1(app::Barra::kColores).split(QLatin1Char('*'));
  for (qsizetype i = 0; i < 3; ++i) colores_[static_cast<std::size_t>(i)] = ColorDe(numeros.value(i).toInt());
}

void BarraDeProgreso::Poner(float porcentaje) {
  porcentaje_ = porcentaje;
  update();
}

void BarraDeProgreso::Reservar(int ancho) {
  reservado_ = ancho;
  update();
}

QRectF BarraDeProgreso::Lleno() const {
  const QRectF dentro = QRectF(rect()).adjusted(1, 1, -1 - reservado_, -1);
  return {dentro.topLeft(),
          QSizeF(dentro.width() * static_cast<double>(porcentaje_) / 100.0, dentro.height())};
}

void BarraDeProgreso::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.fillRect(rect(), QColor(0x8FA0B2));
  p.fillRect(rect().adjusted(1, 1, -1, -1), QColor(0xF3F6F9));
  const QRectF lleno = Lleno();
  QLinearGradient gradiente(lleno.topLeft(), lleno.topRight());
  gradiente.setColorAt(0, colores_[0]);
  gradiente.setColorAt(0.5, colores_[1]);
  gradiente.setColorAt(1, colores_[2]);
  p.fillRect(lleno, gradiente);
}

}  // namespace gui
