// The Access sort order: keys that serve ordering, comparison and index entries at once.
#pragma once

#include <string>
#include <string_view>

namespace jetsql {

enum class Orden { General, EspanolModerno, EspanolTradicional };  // 1033, 3082, 1034

// The key of a text as an index entry holds it, without its start flag: inline bytes, then accents and
// specials. Two texts are equal for the dialect exactly when their keys are. Trailing blanks are ignored.
std::string ClaveDeOrden(std::string_view utf8, Orden orden);
// -1, 0, 1; the same as comparing the keys, without building them for plain texts.
int CompararTexto(std::string_view a, std::string_view b, Orden orden);

}  // namespace jetsql
