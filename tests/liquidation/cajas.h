// Boxes that are kept to be looked at, and questions that are always answered Yes.
#pragma once

#include <string>
#include <vector>

#include "ports/prompts.h"

namespace prueba {

class Cajas final : public ports::Prompts {
 public:
  bool Show(const ports::Notice& aviso) override {
    textos.push_back(aviso.text);
    ofrece_callar = aviso.offers_silence;
    return false;
  }
  bool Confirm(const std::string&) override { return true; }
  std::vector<std::string> textos;
  bool ofrece_callar = false;  // the last one
};

}  // namespace prueba
