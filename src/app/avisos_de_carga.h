// The boxes of a load: each offers to stop it, while there are lines to come.
#pragma once

#include "app/barra.h"
#include "formula/evaluador/evaluator.h"
#include "ports/prompts.h"

namespace app {

// Stands in for the prompts of the load and of its evaluator, which gets its own back at the end.
class AvisosDeCarga final : public ports::Prompts {
 public:
  AvisosDeCarga(ports::Prompts& prompts, Barra& barra, formula::Evaluador& evaluador)
      : prompts_(prompts), barra_(barra), evaluador_(evaluador), anteriores_(evaluador.prompts) {
    evaluador.prompts = this;
  }
  ~AvisosDeCarga() override { evaluador_.prompts = anteriores_; }
  AvisosDeCarga(const AvisosDeCarga&) = delete;
  AvisosDeCarga& operator=(const AvisosDeCarga&) = delete;

  bool Show(const ports::Notice& aviso) override {
    if (barra_.IsCancelled()) return false;  // nobody waits for what is being given up
    if (!barra_.Visible()) return prompts_.Show(aviso);
    const ports::Reply respuesta = prompts_.ShowStoppable(aviso);
    if (respuesta.stop) barra_.Cancelar(true);
    return respuesta.silence;
  }
  bool Confirm(const std::string& texto) override { return prompts_.Confirm(texto); }

 private:
  ports::Prompts& prompts_;
  Barra& barra_;
  formula::Evaluador& evaluador_;
  ports::Prompts* anteriores_;
};

}  // namespace app
