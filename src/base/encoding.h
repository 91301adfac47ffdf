// The single-byte Western code page (CP1252) and the marks of a text file. Every conversion is total.
#pragma once

#include <string>
#include <string_view>

namespace base {

// The five bytes that CP1252 leaves undefined become U+0081, U+008D, U+008F, U+0090, U+009D and come back.
std::string FromCp1252(std::string_view bytes);
// A character that the page does not have becomes "?"; `lost`, when given, counts them.
std::string ToCp1252(std::string_view utf8, std::size_t* lost = nullptr);

// The text of an import file, as UTF-8 without mark: UTF-8 or UTF-16 (either order) when it starts with that
// mark, UTF-8 when the whole is valid UTF-8 with at least one multi-byte character, CP1252 otherwise.
std::string DecodeFile(std::string_view bytes);

bool IsValidUtf8(std::string_view bytes);
std::string FromUtf16(std::u16string_view text);
std::u16string ToUtf16(std::string_view utf8);

}  // namespace base
