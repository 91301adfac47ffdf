// A count on the dark column that can be clicked: what it is of, and how many.
#pragma once

#include <QAbstractButton>

#include "gui/tema.h"

class QLabel;

namespace gui {

// Checked while the grid shows only those. It rests while there is nothing to show.
class FilaDeCuenta final : public QAbstractButton {
 public:
  FilaDeCuenta(const QString& nombre, const QString& texto, const Tema& tema, QWidget* padre);
  QLabel* Cuenta() const { return cuenta_; }
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* evento) override;
  void resizeEvent(QResizeEvent* evento) override;
  void enterEvent(QEnterEvent* evento) override;
  void leaveEvent(QEvent* evento) override;

 private:
  QLabel* cuenta_;
  Tema tema_;
};

}  // namespace gui
