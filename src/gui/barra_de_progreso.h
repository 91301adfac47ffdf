// The progress bar as it is painted: the filled part in a gradient of three colours over a light track.
#pragma once

#include <QWidget>
#include <array>

namespace gui {

class BarraDeProgreso final : public QWidget {
 public:
  explicit BarraDeProgreso(QWidget* padre);
  void Poner(float porcentaje);
  // Leaves room for what stands on it at the right.
  void Reservar(int ancho);
  // The part inside the border that is filled.
  QRectF Lleno() const;

 protected:
  void paintEvent(QPaintEvent* evento) override;

 private:
  float porcentaje_ = 0;
  int reservado_ = 0;
  std::array<QColor, 3> colores_;
};

}  // namespace gui
