#include "gui/tamano_de_ventana.h"

#include <QSettings>
#include <QWidget>

namespace gui {
namespace {

constexpr const char* kClave = "ventana/geometria";
constexpr QSize kMarco(16, 48);  // as desktops draw it, at most

}  // namespace

QSize TamanoMinimo(const QSize& disponible) { return kTamanoMinimo.boundedTo(disponible); }

QSize TamanoInicial(const QSize& disponible) {
  return kTamanoNormal.boundedTo((disponible - kMarco).expandedTo(QSize(1, 1)));
}

bool RecordarTamano(QWidget& ventana, const QSettings& ajustes) {
  return ventana.restoreGeometry(ajustes.value(QLatin1String(kClave)).toByteArray());
}

void GuardarTamano(const QWidget& ventana, QSettings& ajustes) {
  ajustes.setValue(QLatin1String(kClave), ventana.saveGeometry());
}

}  // namespace gui
