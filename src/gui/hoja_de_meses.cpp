#include "gui/hoja_de_meses.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <utility>

#include "gui/piezas.h"

namespace gui {
namespace {

constexpr int kPorFila = 4;

}  // namespace

HojaDeMeses::HojaDeMeses(const QDate& elegido, const Limites& limites, std::function<void(QDate)> al_elegir,
                         QWidget* padre)
    : QFrame(padre, Qt::Popup), elegido_(elegido), limites_(limites), al_elegir_(std::move(al_elegir)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setFrameShape(QFrame::StyledPanel);
  auto* plano = new QGridLayout(this);
  plano->setContentsMargins(10, 10, 10, 10);
  plano->setSpacing(5);
  CrearTitulo();
  CrearMeses();
  IrAlAnio(elegido.year());
  meses_[static_cast<std::size_t>(elegido.month() - 1)]->setFocus(Qt::PopupFocusReason);
}

void HojaDeMeses::CrearTitulo() {
  auto* plano = static_cast<QGridLayout*>(layout());
  titulo_ = new QLabel(this);
  titulo_->setAlignment(Qt::AlignCenter);
  plano->addWidget(titulo_, 0, 1, 1, kPorFila - 2);
  const std::pair<const char*, const char*> botones[] = {{"anio_anterior", "‹"}, {"anio_siguiente", "›"}};
  const char* ayudas[] = {"Año anterior (Re Pág)", "Año siguiente (Av Pág)"};
  for (const int i : {0, 1}) {
    auto* boton = CrearBoton(QLatin1String(botones[i].first), QString::fromUtf8(botones[i].second), this);
    boton->setToolTip(QString::fromUtf8(ayudas[i]));
    boton->setFocusPolicy(Qt::NoFocus);
    plano->addWidget(boton, 0, i == 0 ? 0 : kPorFila - 1);
    QObject::connect(boton, &QPushButton::clicked, this, [this, i] { IrAlAnio(anio_ + (i == 0 ? -1 : 1)); });
  }
}

void HojaDeMeses::CrearMeses() {
  auto* plano = static_cast<QGridLayout*>(layout());
  const QLocale locale(QLocale::Spanish, QLocale::Uruguay);
  for (int mes = 1; mes <= 12; ++mes) {
    auto* boton = CrearBoton(QStringLiteral("mes_%1").arg(mes), locale.standaloneMonthName(mes), this);
    boton->setCheckable(true);
    boton->installEventFilter(this);
    plano->addWidget(boton, 1 + (mes - 1) / kPorFila, (mes - 1) % kPorFila);
    QObject::connect(boton, &QPushButton::clicked, this, [this, mes] { Elegir(mes); });
    meses_[static_cast<std::size_t>(mes - 1)] = boton;
  }
}

void HojaDeMeses::IrAlAnio(int anio) {
  if (anio < limites_.primero.year() || anio > limites_.ultimo.year()) return;
  anio_ = anio;
  titulo_->setText(QString::number(anio));
  for (std::size_t i = 0; i < meses_.size(); ++i)
    meses_[i]->setChecked(anio == elegido_.year() && static_cast<int>(i) + 1 == elegido_.month());
}

void HojaDeMeses::Mover(int meses) {
  std::size_t actual = 0;
  while (actual + 1 < meses_.size() && !meses_[actual]->hasFocus()) ++actual;
  const QDate otro = QDate(anio_, static_cast<int>(actual) + 1, 1).addMonths(meses);
  if (otro < limites_.primero || otro > limites_.ultimo) return;
  IrAlAnio(otro.year());
  meses_[static_cast<std::size_t>(otro.month() - 1)]->setFocus(Qt::OtherFocusReason);
}

void HojaDeMeses::Elegir(int mes) {
  const QDate dia(anio_, mes, 1);
  const auto al_elegir = al_elegir_;
  close();  // a click has turned the button's mark: nothing of it is seen any more
  al_elegir(dia);
}

bool HojaDeMeses::eventFilter(QObject* objeto, QEvent* evento) {
  if (evento->type() != QEvent::KeyPress) return QFrame::eventFilter(objeto, evento);
  switch (static_cast<QKeyEvent*>(evento)->key()) {
    case Qt::Key_Left:
      Mover(-1);
      return true;
    case Qt::Key_Right:
      Mover(1);
      return true;
    case Qt::Key_Up:
      Mover(-kPorFila);
      return true;
    case Qt::Key_Down:
      Mover(kPorFila);
      return true;
    case Qt::Key_PageUp:
      Mover(-12);
      return true;
    case Qt::Key_PageDown:
      Mover(12);
      return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      for (std::size_t i = 0; i < meses_.size(); ++i)
        if (meses_[i] == objeto) Elegir(static_cast<int>(i) + 1);
      return true;
    default:
      return QFrame::eventFilter(objeto, evento);
  }
}

}  // namespace gui
