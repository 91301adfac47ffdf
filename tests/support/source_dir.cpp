#include "support/source_dir.h"

namespace support {

std::string SourceDir() { return IDM_SOURCE_DIR; }

std::string SharedDir() { return SourceDir() + "/../shared"; }

}  // namespace support
