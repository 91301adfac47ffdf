// Upper and lower case of the alphabets that a payroll base may hold.
#include <cstring>
#include <string>

#include "base/text.h"
#include "base/text_internal.h"

namespace base {
namespace internal {
namespace {

// Blocks where capital and small letters alternate; `even_upper_case` tells which of them is even.
struct Alternating {
  char32_t from, to;
  bool even_upper_case;
};
constexpr Alternating kAlternating[] = {
    {0x100, 0x12F, true}, {0x132, 0x137, true},  {0x139, 0x148, false},
    {0x14A, 0x177, true}, {0x179, 0x17E, false}, {0x460, 0x481, true},
    {0x48A, 0x4BF, true}, {0x4C1, 0x4CE, false}, {0x4D0, 0x52F, true},
};

// Runs of capitals whose small letters lie at a fixed distance.
struct Shifted {
  char32_t from, to;  // of the capitals
  int distance;
};
constexpr Shifted kShifted[] = {
    {0xC0, 0xD6, 32},   {0xD8, 0xDE, 32},   {0x178, 0x178, -121}, {0x386, 0x386, 38},
    {0x388, 0x38A, 37}, {0x38C, 0x38C, 64}, {0x38E, 0x38F, 63},   {0x391, 0x3A1, 32},
    {0x3A3, 0x3AB, 32}, {0x400, 0x40F, 80}, {0x410, 0x42F, 32},   {0x4C0, 0x4C0, 15},
};

char32_t Shift(char32_t point, int distance) {
  return static_cast<char32_t>(static_cast<int>(point) + distance);
}

}  // namespace

char32_t UpperCasePoint(char32_t point) {
  if (point < 0x80) return point >= 'a' && point <= 'z' ? point - 32 : point;
  for (const auto& a : kAlternating)
    if (point >= a.from && point <= a.to) return ((point & 1U) == 0) == a.even_upper_case ? point : point - 1;
  for (const auto& c : kShifted)
    if (point >= Shift(c.from, c.distance) && point <= Shift(c.to, c.distance))
      return Shift(point, -c.distance);
  return point;
}

char32_t LowerCasePoint(char32_t point) {
  if (point < 0x80) return point >= 'A' && point <= 'Z' ? point + 32 : point;
  for (const auto& a : kAlternating)
    if (point >= a.from && point <= a.to) return ((point & 1U) == 0) == a.even_upper_case ? point + 1 : point;
  for (const auto& c : kShifted)
    if (point >= c.from && point <= c.to) return Shift(point, c.distance);
  return point;
}

bool IsAscii(std::string_view text) {
  std::size_t i = 0;
  for (; i + 8 <= text.size(); i += 8) {
    std::uint64_t eight;
    std::memcpy(&eight, text.data() + i, 8);
    if ((eight & 0x8080808080808080ULL) != 0) return false;
  }
  for (; i < text.size(); ++i)
    if (static_cast<unsigned char>(text[i]) >= 0x80) return false;
  return true;
}

}  // namespace internal

namespace {

// A letter with a partner takes two bytes at most, and so does its partner: the text is changed in place.
template <char32_t (*Change)(char32_t), char (*ChangeAscii)(char)>
std::string Convert(std::string_view text) {
  std::string output(text);
  for (std::size_t i = 0; i < output.size();) {
    const auto byte = static_cast<unsigned char>(output[i]);
    if (byte < 0x80) {
      output[i] = ChangeAscii(output[i]);
      ++i;
      continue;
    }
    const std::size_t length = internal::CharacterLength(text, i);
    if (length == 2) {
      const char32_t point = Change(internal::PointAt(text, i, 2));
      output[i] = static_cast<char>(0xC0 | (point >> 6));
      output[i + 1] = static_cast<char>(0x80 | (point & 0x3F));
    }
    i += length;
  }
  return output;
}

}  // namespace

std::string UpperCase(std::string_view text) {
  return Convert<internal::UpperCasePoint, internal::UpperAscii>(text);
}

std::string LowerCase(std::string_view text) {
  return Convert<internal::LowerCasePoint, internal::LowerAscii>(text);
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size();) {
    const bool ascii = (static_cast<unsigned char>(a[i]) | static_cast<unsigned char>(b[i])) < 0x80;
    if (ascii || a[i] == b[i]) {
      if (internal::LowerAscii(a[i]) != internal::LowerAscii(b[i])) return false;
      ++i;
      continue;
    }
    // A second byte differs under an equal first one: take both characters from their start.
    while (i > 0 && (static_cast<unsigned char>(a[i]) & 0xC0) == 0x80) --i;
    return LowerCase(a.substr(i)) == LowerCase(b.substr(i));
  }
  return true;
}

}  // namespace base
