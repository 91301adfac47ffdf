#include "base/sort_order.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/sort_table_internal.h"
#include "base/text.h"

namespace base {
namespace {

constexpr std::uint8_t kSeparator = 0x01;
constexpr std::uint8_t kNoAccent = 0x02;
constexpr std::size_t kIndexUnits = 255;
constexpr std::size_t kMaxPlaces = 0x1FFE;  // what the 15 bits of a special's place can hold

// One item of the first level: a character, or a digraph of the traditional order.
struct Element {
  Weight weight{};
  char32_t foreign = 0;  // not 0: a character without weight, to be written by its code point
};

const Weight* KnownWeight(char32_t c) {
  if (c < kLatin1Weights.size()) return &kLatin1Weights[c];
  const auto it = std::lower_bound(kOtherWeights.begin(), kOtherWeights.end(), c,
                                   [](const PointWeight& p, char32_t x) { return p.point < x; });
  return it != kOtherWeights.end() && it->point == c ? &it->weight : nullptr;
}

char32_t Capital(char32_t c) {
  if (c < 0x80 || (c >= 0xD800 && c < 0xE000)) return c;
  const std::u32string points = base::ToPoints(base::UpperCase(base::FromPoints(std::u32string_view(&c, 1))));
  return points.size() == 1 ? points[0] : c;
}

bool IsLetter(std::string_view s, std::size_t i, char lower_case) {
  return i < s.size() && (s[i] == lower_case || s[i] == lower_case - 0x20);
}

// Reads the next item of `s`. False at the end.
bool NextElement(std::string_view s, std::size_t& i, SortOrder order, Element& e) {
  if (i >= s.size()) return false;
  e.foreign = 0;
  if (order == SortOrder::TraditionalSpanish) {
    const bool ch = IsLetter(s, i, 'c') && IsLetter(s, i + 1, 'h');
    if (ch || (IsLetter(s, i, 'l') && IsLetter(s, i + 1, 'l'))) {
      e.weight = {static_cast<std::uint8_t>(ch ? 0x4E : 0x5F), 0x04, 0, 0, 1};
      i += 2;
      return true;
    }
  }
  const char32_t c = NextPoint(s, i);
  if (order != SortOrder::General && (c == 0xF1 || c == 0xD1)) {
    e.weight = {0x63, 0x04, 0, 0, 1};
  } else if (const Weight* p = KnownWeight(c)) {
    e.weight = *p;
  } else {
    e.foreign = Capital(c);
    e.weight = {0xF0, 0, 0, 0, 1};
  }
  return true;
}

// The four-byte form of a code point: every byte is 80 or more, after all weights and never a separator.
std::array<std::uint8_t, 4> ForeignBytes(char32_t c) {
  return {static_cast<std::uint8_t>(0xF0 | (c >> 18)), static_cast<std::uint8_t>(0x80 | ((c >> 12) & 0x3F)),
          static_cast<std::uint8_t>(0x80 | ((c >> 6) & 0x3F)), static_cast<std::uint8_t>(0x80 | (c & 0x3F))};
}

std::string_view WithoutTrailingBlanks(std::string_view s) {
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  return s;
}

void AppendSpecial(std::string& specials, std::size_t places, std::uint8_t code) {
  const std::size_t n = std::min(places, kMaxPlaces);
  const std::size_t v = 0x8000 | (7 + 4 * n);
  specials += static_cast<char>(v >> 8);
  specials += static_cast<char>(v & 0xFF);
  if (n == kMaxPlaces) {  // beyond what an index entry can hold: the place itself, so that keys still differ
    for (int k = 24; k >= 0; k -= 8) specials += static_cast<char>((places >> k) & 0xFF);
  }
  specials += '\x06';
  specials += static_cast<char>(code);
}

// Weights of ASCII characters as one number, in key order; 0 where a text needs the long way.
constexpr std::array<std::uint16_t, 128> PlainWeights() {
  std::array<std::uint16_t, 128> t{};
  for (std::size_t c = 0; c < t.size(); ++c) {
    const Weight& p = kLatin1Weights[c];
    t[c] = static_cast<std::uint16_t>(p.initial << 8 | p.next);
  }
  return t;
}
constexpr auto kPlainWeights = PlainWeights();

std::uint16_t PlainWeight(char c, SortOrder order) {
  const auto b = static_cast<unsigned char>(c);
  if (b >= 0x80) return 0;
  if (order == SortOrder::TraditionalSpanish && (b == 'c' || b == 'C' || b == 'l' || b == 'L')) return 0;
  return kPlainWeights[b];
}

constexpr bool AreEqual(const Weight& a, const Weight& b) {
  return a.initial == b.initial && a.next == b.next && a.accent == b.accent && a.special == b.special;
}

// For each Latin-1 character the first one of the same weight.
constexpr std::array<std::uint8_t, 256> FoldTable() {
  std::array<std::uint8_t, 256> t{};
  for (std::size_t c = 0; c < t.size(); ++c) {
    std::size_t k = 0;
    while (!AreEqual(kLatin1Weights[k], kLatin1Weights[c])) ++k;
    t[c] = static_cast<std::uint8_t>(k);
  }
  return t;
}
constexpr auto kFolds = FoldTable();

int Sign(int v) { return v < 0 ? -1 : (v > 0 ? 1 : 0); }

// The bytes of the first level, one by one.
class Primaries {
 public:
  Primaries(std::string_view text, SortOrder order) : text_(text), order_(order) {}
  int Next() {  // -1 at the end
    while (k_ == n_) {
      Element e;
      if (!NextElement(text_, i_, order_, e)) return -1;
      k_ = 0;
      n_ = 0;
      if (e.foreign != 0) {
        bytes_ = ForeignBytes(e.foreign);
        n_ = 4;
      } else if (e.weight.initial != 0) {
        bytes_ = {e.weight.initial, e.weight.next, 0, 0};
        n_ = e.weight.next != 0 ? 2 : 1;
      }
    }
    return bytes_[k_++];
  }

