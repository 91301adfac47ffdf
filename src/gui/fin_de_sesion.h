// The system's request that the program end: a session that is closed, a machine that is turned off.
#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace gui {

// SIGTERM and SIGHUP become an event of the window instead of the end of the process. To be made before the
// application: its threads must hold the signals back too. Elsewhere than on Linux it does nothing: there the
// desktop asks through the application.
class FinDeSesion {
 public:
  FinDeSesion();
  ~FinDeSesion();
  FinDeSesion(const FinDeSesion&) = delete;
  FinDeSesion& operator=(const FinDeSesion&) = delete;

  // `pedido` runs in the event loop, for signals that came before too. Needs the application.
  void Atender(const std::function<void()>& pedido);

 private:
  int fd_ = -1;
  std::unique_ptr<QSocketNotifier> aviso_;
};

}  // namespace gui
