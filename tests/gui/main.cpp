#include <gtest/gtest.h>

#include "gui/aplicacion.h"

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  gui::Aplicacion aplicacion(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  gui::Aplicacion::Vestir(gui::Tema::Claro());
  return RUN_ALL_TESTS();
}