 private:
  std::string_view text_;
  SortOrder order_;
  std::size_t i_ = 0;
  std::array<std::uint8_t, 4> bytes_{};
  std::size_t k_ = 0, n_ = 0;
};

int CompareLong(std::string_view a, std::string_view b, SortOrder order) {
  Primaries pa(a, order), pb(b, order);
  for (;;) {
    const int x = pa.Next();
    const int y = pb.Next();
    if (x != y) return x < y ? -1 : 1;
    if (x < 0) break;
  }
  return Sign(SortKey(a, order).compare(SortKey(b, order)));
}

}  // namespace

char32_t NextPoint(std::string_view s, std::size_t& i) {
  const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
  const unsigned char b = byte(i++);
  if (b < 0x80) return b;
  const int more = b >= 0xF0 && b < 0xF5 ? 3 : (b >= 0xE0 && b < 0xF0 ? 2 : (b >= 0xC2 && b < 0xE0 ? 1 : 0));
  constexpr std::array<char32_t, 4> kMinimums = {0, 0x80, 0x800, 0x10000};
  if (more == 0 || i + more > s.size()) return 0xDC00 + b;
  char32_t c = b & (0x3F >> more);
  for (int k = 0; k < more; ++k) {
    const unsigned char m = byte(i + k);
    if ((m & 0xC0) != 0x80) return 0xDC00 + b;
    c = (c << 6) | (m & 0x3F);
  }
  if (c < kMinimums[more] || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) return 0xDC00 + b;
  i += more;
  return c;
}

std::string SortKey(std::string_view utf8, SortOrder order) {
  const std::string_view text = WithoutTrailingBlanks(utf8);
  std::string key, accents, specials;
  key.reserve(text.size() + 8);
  std::size_t places = 0;
  Element e;
  for (std::size_t i = 0; NextElement(text, i, order, e);) {
    if (e.weight.special != 0) AppendSpecial(specials, places, e.weight.special);
    if (e.weight.initial == 0) continue;
    if (e.foreign != 0) {
      for (const std::uint8_t b : ForeignBytes(e.foreign)) key += static_cast<char>(b);
    } else {
      key += static_cast<char>(e.weight.initial);
      if (e.weight.next != 0) key += static_cast<char>(e.weight.next);
    }
    places += e.weight.places;
    if (e.weight.accent > kNoAccent) {
      accents.resize(places - 1, kNoAccent);
      accents += static_cast<char>(e.weight.accent);
    }
  }
  key += static_cast<char>(kSeparator);
  key += accents;
  if (!specials.empty()) {
    key.append(3, static_cast<char>(kSeparator));
    key += specials;
  }
  key += '\0';
  return key;
}

std::string IndexKey(std::string_view utf8, SortOrder order) {
  std::size_t i = 0;
  for (std::size_t units = 0; i < utf8.size();) {
    std::size_t j = i;
    units += NextPoint(utf8, j) > 0xFFFF ? 2 : 1;
    if (units > kIndexUnits) break;
    i = j;
  }
  return SortKey(utf8.substr(0, i), order);
}

bool HasWeights(std::string_view utf8) {
  for (std::size_t i = 0; i < utf8.size();)
    if (KnownWeight(NextPoint(utf8, i)) == nullptr) return false;
  return true;
}

int CompareText(std::string_view a, std::string_view b, SortOrder order) {
  a = WithoutTrailingBlanks(a);
  b = WithoutTrailingBlanks(b);
  const std::size_t n = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < n; ++i) {
    const std::uint16_t x = PlainWeight(a[i], order);
    const std::uint16_t y = PlainWeight(b[i], order);
    if (x == 0 || y == 0) return a == b ? 0 : CompareLong(a, b, order);
    if (x != y) return x < y ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  // The longer one is greater when it goes on with something that has inline bytes.
  const char next = a.size() > n ? a[n] : b[n];
  if (PlainWeight(next, order) == 0) return CompareLong(a, b, order);
  return a.size() > n ? 1 : -1;
}

char32_t Fold(char32_t c) {
  if (c < kFolds.size()) return kFolds[c];
  const Weight* p = KnownWeight(c);
  if (p == nullptr) return Capital(c);
  for (char32_t k = 0; k < kLatin1Weights.size(); ++k)
    if (AreEqual(*p, kLatin1Weights[k])) return k;
  for (const PointWeight& other : kOtherWeights)
    if (AreEqual(*p, other.weight)) return other.point;
  return c;
}

std::uint16_t LanguageOf(SortOrder order) {
  switch (order) {
    case SortOrder::General:
      return 1033;
    case SortOrder::TraditionalSpanish:
      return 1034;
    case SortOrder::ModernSpanish:
      break;
  }
  return 3082;
}

std::optional<SortOrder> OrderOfLanguage(std::int64_t language) {
  for (const SortOrder order : {SortOrder::General, SortOrder::ModernSpanish, SortOrder::TraditionalSpanish})
    if (LanguageOf(order) == language) return order;
  return std::nullopt;
}

}  // namespace base
