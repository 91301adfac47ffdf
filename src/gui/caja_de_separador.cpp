#include "gui/caja_de_separador.h"

#include <QPainter>

namespace gui {

CajaDeSeparador::CajaDeSeparador(const QString& nombre, QWidget* padre) : QLineEdit(padre) {
  setObjectName(nombre);
  setAcceptDrops(false);
  setAlignment(Qt::AlignHCenter);
  setFixedWidth(fontMetrics().horizontalAdvance(Visible(QStringLiteral("\t"))) + 24);
}

QString CajaDeSeparador::Visible(const QString& separador) {
  if (separador == QLatin1String("\t")) return QStringLiteral("tabulador");
  if (separador == QLatin1String(" ")) return QStringLiteral("espacio");
  QString visible = separador;
  visible.replace(QLatin1Char('\t'), QChar(0x2192));
  return visible.replace(QLatin1Char(' '), QChar(0x2423));
}

void CajaDeSeparador::paintEvent(QPaintEvent* evento) {
  QLineEdit::paintEvent(evento);
  if (!text().contains(QLatin1Char('\t')) && !text().contains(QLatin1Char(' '))) return;
  constexpr int kBorde = 3;
  const QRect dentro = rect().adjusted(kBorde, kBorde, -kBorde, -kBorde);
  const bool elegido = hasSelectedText() && hasFocus();
  QPainter p(this);
  p.fillRect(dentro, palette().color(elegido       ? QPalette::Highlight
                                     : isEnabled() ? QPalette::Base
                                                   : QPalette::Window));
  p.setPen(palette().color(elegido ? QPalette::HighlightedText : QPalette::Text));
  p.drawText(dentro, Qt::AlignCenter, Visible(text()));
}

}  // namespace gui
