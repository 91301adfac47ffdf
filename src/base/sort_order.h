// The Access sort order: keys that serve ordering, comparison and index entries at once.
//
// A key is: the inline bytes of the characters, 01, one accent byte a place (02 plain; plain ones at the end
// cut), when there are hyphens, apostrophes or other signs without inline bytes 01 01 01 and four bytes for
// each, 00. So letters and digits decide first, then accents, then hyphens; case never does.
//
// A character that the order of Access 2000 to 2007 files has no weight for in our table sorts after all
// others, by the code point of its capital; a stray byte of malformed UTF-8 likewise. Such texts compare
// well, but what Access itself would write into an index is not known: see HasWeights.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace base {

enum class SortOrder { General, ModernSpanish, TraditionalSpanish };

// The language number (LCID) that files name an order by: 1033, 3082 and 1034; nothing for another number.
std::uint16_t LanguageOf(SortOrder order);
std::optional<SortOrder> OrderOfLanguage(std::int64_t language);

// The key of a text as an index entry holds it, without its start flag: inline bytes, then accents and
// specials. Two texts are equal for the dialect exactly when their keys are. Trailing blanks are ignored.
std::string SortKey(std::string_view utf8, SortOrder order);
// The same for an index entry, which takes only the first 255 UTF-16 units of a text.
std::string IndexKey(std::string_view utf8, SortOrder order);
// Whether every character has a weight of the file format, so that IndexKey is what Access would write.
bool HasWeights(std::string_view utf8);

// -1, 0, 1; the same as comparing the keys, without building them for plain texts.
int CompareText(std::string_view a, std::string_view b, SortOrder order);

// The one character that stands for all those of its weight (its capital, nearly always): two characters are
// alike inside a text (LIKE, InStr, Replace) exactly when this is the same. Accents count, and so do hyphens.
char32_t Fold(char32_t point);

// The code point at byte `i` of `utf8`, which moves past it. A stray byte b is U+DC00 + b.
char32_t NextPoint(std::string_view utf8, std::size_t& i);

}  // namespace base
