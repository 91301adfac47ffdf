#include "jetsql/mould.h"

#include <cstdint>
#include <cstring>
#include <utility>

#include "jetsql/scanner_internal.h"

namespace jetsql {
namespace {

// How many bytes two texts have in common at their start.
std::size_t CommonLength(std::string_view a, std::string_view b) {
  const std::size_t n = a.size() < b.size() ? a.size() : b.size();
  std::size_t i = 0;
  for (; i + sizeof(std::uint64_t) <= n; i += sizeof(std::uint64_t)) {
    std::uint64_t x = 0, y = 0;
    std::memcpy(&x, a.data() + i, sizeof x);
    std::memcpy(&y, b.data() + i, sizeof y);
    if (x != y) break;
  }
  while (i < n && a[i] == b[i]) ++i;
  return i;
}

bool IsOfKind(const base::Value& value, TokenKind kind) {
  switch (kind) {
    case TokenKind::Integer:
      return value.type() == base::Type::Integer;
    case TokenKind::Real:
      return value.type() == base::Type::Number;
    case TokenKind::Text:
      return value.type() == base::Type::Text;
    case TokenKind::Date:
      return value.type() == base::Type::Date;
    default:
      return false;
  }
}

// A token ends by what is at most this many bytes behind it ("1e+5" is one number, "1e+x" is three tokens).
constexpr std::size_t kLookahead = 2;

}  // namespace

void Mould::Take(std::string_view sql, const Shape& shape) {
  text_ = sql;
  places_ = shape.places;
  literals_ = shape.literals;
}

// A literal of which all is equal, with what tells its end, is the same literal. Where the texts part there
// must be a literal: it is cut anew, and the comparison goes on behind it.
Mould::Match Mould::Recognise(std::string_view sql) {
  if (text_.empty()) return Match::Other;
  const std::string_view mould = text_;
  changes_.clear();
  std::size_t here = 0, there = 0;  // in the text, in the mould
  std::size_t i = 0;                // the next literal
  for (;;) {
    const std::size_t n = CommonLength(sql.substr(here), mould.substr(there));
    const std::size_t divergence = there + n;
    if (here + n == sql.size() && divergence == mould.size()) break;
    for (; i < places_.size() && places_[i].end + kLookahead < divergence; ++i)
      if (!changes_.empty()) Shift(i, here, there);
    if (i == places_.size() || places_[i].start > divergence) return Match::Other;
    if (changes_.empty()) new_places_ = places_;
    const std::size_t start = here + (places_[i].start - there);
    const std::size_t end = Literal(sql, start, i);
    if (end == std::string_view::npos) return Match::Other;
    new_places_[i] = {start, end};
    here = end;
    there = places_[i++].end;
  }
  if (changes_.empty()) return Match::Equal;
  for (; i < places_.size(); ++i) Shift(i, here, there);
  for (Change& c : changes_) literals_[c.literal] = std::move(c.value);
  places_.swap(new_places_);
  text_ = sql;
  return Match::SameShape;
}

void Mould::Shift(std::size_t i, std::size_t here, std::size_t there) {
  new_places_[i] = {here + (places_[i].start - there), here + (places_[i].end - there)};
}

std::size_t Mould::Literal(std::string_view sql, std::size_t from, std::size_t i) {
  // A "." begins a number or not by what stands before it, and takes the digits after it, and "&" begins one
  // only where an operand may stand, and parts it from a name before it: left to who sees all of it.
  if (text_[places_[i].start] == '&') return std::string_view::npos;
  if (from >= sql.size() || sql[from] == '.' || sql[from] == '&' || (from > 0 && sql[from - 1] == '.'))
    return std::string_view::npos;
  const Token fresh = Scanner(sql, from).Next();
  if (fresh.start != from || !IsOfKind(literals_[i], fresh.kind)) return std::string_view::npos;
  Change& change = changes_.emplace_back();
  change.literal = i;
  if (!ReadLiteral(fresh.kind, sql.substr(from, fresh.end - from), change.value))
    return std::string_view::npos;
  return fresh.end;
}

}  // namespace jetsql
