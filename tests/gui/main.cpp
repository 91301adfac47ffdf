#include <gtest/gtest.h>

#include <QTimer>

#include "base/standard_streams.h"
#include "gui/aplicacion.h"

namespace {

// A window that closes ends the application, and after that no box stays open: each test has a run of its
// own.
class NewRun : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override {
    QTimer::singleShot(0, [] { QCoreApplication::exit(0); });
    QCoreApplication::exec();
  }
};

}  // namespace

int main(int argc, char** argv) {
  base::OpenStandardStreams();
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  gui::Aplicacion aplicacion(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  gui::Aplicacion::Vestir(gui::Tema::Claro());
  testing::UnitTest::GetInstance()->listeners().Append(new NewRun);  // which owns it
  return RUN_ALL_TESTS();
}
