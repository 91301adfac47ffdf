// The files of demo/ as the build put them into the program (cmake/embed.cmake).
#pragma once

#include <span>
#include <string_view>

namespace demo {

struct EmbeddedFile {
  std::string_view name;
  std::span<const std::string_view> lines;  // each with its "\n"; the last may be empty
};

std::span<const EmbeddedFile> EmbeddedFiles();

}  // namespace demo
