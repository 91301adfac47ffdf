// Cuts a statement into tokens without copying. Both the shape of a statement and its parser stand on it, so
// that they agree on what a literal is and on the literals' order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/value.h"

namespace jetsql {

enum class TokenKind : std::uint8_t {
  End,
  Name,      // a word, keywords included
  Brackets,  // [name] or `name`, with its marks
  Integer,
  Real,
  Text,      // with its quotes
  Date,      // with its #
  Sign,      // one or two characters
  Malformed  // a literal or name without its end, or a character that means nothing
};

struct Token {
  TokenKind kind = TokenKind::End;
  std::size_t start = 0;  // bytes
  std::size_t end = 0;
};

// Words that end an expression or a table, and so are names only in brackets.
bool IsReservedWord(std::string_view word);

class Scanner {
 public:
  // From byte `from`, where a token starts that follows no name.
  explicit Scanner(std::string_view sql, std::size_t from = 0) : sql_(sql), i_(from) {}
  Token Next() { return previous_ = Cut(); }

 private:
  Token Cut();
  Token ReadUntil(char closing, TokenKind kind, std::size_t start);
  Token String(char quote, std::size_t start);
  Token Number(std::size_t start);
  Token HexOctal(std::size_t start);
  Token Sign(std::size_t start);
  bool IsAfterOperand() const;

  std::string_view sql_;
  std::size_t i_;
  bool after_name_ = false;  // the "." that follows separates names and starts no number
  Token previous_;
};

constexpr bool IsLiteral(TokenKind kind) { return kind >= TokenKind::Integer && kind <= TokenKind::Date; }

// The value of a literal token; false for a date that cannot be read or that leaves its year open.
bool ReadLiteral(TokenKind kind, std::string_view text, base::Value& value);

}  // namespace jetsql
