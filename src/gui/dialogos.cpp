#include "gui/dialogos.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QColorDialog>
#include <QCoreApplication>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
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

}  // namespace

bool Dialogos::Show(const ports::Notice& aviso) {
  QMessageBox caja(Padre());
  Preparar(caja, aviso.text);
  if (aviso.icon == ports::Icon::None) caja.setIcon(QMessageBox::NoIcon);
  caja.setStandardButtons(QMessageBox::Ok);
  caja.button(QMessageBox::Ok)->setText(QStringLiteral("Aceptar"));
  QCheckBox* callar = nullptr;
  if (aviso.offers_silence) {
    callar = new QCheckBox(QStringLiteral("No mostrar los siguientes avisos de esta carga"), &caja);
    caja.setCheckBox(callar);
  }
  caja.exec();
  return callar != nullptr && callar->isChecked();
}

bool Dialogos::Confirm(const std::string& texto) {
  QMessageBox caja(Padre());
  Preparar(caja, texto);
  caja.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
  caja.button(QMessageBox::Yes)->setText(QStringLiteral("Sí"));
  caja.button(QMessageBox::No)->setText(QStringLiteral("No"));
  caja.setEscapeButton(QMessageBox::No);
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
