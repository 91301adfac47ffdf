#include "base/like.h"

#include <string>

#include "base/error.h"
#include "base/text.h"

namespace base {
namespace {

[[noreturn]] void ThrowBadPattern() {
  constexpr int kBadPattern = 93;
  throw Error(ErrorDescription(kBadPattern), kBadPattern);
}

bool InRange(char32_t c, char32_t from, char32_t to, Equality equality, SortOrder order) {
  if (equality == Equality::Exact) {
    if (from > to) ThrowBadPattern();
    return from <= c && c <= to;
  }
  const auto text = [](char32_t p) { return FromPoints(std::u32string_view(&p, 1)); };
  const std::string middle = text(c), low = text(from), high = text(to);
  if (CompareText(low, high, order) > 0) ThrowBadPattern();
  return CompareText(low, middle, order) <= 0 && CompareText(middle, high, order) <= 0;
}

// One step of a pattern: what a single character of the text must be, or any run of them.
struct Step {
  enum class What { End, Run, One, Digit, Literal, List } what = What::End;
  char32_t literal = 0;        // folded
  std::string_view list = {};  // inside the brackets, without the negation
  bool negated = false;
};

class Pattern {
 public:
  Pattern(std::string_view text, Wildcards wildcards, Equality equality, SortOrder order)
      : text_(text), dao_(wildcards == Wildcards::Dao), equality_(equality), order_(order) {}

  // The step at byte `i`, which moves past it.
  Step Read(std::size_t& i) const {
    Step step;
    while (text_.substr(i, 2) == "[]") i += 2;  // stands for no character at all
    if (i >= text_.size()) return step;
    const char c = text_[i];
    if (c == (dao_ ? '*' : '%')) {
      ++i;
      step.what = Step::What::Run;
    } else if (c == (dao_ ? '?' : '_')) {
      ++i;
      step.what = Step::What::One;
    } else if (dao_ && c == '#') {
      ++i;
      step.what = Step::What::Digit;
    } else if (c == '[') {
      ReadList(i, step);
    } else {
      step.what = Step::What::Literal;
      step.literal = Folded(NextPoint(text_, i));
    }
    return step;
  }

  bool Accepts(const Step& step, char32_t c) const {
    switch (step.what) {
      case Step::What::One:
        return true;
      case Step::What::Digit:
        return c >= '0' && c <= '9';
      case Step::What::Literal:
        return Folded(c) == step.literal;
      case Step::What::List:
        return InList(step.list, c) != step.negated;
      default:
        return false;
    }
  }

 private:
  void ReadList(std::size_t& i, Step& step) const {
    const std::size_t closing = text_.find(']', i + 1);
    if (closing == std::string_view::npos) ThrowBadPattern();
    std::string_view inside = text_.substr(i + 1, closing - i - 1);
    i = closing + 1;
    if (inside.size() > 1 && (inside[0] == '!' || (!dao_ && inside[0] == '^'))) {
      step.negated = true;
      inside.remove_prefix(1);
    }
    step.what = Step::What::List;
    step.list = inside;
  }

  bool InList(std::string_view list, char32_t c) const {
    bool found = false;
    for (std::size_t k = 0; k < list.size();) {
      const char32_t from = NextPoint(list, k);
      if (k + 1 < list.size() && list[k] == '-') {
        ++k;
        const char32_t to = NextPoint(list, k);
        found = InRange(c, from, to, equality_, order_) || found;
      } else {
        found = found || Folded(from) == Folded(c);
      }
    }
    return found;
  }

  char32_t Folded(char32_t c) const { return equality_ == Equality::Weights ? Fold(c) : c; }

  std::string_view text_;
  bool dao_;
  Equality equality_;
  SortOrder order_;
};

}  // namespace

// Without recursion: on a mismatch only the last run of any characters is tried one longer.
bool Like(std::string_view text, std::string_view pattern, Wildcards wildcards, Equality equality,
          SortOrder order) {
  const Pattern p(pattern, wildcards, equality, order);
  std::size_t i = 0, j = 0;
  bool has_run = false;
  std::size_t run_text = 0, run_pattern = 0;
  for (;;) {
    std::size_t next = j;
    const Step step = p.Read(next);
    if (step.what == Step::What::Run) {
      has_run = true;
      run_text = i;
      run_pattern = j = next;
      continue;
    }
    if (i >= text.size() && step.what == Step::What::End) return true;
    if (i < text.size() && step.what != Step::What::End) {
      std::size_t ahead = i;
      if (p.Accepts(step, NextPoint(text, ahead))) {
        i = ahead;
        j = next;
        continue;
      }
    }
    if (!has_run || run_text >= text.size()) return false;
    NextPoint(text, run_text);
    i = run_text;
    j = run_pattern;
  }
}

}  // namespace base
