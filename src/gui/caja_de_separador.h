// The box of the field separator: what cannot be seen in it is named.
#pragma once

#include <QLineEdit>

namespace gui {

// Its text is the separator as it is, a tab included; a tab or a blank alone shows its name, and among other
// characters a sign.
class CajaDeSeparador final : public QLineEdit {
 public:
  CajaDeSeparador(const QString& nombre, QWidget* padre);
  static QString Visible(const QString& separador);

 protected:
  void paintEvent(QPaintEvent* evento) override;
};

}  // namespace gui
