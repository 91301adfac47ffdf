#include "gui/fin_de_sesion.h"

#include <QObject>
#include <QSocketNotifier>

#ifdef __linux__
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>
#endif

namespace gui {

#ifdef __linux__

FinDeSesion::FinDeSesion() {
  sigset_t senales;
  sigemptyset(&senales);
  sigaddset(&senales, SIGTERM);
  sigaddset(&senales, SIGHUP);
  if (sigprocmask(SIG_BLOCK, &senales, nullptr) != 0) return;
  fd_ = signalfd(-1, &senales, SFD_CLOEXEC | SFD_NONBLOCK);
  if (fd_ < 0) sigprocmask(SIG_UNBLOCK, &senales, nullptr);  // they end the process, as ever
}

FinDeSesion::~FinDeSesion() {
  aviso_.reset();
  if (fd_ >= 0) close(fd_);
}

void FinDeSesion::Atender(const std::function<void()>& pedido) {
  if (fd_ < 0) return;
  aviso_ = std::make_unique<QSocketNotifier>(fd_, QSocketNotifier::Read);
  QObject::connect(aviso_.get(), &QSocketNotifier::activated, aviso_.get(), [this, pedido] {
    signalfd_siginfo senal;
    while (read(fd_, &senal, sizeof senal) == static_cast<ssize_t>(sizeof senal)) continue;
    pedido();
  });
}

#else

FinDeSesion::FinDeSesion() = default;
FinDeSesion::~FinDeSesion() = default;
void FinDeSesion::Atender(const std::function<void()>&) {}

#endif

}  // namespace gui
