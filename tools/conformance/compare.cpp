#include "conformance/compare.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "base/text.h"

namespace conformance {
namespace {

using base::Type;
using base::Value;

constexpr double kDouble = 1e-14, kSimple = 1e-6;

bool IsClose(double a, double b, double tolerance) {
  return a == b || std::abs(a - b) <= tolerance * std::max(std::abs(a), std::abs(b));
}

// Half a unit of the last digit that a number is written with; 0 when it has few.
double HalfUnit(const std::string& written) {
  constexpr int kMany = 12;
  int digits = 0, decimals = 0, exponent = 0;
  bool fraction = false;
  for (std::size_t i = 0; i < written.size(); ++i) {
    const char c = written[i];
    if (c == '.') fraction = true;
    if (c == 'e' || c == 'E') {
      exponent = std::atoi(written.c_str() + i + 1);
      break;
    }
    if (c < '0' || c > '9') continue;
    if (digits > 0 || c != '0') ++digits;
    if (fraction) ++decimals;
  }
  return fraction && digits >= kMany ? 0.5 * std::pow(10.0, exponent - decimals) : 0;
}

bool SameNumber(const Json& expected, double got) {
  return IsClose(got, expected.number, kDouble) || std::abs(got - expected.number) <= HalfUnit(expected.text);
}

}  // namespace

bool AreEqual(const Json& expected, const Value& got, bool ignore_case) {
  if (const Json* any = expected.Member("$anyOf"))
    return std::any_of(any->list.begin(), any->list.end(),
                       [&](const Json& j) { return AreEqual(j, got, ignore_case); });
  if (const Json* kind = expected.Member("$variant")) {
    if (kind->text == "NULL") return got.IsNull();
    const Json* v = expected.Member("v");
    return v != nullptr && AreEqual(*v, got, ignore_case);
  }
  if (expected.IsNull()) return got.IsNull();
  if (got.IsNull()) return false;
  if (expected.IsText()) {
    const auto* text = got.GetIf<std::string>();
    return text != nullptr &&
           (ignore_case ? base::EqualIgnoringCase(*text, expected.text) : *text == expected.text);
  }
  if (got.type() == Type::Text) return false;
  const double number = got.Number();
  if (expected.kind == Json::Kind::Boolean) return number == (expected.boolean ? -1 : 0);
  constexpr double kHalfSecond = 0.5 / 86400;
  if (const Json* f = expected.Member("$date"))
    return got.type() == Type::Date && std::abs(number - SerialOf(f->text)) < kHalfSecond;
  if (const Json* s = expected.Member("$single")) return IsClose(number, s->number, kSimple);
  if (const Json* c = expected.Member("$currency"))
    return std::abs(number - c->number) < 0.00005 && got.type() != Type::Date;
  if (!expected.IsNumber() || got.type() == Type::Date) return false;
  return got.type() == Type::Single ? IsClose(number, expected.number, kSimple)
                                    : SameNumber(expected, number);
}

bool AreEqual(const Json& expected, const std::vector<std::string>& got) {
  if (const Json* any = expected.Member("$anyOf"))
    return std::any_of(any->list.begin(), any->list.end(), [&](const Json& j) { return AreEqual(j, got); });
  return expected.IsList() &&
         std::equal(expected.list.begin(), expected.list.end(), got.begin(), got.end(),
                    [](const Json& j, const std::string& t) { return j.IsText() && j.text == t; });
}

bool ExpectsError(const Json& expected, int number) {
  if (const Json* any = expected.Member("$anyOf"))
    return std::any_of(any->list.begin(), any->list.end(),
                       [&](const Json& j) { return ExpectsError(j, number); });
  const Json* error = expected.Member("$error");
  return error != nullptr && static_cast<int>(error->number) == number;
}

bool SameRows(const Json& expected, const db::Recordset& rows, bool sorted, bool ignore_case) {
  if (!expected.IsList() || expected.list.size() != rows.Count()) return false;
  const auto equal = [&](const Json& row, std::size_t f) {
    if (row.list.size() != rows.Fields().size()) return false;
    for (std::size_t c = 0; c < row.list.size(); ++c)
      if (!AreEqual(row.list[c], rows.At(c, f), ignore_case)) return false;
    return true;
  };
  std::vector<bool> used(rows.Count());
  for (std::size_t i = 0; i < expected.list.size(); ++i) {
    std::size_t f = sorted ? i : 0;
    while (f < used.size() && (used[f] || !equal(expected.list[i], f))) f = sorted ? used.size() : f + 1;
    if (f >= used.size()) return false;
    used[f] = true;
  }
  return true;
}

std::string Show(const Value& value) {
  if (value.IsNull()) return "null";
  if (value.type() == Type::Text) return '"' + value.CsvText() + '"';
  return value.CsvText();
}

std::string Show(const db::Recordset& rows) {
  std::string text = "[";
  for (std::size_t f = 0; f < rows.Count(); ++f) {
    text += f > 0 ? ", [" : "[";
    for (std::size_t c = 0; c < rows.Fields().size(); ++c) text += (c > 0 ? ", " : "") + Show(rows.At(c, f));
    text += ']';
  }
  return text + ']';
}

std::string Show(const base::Error& error) {
  return "error " + (error.Number() != 0 ? std::to_string(error.Number()) + ": " : "") + error.Description();
}

}  // namespace conformance
