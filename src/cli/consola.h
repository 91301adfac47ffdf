// The ports of a program without a window: messages go to a stream, nothing asks.
#pragma once

#include <ostream>
#include <string>

#include "base/text.h"
#include "ports/file_picker.h"
#include "ports/prompts.h"

namespace cli {

class Consola final : public ports::Prompts, public ports::FilePicker {
 public:
  explicit Consola(std::ostream& err) : err_(err) {}

  // Every message is printed: a night's log must not lack one. Lines of a message are joined with a blank.
  bool Mostrar(const ports::Aviso& aviso) override {
    err_ << base::Reemplazar(aviso.texto, base::kCrLf, " ") << '\n';
    return false;
  }
  bool Confirmar(const std::string&) override { return true; }
  std::string AbrirArchivo(const std::string&, const std::string&, const std::string&) override { return {}; }
  std::int32_t ElegirColor(std::int32_t inicial) override { return inicial; }

 private:
  std::ostream& err_;
};

}  // namespace cli
