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
  bool Show(const ports::Notice& aviso) override {
    err_ << base::Replace(aviso.text, base::kCrLf, " ") << '\n';
    return false;
  }
  bool Confirm(const std::string&) override { return true; }
  std::string PickFile(const std::string&, const std::string&, const std::string&) override { return {}; }
  std::int32_t PickColor(std::int32_t inicial) override { return inicial; }

 private:
  std::ostream& err_;
};

}  // namespace cli
