// Cases over one engine, whichever this program is linked with (see engine.h). A file starts with a new,
// empty base; statements end at a line that ends in ";".
//
//   exec             runs the statements; the rows that the last one changed
//   query            the rows of the last statement (the others are run before it); "rowsort" where their
//                    order is free, "head" for the columns and their types
//   error            the text of the last statement's failure; "read": asked as one that may only read
//   bounded          the statements as bounded queries that share a budget (steps= rows= bytes=, else its own
//                    sizes): the rows of the last one, or the text of a failure
//   tables           for each table named, a line a row, sorted
//   open             a new base: clock=AAAA-MM-DD[Thh:mm:ss] locale=en mode=dao order=general|traditional
//   reopen           the same base, closed and opened again
//   begin, commit, rollback
//                    the transaction; "ok" or the failure
//   savepoint, undo, release
//                    the mark inside it, likewise
#include <iostream>
#include <memory>
#include <sstream>

#include "base/date.h"
#include "engine.h"
#include "render.h"
#include "support/data_test.h"

namespace {

using support::Block;

struct TestBench {
  std::unique_ptr<ports::FixedClock> clock;
  std::unique_ptr<tests::TestDatabase> fixture;
  db::Connection* base = nullptr;
};

base::Date ReadClock(const std::string& text) {
  int a = 0, m = 0, d = 0, h = 0, n = 0, s = 0;
  if (std::sscanf(text.c_str(), "%d-%d-%dT%d:%d:%d", &a, &m, &d, &h, &n, &s) < 3)
    throw std::runtime_error("bad clock " + text);
  return {base::MakeDate(a, m, d).serial + base::MakeTime(h, n, s).serial};
}

void Open(TestBench& bench, const Block& block) {
  bench.fixture = nullptr;
  bench.clock = std::make_unique<ports::FixedClock>(ReadClock(block.Option("clock", "2024-03-15T10:20:30")));
  tests::Wishes wishes;
  wishes.clock = bench.clock.get();
  if (block.Option("locale") == "en") wishes.locale = &base::Locale::english();
  wishes.dao_wildcards = block.Option("mode") == "dao";
  const std::string order = block.Option("order");
  if (order == "general") wishes.order = base::SortOrder::General;
  if (order == "traditional") wishes.order = base::SortOrder::TraditionalSpanish;
  bench.fixture = tests::Create(wishes);
  bench.base = &bench.fixture->Connection();
}

std::vector<std::string> SplitStatements(const std::string& entry) {
  std::vector<std::string> all;
  std::istringstream lines(entry);
  std::string current;
  for (std::string line; std::getline(lines, line);) {
    if (!current.empty()) current += '\n';
    current += line;
    if (line.empty() || line.back() != ';') continue;
    current.pop_back();
    all.push_back(current);
    current.clear();
  }
  if (!current.empty()) all.push_back(current);
  if (all.empty()) throw std::runtime_error("a block without statements");
  return all;
}

// Runs all but the last one.
std::string Last(TestBench& bench, const Block& block) {
  std::vector<std::string> all = SplitStatements(block.entry);
  for (std::size_t i = 0; i + 1 < all.size(); ++i) bench.base->Execute(all[i]);
  return all.back();
}

std::string Query(TestBench& bench, const Block& block) {
  const db::Recordset rows = bench.base->Execute(Last(bench, block));
  std::string output;
  if (block.Has("head")) output = support::Header(rows);
  if (!output.empty() && !rows.IsEmpty()) output += '\n';
  output += support::Rows(rows, block.Has("rowsort"));
  return output;
}

std::string Fail(TestBench& bench, const Block& block) {
  const std::string sql = Last(bench, block);
  try {
    block.Has("read") ? bench.base->Query(sql) : bench.base->Execute(sql);
  } catch (const db::Error& e) {
    return support::ErrorText(e);
  }
  return "no error";
}

std::string Bounded(TestBench& bench, const Block& block) {
  db::QueryBudget budget;
  const auto size = [&](const char* name, std::int64_t& part) {
    if (const std::string text = block.Option(name); !text.empty()) part = std::stoll(text);
  };
  size("steps", budget.steps);
  size("rows", budget.rows);
  size("bytes", budget.bytes);
  db::Recordset rows;
  try {
    for (const std::string& sql : SplitStatements(block.entry)) rows = bench.base->QueryBounded(sql, budget);
  } catch (const db::QueryInterrupted& e) {
    return e.IsStorageFault() ? "a fault of the storage" : support::ErrorText(e);
  } catch (const db::Error& e) {
    return "no interruption: " + support::ErrorText(e);
  }
  return support::Rows(rows, block.Has("rowsort"));
}

std::string Tables(TestBench& bench, const Block& block) {
  std::string output;
  std::istringstream names(block.entry);
  for (std::string name; std::getline(names, name);) {
    std::string sql = "SELECT * FROM [";
    sql += name;
    sql += ']';
    const db::Recordset rows = bench.base->Execute(sql);
    if (!output.empty()) output += '\n';
    output += name;
    output += ':';
    if (!rows.IsEmpty()) output += '\n';
    output += support::Rows(rows, true);
  }
  return output;
}

template <typename Step>
std::string TransactionStep(Step&& step) {
  try {
    step();
  } catch (const db::Error& e) {
    return support::ErrorText(e);
  }
  return "ok";
}

support::Verbs Prepare() {
  const auto bench = std::make_shared<TestBench>();
  Open(*bench, {});
  support::Verbs verbs;
  verbs["open"] = [bench](const Block& b) {
    Open(*bench, b);
    return std::string();
  };
  verbs["reopen"] = [bench](const Block&) {
    bench->fixture->Reopen();
    bench->base = &bench->fixture->Connection();
    return std::string();
  };
  verbs["exec"] = [bench](const Block& b) {
    bench->base->Execute(Last(*bench, b));
    return std::to_string(bench->base->AffectedRows());
  };
  verbs["query"] = [bench](const Block& b) { return Query(*bench, b); };
  verbs["error"] = [bench](const Block& b) { return Fail(*bench, b); };
  verbs["bounded"] = [bench](const Block& b) { return Bounded(*bench, b); };
  verbs["tables"] = [bench](const Block& b) { return Tables(*bench, b); };
  verbs["begin"] = [bench](const Block&) { return TransactionStep([&] { bench->base->BeginTrans(); }); };
  verbs["commit"] = [bench](const Block&) { return TransactionStep([&] { bench->base->CommitTrans(); }); };
  verbs["rollback"] = [bench](const Block&) {
    return TransactionStep([&] { bench->base->RollbackTrans(); });
  };
  verbs["savepoint"] = [bench](const Block&) {
    return TransactionStep([&] { bench->base->SetSavepoint(); });
  };
  verbs["undo"] = [bench](const Block&) {
    return TransactionStep([&] { bench->base->RollbackToSavepoint(); });
  };
  verbs["release"] = [bench](const Block&) {
    return TransactionStep([&] { bench->base->ReleaseSavepoint(); });
  };
  return verbs;
}

}  // namespace

int main(int argc, char** argv) { return support::RunFiles(argc, argv, Prepare); }
