#include "mdb/corpus.h"

#include <algorithm>
#include <filesystem>

#include "base/file.h"
#include "support/source_dir.h"

namespace mdb_test {
namespace fs = std::filesystem;

std::string CorpusFolder() {
  const std::string folder = support::SharedDir() + "/mdb/corpus";
  return !support::SharedDir().empty() && fs::is_directory(folder) ? folder : std::string();
}

std::vector<std::string> CorpusFiles() {
  std::vector<std::string> paths;
  const std::string folder = CorpusFolder();
  if (folder.empty()) return paths;
  for (const auto& e : fs::directory_iterator(folder))
    if (e.path().extension() == ".mdb" || e.path().extension() == ".accdb")
      paths.push_back(e.path().string());
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::string CheckingTool() {
  const std::string path = support::SharedDir() + "/tools/mdbcheck/jetcheck.py";
  return !support::SharedDir().empty() && fs::exists(path) ? path : std::string();
}

std::unique_ptr<mdb::MemoryPages> Load(const std::string& path) {
  const auto text = base::ReadWholeFile(path);
  if (!text) throw base::Error("cannot read " + path);
  mdb::Bytes bytes(text->begin(), text->end());
  const mdb::FileHeader header = mdb::ReadHeader(bytes);
  return std::make_unique<mdb::MemoryPages>(header, std::move(bytes));
}

}  // namespace mdb_test
