#include "support/data_test.h"

#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <sstream>

#include "base/standard_streams.h"

namespace support {
namespace {

struct Case {
  Block block;
  std::string expected;
  std::vector<std::string> preceding;  // comment and blank lines before the verb, as they stand
  std::string verb_line;
  std::vector<std::string> input_lines;
};

std::vector<std::string> ReadLines(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  if (!f) throw std::runtime_error("cannot read " + path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(f, line);) lines.push_back(line);
  return lines;
}

std::string Join(const std::vector<std::string>& lines) {
  std::string text;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (i > 0) text += '\n';
    text += lines[i] == "\\" ? std::string() : lines[i];
  }
  return text;
}

std::vector<Case> ReadCases(const std::string& path, std::vector<std::string>& tail) {
  const auto lines = ReadLines(path);
  std::vector<Case> cases;
  std::size_t i = 0;
  std::vector<std::string> preceding;
  while (i < lines.size()) {
    if (lines[i].empty() || lines[i][0] == '#') {
      preceding.push_back(lines[i++]);
      continue;
    }
    Case test_case;
    test_case.preceding = std::move(preceding);
    preceding.clear();
    test_case.verb_line = lines[i];
    test_case.block.line = static_cast<int>(i) + 1;
    std::istringstream words(lines[i]);
    words >> test_case.block.verb;
    for (std::string p; words >> p;) test_case.block.options.push_back(p);
    for (++i; i < lines.size() && lines[i] != "----"; ++i) test_case.input_lines.push_back(lines[i]);
    if (i == lines.size())
      throw std::runtime_error(path + ":" + std::to_string(test_case.block.line) + ": block without ----");
    test_case.block.entry = Join(test_case.input_lines);
    std::vector<std::string> expected;
    for (++i; i < lines.size() && !lines[i].empty(); ++i) expected.push_back(lines[i]);
    test_case.expected = Join(expected);
    cases.push_back(std::move(test_case));
  }
  tail = std::move(preceding);
  return cases;
}

std::string Run(const Verbs& verbs, const Block& block) {
  const auto it = verbs.find(block.verb);
  if (it == verbs.end()) throw std::runtime_error("unknown verb " + block.verb);
  try {
    return it->second(block);
  } catch (const std::exception& e) {
    return std::string("EXCEPTION ") + e.what();
  }
}

std::string Escape(const std::string& text) {
  std::string output;
  std::istringstream lines(text);
  bool first = true;
  for (std::string line; std::getline(lines, line); first = false) {
    if (!first) output += '\n';
    output += line.empty() ? "\\" : line;
  }
  if (!text.empty() && text.back() == '\n') output += "\n\\";
  return output;
}

void Rewrite(const std::string& path, const std::vector<Case>& cases,
             const std::vector<std::string>& obtained, const std::vector<std::string>& tail) {
  std::ofstream f(path, std::ios::binary | std::ios::trunc);
  for (std::size_t i = 0; i < cases.size(); ++i) {
    for (const auto& line : cases[i].preceding) f << line << '\n';
    f << cases[i].verb_line << '\n';
    for (const auto& line : cases[i].input_lines) f << line << '\n';
    f << "----\n";
    const std::string escaped = Escape(obtained[i]);
    if (!escaped.empty()) f << escaped << '\n';
    if (i + 1 < cases.size() && (cases[i + 1].preceding.empty() || !cases[i + 1].preceding.front().empty()))
      f << '\n';
  }
  for (const auto& line : tail) f << line << '\n';
}

}  // namespace

bool Block::Has(const std::string& word) const {
  for (const auto& o : options)
    if (o == word) return true;
  return false;
}

std::string Block::Option(const std::string& key, const std::string& if_missing) const {
  for (const auto& o : options)
    if (o.size() > key.size() && o.compare(0, key.size(), key) == 0 && o[key.size()] == '=')
      return o.substr(key.size() + 1);
  return if_missing;
}

int RunFiles(int argc, char** argv, const std::function<Verbs()>& prepare) {
  base::OpenStandardStreams();
  const bool update = std::getenv("UPDATE_EXPECTED") != nullptr;
  int passed = 0, failed = 0;
  try {
    for (int a = 1; a < argc; ++a) {
      const std::string path = argv[a];
      std::vector<std::string> tail;
      const auto cases = ReadCases(path, tail);
      const Verbs verbs = prepare();
      std::vector<std::string> obtained;
      for (const auto& test_case : cases) {
        obtained.push_back(Run(verbs, test_case.block));
        if (update || obtained.back() == test_case.expected) {
          ++passed;
          continue;
        }
        ++failed;
        std::cout << path << ":" << test_case.block.line << ": " << test_case.verb_line
                  << "\n  input:    " << test_case.block.entry << "\n  expected: " << test_case.expected
                  << "\n  got:      " << obtained.back() << "\n";
      }
      if (update) Rewrite(path, cases, obtained, tail);
    }
  } catch (const std::exception& e) {
    std::cout << e.what() << "\n";
    return 2;
  }
  std::cout << passed << " passed, " << failed << " failed\n";
  if (passed + failed == 0) return 2;
  return failed == 0 ? 0 : 1;
}

}  // namespace support
