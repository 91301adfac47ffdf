// The tables of facts, one case a table.
#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>

#include "conformance/run.h"
#include "support/source_dir.h"

namespace {

namespace fs = std::filesystem;

class Tables : public testing::TestWithParam<const char*> {};

TEST_P(Tables, TheRowsHold) {
  const fs::path path = fs::path(support::SourceDir()) / "tests/data/conformance" / GetParam();
  const conformance::Table table = conformance::ReadTable(path);
  const auto engine = conformance::EngineByName("sqlite");
  conformance::Runner runner(*engine);
  conformance::Tally tally;
  const auto note = [&](const std::string& id, const conformance::Result& r) {
    tally.Add(r);
    EXPECT_NE(r.outcome, conformance::Result::Outcome::Fail)
        << id << ": got " << r.got << ", expected " << r.expected;
  };
  for (const auto& row : table.rows) note(row.id, runner.Run(row));
  for (const auto& s : table.statements) note(s.id, runner.Run(s));
  std::cout << table.name << ": " << tally.Text() << "\n";
  EXPECT_GT(tally.passed, 0);
}

INSTANTIATE_TEST_SUITE_P(Facts, Tables,
                         testing::Values("cnum.tsv", "compare.tsv", "cstr.tsv", "date_math.tsv",
                                         "date_parse.tsv", "date_serial.tsv", "format_date.tsv",
                                         "format_num.tsv", "format_text.tsv", "isnumeric.tsv", "jetfunc.tsv",
                                         "jetsort.tsv", "round.tsv", "strings.tsv", "val.tsv",
                                         "jetsql.jsonl"),
                         [](const auto& test_case) {
                           const std::string name = test_case.param;
                           return name.substr(0, name.find('.'));
                         });

}  // namespace
