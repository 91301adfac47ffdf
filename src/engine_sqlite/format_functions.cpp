// Format() and the named formats.
#include "base/format.h"

#include "engine_sqlite/runtime_internal.h"

namespace engine_sqlite {
namespace {

// Null gives the empty text.
void Format(Call& l) {
  const std::string_view mask = l.Has(1) ? l.Text(1) : std::string_view();
  l.ReturnText(base::Format(l.Typed(0), mask, l.Today(), l.Locale(), l.FirstDay(2), l.FirstWeek(3)));
}

// The mask of FormatNumber and its kin from their arguments: decimals, leading zero, brackets for negative
// numbers, thousands (-1 yes, 0 no, -2 as usual).
std::string BuildMask(const Call& l, bool usual_zero, bool usual_thousands, std::string_view behind) {
  constexpr int kUsual = -2, kUsualDecimals = 2, kMostDecimals = 99;
  int decimals = l.Optional(1, -1);
  if (decimals < -1 || decimals > kMostDecimals) ThrowNumber(kInvalidCall);
  if (decimals == -1) decimals = kUsualDecimals;
  const auto option = [&](int i, bool usual) {
    const int v = l.Optional(i, kUsual);
    return v == kUsual ? usual : v != 0;
  };
  std::string number = option(4, usual_thousands) ? "#,##" : "";
  number += option(2, usual_zero) ? '0' : '#';
  if (decimals > 0) number += '.';
  number.append(static_cast<std::size_t>(decimals), '0');
  number += behind;
  if (!option(3, false)) return number;
  std::string both = number;
  both += ";(";
  both += number;
  both += ')';
  return both;
}

void FormatWithMask(Call& l, const std::string& mask) {
  l.ReturnText(base::FormatNumber(l.Number(0), mask, l.Locale()));
}

void FormatNumber(Call& l) {
  if (l.AnyNull()) return l.Null();
  FormatWithMask(l, BuildMask(l, true, true, ""));
}

void FormatPercent(Call& l) {
  if (l.AnyNull()) return l.Null();
  FormatWithMask(l, BuildMask(l, true, false, "%"));
}

void FormatCurrency(Call& l) {
  if (l.AnyNull()) return l.Null();
  std::string sign = "\"";
  sign += l.Locale().currency;
  sign += '"';
  const bool behind = l.Locale().currency_behind;
  std::string mask = BuildMask(l, true, true, behind ? ' ' + sign : std::string());
  if (!behind) {
    mask.insert(0, sign);
    const std::size_t negatives = mask.find(";(");
    if (negatives != std::string::npos) mask.insert(negatives + 2, sign);
  }
  FormatWithMask(l, mask);
}

void FormatDateTime(Call& l) {
  if (l.AnyNull()) return l.Null();
  constexpr std::string_view kFormats[] = {"General Date", "Long Date", "Short Date", "Long Time",
                                           "Short Time"};
  const int which = l.Optional(1, 0);
  if (which < 0 || which > 4) ThrowNumber(kInvalidCall);
  l.ReturnText(base::FormatDate(l.Date(0), kFormats[which], l.Locale()));
}

constexpr Implementation kFunctions[] = {
    {"FORMAT", Format},
    {"FORMATCURRENCY", FormatCurrency},
    {"FORMATDATETIME", FormatDateTime},
    {"FORMATNUMBER", FormatNumber},
    {"FORMATPERCENT", FormatPercent},
};

}  // namespace

std::span<const Implementation> FormatFunctions() { return kFunctions; }

}  // namespace engine_sqlite
