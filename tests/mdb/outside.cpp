#include "mdb/outside.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "mdb/corpus.h"
#include "support/temp_folder.h"

namespace mdb_test {
namespace {

std::string InQuotes(const std::string& text) { return "'" + text + "'"; }

std::string Run(const std::string& command, int* code) {
  FILE* stream = popen(command.c_str(), "r");
  if (stream == nullptr) throw std::runtime_error("cannot run " + command);
  std::string output;
  char slice[4096];
  while (const std::size_t n = std::fread(slice, 1, sizeof slice, stream)) output.append(slice, n);
  *code = pclose(stream);
  return output;
}

bool Runs(const std::string& command) {
  int code = 0;
  Run(command + " >/dev/null 2>&1", &code);
  return code == 0;
}

std::string Save(const support::TempFolder& folder, const mdb::Bytes& file) {
  return folder.Write("prueba.mdb", {reinterpret_cast<const char*>(file.data()), file.size()});
}

}  // namespace

bool HasChecker() { return !CheckingTool().empty() && Runs("python3 --version"); }

bool HasMdbtools() { return Runs("command -v mdb-tables mdb-schema mdb-export mdb-queries"); }

std::string RunChecker(const mdb::Bytes& file, bool strict) {
  if (!HasChecker()) return {};
  const support::TempFolder folder;
  int code = 0;
  std::string output = Run("python3 " + InQuotes(CheckingTool()) + " -q " + (strict ? "--strict " : "") +
                               InQuotes(Save(folder, file)) + " 2>&1",
                           &code);
  if (code == 0) return {};
  return output.empty() ? "the checker failed" : output;
}

std::string Mdbtools(const std::string& program, const std::string& options, const mdb::Bytes& file,
                     const std::string& after) {
  const support::TempFolder folder;
  int code = 0;
  return Run(program + " " + options + " " + InQuotes(Save(folder, file)) + " " + after + " 2>/dev/null",
             &code);
}

}  // namespace mdb_test
