// Runs rows of the tables on an engine.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "conformance/engine.h"
#include "conformance/fact_table.h"

namespace conformance {

struct Result {
  enum class Outcome { Pass, Fail, Skip } outcome = Outcome::Fail;
  std::string got;       // what came out; of a skipped row: the rule
  std::string expected;  // what the table says
};

class Runner {
 public:
  explicit Runner(Engine& engine);

  // A row without a locale of its own must hold in all of them.
  Result Run(const Row& row);
  Result Run(const Statement& statement);

 private:
  Result InLocale(const Row& row, const std::string& locale);
  Result ByDialect(const Row& row, const std::string& sql, const std::string& locale);
  Result Sort(const Row& row);
  Settings SettingsFor(const std::string& locale, bool dao) const;
  // One base of each kind, kept for the expressions, which leave nothing behind.
  db::Connection& Saved(const std::string& locale, bool dao);

  Engine& engine_;
  ports::FixedClock clock_;
  std::map<std::string, std::unique_ptr<db::Connection>> saved_;
};

struct Tally {
  int passed = 0, failed = 0;
  std::map<std::string, int> skipped;  // by rule

  int Skipped() const;
  void Add(const Result& r);
  void Add(const Tally& other);
  // "N passed, N failed, N skipped"
  std::string Text() const;
};

}  // namespace conformance
