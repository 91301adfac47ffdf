#include <gtest/gtest.h>

#include <QTimer>
#include <fstream>

#include "base/standard_streams.h"
#include "gui/aplicacion.h"
#include "support/temp_folder.h"

namespace {

// A window that closes ends the application, and after that no box stays open: each test has a run of its
// own.
class NewRun : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override {
    QTimer::singleShot(0, [] { QCoreApplication::exit(0); });
    QCoreApplication::exec();
  }
};

// The platform without a screen has a small one: this is that of an office.
void UseScreen(const std::string& config) {
  std::ofstream(config) << R"({"screens": [{"name": "office", "x": 0, "y": 0, "width": 1920, "height": 1080,
    "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})";
  qputenv("QT_QPA_PLATFORM", QByteArray::fromStdString("offscreen:configfile=" + config));
}

}  // namespace

int main(int argc, char** argv) {
  base::OpenStandardStreams();
  const support::TempFolder settings;
  UseScreen(settings.Path("screen.json"));
  // What a desktop keeps of a program is nobody's here.
  qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(settings.Folder()));
  testing::InitGoogleTest(&argc, argv);
  gui::Aplicacion aplicacion(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  gui::Aplicacion::Vestir(gui::Tema::Claro());
  testing::UnitTest::GetInstance()->listeners().Append(new NewRun);  // which owns it
  return RUN_ALL_TESTS();
}
