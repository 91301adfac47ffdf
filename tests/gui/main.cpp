#include <gtest/gtest.h>

#include <QDir>

#include "gui/aplicacion.h"

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // What the offscreen platform lacks is no news.
  qputenv("XDG_RUNTIME_DIR", QDir::tempPath().toLocal8Bit());
  testing::InitGoogleTest(&argc, argv);
  gui::Aplicacion aplicacion(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  gui::Aplicacion::Vestir(gui::Tema::Claro());
  return RUN_ALL_TESTS();
}
