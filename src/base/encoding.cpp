#include "base/encoding.h"

#include <algorithm>
#include <array>

#include "base/text.h"
#include "base/text_internal.h"

namespace base {
namespace {

// The points of bytes 0x80 to 0x9F; every other byte is the point of its own number.
constexpr std::array<char32_t, 32> kHighPoints = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

char32_t PointOfByte(unsigned char b) { return b >= 0x80 && b < 0xA0 ? kHighPoints[b - 0x80U] : b; }

// The byte of a point, or 0 when the page lacks it (point 0 itself is not asked for).
unsigned char ByteOfPoint(char32_t p) {
  if (p < 0x80 || (p >= 0xA0 && p <= 0xFF)) return static_cast<unsigned char>(p);
  const auto it = std::find(kHighPoints.begin(), kHighPoints.end(), p);
  return it == kHighPoints.end() ? static_cast<unsigned char>(0)
                                 : static_cast<unsigned char>(0x80 + (it - kHighPoints.begin()));
}

void AppendPoint(std::string& text, char32_t p) {
  if (p < 0x80) {
    text += static_cast<char>(p);
  } else {
    text += FromPoints(std::u32string_view(&p, 1));
  }
}

// A file marked as UTF-8 may still hold bytes that another program appended in its code page.
std::string Utf8WithStrays(std::string_view bytes) {
  if (IsValidUtf8(bytes)) return std::string(bytes);
  std::string text;
  text.reserve(bytes.size() + 16);
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t length = internal::CharacterLength(bytes, i);
    if (length == 1) {
      AppendPoint(text, PointOfByte(static_cast<unsigned char>(bytes[i])));
    } else {
      text.append(bytes, i, length);
    }
    i += length;
  }
  return text;
}

std::string FromUtf16Bytes(std::string_view bytes, bool little_endian) {
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto a = static_cast<unsigned char>(bytes[i]), b = static_cast<unsigned char>(bytes[i + 1]);
    units += static_cast<char16_t>(little_endian ? a | b << 8 : a << 8 | b);
  }
  return FromUtf16(units);
}

}  // namespace

std::string FromCp1252(std::string_view bytes) {
  if (internal::IsAscii(bytes)) return std::string(bytes);
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (const char c : bytes) AppendPoint(text, PointOfByte(static_cast<unsigned char>(c)));
  return text;
}

std::string ToCp1252(std::string_view utf8, std::size_t* lost) {
  if (lost != nullptr) *lost = 0;
  if (internal::IsAscii(utf8)) return std::string(utf8);
  std::string bytes;
  bytes.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    const std::size_t length = internal::CharacterLength(utf8, i);
    const char32_t p = internal::PointAt(utf8, i, length);
    const unsigned char b = p == 0 ? static_cast<unsigned char>(0) : ByteOfPoint(p);
    if (b == 0 && p != 0) {
      bytes += '?';
      if (lost != nullptr) ++*lost;
    } else {
      bytes += static_cast<char>(b);
    }
    i += length;
  }
  return bytes;
}

std::string DecodeFile(std::string_view bytes) {
  if (StartsWith(bytes, "\xEF\xBB\xBF")) return Utf8WithStrays(bytes.substr(3));
  if (StartsWith(bytes, "\xFF\xFE")) return FromUtf16Bytes(bytes.substr(2), true);
  if (StartsWith(bytes, "\xFE\xFF")) return FromUtf16Bytes(bytes.substr(2), false);
  return IsValidUtf8(bytes) ? std::string(bytes) : FromCp1252(bytes);
}

bool IsValidUtf8(std::string_view bytes) {
  if (internal::IsAscii(bytes)) return true;
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t length = internal::CharacterLength(bytes, i);
    if (length == 1 && static_cast<unsigned char>(bytes[i]) >= 0x80) return false;
    i += length;
  }
  return true;
}

std::string FromUtf16(std::u16string_view text) {
  std::u32string points;
  points.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char32_t u = text[i];
    const bool high = u >= 0xD800 && u < 0xDC00;
    if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
      points += static_cast<char32_t>(0x10000 + ((u - 0xD800) << 10) + (text[++i] - 0xDC00U));
    } else {
      points += u >= 0xD800 && u < 0xE000 ? U'\uFFFD' : u;
    }
  }
  return FromPoints(points);
}

std::u16string ToUtf16(std::string_view utf8) {
  std::u16string units;
  units.reserve(utf8.size());
  for (char32_t p : ToPoints(utf8)) {
    if (p >= 0xDC80 && p <= 0xDCFF) p = 0xFFFD;  // a stray byte
    if (p >= 0x10000) {
      units += static_cast<char16_t>(0xD800 + ((p - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + ((p - 0x10000) & 0x3FF));
    } else {
      units += static_cast<char16_t>(p);
    }
  }
  return units;
}

}  // namespace base
