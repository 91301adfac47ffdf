// A statement as a mould for the next: programs send the same statement over and over with other values, and
// a text that differs from the last one in its literals alone need not be cut into tokens to be known for one
// of its shape.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "jetsql/translate.h"

namespace jetsql {

class Mould {
 public:
  enum class Match { Other, Equal, SameShape };

  bool IsEmpty() const { return text_.empty(); }
  // The text that SeparateLiterals made `shape` of.
  void Take(std::string_view sql, const Shape& shape);
  // Whether the text is the mould's own (Equal) or has its shape (SameShape: the mould then holds that
  // text). With Other the mould is as it was. Some texts of the same shape are not known for it (another
  // spelling, other blanks). Costs about a comparison of the two texts.
  Match Recognise(std::string_view sql);
  // Of the text that the mould holds.
  const std::vector<base::Value>& Literals() const { return literals_; }

 private:
  // The literal of the text at `from`, in the place of the mould's literal i; where it ends, or npos.
  std::size_t Literal(std::string_view sql, std::size_t from, std::size_t i);
  void Shift(std::size_t i, std::size_t here, std::size_t there);

  std::string text_;
  std::vector<Shape::Place> places_, new_places_;
  std::vector<base::Value> literals_;
  struct Change {
    std::size_t literal = 0;
    base::Value value;
  };
  std::vector<Change> changes_;  // of the text under way
};

}  // namespace jetsql
