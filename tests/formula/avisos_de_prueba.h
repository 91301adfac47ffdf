// Boxes as lines of text, and an operator who asks for silence at one of them.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "base/text.h"
#include "ports/prompts.h"

namespace prueba {

class AvisosDePrueba final : public ports::Prompts {
 public:
  std::vector<std::string> cajas;  // "[!] text" with the exclamation icon, "[ ] text" without; CR LF as " / "
  std::size_t callar = 0;          // the box, from 1, at which the operator asks to see no more; 0: none

  bool Show(const ports::Notice& aviso) override {
    std::string linea = aviso.icon == ports::Icon::Exclamation ? "[!] " : "[ ] ";
    linea += base::Replace(aviso.text, base::kCrLf, " / ");
    if (aviso.offers_silence) linea += " (ofrece callar)";
    cajas.push_back(linea);
    return cajas.size() == callar;
  }
  bool Confirm(const std::string& texto) override { throw std::logic_error("unexpected question: " + texto); }
};

}  // namespace prueba
