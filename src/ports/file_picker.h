// The open-file and colour dialogs.
#pragma once

#include <cstdint>
#include <string>

namespace ports {

class FilePicker {
 public:
  virtual ~FilePicker() = default;
  // The chosen path, or "" when cancelled. `filtro` in the form "Bases de Access (*.mdb)|*.mdb", may be
  // empty.
  virtual std::string AbrirArchivo(const std::string& titulo, const std::string& filtro,
                                   const std::string& inicial) = 0;
  // 0xBBGGRR; cancelling returns `inicial`.
  virtual std::int32_t ElegirColor(std::int32_t inicial) = 0;
};

}  // namespace ports
