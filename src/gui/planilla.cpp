#include "gui/planilla.h"

#include <QRegularExpression>

namespace gui {

QString CeldaDePlanilla(QString texto) {
  static const QRegularExpression numero(QStringLiteral("^[+-]?[0-9]+(,[0-9]+)?$"));
  for (QChar& c : texto)
    if (c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r')) c = QLatin1Char(' ');
  const QString sin_blancos = texto.trimmed();
  if (sin_blancos.isEmpty()) return texto;
  if (QStringLiteral("=+-@").contains(sin_blancos.front()) && !numero.match(sin_blancos).hasMatch())
    return QLatin1Char('\'') + texto;
  if (texto.front() != QLatin1Char('"')) return texto;
  return QLatin1Char('"') + texto.replace(QLatin1Char('"'), QStringLiteral("\"\"")) + QLatin1Char('"');
}

QString ConComa(const QString& texto) {
  const qsizetype punto = texto.indexOf(QLatin1Char('.'));
  if (punto < 1 || punto + 1 == texto.size()) return texto;
  const qsizetype primera = texto.front() == QLatin1Char('-') ? 1 : 0;
  if (punto == primera) return texto;
  for (qsizetype i = primera; i < texto.size(); ++i)
    if (i != punto && (texto[i] < QLatin1Char('0') || texto[i] > QLatin1Char('9'))) return texto;
  QString con_coma = texto;
  con_coma[punto] = QLatin1Char(',');
  return con_coma;
}

}  // namespace gui
