// Searching inside texts as InStr and Replace do it: exactly, or by the characters' weights.
#pragma once

#include <cstddef>
#include <string_view>

#include "engine_sqlite/runtime_internal.h"

namespace engine_sqlite {

// Text: as classic Basic compares texts; Base: by the sort order of the file. They differ in how texts sort
// alone.
enum class TextMode { Binary, Text, Base };

// The comparison argument of InStr, Replace and StrComp: 0 is binary, 1 text, 2 database, which is what
// the dialect takes when it is not given. Throws 5 for another one.
TextMode ReadMode(const Call& call, int argument);

struct Match {
  std::size_t from = std::string_view::npos;  // byte, npos when there is none
  std::size_t length = 0;                     // bytes; not always the needle's, because case may change them
  bool Has() const { return from != std::string_view::npos; }
};

// The first occurrence at or after byte `from`. The needle is not empty.
Match FindFrom(std::string_view text, std::string_view needle, std::size_t from, TextMode mode);
// Bytes of the occurrence that starts exactly at byte `place`, 0 when there is none.
std::size_t OccursAt(std::string_view text, std::string_view needle, std::size_t place, TextMode mode);

// -1, 0, 1 by the order of classic Basic's text comparison: that of the files, but Ø is a letter behind Z and
// no kind of O.
int CompareAsText(std::string_view a, std::string_view b, base::SortOrder order);

// The byte where character `how_many` after byte `from` starts, or the end of the text.
std::size_t AdvanceCharacters(std::string_view text, std::size_t from, std::int64_t how_many);
// Characters in a text.
std::int64_t Characters(std::string_view text);

}  // namespace engine_sqlite
