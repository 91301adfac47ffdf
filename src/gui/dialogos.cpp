#include "gui/dialogos.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QColorDialog>
#include <QCoreApplication>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <algorithm>

#include "gui/texto.h"

namespace gui {
namespace {

// As wide as its longest line, up to a limit: the lines are parted where they are meant to.
void Ensanchar(QMessageBox& caja) {
  constexpr int kMaximo = 640;
  auto* etiqueta = caja.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
  if (etiqueta == nullptr) return;
  int ancho = 0;
  for (const QString& linea : caja.text().split(QLatin1Char('\n')))
    ancho = std::max(ancho, etiqueta->fontMetrics().horizontalAdvance(linea));
  etiqueta->setMinimumWidth(std::min(ancho + 8, kMaximo));
}

void Preparar(QMessageBox& caja, const std::string& texto) {
  caja.setIcon(QMessageBox::Warning);
  caja.setWindowTitle(QCoreApplication::applicationName());
  caja.setTextFormat(Qt::PlainText);
  caja.setText(De(texto).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
  Ensanchar(caja);
}

ports::Reply Mostrar(const ports::Notice& aviso, QWidget* padre, bool con_detener) {
  QMessageBox caja(padre);
  Preparar(caja, aviso.text);
  if (aviso.icon == ports::Icon::None) caja.setIcon(QMessageBox::NoIcon);
  caja.setStandardButtons(QMessageBox::Ok);
  caja.button(QMessageBox::Ok)->setText(QStringLiteral("Aceptar"));
  QPushButton* detener = nullptr;
  if (con_detener) {
    detener = caja.addButton(QStringLiteral("&Detener la carga"), QMessageBox::DestructiveRole);
    caja.setDefaultButton(QMessageBox::Ok);
    caja.setEscapeButton(QMessageBox::Ok);
  }
  QCheckBox* callar = nullptr;
  if (aviso.offers_silence) {
    callar = new QCheckBox(QStringLiteral("No mostrar los siguientes avisos de esta carga"), &caja);
    caja.setCheckBox(callar);
  }
  caja.exec();
  return {callar != nullptr && callar->isChecked(), detener != nullptr && caja.clickedButton() == detener};
}

// Under the question, with its own scroll bar when it is long: the buttons must stay on the screen.
void AgregarDetalle(QMessageBox& caja, const std::string& detalle) {
  auto* plano = qobject_cast<QGridLayout*>(caja.layout());
  if (plano == nullptr) return;
  constexpr int kAncho = 560, kAltoMaximo = 300;
  auto* texto = new QLabel(De(detalle).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
  texto->setObjectName(QStringLiteral("lblDetalle"));
  texto->setTextFormat(Qt::PlainText);
  texto->setTextInteractionFlags(Qt::TextSelectableByMouse);
  texto->setWordWrap(true);
  texto->setMargin(8);
  auto* lugar = new QScrollArea(&caja);
  lugar->setWidget(texto);
  lugar->setWidgetResizable(true);
  lugar->setFocusPolicy(Qt::NoFocus);
  lugar->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  lugar->setMinimumSize(kAncho, std::min(texto->heightForWidth(kAncho - 24) + 4, kAltoMaximo));
  // Beside the icon, where the box itself leaves a free row over its buttons.
  plano->addWidget(lugar, 1, plano->columnCount() - 1);
}

}  // namespace

bool Dialogos::Show(const ports::Notice& aviso) { return Mostrar(aviso, Padre(), false).silence; }

ports::Reply Dialogos::ShowStoppable(const ports::Notice& aviso) { return Mostrar(aviso, Padre(), true); }

bool Dialogos::Confirm(const std::string& texto) { return ConfirmWith(texto, {}); }

bool Dialogos::ConfirmWith(const std::string& texto, const std::string& detalle) {
  QMessageBox caja(Padre());
  Preparar(caja, texto);
  caja.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
  caja.button(QMessageBox::Yes)->setText(QStringLiteral("&Sí"));
  caja.button(QMessageBox::No)->setText(QStringLiteral("&No"));
  caja.setDefaultButton(QMessageBox::No);
  caja.setEscapeButton(QMessageBox::No);
  if (!detalle.empty()) AgregarDetalle(caja, detalle);
  return caja.exec() == QMessageBox::Yes;
}

QString Dialogos::FiltroDeQt(const QString& filtro) {
  const QString todos = QStringLiteral("Todos los archivos (*)");
  const QStringList partes = filtro.split(QLatin1Char('|'));
  if (partes.size() < 2) return todos;
  // Names are told apart by case on some systems; the filter is not meant to.
  QStringList formas;
  for (const QString& forma : partes[1].split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
    formas << forma;
    if (forma.toUpper() != forma) formas << forma.toUpper();
  }
  const QString nombre = partes[0].section(QStringLiteral(" ("), 0, 0);
  return QStringLiteral("%1 (%2);;%3").arg(nombre, formas.join(QLatin1Char(' ')), todos);
}

std::string Dialogos::PickFile(const std::string& titulo, const std::string& filtro,
                               const std::string& inicial) {
  return A(QFileDialog::getOpenFileName(Padre(), De(titulo), De(inicial), FiltroDeQt(De(filtro))));
}

std::int32_t Dialogos::PickColor(std::int32_t inicial) {
  const QColor elegido =
      QColorDialog::getColor(ColorDe(inicial), Padre(), QStringLiteral("Color de la relación"));
  return elegido.isValid() ? BgrDe(elegido) : inicial;
}

}  // namespace gui
