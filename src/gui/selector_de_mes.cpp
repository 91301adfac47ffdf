#include "gui/selector_de_mes.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QWheelEvent>

#include "gui/hoja_de_meses.h"

namespace gui {
namespace {

const QLocale& Espanol() {
  static const QLocale locale(QLocale::Spanish, QLocale::Uruguay);
  return locale;
}

}  // namespace

SelectorDeMes::SelectorDeMes(const QString& nombre, QWidget* padre) : QDateEdit(padre) {
  setObjectName(nombre);
  setLocale(Espanol());
  setDisplayFormat(QStringLiteral("MMMM yyyy"));
  setDateRange(QDate(1930, 1, 1), QDate(2129, 12, 31));
  setCalendarPopup(true);  // for its arrow: the sheet that opens is AbrirHoja's
  setKeyboardTracking(false);
  setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("septiembre 2026")) + 52);
  lineEdit()->setAcceptDrops(false);
}

void SelectorDeMes::stepBy(int pasos) {
  setDate(date().addMonths(currentSection() == QDateTimeEdit::YearSection ? pasos * 12 : pasos));
}

void SelectorDeMes::mousePressEvent(QMouseEvent* evento) {
  QStyleOptionComboBox o;
  o.initFrom(this);
  o.editable = true;
  const QRect flecha = style()->subControlRect(QStyle::CC_ComboBox, &o, QStyle::SC_ComboBoxArrow, this);
  if (evento->button() == Qt::LeftButton && flecha.contains(evento->position().toPoint()))
    AbrirHoja();
  else
    QDateEdit::mousePressEvent(evento);
}

void SelectorDeMes::keyPressEvent(QKeyEvent* evento) {
  const bool alt_abajo = evento->key() == Qt::Key_Down && evento->modifiers() == Qt::AltModifier;
  if (evento->key() == Qt::Key_F4 || alt_abajo)
    AbrirHoja();
  else
    QDateEdit::keyPressEvent(evento);
}

void SelectorDeMes::wheelEvent(QWheelEvent* evento) { evento->ignore(); }

void SelectorDeMes::AbrirHoja() {
  if (hoja_ != nullptr) hoja_->close();
  hoja_ = new HojaDeMeses(
      date(), {minimumDate(), maximumDate()}, [this](QDate dia) { setDate(dia); }, this);
  hoja_->setObjectName(objectName() + QStringLiteral("_hoja"));
  hoja_->adjustSize();
  hoja_->move(mapToGlobal(QPoint(0, height() + 2)));
  hoja_->show();
}

}  // namespace gui
