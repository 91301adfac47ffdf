#include "base/text.h"

#include <algorithm>

#include "base/text_internal.h"

namespace base {
namespace internal {

std::size_t CharacterLength(std::string_view text, std::size_t i) {
  const auto byte = [&](std::size_t k) -> unsigned {
    return i + k < text.size() ? static_cast<unsigned char>(text[i + k]) : 0U;
  };
  const auto continues = [&](std::size_t k) { return (byte(k) & 0xC0U) == 0x80U; };
  const unsigned b = byte(0);
  if (b < 0xC2) return 1;
  if (b < 0xE0) return continues(1) ? 2 : 1;
  if (b < 0xF0) {
    if (!continues(1) || !continues(2)) return 1;
    if (b == 0xE0 && byte(1) < 0xA0) return 1;   // overlong
    if (b == 0xED && byte(1) >= 0xA0) return 1;  // surrogate
    return 3;
  }
  if (b > 0xF4 || !continues(1) || !continues(2) || !continues(3)) return 1;
  if ((b == 0xF0 && byte(1) < 0x90) || (b == 0xF4 && byte(1) >= 0x90)) return 1;
  return 4;
}

char32_t PointAt(std::string_view text, std::size_t i, std::size_t length) {
  const auto b = [&](std::size_t k) {
    return static_cast<char32_t>(static_cast<unsigned char>(text[i + k]));
  };
  switch (length) {
    case 2:
      return (b(0) & 0x1F) << 6 | (b(1) & 0x3F);
    case 3:
      return (b(0) & 0x0F) << 12 | (b(1) & 0x3F) << 6 | (b(2) & 0x3F);
    case 4:
      return (b(0) & 0x07) << 18 | (b(1) & 0x3F) << 12 | (b(2) & 0x3F) << 6 | (b(3) & 0x3F);
    default:
      return b(0) < 0x80 ? b(0) : 0xDC00 + b(0);
  }
}

}  // namespace internal

namespace {

// Byte offset of the character after `count` characters counted from byte `from`, at most the end.
std::size_t Advance(std::string_view text, std::size_t from, std::size_t count) {
  std::size_t i = from;
  for (; count > 0 && i < text.size(); --count)
    i += static_cast<unsigned char>(text[i]) < 0x80 ? 1 : internal::CharacterLength(text, i);
  return i;
}

bool EqualAsciiIgnoringCase(const char* a, const char* b, std::size_t length) {
  for (std::size_t i = 0; i < length; ++i)
    if (internal::LowerAscii(a[i]) != internal::LowerAscii(b[i])) return false;
  return true;
}

}  // namespace

std::string_view TrimView(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

std::string Trim(std::string_view text) { return std::string(TrimView(text)); }

std::size_t Length(std::string_view text) {
  if (internal::IsAscii(text)) return text.size();
  std::size_t n = 0;
  for (std::size_t i = 0; i < text.size(); ++n) i += internal::CharacterLength(text, i);
  return n;
}

std::string Mid(std::string_view text, std::ptrdiff_t from, std::ptrdiff_t count) {
  const std::size_t start = from <= 1 ? 0 : Advance(text, 0, static_cast<std::size_t>(from - 1));
  if (count < 0) return std::string(text.substr(start));
  const std::size_t end = Advance(text, start, static_cast<std::size_t>(count));
  return std::string(text.substr(start, end - start));
}

std::string Left(std::string_view text, std::ptrdiff_t count) {
  return count <= 0 ? std::string() : Mid(text, 1, count);
}

std::string Right(std::string_view text, std::ptrdiff_t count) {
  if (count <= 0) return {};
  const auto length = static_cast<std::ptrdiff_t>(Length(text));
  return count >= length ? std::string(text) : Mid(text, length - count + 1);
}

std::size_t Find(std::string_view text, std::string_view needle, std::size_t from, Compare mode) {
  if (mode == Compare::Exact) return text.find(needle, from);
  if (from > text.size()) return std::string_view::npos;
  if (needle.empty()) return from;
  if (!internal::IsAscii(needle)) {
    const std::size_t found = LowerCase(text.substr(from)).find(LowerCase(needle));
    return found == std::string::npos ? found : found + from;
  }
  const char first = internal::LowerAscii(needle[0]);
  for (std::size_t i = from; i + needle.size() <= text.size(); ++i)
    if (internal::LowerAscii(text[i]) == first &&
        EqualAsciiIgnoringCase(text.data() + i, needle.data(), needle.size()))
      return i;
  return std::string_view::npos;
}

bool Contains(std::string_view text, std::string_view needle, Compare mode) {
  return Find(text, needle, 0, mode) != std::string_view::npos;
}

std::string Replace(std::string_view text, std::string_view from, std::string_view with, Compare mode) {
  if (from.empty()) return std::string(text);
  // Case folding keeps byte lengths, so that the offsets found in the folded text hold in the text.
  std::string folded, folded_from;
  std::string_view where = text, what = from;
  if (mode == Compare::IgnoringCase && !internal::IsAscii(from)) {
    folded = LowerCase(text);
    folded_from = LowerCase(from);
    where = folded;
    what = folded_from;
    mode = Compare::Exact;
  }
  std::string output;
  std::size_t i = 0;
  for (std::size_t h; (h = Find(where, what, i, mode)) != std::string_view::npos; i = h + from.size())
    output.append(text, i, h - i).append(with);
  return output.append(text.substr(i));
}

void SplitViews(std::string_view text, std::string_view separator, std::vector<std::string_view>& pieces) {
  pieces.clear();
  std::size_t i = 0;
  if (!separator.empty())
    for (std::size_t h; (h = text.find(separator, i)) != std::string_view::npos; i = h + separator.size())
      pieces.push_back(text.substr(i, h - i));
  pieces.push_back(text.substr(i));
}

std::vector<std::string> Split(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> views;
  SplitViews(text, separator, views);
  return {views.begin(), views.end()};
}

std::vector<std::string_view> SplitLines(std::string_view text) {
  constexpr std::size_t kNone = std::string_view::npos;
  std::vector<std::string_view> lines;
  std::size_t start = 0, lf = text.find('\n'), cr = text.find('\r');
  while (lf != kNone || cr != kNone) {
    const std::size_t end = std::min(lf, cr);
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
    if (end == cr && lf == start) ++start;  // one end of two characters
    // Each looks on from where it found its last one, so that both together pass over the text once.
    if (cr != kNone && cr < start) cr = text.find('\r', start);
    if (lf != kNone && lf < start) lf = text.find('\n', start);
  }
  lines.push_back(text.substr(start));
  return lines;
}

std::vector<std::string> SplitClassic(std::string_view text, std::string_view separator, int limit,
                                      Compare mode) {
  std::vector<std::string> pieces;
  if (text.empty() || limit == 0) return pieces;
  std::size_t i = 0;
  while (!separator.empty() && (limit < 0 || pieces.size() + 1 < static_cast<std::size_t>(limit))) {
    const std::size_t h = Find(text, separator, i, mode);
    if (h == std::string_view::npos) break;
    pieces.emplace_back(text.substr(i, h - i));
    i = h + separator.size();
  }
  pieces.emplace_back(text.substr(i));
  return pieces;
}

std::string Join(const std::vector<std::string>& pieces, std::string_view separator) {
  std::string output;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    if (i > 0) output += separator;
    output += pieces[i];
  }
  return output;
}

bool StartsWith(std::string_view text, std::string_view prefix, Compare mode) {
  if (text.size() < prefix.size()) return false;
  const std::string_view start = text.substr(0, prefix.size());
  return mode == Compare::Exact ? start == prefix : EqualIgnoringCase(start, prefix);
}

bool EndsWith(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

std::string EscapeQuotes(std::string_view text) { return Replace(text, "'", "''"); }

std::u32string ToPoints(std::string_view text) {
  std::u32string points;
  points.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = internal::CharacterLength(text, i);
    points += internal::PointAt(text, i, length);
    i += length;
  }
  return points;
}

std::string FromPoints(std::u32string_view points) {
  std::string text;
  text.reserve(points.size());
  const auto byte = [&](char32_t b) { text += static_cast<char>(static_cast<unsigned char>(b)); };
  for (const char32_t p : points) {
    if (p < 0x80) {
      byte(p);
    } else if (p < 0x800) {
      byte(0xC0 | p >> 6);
      byte(0x80 | (p & 0x3F));
    } else if (p >= 0xDC80 && p <= 0xDCFF) {
      byte(p - 0xDC00);
    } else if ((p >= 0xD800 && p <= 0xDFFF) || p > 0x10FFFF) {
      text += "\xEF\xBF\xBD";
    } else if (p < 0x10000) {
      byte(0xE0 | p >> 12);
      byte(0x80 | (p >> 6 & 0x3F));
      byte(0x80 | (p & 0x3F));
    } else {
      byte(0xF0 | p >> 18);
      byte(0x80 | (p >> 12 & 0x3F));
      byte(0x80 | (p >> 6 & 0x3F));
      byte(0x80 | (p & 0x3F));
    }
  }
  return text;
}

}  // namespace base
