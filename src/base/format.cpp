#include "base/format.h"

#include <array>
#include <optional>

#include "base/dialect_number.h"
#include "base/format_internal.h"
#include "base/number.h"
#include "base/text.h"
#include "base/text_internal.h"

namespace base {
namespace internal {

std::string_view MaskOfName(std::string_view mask, const Locale& locale) {
  struct Name {
    std::string_view name, mask;
  };
  const std::array<Name, 11> kNames = {{{"General Date", "c"},
                                        {"Long Date", locale.long_date},
                                        {"Medium Date", "dd-mmm-yy"},
                                        {"Short Date", locale.short_date},
                                        {"Long Time", locale.time},
                                        {"Medium Time", "hh:nn AM/PM"},
                                        {"Short Time", "hh:nn"},
                                        {"Fixed", "0.00"},
                                        {"Standard", "#,##0.00"},
                                        {"Percent", "0.00%"},
                                        {"Scientific", "0.00E+00"}}};
  // Every name is longer than the short masks that the program itself uses.
  if (mask.size() < 5 || mask.size() > 12) return mask;
  for (const auto& n : kNames)
    if (EqualIgnoringCase(n.name, mask)) return n.mask;
  return mask;
}

MaskKind KindOf(std::string_view mask) {
  std::string ignored;
  for (std::size_t i = 0; i < mask.size();) {
    if (TakeLiteral(mask, i, ignored)) continue;
    switch (LowerAscii(mask[i])) {
      case '@':
      case '&':
      case '!':
      case '<':
      case '>':
        return MaskKind::Text;
      case 'd':
      case 'm':
      case 'y':
      case 'h':
      case 'n':
      case 's':
      case 'q':
      case 'w':
      case 'c':
      case '/':
      case ':':
        return MaskKind::Date;
      case 'a':
        if (DayHalfLength(mask, i) > 0) return MaskKind::Date;
        break;
      case 't':
        if (EqualIgnoringCase(mask.substr(i, 5), "ttttt")) return MaskKind::Date;
        break;
      case '0':
      case '#':
      case '%':
      case '.':
      case ',':
      case ';':
        return MaskKind::Number;
      default:
        break;
    }
    ++i;
  }
  return MaskKind::Number;
}

bool TakeLiteral(std::string_view mask, std::size_t& i, std::string& output) {
  if (mask[i] == '\\') {
    if (++i >= mask.size()) return true;
    const std::size_t length = CharacterLength(mask, i);
    output.append(mask, i, length);
    i += length;
    return true;
  }
  if (mask[i] != '"') return false;
  const std::size_t end = mask.find('"', i + 1);
  output.append(mask.substr(i + 1, end == std::string_view::npos ? end : end - i - 1));
  i = end == std::string_view::npos ? mask.size() : end + 1;
  return true;
}

std::vector<std::string_view> Sections(std::string_view mask) {
  std::vector<std::string_view> sections;
  std::string ignored;
  std::size_t start = 0;
  for (std::size_t i = 0; i < mask.size();) {
    if (TakeLiteral(mask, i, ignored)) continue;
    if (mask[i] == ';') {
      sections.push_back(mask.substr(start, i - start));
      start = i + 1;
    }
    ++i;
  }
  sections.push_back(mask.substr(start));
  return sections;
}

std::string ApplyTextMask(std::string_view text, std::string_view mask) {
  const auto sections = Sections(mask);
  if (text.empty() && sections.size() == 1) return {};
  mask = text.empty() ? sections[1] : sections[0];
  bool from_left = false;
  std::string (*convert)(std::string_view) = nullptr;
  std::size_t places = 0;
  std::string ignored;
  for (std::size_t i = 0; i < mask.size();) {
    if (TakeLiteral(mask, i, ignored)) continue;
    const char c = mask[i++];
    if (c == '!') from_left = true;
    if (c == '<') convert = LowerCase;
    if (c == '>') convert = UpperCase;
    if (c == '@' || c == '&') ++places;
  }
  const std::string changed = convert == nullptr ? std::string(text) : convert(text);
  std::u32string letters = ToPoints(changed);
  // Filled from the right, missing characters are missed in front; filled from the left, behind, and a text
  // that is too long loses its first ones.
  std::size_t empty_places = !from_left && letters.size() < places ? places - letters.size() : 0;
  if (from_left && places > 0 && letters.size() > places) letters.erase(0, letters.size() - places);
  std::string output;
  std::size_t k = 0;
  for (std::size_t i = 0; i < mask.size();) {
    if (TakeLiteral(mask, i, output)) continue;
    const char c = mask[i++];
    if (c == '!' || c == '<' || c == '>') continue;
    if (c != '@' && c != '&') {
      output += c;
    } else if (empty_places > 0 || k >= letters.size()) {
      if (empty_places > 0) --empty_places;
      if (c == '@') output += ' ';
    } else {
      output += FromPoints({&letters[k++], 1});
    }
  }
  return output += FromPoints(std::u32string_view(letters).substr(k));
}

}  // namespace internal

namespace {

using internal::MaskKind;

// The words of a mask that is no mask: what it prints for a number, none for every other mask.
std::optional<std::string> FormatAsWord(double number, std::string_view mask, const Locale& locale) {
  const bool truth = number != 0;
  if (EqualIgnoringCase(mask, "General Number")) return NumberText(number, locale);
  if (EqualIgnoringCase(mask, "Yes/No")) return truth ? locale.yes : locale.no;
  if (EqualIgnoringCase(mask, "True/False")) return truth ? locale.true_word : locale.false_word;
  if (EqualIgnoringCase(mask, "On/Off")) return truth ? locale.on : locale.off;
  if (!EqualIgnoringCase(mask, "Currency")) return std::nullopt;
  const std::string digits = FormatNumber(number < 0 ? -number : number, "#,##0.00", locale);
  if (locale.currency_behind) return (number < 0 ? "-" : "") + digits + " " + locale.currency;
  return number < 0 ? "(" + locale.currency + digits + ")" : locale.currency + digits;
}

bool IsWord(std::string_view mask) {
  for (const std::string_view name : {"General Number", "Yes/No", "True/False", "On/Off", "Currency"})
    if (EqualIgnoringCase(mask, name)) return true;
  return false;
}

std::string FormatOfText(const std::string& text, std::string_view mask, bool for_date, Date today,
                         const Locale& locale, int first_day, int first_week) {
  if (for_date) {
    const auto date = DateFromText(text, today, locale);
    return date ? internal::ApplyDateMask(*date, mask, locale, first_day, first_week) : text;
  }
  if (const auto number = DialectNumber(text, locale)) return FormatNumber(*number, mask, locale);
  const auto date = DateFromText(text, today, locale);
  return date ? FormatNumber(date->serial, mask, locale) : text;
}

}  // namespace

std::string Format(const Value& value, std::string_view mask, Date today, const Locale& locale, int first_day,
                   int first_week) {
  mask = internal::MaskOfName(mask, locale);
  if (mask.empty()) return value.Text(locale);
  const MaskKind kind = IsWord(mask) ? MaskKind::Number : internal::KindOf(mask);
  if (kind == MaskKind::Text) return internal::ApplyTextMask(value.Text(locale), mask);
  if (value.IsNull()) {
    const auto sections = internal::Sections(mask);
    if (kind != MaskKind::Number || sections.size() < 4) return {};
    return FormatNumber(0, sections[3], locale);
  }
  const bool for_date = kind == MaskKind::Date;
  if (const auto* text = value.GetIf<std::string>())
    return FormatOfText(*text, mask, for_date, today, locale, first_day, first_week);
  const double number =
      value.type() == Type::Single ? DoubleOfSingle(*value.GetIf<float>()) : value.Number(locale);
  if (for_date) return internal::ApplyDateMask({number}, mask, locale, first_day, first_week);
  return FormatNumber(number, mask, locale);
}

std::string FormatDate(Date date, std::string_view mask, const Locale& locale) {
  mask = internal::MaskOfName(mask, locale);
  if (mask.empty()) return DateText(date, locale);
  return internal::ApplyDateMask(date, mask, locale, 1, 1);
}

std::string FormatNumber(double number, std::string_view mask, const Locale& locale) {
  if (const auto word = FormatAsWord(number, mask, locale)) return *word;
  mask = internal::MaskOfName(mask, locale);
  if (mask.empty()) return NumberText(number, locale);
  return internal::ApplyNumberMask(number, mask, locale);
}

}  // namespace base
