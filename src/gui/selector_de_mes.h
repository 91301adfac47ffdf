// The month picker: the month's name and its year, arrows that step a month, and a sheet of the twelve
// months.
#pragma once

#include <QDateEdit>
#include <QPointer>

#include "gui/hoja_de_meses.h"

namespace gui {

// Its date may be any day; who listens to dateChanged takes the first of its month.
class SelectorDeMes final : public QDateEdit {
 public:
  SelectorDeMes(const QString& nombre, QWidget* padre);
  void AbrirHoja();
  HojaDeMeses* Hoja() const { return hoja_; }  // null while it is not open

  // The month after and before, across the turn of the year, whatever section the cursor is in; a year when
  // it is in the year.
  void stepBy(int pasos) override;

 protected:
  void mousePressEvent(QMouseEvent* evento) override;
  void keyPressEvent(QKeyEvent* evento) override;
  void wheelEvent(QWheelEvent* evento) override;
  StepEnabled stepEnabled() const override { return StepUpEnabled | StepDownEnabled; }

 private:
  QPointer<HojaDeMeses> hoja_;
};

}  // namespace gui
