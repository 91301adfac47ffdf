#include <gtest/gtest.h>

#include "base/standard_streams.h"
#include "gui/aplicacion.h"

int main(int argc, char** argv) {
  base::OpenStandardStreams();
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  gui::Aplicacion aplicacion(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  gui::Aplicacion::Vestir(gui::Tema::Claro());
  return RUN_ALL_TESTS();
}
