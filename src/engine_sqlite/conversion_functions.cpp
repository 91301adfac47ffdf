// The conversion functions of the dialect and the questions about a value's type. A conversion of Null is
// Null.
#include <cmath>
#include <limits>
#include <optional>

#include "base/currency.h"
#include "base/dialect_number.h"
#include "base/number.h"
#include "base/text.h"
#include "engine_sqlite/conversion_internal.h"

namespace engine_sqlite {
namespace {

// The width of "&HFFFF" is that of the target: 65535 as a Long, -1 as an Integer.
void CInt(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnInteger(l.Typed(0).ShortInteger(l.Locale()));
}

void CLng(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnInteger(l.Typed(0).Integer(l.Locale()));
}

void CByte(Call& l) {
  if (l.IsNull(0)) return l.Null();
  const std::int64_t v = l.Integer(0);
  if (v < 0 || v > 255) ThrowNumber(kOverflow);
  l.ReturnInteger(v);
}

void CStr(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnText(l.Text(0));
}

// With "." whatever the locale, and a blank where a minus would stand.
void Str(Call& l) {
  if (l.IsNull(0)) return l.Null();
  const double v = l.Number(0);
  const std::string text = l.Letter(0) == 'S' ? base::SqlSingle(static_cast<float>(v)) : base::SqlNumber(v);
  l.ReturnText(v < 0 ? text : " " + text);
}

// A single has more digits than it shows, and a double shows them.
void CDbl(Call& l) {
  if (l.IsNull(0)) return l.Null();
  const double v = l.Number(0);
  l.ReturnNumber(l.Letter(0) == 'S' ? static_cast<double>(static_cast<float>(v)) : v);
}

void CVar(Call& l) { l.ReturnArgument(0); }

// In two's complement: 16 bits of a small negative whole number, which is an Integer, 32 of any other value.
std::uint32_t Bits(const Call& l) {
  const std::int64_t v = l.Integer(0);
  const bool is_short =
      !l.IsText(0) && l.Numeric(0).whole && v < 0 && v > std::numeric_limits<std::int16_t>::min();
  if (is_short) return static_cast<std::uint16_t>(v);
  if (v < std::numeric_limits<std::int32_t>::min() || v > std::numeric_limits<std::uint32_t>::max())
    ThrowNumber(kOverflow);
  return static_cast<std::uint32_t>(v);
}

template <unsigned kBitsPerDigit>
void InBase(Call& l) {
  if (l.IsNull(0)) return l.Null();
  std::uint32_t v = Bits(l);
  std::string text;
  do {
    text.insert(text.begin(), "0123456789ABCDEF"[v & ((1U << kBitsPerDigit) - 1)]);
    v >>= kBitsPerDigit;
  } while (v != 0);
  l.ReturnText(text);
}

void IsNumeric(Call& l) {
  const char letter = l.Letter(0);
  if (letter == 'T') return l.ReturnBoolean(base::IsNumeric(l.Text(0), l.Locale()));
  l.ReturnBoolean(!l.IsNull(0) && letter != 'D');
}

void IsDate(Call& l) {
  const char letter = l.Letter(0);
  if (letter == 'T') return l.ReturnBoolean(base::IsDate(l.Text(0), l.Today(), l.Locale()));
  l.ReturnBoolean(!l.IsNull(0) && letter == 'D');
}

// No value of a row is Empty or an error: an error ends the statement.
void IsEmpty(Call& l) { l.ReturnBoolean(false); }

// Files without users of their own have this one.
void CurrentUser(Call& l) { l.ReturnText("Admin"); }

// Without a second argument a Null becomes the empty text.
void Nz(Call& l) {
  if (!l.IsNull(0)) return l.ReturnArgument(0);
  l.Has(1) ? l.ReturnArgument(1) : l.ReturnText("");
}

struct ValueKind {
  char letter;
  int code;
  std::string_view name;
};
constexpr ValueKind kKinds[] = {
    {'?', 1, "Null"},     {'I', 3, "Long"}, {'S', 4, "Single"}, {'N', 5, "Double"},
    {'C', 6, "Currency"}, {'D', 7, "Date"}, {'T', 8, "String"}, {'B', 11, "Boolean"},
};

const ValueKind& Kind(const Call& l) {
  if (!l.IsNull(0))
    for (const ValueKind& c : kKinds)
      if (c.letter == l.Letter(0)) return c;
  return kKinds[0];
}

void TypeName(Call& l) { l.ReturnText(Kind(l).name); }
void VarType(Call& l) { l.ReturnInteger(Kind(l).code); }

std::optional<double> ClassicVal(std::string_view text) {
  try {
    return base::Val(text);
  } catch (const base::Error&) {
    return std::nullopt;
  }
}

// What stands before the type sign or the letter of the exponent; the whole text where there is none.
std::string_view WithoutTypeSign(std::string_view text) {
  constexpr std::size_t kMark = 2;  // of "&H"
  const bool hex = !text.empty() && text.front() == '&';
  return text.substr(0, text.find_first_of("%&!@", hex ? kMark : 0));
}
std::string_view WithoutExponent(std::string_view text) {
  const bool hex = !text.empty() && text.front() == '&';
  return hex ? text : text.substr(0, text.find_first_of("eEdD"));
}

// A number that the function would fail for ends before what it cannot be: its type sign, its exponent, the
// digit that no longer fits. One odd text must not fail a query over a whole table.
double ValThatNeverFails(std::string_view text) {
  text = base::TrimView(text);
  for (const std::string_view piece : {text, WithoutTypeSign(text), WithoutExponent(WithoutTypeSign(text))})
    if (const auto number = ClassicVal(piece)) return *number;
  const std::string_view digits = WithoutExponent(WithoutTypeSign(text));
  std::size_t fits = 0, too_long = digits.size();
  while (fits + 1 < too_long) {
    const std::size_t middle = fits + (too_long - fits) / 2;
    (ClassicVal(digits.substr(0, middle)) ? fits : too_long) = middle;
  }
  return ClassicVal(digits.substr(0, fits)).value_or(0);
}

void Val(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnNumber(ValThatNeverFails(l.Text(0)));
}

constexpr Implementation kFunctions[] = {
    {"CBOOL", ToBoolean}, {"CBYTE", CByte},         {"CCUR", ToCurrency}, {"CDATE", ToDate},
    {"CDBL", CDbl},       {"CDEC", ToNumber},       {"CINT", CInt},       {"CLNG", CLng},
    {"CSNG", ToSingle},   {"CSTR", CStr},           {"CVAR", CVar},       {"CURRENTUSER", CurrentUser},
    {"CVDATE", ToDate},   {"ISERROR", IsEmpty},     {"HEX", InBase<4>},   {"ISDATE", IsDate},
    {"ISEMPTY", IsEmpty}, {"ISNUMERIC", IsNumeric}, {"NZ", Nz},           {"OCT", InBase<3>},
    {"STR", Str},         {"TYPENAME", TypeName},   {"VAL", Val},         {"VARTYPE", VarType},
};

}  // namespace

void ToSingle(Call& l) {
  if (l.IsNull(0)) return l.Null();
  const auto single = static_cast<float>(l.Number(0));
  if (!std::isfinite(single)) ThrowNumber(kOverflow);
  l.ReturnNumber(base::DoubleOfSingle(single));
}

void AsSingle(Call& l) {
  if (l.IsNull(0)) return l.Null();
  const auto single = static_cast<float>(l.Number(0));
  std::isfinite(single) ? l.ReturnNumber(base::DoubleOfSingle(single)) : l.ReturnArgument(0);
}

void ToCurrency(Call& l) {
  if (l.IsNull(0)) return l.Null();
  const double v = l.Number(0);
  if (!(std::abs(v) <= base::kLastCurrency)) ThrowNumber(kOverflow);
  l.ReturnNumber(base::Round(v, 4));
}

void ToNumber(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnNumber(l.Number(0));
}

void ToDate(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnDate(l.Date(0));
}

void ToBoolean(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnBoolean(l.Typed(0).Boolean(l.Locale()));
}

std::span<const Implementation> ConversionFunctions() { return kFunctions; }

}  // namespace engine_sqlite
