#include "gui/selector_de_mes.h"

#include <QFrame>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMouseEvent>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QWheelEvent>

#include "gui/estilo.h"
#include "gui/piezas.h"

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
  hoja_ = new QFrame(this, Qt::Popup);
  hoja_->setObjectName(objectName() + QStringLiteral("_hoja"));
  hoja_->setAttribute(Qt::WA_DeleteOnClose);
  hoja_->setFrameShape(QFrame::StyledPanel);
  Llenar(hoja_, date().year());
  hoja_->adjustSize();
  hoja_->move(mapToGlobal(QPoint(0, height() + 2)));
  hoja_->show();
}

void SelectorDeMes::Llenar(QFrame* hoja, int anio) {
  auto* plano = new QGridLayout(hoja);
  plano->setContentsMargins(10, 10, 10, 10);
  plano->setSpacing(5);
  auto* titulo = new QLabel(QString::number(anio), hoja);
  titulo->setAlignment(Qt::AlignCenter);
  plano->addWidget(titulo, 0, 1, 1, 2);
  const auto al_anio = [this, hoja, titulo](int pasos) {
    const int otro = titulo->text().toInt() + pasos;
    if (otro < minimumDate().year() || otro > maximumDate().year()) return;
    titulo->setText(QString::number(otro));
    for (auto* boton : hoja->findChildren<QPushButton*>()) {
      const QVariant mes = boton->property("mes");
      if (mes.isValid()) boton->setChecked(otro == date().year() && mes.toInt() == date().month());
    }
  };
  auto* antes = CrearBoton(QStringLiteral("anio_anterior"), QStringLiteral("‹"), hoja);
  auto* despues = CrearBoton(QStringLiteral("anio_siguiente"), QStringLiteral("›"), hoja);
  antes->setToolTip(QStringLiteral("Año anterior"));
  despues->setToolTip(QStringLiteral("Año siguiente"));
  plano->addWidget(antes, 0, 0);
  plano->addWidget(despues, 0, 3);
  QObject::connect(antes, &QPushButton::clicked, hoja, [al_anio] { al_anio(-1); });
  QObject::connect(despues, &QPushButton::clicked, hoja, [al_anio] { al_anio(1); });
  for (int mes = 1; mes <= 12; ++mes) {
    auto* boton = CrearBoton(QStringLiteral("mes_%1").arg(mes), Espanol().standaloneMonthName(mes), hoja);
    boton->setProperty("mes", mes);
    boton->setCheckable(true);
    boton->setChecked(anio == date().year() && mes == date().month());
    plano->addWidget(boton, 1 + (mes - 1) / 4, (mes - 1) % 4);
    QObject::connect(boton, &QPushButton::clicked, hoja, [this, hoja, titulo, mes] {
      const QDate elegido(titulo->text().toInt(), mes, 1);
      hoja->close();
      setDate(elegido);
    });
    if (boton->isChecked()) boton->setFocus();
  }
}

}  // namespace gui
