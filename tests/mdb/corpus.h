// Further Access files, in the folder that IDM_CORPUS names. They add to what is tested on the samples
// (samples.h) and replace nothing of it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mdb/pages/page_file.h"

namespace mdb_test {

std::string CorpusFolder();              // empty when it is not there
std::vector<std::string> CorpusFiles();  // full paths, sorted; empty when it is not there
std::string CheckingTool();              // path of the independent checker; empty when it is not there
// The file read into memory. Changes stay there.
std::unique_ptr<mdb::MemoryPages> Load(const std::string& path);

}  // namespace mdb_test
