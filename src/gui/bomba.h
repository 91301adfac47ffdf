// Lets the events of the window run while a long command works.
#pragma once

#include <QElapsedTimer>

#include "ports/progress.h"

namespace gui {

// The commands ask at every line; the queue is looked at some sixty times a second, which is often enough for
// eyes and hands and costs nothing.
class Bomba final : public ports::EventPump {
 public:
  void DoEvents() override;
  // All that waits, at once.
  static void Vaciar();

 private:
  bool EsTiempo();

  QElapsedTimer desde_;
};

}  // namespace gui
