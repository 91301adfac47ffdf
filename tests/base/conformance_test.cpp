// Runs the tables of facts about text, number and date primitives that lie beside the checkout, where the
// functions of this module serve them directly.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <optional>
#include <sstream>

#include "base/date.h"
#include "base/dialect_number.h"
#include "base/error.h"
#include "base/format.h"
#include "base/number.h"
#include "base/text.h"
#include "base/value.h"
#include "conformance/compare.h"
#include "support/source_dir.h"

namespace {

using base::Date;
using base::Locale;
using base::Value;
using conformance::Json;

const Date kToday = conformance::Today();

struct Call {
  const std::vector<Json>& args;
  const Locale& locale;
};
// What a function gave: a value or the number of an error; none when the row is not this module's.
struct Result {
  std::optional<Value> value;
  int error = 0;
};
using Function = std::function<Value(const Call&)>;

// Thrown by a function for arguments that its contract does not take (a Null, an Empty).
struct NotServed {};

Value ReadValue(const Json& j) {
  switch (j.kind) {
    case Json::Kind::Null:
      return base::Null{};
    case Json::Kind::Boolean:
      return j.boolean;
    case Json::Kind::Number:
      return j.integer ? Value(static_cast<std::int64_t>(j.number)) : Value(j.number);
    case Json::Kind::Text:
      return j.text;
    case Json::Kind::List:
      throw NotServed{};
    case Json::Kind::Object:
      break;
  }
  if (const Json* f = j.Member("$date")) return Date{conformance::SerialOf(f->text)};
  if (const Json* s = j.Member("$single")) return static_cast<float>(s->number);
  if (const Json* c = j.Member("$currency")) return base::Currency{std::llround(c->number * 10000)};
  throw NotServed{};  // Empty and variants are no values here
}

Value Arg(const Call& l, std::size_t i) { return ReadValue(l.args.at(i)); }
double Number(const Call& l, std::size_t i) { return Arg(l, i).Number(l.locale); }
int Integer(const Call& l, std::size_t i) { return static_cast<int>(Number(l, i)); }
int IntegerOr(const Call& l, std::size_t i, int if_missing) {
  return i < l.args.size() ? Integer(l, i) : if_missing;
}
Date DateArg(const Call& l, std::size_t i) { return {Number(l, i)}; }
std::string Text(const Call& l, std::size_t i) {
  if (!l.args.at(i).IsText()) throw NotServed{};
  return l.args[i].text;
}

Value NonNull(const Call& l, std::size_t i) {
  Value v = Arg(l, i);
  if (v.IsNull()) throw NotServed{};
  return v;
}

Value CDate(const Call& l) {
  const Value v = Arg(l, 0);
  if (const auto* text = v.GetIf<std::string>()) {
    const auto date = base::DateFromText(*text, kToday, l.locale);
    if (!date) throw base::Error(base::ErrorDescription(13), 13);
    return *date;
  }
  return Date{v.Number(l.locale)};
}

const std::map<std::string, Function>& Functions() {
  static const std::map<std::string, Function> kFunctions = {
      {"Val", [](const Call& l) { return Value(base::Val(Text(l, 0))); }},
      {"CDbl", [](const Call& l) { return Value(Number(l, 0)); }},
      {"CSng", [](const Call& l) { return Value(static_cast<float>(Number(l, 0))); }},
      {"CLng", [](const Call& l) { return Value(Arg(l, 0).Integer(l.locale)); }},
      {"CInt", [](const Call& l) { return Value(static_cast<int>(Arg(l, 0).ShortInteger(l.locale))); }},
      {"CBool", [](const Call& l) { return Value(Arg(l, 0).Boolean(l.locale)); }},
      {"IsNumeric", [](const Call& l) { return Value(base::IsNumeric(Text(l, 0), l.locale)); }},
      {"CStr", [](const Call& l) { return Value(NonNull(l, 0).Text(l.locale)); }},
      {"Round",
       [](const Call& l) {
         if (l.args[0].kind == Json::Kind::Boolean) throw NotServed{};
         return Value(base::Round(Number(l, 0), IntegerOr(l, 1, 0)));
       }},
      {"CDate", CDate},
      {"IsDate", [](const Call& l) { return Value(base::IsDate(Text(l, 0), kToday, l.locale)); }},
      {"DateSerial",
       [](const Call& l) { return Value(base::MakeDate(Integer(l, 0), Integer(l, 1), Integer(l, 2))); }},
      {"TimeSerial",
       [](const Call& l) { return Value(base::MakeTime(Integer(l, 0), Integer(l, 1), Integer(l, 2))); }},
      {"DateToSerial", [](const Call& l) { return Value(Number(l, 0)); }},
      {"SerialToDate", [](const Call& l) { return Value(DateArg(l, 0)); }},
      {"Year", [](const Call& l) { return Value(base::PartsOf(DateArg(l, 0)).year); }},
      {"Month", [](const Call& l) { return Value(base::PartsOf(DateArg(l, 0)).month); }},
      {"Day", [](const Call& l) { return Value(base::PartsOf(DateArg(l, 0)).day); }},
      {"Hour", [](const Call& l) { return Value(base::PartsOf(DateArg(l, 0)).hour); }},
      {"Minute", [](const Call& l) { return Value(base::PartsOf(DateArg(l, 0)).minute); }},
      {"Weekday",
       [](const Call& l) { return Value(base::DatePart("w", DateArg(l, 0), IntegerOr(l, 1, 1))); }},
      {"DateAdd",
       [](const Call& l) { return Value(base::DateAdd(Text(l, 0), Number(l, 1), DateArg(l, 2))); }},
      {"DateDiff",
       [](const Call& l) {
         return Value(static_cast<std::int64_t>(base::DateDiff(Text(l, 0), DateArg(l, 1), DateArg(l, 2),
                                                               IntegerOr(l, 3, 1), IntegerOr(l, 4, 1))));
       }},
      {"DatePart",
       [](const Call& l) {
         return Value(base::DatePart(Text(l, 0), DateArg(l, 1), IntegerOr(l, 2, 1), IntegerOr(l, 3, 1)));
       }},
      {"Format",
       [](const Call& l) {
         return Value(
             base::Format(Arg(l, 0), Text(l, 1), kToday, l.locale, IntegerOr(l, 2, 1), IntegerOr(l, 3, 1)));
       }},
  };
  return kFunctions;
}

bool Matches(const Result& r, const Json& expected) {
  if (r.error != 0) return conformance::ExpectsError(expected, r.error);
  return r.value && conformance::AreEqual(expected, *r.value);
}

std::string Show(const Result& r) {
  std::ostringstream text;
  if (r.error != 0) {
    text << "error " << r.error;
  } else if (r.value) {
    text << '[' << r.value->CsvText() << ']';
  }
  return text.str();
}

class Conformance : public testing::TestWithParam<const char*> {};

TEST_P(Conformance, RowsHold) {
  const std::filesystem::path path = std::filesystem::path(support::SourceDir()) / "tests/data/conformance" /
                                     (std::string(GetParam()) + ".tsv");
  int passed = 0, failed = 0;
  std::map<std::string, int> not_served;
  for (const conformance::Row& row : conformance::ReadTable(path).rows) {
    const auto function = Functions().find(row.function);
    if (function == Functions().end()) {
      ++not_served[row.function];
      continue;
    }
    const Locale& locale = row.locale == "en" ? Locale::english() : Locale::spanish();
    Result r;
    try {
      r.value = function->second({row.args, locale});
    } catch (const base::Error& e) {
      r.error = e.Number();
    } catch (const NotServed&) {
      ++not_served[row.function + " of such an argument"];
      continue;
    }
    const bool ok = Matches(r, row.expected);
    ++(ok ? passed : failed);
    EXPECT_TRUE(ok) << row.id << " in " << row.locale << " gave " << Show(r) << ", expected "
                    << row.expected.Written();
  }
  std::cout << GetParam() << ": " << passed << " rows hold, " << failed << " do not";
  for (const auto& [what, count] : not_served) std::cout << "; " << count << " not served (" << what << ")";
  std::cout << "\n";
  EXPECT_GT(passed, 0);
}

INSTANTIATE_TEST_SUITE_P(Tables, Conformance,
                         testing::Values("val", "cnum", "isnumeric", "cstr", "round", "date_parse",
                                         "date_serial", "date_math", "format_num", "format_date",
                                         "format_text"),
                         [](const auto& test_case) { return std::string(test_case.param); });

}  // namespace
