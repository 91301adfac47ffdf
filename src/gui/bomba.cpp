#include "gui/bomba.h"

#include <QCoreApplication>

namespace gui {

bool Bomba::EsTiempo() {
  constexpr qint64 kMilisegundos = 16;
  return !desde_.isValid() || desde_.elapsed() >= kMilisegundos;
}

void Bomba::DoEvents() {
  if (!EsTiempo()) return;
  QCoreApplication::processEvents();
  desde_.start();
}

void Bomba::Vaciar() { QCoreApplication::processEvents(); }

}  // namespace gui
