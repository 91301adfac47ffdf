// conformance [--engine NAME[,NAME…]]… TABLE…
//
// Runs the tables of facts (*.tsv, *.jsonl) through the engines named (sqlite when none is). Prints a line
// for each row that does not hold and last "N passed, N failed, N skipped". Exit: 0 all hold, 1 some do not,
// 2 nothing could be run.
#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "base/standard_streams.h"
#include "base/text.h"
#include "conformance/run.h"

namespace {

using conformance::Result;
using conformance::Table;
using conformance::Tally;

constexpr int kFailed = 1, kNotRun = 2;

struct Request {
  std::vector<std::string> engines;
  std::vector<Table> tables;
};

Request Read(const std::vector<std::string>& args) {
  Request p;
  constexpr std::string_view kEngine = "--engine";
  for (std::size_t i = 0; i < args.size(); ++i) {
    std::string value;
    if (args[i] == kEngine) {
      if (++i == args.size()) throw std::invalid_argument("--engine needs a name");
      value = args[i];
    } else if (base::StartsWith(args[i], "--engine=")) {
      value = args[i].substr(kEngine.size() + 1);
    } else if (base::StartsWith(args[i], "--")) {
      throw std::invalid_argument("no option is called " + args[i]);
    } else if (conformance::IsTable(args[i])) {
      p.tables.push_back(conformance::ReadTable(args[i]));
      continue;
    } else {
      std::cerr << args[i] << ": not a table, passed over\n";
      continue;
    }
    for (const auto& name : base::Split(value, ",")) p.engines.push_back(base::Trim(name));
  }
  if (p.tables.empty()) throw std::invalid_argument("no table (*.tsv, *.jsonl) was named");
  if (p.engines.empty()) p.engines.emplace_back("sqlite");
  return p;
}

std::string OneLine(const std::string& text) {
  return base::Replace(base::Replace(base::Replace(text, "\r", "\\r"), "\n", "\\n"), "\t", "\\t");
}

void Note(const std::string& before, const std::string& id, const Result& r, Tally& tally) {
  tally.Add(r);
  if (r.outcome == Result::Outcome::Fail)
    std::cout << OneLine(before + id + ": got " + r.got + ", expected " + r.expected) << "\n";
}

Tally RunIn(const std::string& engine, const Request& p) {
  const auto machine = conformance::EngineByName(engine);
  conformance::Runner runner(*machine);
  const std::string before = p.engines.size() > 1 ? engine + " " : "";
  Tally tally;
  for (const Table& t : p.tables) {
    for (const auto& row : t.rows) Note(before, row.id, runner.Run(row), tally);
    for (const auto& s : t.statements) Note(before, s.id, runner.Run(s), tally);
  }
  for (const auto& [rule, count] : tally.skipped)
    std::cout << before << "skipped " << count << ": " << rule << "\n";
  if (!before.empty()) std::cout << before << tally.Text() << "\n";
  return tally;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    base::OpenStandardStreams();
    const Request p = Read({argv + 1, argv + argc});
    Tally total;
    for (const auto& engine : p.engines) total.Add(RunIn(engine, p));
    if (total.passed + total.failed == 0) throw std::runtime_error("the tables have no rows that are run");
    std::cout << total.Text() << "\n";
    return total.failed > 0 ? kFailed : 0;
  } catch (const std::exception& e) {
    std::cerr << "conformance: " << e.what() << "\n";
    return kNotRun;
  }
}
