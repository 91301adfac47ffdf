#include "gui/bomba.h"

#include <QCoreApplication>
#include <QEventLoop>

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

void Bomba::SoloPintar() {
  if (!EsTiempo()) return;
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  desde_.start();
}

}  // namespace gui
