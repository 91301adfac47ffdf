#include <array>
#include <cstring>

#include "jetsql/scanner_internal.h"
#include "jetsql/translate.h"

namespace jetsql {
namespace {

constexpr std::array<char, 256> UpperCase() {
  std::array<char, 256> t{};
  for (int c = 0; c < 256; ++c) t[static_cast<std::size_t>(c)] = static_cast<char>(c);
  for (int c = 'a'; c <= 'z'; ++c) t[static_cast<std::size_t>(c)] = static_cast<char>(c - 'a' + 'A');
  return t;
}
constexpr auto kUpperCase = UpperCase();

// Control characters, which no token outside brackets may hold.
char MarkOf(TokenKind kind) {
  switch (kind) {
    case TokenKind::Integer:
      return '\x01';
    case TokenKind::Real:
      return '\x02';
    case TokenKind::Text:
      return '\x03';
    default:
      return '\x04';
  }
}

}  // namespace

// Letters beyond ASCII keep their case: two spellings then have two shapes, which costs a translation and
// nothing else.
bool SeparateLiterals(std::string_view sql, Shape& shape) {
  shape.literals.clear();
  shape.places.clear();
  // Never longer than the text: a mark is shorter than its literal, a blank than its white space.
  shape.key.resize(sql.size());
  char* const start = shape.key.data();
  char* p = start;
  Scanner scanner(sql);
  std::size_t end = 0;
  for (;;) {
    const Token t = scanner.Next();
    if (t.kind == TokenKind::End) break;
    if (t.start > end && p != start) *p++ = ' ';
    end = t.end;
    const std::string_view text = sql.substr(t.start, t.end - t.start);
    switch (t.kind) {
      case TokenKind::Malformed:
        return false;
      case TokenKind::Name:
        for (const char c : text) *p++ = kUpperCase[static_cast<unsigned char>(c)];
        break;
      case TokenKind::Brackets:
      case TokenKind::Sign:
        std::memcpy(p, text.data(), text.size());
        p += text.size();
        break;
      default:
        if (!ReadLiteral(t.kind, text, shape.literals.emplace_back())) return false;
        shape.places.push_back({t.start, t.end});
        *p++ = MarkOf(t.kind);
    }
  }
  shape.key.resize(static_cast<std::size_t>(p - start));
  return true;
}

}  // namespace jetsql
