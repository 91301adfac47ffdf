// The progress bar's state.
#pragma once

#include <functional>
#include <string>

#include "ports/progress.h"

namespace app {

class Barra final : public ports::Progress {
 public:
  explicit Barra(ports::EventPump* eventos = nullptr) : eventos_(eventos) {}

  void ActuBarra(float paso, bool sin_refresco = false) override;
  void DoEvents() override;
  bool IsCancelled() const override { return cancelado_; }

  void Stage(const std::string& texto) override;

  void Cancelar(bool si) { cancelado_ = si; }
  float Porcentaje() const { return porcentaje_; }
  float Paso() const { return paso_; }
  bool Visible() const { return visible_; }
  const std::string& Etapa() const { return etapa_; }
  // Called when what the bar shows has changed by a thousandth, or its visibility or the stage did.
  std::function<void()> al_pintar;

  // The three colours of its gradient, left to right, as 0xBBGGRR.
  static constexpr const char* kColores = "12958644*7102035*2039583";

 private:
  ports::EventPump* eventos_;
  float porcentaje_ = 0, paso_ = 0;
  std::string etapa_;
  int milesimas_ = -1;  // as last painted
  bool visible_ = false, cancelado_ = false;
};

}  // namespace app
