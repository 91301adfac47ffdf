#include "support/source_dir.h"

#include <filesystem>

namespace support {

std::string SourceDir() { return IDM_SOURCE_DIR; }

std::string SharedDir() {
  const std::string folder = IDM_CORPUS;
  return !folder.empty() && std::filesystem::is_directory(folder) ? folder : std::string();
}

}  // namespace support
