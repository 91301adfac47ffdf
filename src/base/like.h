// LIKE: patterns with wildcards, as the dialect and classic Basic match them.
#pragma once

#include <string_view>

#include "base/sort_order.h"

namespace base {

enum class Wildcards {
  Ado,  // % any run, _ one character, [a-z] [^a] [!a]
  Dao   // * any run, ? one character, # one digit, [a-z] [!a]
};

// How characters are told apart: by their weights (case is nothing, accents count) or by their code points.
enum class Equality { Weights, Exact };

// Whether the whole text fits the pattern. "[]" stands for no character. Throws Error 93 for a "[" without
// "]" and for a range that goes down.
bool Like(std::string_view text, std::string_view pattern, Wildcards wildcards,
          Equality equality = Equality::Weights, SortOrder order = SortOrder::General);

}  // namespace base
