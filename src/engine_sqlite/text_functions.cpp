// The text functions of the dialect. Positions and lengths count characters. A text that is Null gives Null;
// a position, a length or a code that is Null is an error, as in classic Basic.
#include <limits>

#include "base/dialect_number.h"
#include "base/encoding.h"
#include "base/text.h"
#include "engine_sqlite/runtime_internal.h"
#include "engine_sqlite/text_search_internal.h"

namespace engine_sqlite {
namespace {

constexpr std::int64_t kLongestText = 1 << 26;  // of Space, String and Replace: a typing slip, not a text

void VerifyLength(std::int64_t length) {
  if (length > kLongestText) throw base::Error("No hay espacio para un texto tan largo.", 14);
}

std::int64_t NonNegative(const Call& l, int i) {
  const std::int64_t n = l.Integer32(i);
  if (n < 0) ThrowNumber(kInvalidCall);
  return n;
}

void Len(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnInteger(Characters(l.Text(0)));
}

void Left(Call& l) {
  if (l.IsNull(0)) return l.Null();
  const std::int64_t n = NonNegative(l, 1);
  const std::string_view text = l.Text(0);
  l.ReturnText(text.substr(0, AdvanceCharacters(text, 0, n)));
}

void Right(Call& l) {
  if (l.IsNull(0)) return l.Null();
  const std::int64_t n = NonNegative(l, 1);
  const std::string_view text = l.Text(0);
  const std::int64_t surplus = Characters(text) - n;
  l.ReturnText(surplus <= 0 ? text : text.substr(AdvanceCharacters(text, 0, surplus)));
}

void Mid(Call& l) {
  if (l.IsNull(0)) return l.Null();
  const std::int64_t start = l.Integer32(1);
  if (start < 1) ThrowNumber(kInvalidCall);
  const std::int64_t n = l.Has(2) ? NonNegative(l, 2) : std::numeric_limits<std::int64_t>::max();
  const std::string_view text = l.Text(0);
  const std::size_t from = AdvanceCharacters(text, 0, start - 1);
  l.ReturnText(text.substr(from, AdvanceCharacters(text, from, n) - from));
}

template <bool kLeft, bool kRight>
void Trim(Call& l) {
  if (l.IsNull(0)) return l.Null();
  std::string_view text = l.Text(0);
  while (kLeft && !text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (kRight && !text.empty() && text.back() == ' ') text.remove_suffix(1);
  l.ReturnText(text);
}

void UCase(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnText(base::UpperCase(l.Text(0)));
}

void LCase(Call& l) {
  if (l.IsNull(0)) return l.Null();
  l.ReturnText(base::LowerCase(l.Text(0)));
}

void InStr(Call& l) {
  const int t = l.Count() > 2 ? 1 : 0;  // with a third argument the first is the start
  if (t == 1 && l.IsNull(0)) ThrowNumber(kInvalidUseOfNull);
  const std::int64_t start = t == 1 ? l.Integer32(0) : 1;
  if (start < 1) ThrowNumber(kInvalidCall);
  if (l.IsNull(t) || l.IsNull(t + 1)) return l.Null();
  const TextMode mode = ReadMode(l, t + 2);
  const std::string_view text = l.Text(t), needle = l.Text(t + 1);
  const std::size_t from = AdvanceCharacters(text, 0, start - 1);
  if (from >= text.size()) return l.ReturnInteger(0);
  if (needle.empty()) return l.ReturnInteger(start);
  const Match h = FindFrom(text, needle, from, mode);
  l.ReturnInteger(h.Has() ? start + Characters(text.substr(from, h.from - from)) : 0);
}

// The last occurrence that ends at or before character `end`.
void InStrRev(Call& l) {
  if (l.IsNull(0) || l.IsNull(1)) return l.Null();
  std::int64_t end = l.Optional(2, -1);
  if (end == 0 || end < -1) ThrowNumber(kInvalidCall);
  const TextMode mode = ReadMode(l, 3);
  const std::string_view text = l.Text(0), needle = l.Text(1);
  const std::int64_t length = Characters(text);
  if (end == -1) end = length;
  if (length == 0 || end > length) return l.ReturnInteger(0);
  if (needle.empty()) return l.ReturnInteger(end);
  const std::string_view part = text.substr(0, AdvanceCharacters(text, 0, end));
  std::int64_t found = 0, position = 1;
  for (std::size_t i = 0; i < part.size(); ++position) {
    if (OccursAt(part, needle, i, mode) != 0) found = position;
    base::NextPoint(part, i);
  }
  l.ReturnInteger(found);
}

// The result begins at the start position: what stands before is lost.
void Replace(Call& l) {
  if (l.AnyNull()) ThrowNumber(kInvalidUseOfNull);
  const std::int64_t start = l.Optional(3, 1);
  std::int64_t remaining = l.Optional(4, -1);
  if (start < 1 || remaining < -1) ThrowNumber(kInvalidCall);
  const TextMode mode = ReadMode(l, 5);
  std::string_view text = l.Text(0);
  const std::string_view from = l.Text(1), with = l.Text(2);
  text = text.substr(AdvanceCharacters(text, 0, start - 1));
  std::string output;
  std::size_t i = 0;
  while (!from.empty() && remaining != 0) {
    const Match h = FindFrom(text, from, i, mode);
    if (!h.Has()) break;
    output += text.substr(i, h.from - i);
    output += with;
    VerifyLength(static_cast<std::int64_t>(output.size()));
    i = h.from + h.length;
    if (remaining > 0) --remaining;
  }
  output += text.substr(i);
  l.ReturnText(output);
}

void StrComp(Call& l) {
  if (l.IsNull(0) || l.IsNull(1)) return l.Null();
  const TextMode mode = ReadMode(l, 2);
  const std::string_view a = l.Text(0), b = l.Text(1);
  if (mode == TextMode::Base) return l.ReturnInteger(base::CompareText(a, b, l.Environment().order));
  if (mode == TextMode::Text) return l.ReturnInteger(CompareAsText(a, b, l.Environment().order));
  const int order = a.compare(b);
  l.ReturnInteger(order < 0 ? -1 : (order > 0 ? 1 : 0));
}

void StrReverse(Call& l) {
  if (l.IsNull(0)) ThrowNumber(kInvalidUseOfNull);
  const std::string_view text = l.Text(0);
  std::string output(text.size(), '\0');
  std::size_t target = text.size();
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t from = i;
    base::NextPoint(text, i);
    target -= i - from;
    output.replace(target, i - from, text.substr(from, i - from));
  }
  l.ReturnText(output);
}

void Space(Call& l) {
  const std::int64_t n = NonNegative(l, 0);
  VerifyLength(n);
  l.ReturnText(std::string(static_cast<std::size_t>(n), ' '));
}

void Repeat(Call& l) {
  if (l.AnyNull()) return l.Null();
  const std::int64_t n = NonNegative(l, 0);
  VerifyLength(n);
  std::string character;
  if (l.IsText(1)) {
    const std::string_view text = l.Text(1);
    if (text.empty()) ThrowNumber(kInvalidCall);
    character = text.substr(0, AdvanceCharacters(text, 0, 1));
  } else {
    const char code = static_cast<char>(static_cast<unsigned char>(l.Integer32(1) & 0xFF));
    character = base::FromCp1252(std::string_view(&code, 1));
  }
  std::string output;
  output.reserve(character.size() * static_cast<std::size_t>(n));
  for (std::int64_t i = 0; i < n; ++i) output += character;
  l.ReturnText(output);
}

void Chr(Call& l) {
  const std::int32_t n = l.Integer32(0);
  if (n < 0 || n > 255) ThrowNumber(kInvalidCall);
  const char code = static_cast<char>(static_cast<unsigned char>(n));
  l.ReturnText(base::FromCp1252(std::string_view(&code, 1)));
}

void ChrW(Call& l) {
  const std::int32_t n = l.Integer32(0);
  if (n < -32768 || n > 65535) ThrowNumber(kInvalidCall);
  const auto point = static_cast<char32_t>(n & 0xFFFF);
  l.ReturnText(base::FromPoints(std::u32string_view(&point, 1)));
}

void Asc(Call& l) {
  if (l.IsNull(0)) ThrowNumber(kInvalidUseOfNull);
  const std::string_view text = l.Text(0);
  if (text.empty()) ThrowNumber(kInvalidCall);
  const std::string byte = base::ToCp1252(text.substr(0, AdvanceCharacters(text, 0, 1)));
  l.ReturnInteger(static_cast<unsigned char>(byte.at(0)));
}

void AscW(Call& l) {
  if (l.IsNull(0)) ThrowNumber(kInvalidUseOfNull);
  const std::string_view text = l.Text(0);
  if (text.empty()) ThrowNumber(kInvalidCall);
  std::size_t i = 0;
  const char32_t c = base::NextPoint(text, i);
  const char32_t unit = c > 0xFFFF ? 0xD800 + ((c - 0x10000) >> 10) : c;
  l.ReturnInteger(static_cast<std::int16_t>(static_cast<std::uint16_t>(unit)));
}

std::string ProperCase(std::string_view text) {
  std::string output;
  bool start = true;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t from = i;
    const char32_t c = base::NextPoint(text, i);
    const std::string_view letter = text.substr(from, i - from);
    output += start ? base::UpperCase(letter) : base::LowerCase(letter);
    start = c == ' ' || c == 0 || (c >= '\t' && c <= '\r');
  }
  return output;
}

void StrConv(Call& l) {
  if (l.IsNull(0)) return l.Null();
  const std::string_view text = l.Text(0);
  switch (l.Integer32(1)) {
    case 1:
      return l.ReturnText(base::UpperCase(text));
    case 2:
      return l.ReturnText(base::LowerCase(text));
    case 3:
      return l.ReturnText(ProperCase(text));
    default:
      ThrowNumber(kInvalidCall);
  }
}

constexpr Implementation kFunctions[] = {
    {"ASC", Asc},
    {"ASCW", AscW},
    {"CHR", Chr},
    {"CHRW", ChrW},
    {"INSTR", InStr},
    {"INSTRREV", InStrRev},
    {"LCASE", LCase},
    {"LEFT", Left},
    {"LEN", Len},
    {"LTRIM", Trim<true, false>},
    {"MID", Mid},
    {"REPLACE", Replace},
    {"RIGHT", Right},
    {"RTRIM", Trim<false, true>},
    {"SPACE", Space},
    {"STRCOMP", StrComp},
    {"STRCONV", StrConv},
    {"STRING", Repeat},
    {"STRREVERSE", StrReverse},
    {"TRIM", Trim<true, true>},
    {"UCASE", UCase},
};

}  // namespace

std::span<const Implementation> TextFunctions() { return kFunctions; }

}  // namespace engine_sqlite
