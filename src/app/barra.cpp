#include "app/barra.h"

#include <algorithm>

namespace app {

void Barra::DoEvents() {
  if (eventos_ != nullptr) eventos_->DoEvents();
}

void Barra::Stage(const std::string& texto) {
  if (texto == etapa_) return;
  etapa_ = texto;
  if (al_pintar) al_pintar();
}

void Barra::ActuBarra(float paso, bool sin_refresco) {
  if (paso != -1.0F) {
    paso_ = paso;
    porcentaje_ = 0;
    milesimas_ = -1;
    visible_ = paso != 0.0F;
    if (!visible_) {
      if (al_pintar) al_pintar();
      return;
    }
  }
  porcentaje_ = std::min(100.0F, porcentaje_ + paso_);
  // Painting and the event queue are for eyes: a bar of 100,000 lines moves a thousand times, not 200,000.
  const int milesimas = static_cast<int>(porcentaje_ * 10.0F);
  if (milesimas == milesimas_) return;
  milesimas_ = milesimas;
  if (!sin_refresco) DoEvents();
  if (al_pintar) al_pintar();
  if (!sin_refresco) DoEvents();
}

}  // namespace app
