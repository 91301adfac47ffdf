// The band over the grid that says what the operator has to know as long as it lasts.
#pragma once

#include <QLabel>

#include "gui/tema.h"

namespace gui {

// Hidden without a text. At most three lines; the whole text is its tooltip.
class Cinta final : public QLabel {
 public:
  Cinta(const QString& nombre, const Tema& tema, QWidget* padre);
  // True when its height or visibility may have changed.
  bool Poner(const QString& texto);
  // The height that it needs in that width; 0 when it is hidden.
  int AltoPara(int ancho) const;

 protected:
  void paintEvent(QPaintEvent* evento) override;

 private:
  Tema tema_;
};

}  // namespace gui
