// Text primitives. Text is UTF-8; positions and lengths count characters (code points), never bytes, and
// start at 1 where they are positions. Malformed UTF-8 is passed through, a stray byte counting as one
// character.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace base {

inline constexpr std::string_view kCrLf = "\r\n";

// Case by character: ASCII, Latin-1, Latin Extended-A, Greek and Cyrillic letters with a one-to-one partner.
std::string UpperCase(std::string_view text);
std::string LowerCase(std::string_view text);
bool EqualIgnoringCase(std::string_view a, std::string_view b);

// Blanks (U+0020) alone are cut; tabs and line ends stay.
std::string_view TrimView(std::string_view text);
std::string Trim(std::string_view text);

std::size_t Length(std::string_view text);
// At most `count` characters from position `from` (1-based); past the end gives "", never an error.
// from < 1 counts as 1.
std::string Mid(std::string_view text, std::ptrdiff_t from, std::ptrdiff_t count = -1);
std::string Left(std::string_view text, std::ptrdiff_t count);
std::string Right(std::string_view text, std::ptrdiff_t count);

enum class Compare { Exact, IgnoringCase };

// Byte offset of the first occurrence at or after byte `from`, or npos. An empty needle is found at `from`.
std::size_t Find(std::string_view text, std::string_view needle, std::size_t from = 0,
                 Compare mode = Compare::Exact);
bool Contains(std::string_view text, std::string_view needle, Compare mode = Compare::Exact);
// All occurrences, left to right, not overlapping; an empty `from` returns the text unchanged.
std::string Replace(std::string_view text, std::string_view from, std::string_view with,
                    Compare mode = Compare::Exact);

// Empty pieces are kept, also at the end; an empty text gives one empty piece; an empty separator one piece.
std::vector<std::string> Split(std::string_view text, std::string_view separator);
// The same as views into `text`.
void SplitViews(std::string_view text, std::string_view separator, std::vector<std::string_view>& pieces);
// The lines of a text as views into it: CR LF, LF and CR each end one, whichever the text mixes; nothing else
// does. What follows the last end is a line too, empty or not, so that an empty text has one. Linear.
std::vector<std::string_view> SplitLines(std::string_view text);
std::vector<std::string_view> SplitLines(std::string&&) = delete;
// Split of classic Basic: an empty text gives no piece at all. At most `limit` pieces, the last one with all
// that is left; -1: any number, 0: none.
std::vector<std::string> SplitClassic(std::string_view text, std::string_view separator, int limit = -1,
                                      Compare mode = Compare::Exact);
std::string Join(const std::vector<std::string>& pieces, std::string_view separator);

bool StartsWith(std::string_view text, std::string_view prefix, Compare mode = Compare::Exact);
bool EndsWith(std::string_view text, std::string_view suffix);

// For a text spliced between single quotes: every "'" doubled.
std::string EscapeQuotes(std::string_view text);

// Code points of a text and back; a stray byte b is U+DC00 + b on the way in and comes back as that byte.
std::u32string ToPoints(std::string_view text);
std::string FromPoints(std::u32string_view points);

}  // namespace base
