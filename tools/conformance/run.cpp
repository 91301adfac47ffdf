#include "conformance/run.h"

#include <algorithm>
#include <exception>

#include "base/error.h"
#include "base/like.h"
#include "base/number.h"
#include "base/text.h"
#include "conformance/compare.h"
#include "conformance/expression.h"

namespace conformance {
namespace {

using Outcome = Result::Outcome;

constexpr int kInvalidCall = 5, kInvalidUseOfNull = 94;

Result MakeResult(bool ok, std::string got, const Json& expected) {
  return {ok ? Outcome::Pass : Outcome::Fail, std::move(got), expected.Written()};
}

// A text of a row; a number counts as its text.
std::string Text(const Json& j) { return j.IsText() || j.IsNumber() ? j.text : j.Written(); }

int Integer(const Row& f, std::size_t i, int if_missing) {
  return i < f.args.size() ? static_cast<int>(f.args[i].number) : if_missing;
}

// The functions that the dialect does not have, by the primitives under it.
Result ByPrimitive(const Row& f) {
  const bool null = std::any_of(f.args.begin(), f.args.end(), [](const Json& j) { return j.IsNull(); });
  if (null && f.function == "Split")
    throw base::Error(base::ErrorDescription(kInvalidUseOfNull), kInvalidUseOfNull);
  if (null) return MakeResult(AreEqual(f.expected, base::Value()), "null", f.expected);
  if (f.function == "Split") {
    const int limit = Integer(f, 2, -1);
    if (limit < -1) throw base::Error(base::ErrorDescription(kInvalidCall), kInvalidCall);
    const auto pieces =
        base::SplitClassic(Text(f.args.at(0)), f.args.size() > 1 ? Text(f.args[1]) : " ", limit,
                           Integer(f, 3, 0) == 0 ? base::Compare::Exact : base::Compare::IgnoringCase);
    return MakeResult(AreEqual(f.expected, pieces), "[" + base::Join(pieces, "|") + "]", f.expected);
  }
  if (f.function == "LikeBinary" || f.function == "LikeText") {
    const bool matches =
        base::Like(Text(f.args.at(0)), Text(f.args.at(1)), base::Wildcards::Dao,
                   f.function == "LikeText" ? base::Equality::Weights : base::Equality::Exact);
    return MakeResult(AreEqual(f.expected, base::Value(matches)), matches ? "true" : "false", f.expected);
  }
  return {Outcome::Skip, "an argument that the dialect cannot write", f.expected.Written()};
}

// "es" or "es_AR"; every other name is that of any locale.
bool IsLocale(const std::string& name, const std::string& language) {
  return name == language || base::StartsWith(name, language + "_") || base::StartsWith(name, language + "-");
}

const base::Locale& LocaleOf(const std::string& name) {
  return IsLocale(name, "en") ? base::Locale::english() : base::Locale::spanish();
}

// What a change did, and what the base says of it afterwards.
Result Change(db::Connection& base, const Statement& s) {
  if (s.effect.Member("error") != nullptr) {
    try {
      base.Execute(s.sql);
    } catch (const db::Error& e) {
      return MakeResult(!e.Description().empty(), Show(e), s.effect);
    }
    return MakeResult(false, "no error", s.effect);
  }
  base.Execute(s.sql);
  const std::int64_t affected = base.AffectedRows();
  std::string got = "affected " + std::to_string(affected);
  const Json* count = s.effect.Member("affected");
  bool ok = count == nullptr || !count->IsNumber() || static_cast<std::int64_t>(count->number) == affected;
  if (const Json* after = s.effect.Member("then")) {
    const db::Recordset rows = base.Execute(after->text);
    got += ", then " + Show(rows);
    const Json* expected = s.effect.Member("rows");
    ok = ok && expected != nullptr && SameRows(*expected, rows, s.sorted, s.ignore_case);
  }
  return MakeResult(ok, std::move(got), s.effect);
}

Result Query(db::Connection& base, const Statement& s) {
  const db::Recordset rows = base.Execute(s.sql);
  bool ok = SameRows(s.rows, rows, s.sorted, s.ignore_case);
  std::string got = Show(rows);
  for (std::size_t c = 0; c < s.columns.size(); ++c) {
    const std::string name = c < rows.Fields().size() ? rows.Fields()[c].name : "";
    if (name == s.columns[c]) continue;
    ok = false;
    got += ", column '" + name + "' for '" + s.columns[c] + "'";
  }
  return MakeResult(ok, std::move(got), s.rows);
}

}  // namespace

Runner::Runner(Engine& engine) : engine_(engine), clock_(Today()) {}

Settings Runner::SettingsFor(const std::string& locale, bool dao) const {
  Settings a;
  a.locale = &LocaleOf(locale);
  a.clock = &clock_;
  a.dao_wildcards = dao;
  return a;
}

db::Connection& Runner::Saved(const std::string& locale, bool dao) {
  auto& base = saved_[locale + (dao ? "*" : "%")];
  if (base == nullptr) base = engine_.NewDatabase(SettingsFor(locale, dao));
  return *base;
}

Result Runner::Run(const Row& row) {
  if (const auto rule = WhyNotServed(row)) return {Outcome::Skip, *rule, row.expected.Written()};
  if (IsLocale(row.locale, "es") || IsLocale(row.locale, "en")) return InLocale(row, row.locale.substr(0, 2));
  Result r = InLocale(row, "es");
  if (r.outcome == Outcome::Pass) r = InLocale(row, "en");
  return r;
}

Result Runner::InLocale(const Row& row, const std::string& locale) {
  try {
    if (row.function == "JetOrderBy") return Sort(row);
    const auto expression = Expression(row);
    if (!expression) return ByPrimitive(row);
    return ByDialect(row, "SELECT " + *expression + " AS x", locale);
  } catch (const base::Error& e) {
    return MakeResult(ExpectsError(row.expected, e.Number()), Show(e), row.expected);
  } catch (const std::exception& e) {  // too few arguments, or a form that is not known: the others still run
    return MakeResult(false, std::string("a row that cannot be run: ") + e.what(), row.expected);
  }
}

Result Runner::ByDialect(const Row& row, const std::string& sql, const std::string& locale) {
  const db::Recordset rows = Saved(locale, UsesDaoWildcards(row)).Execute(sql);
  if (rows.Count() != 1) return MakeResult(false, Show(rows), row.expected);
  return MakeResult(AreEqual(row.expected, rows.At(0, 0)),
                    Show(rows.At(0, 0)) + " from " + sql + " in " + locale, row.expected);
}

// A list of texts, put into a table and ordered by the engine.
Result Runner::Sort(const Row& row) {
  const auto base = engine_.NewDatabase(SettingsFor("es", false));
  base->Execute("CREATE TABLE t (x TEXT(250))");
  for (const Json& text : row.args.at(0).list)
    base->Execute("INSERT INTO t (x) VALUES (" + Literal(text).value_or("Null") + ")");
  const db::Recordset rows = base->Execute("SELECT x FROM t ORDER BY x");
  bool ok = row.expected.list.size() == rows.Count();
  for (std::size_t i = 0; ok && i < rows.Count(); ++i) ok = AreEqual(row.expected.list[i], rows.At(0, i));
  return MakeResult(ok, Show(rows), row.expected);
}

Result Runner::Run(const Statement& s) {
  try {
    const auto base = engine_.NewDatabase(SettingsFor(s.locale, s.dao_wildcards));
    for (const std::string& sql : s.before) base->Execute(sql);
    return s.rows.IsList() ? Query(*base, s) : Change(*base, s);
  } catch (const base::Error& e) {
    return MakeResult(false, Show(e), s.rows.IsList() ? s.rows : s.effect);
  } catch (const std::exception& e) {
    return MakeResult(false, std::string("a row that cannot be run: ") + e.what(), s.effect);
  }
}

int Tally::Skipped() const {
  int n = 0;
  for (const auto& [rule, count] : skipped) n += count;
  return n;
}

void Tally::Add(const Result& r) {
  switch (r.outcome) {
    case Outcome::Pass:
      ++passed;
      break;
    case Outcome::Fail:
      ++failed;
      break;
    case Outcome::Skip:
      ++skipped[r.got];
      break;
  }
}

void Tally::Add(const Tally& other) {
  passed += other.passed;
  failed += other.failed;
  for (const auto& [rule, count] : other.skipped) skipped[rule] += count;
}

std::string Tally::Text() const {
  return std::to_string(passed) + " passed, " + std::to_string(failed) + " failed, " +
         std::to_string(Skipped()) + " skipped";
}

}  // namespace conformance
