// The Qt application: its look, its language, and what happens to a defect.
#pragma once

#include <QApplication>

#include "gui/tema.h"

namespace gui {

class Aplicacion final : public QApplication {
 public:
  Aplicacion(int& argc, char** argv);

  // The style and the palette of the theme, for the whole program.
  static void Vestir(const Tema& tema);
  // All arguments as one text, as the rules of the command line take it.
  static QString LineaDeComandos();
  // An exception that reached here is a defect: one box, and the end. What was not committed is not written.
  bool notify(QObject* objeto, QEvent* evento) override;
};

}  // namespace gui
