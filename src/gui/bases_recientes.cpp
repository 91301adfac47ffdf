#include "gui/bases_recientes.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

namespace gui {
namespace {

constexpr const char* kClave = "bases";

}  // namespace

void BasesRecientes::Guardar(QSettings* ajustes) {
  ajustes_ = ajustes;
  if (ajustes_ != nullptr) lista_ = ajustes_->value(QLatin1String(kClave)).toStringList().mid(0, kMaximo);
}

void BasesRecientes::Anotar(const QString& referencia) {
  const QString ruta = QDir::toNativeSeparators(QFileInfo(referencia).absoluteFilePath());
  lista_.removeAll(ruta);
  lista_.prepend(ruta);
  lista_ = lista_.mid(0, kMaximo);
  if (ajustes_ != nullptr) ajustes_->setValue(QLatin1String(kClave), lista_);
}

}  // namespace gui
