#include "gui/fila_de_cuenta.h"

#include <QLabel>
#include <QPainter>

namespace gui {
namespace {

constexpr int kMargen = 6;

}  // namespace

FilaDeCuenta::FilaDeCuenta(const QString& nombre, const QString& texto, const Tema& tema, QWidget* padre)
    : QAbstractButton(padre), cuenta_(new QLabel(QStringLiteral("–"), this)), tema_(tema) {
  setObjectName(QStringLiteral("filaCuenta_") + nombre);
  setText(texto);
  setAccessibleName(texto);
  setFocusPolicy(Qt::StrongFocus);
  cuenta_->setObjectName(QStringLiteral("lblCuenta_") + nombre);
  cuenta_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  cuenta_->setForegroundRole(QPalette::WindowText);  // a button hands on its own
  cuenta_->setAttribute(Qt::WA_TransparentForMouseEvents);
  QFont negrita = font();
  negrita.setBold(true);
  cuenta_->setFont(negrita);
}

QSize FilaDeCuenta::sizeHint() const {
  return {fontMetrics().horizontalAdvance(text()) + 60, fontMetrics().height() + 6};
}

void FilaDeCuenta::resizeEvent(QResizeEvent*) {
  cuenta_->setGeometry(rect().adjusted(kMargen, 0, -kMargen, 0));
}

void FilaDeCuenta::enterEvent(QEnterEvent*) { update(); }
void FilaDeCuenta::leaveEvent(QEvent*) { update(); }

void FilaDeCuenta::paintEvent(QPaintEvent*) {
  QPainter p(this);
  if (isChecked() || isDown())
    p.fillRect(rect(), tema_.acento_apretado);
  else if (isEnabled() && underMouse())
    p.fillRect(rect(), tema_.columna_encima);
  p.setPen(isChecked() || (isEnabled() && underMouse()) ? tema_.columna_texto : tema_.columna_tenue);
  p.drawText(rect().adjusted(kMargen, 0, -kMargen, 0), Qt::AlignVCenter | Qt::AlignLeft, text());
  if (!hasFocus()) return;
  p.setPen(QPen(tema_.columna_texto, 2));
  p.drawRect(rect().adjusted(1, 1, -1, -1));
}

}  // namespace gui
