// What the functions of the dialect share: their surroundings, their arguments and how they answer.
//
// Values live in SQLite as: booleans -1/0, dates as day serials, currency and singles as reals. The letters
// of a tagged function (see jetsql/functions.h) tell them apart where a text must be made of them.
#pragma once

#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/date.h"
#include "base/error.h"
#include "base/locale.h"
#include "base/sort_order.h"
#include "base/value.h"
#include "ports/clock.h"

namespace engine_sqlite {

// The surroundings of a connection's functions. It outlives the SQLite handle that they are registered on.
struct Environment {
  const base::Locale* locale = nullptr;
  const ports::Clock* clock = nullptr;
  base::SortOrder order = base::SortOrder::ModernSpanish;
  std::uint32_t random = 0x50000;  // the state of Rnd
  bool utf8 = false;               // the file holds its texts in UTF-8
  sqlite3* base = nullptr;         // on which the functions are registered

  // The clock stands still while a statement runs: it is read once, when the statement first asks.
  base::Date Now();
  std::optional<base::Date> now;  // emptied before each statement

  // The failure that a function raised in the statement that is running.
  bool failed = false;
  bool out_of_memory = false;  // a comparison did not get its memory, and has no other way to say so
  std::string description;
  int number = 0;

  // What a bounded statement may still take (see work_limit_internal.h); null for any other. A function that
  // works on long texts takes more than the one step that it is to SQLite.
  std::int64_t* steps_left = nullptr;
  void Charge(std::size_t steps) {
    if (steps_left != nullptr) *steps_left -= static_cast<std::int64_t>(steps);
  }
  bool Exhausted() const { return steps_left != nullptr && *steps_left < 0; }
};

// The errors of the dialect's runtime.
[[noreturn]] void ThrowNumber(int number);
inline constexpr int kInvalidCall = 5;
inline constexpr int kOverflow = 6;
inline constexpr int kDivisionByZero = 11;
inline constexpr int kTypeMismatch = 13;
inline constexpr int kInvalidUseOfNull = 94;

class Call {
 public:
  static constexpr int kMaximum = 8;  // arguments whose text may need a conversion

  Call(sqlite3_context* context, std::span<sqlite3_value*> values, engine_sqlite::Environment& environment,
       bool tagged);

  engine_sqlite::Environment& Environment() const { return environment_; }
  const base::Locale& Locale() const { return *environment_.locale; }
  base::Date Now() const { return environment_.Now(); }
  base::Date Today() const;

  // Arguments, from 0, without the tag.
  int Count() const { return static_cast<int>(values_.size()); }
  bool Has(int i) const { return i < Count(); }
  bool IsNull(int i) const { return sqlite3_value_type(values_[i]) == SQLITE_NULL; }
  bool AnyNull() const;
  // The letter of the type: the tag's, or I, N, T by the storage class. Text that a tag calls otherwise is T.
  char Letter(int i) const;
  bool IsText(int i) const { return sqlite3_value_type(values_[i]) == SQLITE_TEXT; }

  // As text by the locale. The view lasts until the function returns; i < kMaximum. Null is "".
  std::string_view Text(int i);
  // The same at the end of `target`, for any argument.
  void AppendText(int i, std::string& target) const;
  // As a number: a text is read by the locale. Throws 13 for a text that is none, 94 for Null.
  double Number(int i) const;
  std::int64_t Integer(int i) const;          // half to even
  std::int32_t Integer32(int i) const;        // the same; throws 6 outside 32 bits
  int Optional(int i, int if_missing) const;  // Integer32, or `if_missing` when there is no such argument
  // The first day of the week, or the first week of the year, that argument `i` names; 0, the system's,
  // counts as when it is not given: Sunday, and the week of January 1st. Throws 5 for another one.
  int FirstDay(int i) const;
  int FirstWeek(int i) const;
  bool Boolean(int i) const;       // not 0; Null is false
  base::Date Date(int i) const;    // a text is read as CDate reads it; throws 13, 94
  base::Value Typed(int i) const;  // with the type that the letter tells
  // A number as SQLite holds it (INTEGER or FLOAT); a text that is a whole number gives an integer.
  struct Figure {
    bool whole;
    std::int64_t integer;
    double real;
  };
  Figure Numeric(int i) const;

  // The answer. Called once.
  void Null() { sqlite3_result_null(context_); }
  void ReturnInteger(std::int64_t v) { sqlite3_result_int64(context_, v); }
  void ReturnNumber(double v);  // throws 6 when it is no finite number
  void ReturnFigure(const Figure& v) { v.whole ? ReturnInteger(v.integer) : ReturnNumber(v.real); }
  void ReturnBoolean(bool v) { sqlite3_result_int(context_, v ? -1 : 0); }
  void ReturnDate(base::Date v) { sqlite3_result_double(context_, v.serial); }
  void ReturnText(std::string_view v);
  void ReturnArgument(int i) { sqlite3_result_value(context_, values_[i]); }

 private:
  sqlite3_context* context_;
  std::span<sqlite3_value*> values_;
  engine_sqlite::Environment& environment_;
  std::string_view View(sqlite3_value* value) const;

  std::string_view letters_;
  std::array<std::string, kMaximum> converted_;
};

using Body = void (*)(Call&);

// One function of the SQLite text. `arguments` counts the tag; -1: any number.
struct Record {
  const char* name;  // with jet_
  int arguments;
  bool tagged;
  bool deterministic;
  Body body;
};

// The bodies of the dialect's functions, by the dialect's name; each file has its own.
struct Implementation {
  std::string_view name;  // upper case, as in jetsql/functions.h
  Body body;
};
std::span<const Implementation> TextFunctions();
std::span<const Implementation> NumericFunctions();
std::span<const Implementation> ConversionFunctions();
std::span<const Implementation> DateFunctions();
std::span<const Implementation> FormatFunctions();
std::span<const Implementation> FinancialFunctions();
std::span<const Record> TranslatorHelpers();
void RegisterTotals(sqlite3* base);

// Hands a failure of a function to SQLite, keeping its text and number in the surroundings.
void Note(sqlite3_context* context, Environment& environment, const base::Error& error);

// Registers the functions, the helpers of the writer, the aggregates and the collation JET. `environment`
// must outlive the handle.
void Register(sqlite3* base, Environment& environment);

}  // namespace engine_sqlite
