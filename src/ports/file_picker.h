// The open-file and colour dialogs.
#pragma once

#include <cstdint>
#include <string>

namespace ports {

class FilePicker {
 public:
  virtual ~FilePicker() = default;
  // The chosen path, or "" when cancelled. `filter` in the form "Bases de Access (*.mdb)|*.mdb", may be
  // empty.
  virtual std::string PickFile(const std::string& title, const std::string& filter,
                               const std::string& initial) = 0;
  // 0xBBGGRR; cancelling returns `initial`.
  virtual std::int32_t PickColor(std::int32_t initial) = 0;
};

}  // namespace ports
