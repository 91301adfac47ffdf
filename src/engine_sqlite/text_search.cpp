#include "engine_sqlite/text_search_internal.h"

#include "base/text.h"

namespace engine_sqlite {

TextMode ReadMode(const Call& call, int argument) {
  constexpr TextMode kModes[] = {TextMode::Binary, TextMode::Text, TextMode::Base};
  const int mode = call.Optional(argument, 2);
  if (mode < 0 || mode > 2) ThrowNumber(kInvalidCall);
  return kModes[mode];
}

std::size_t OccursAt(std::string_view text, std::string_view needle, std::size_t place, TextMode mode) {
  if (mode == TextMode::Binary) return text.substr(place, needle.size()) == needle ? needle.size() : 0;
  std::size_t i = place;
  for (std::size_t j = 0; j < needle.size();) {
    if (i >= text.size()) return 0;
    if (base::Fold(base::NextPoint(text, i)) != base::Fold(base::NextPoint(needle, j))) return 0;
  }
  return i - place;
}

Match FindFrom(std::string_view text, std::string_view needle, std::size_t from, TextMode mode) {
  if (mode == TextMode::Binary) return {text.find(needle, from), needle.size()};
  while (from < text.size()) {
    const std::size_t length = OccursAt(text, needle, from, mode);
    if (length != 0) return {from, length};
    base::NextPoint(text, from);
  }
  return {};
}

int CompareAsText(std::string_view a, std::string_view b, base::SortOrder order) {
  // A character without a weight of its own sorts behind all letters.
  const auto behind = [](std::string_view t) {
    constexpr std::string_view kWeightless = "\xEE\x80\x80";  // U+E000
    return base::Replace(base::Replace(t, "Ø", kWeightless), "ø", kWeightless);
  };
  if (!base::Contains(a, "Ø", base::Compare::IgnoringCase) &&
      !base::Contains(b, "Ø", base::Compare::IgnoringCase))
    return base::CompareText(a, b, order);
  return base::CompareText(behind(a), behind(b), order);
}

std::size_t AdvanceCharacters(std::string_view text, std::size_t from, std::int64_t how_many) {
  while (how_many > 0 && from < text.size()) {
    base::NextPoint(text, from);
    --how_many;
  }
  return from;
}

std::int64_t Characters(std::string_view text) {
  std::int64_t how_many = 0;
  for (std::size_t i = 0; i < text.size(); ++how_many) base::NextPoint(text, i);
  return how_many;
}

}  // namespace engine_sqlite
