#include <algorithm>
#include <string>

#include "base/encoding.h"
#include "mdb/pages/text.h"

namespace mdb {
namespace internal {
namespace {

bool IsAscii(View bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t b) { return b < 0x80; });
}

std::string_view Characters(View bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

void AppendPoint(char32_t p, std::string& s) {
  if (p < 0x80) {
    s += static_cast<char>(p);
  } else if (p < 0x800) {
    s += static_cast<char>(0xC0 | p >> 6);
    s += static_cast<char>(0x80 | (p & 0x3F));
  } else if (p < 0x10000) {
    s += static_cast<char>(0xE0 | p >> 12);
    s += static_cast<char>(0x80 | (p >> 6 & 0x3F));
    s += static_cast<char>(0x80 | (p & 0x3F));
  } else {
    s += static_cast<char>(0xF0 | p >> 18);
    s += static_cast<char>(0x80 | (p >> 12 & 0x3F));
    s += static_cast<char>(0x80 | (p >> 6 & 0x3F));
    s += static_cast<char>(0x80 | (p & 0x3F));
  }
}

// UTF-16 units, lowest byte first; an odd last byte is dropped.
void AppendUtf16(View v, std::string& s) {
  const std::size_t units = v.size() / 2;
  const auto unit = [&](std::size_t i) { return static_cast<char32_t>(v[2 * i] | v[2 * i + 1] << 8); };
  for (std::size_t i = 0; i < units; ++i) {
    char32_t p = unit(i);
    if (p >= 0xD800 && p < 0xE000) {
      const char32_t low = i + 1 < units ? unit(i + 1) : 0;
      const bool pair = p < 0xDC00 && low >= 0xDC00 && low < 0xE000;
      p = pair ? 0x10000 + ((p - 0xD800) << 10) + (low - 0xDC00) : 0xFFFD;
      if (pair) ++i;
    }
    AppendPoint(p, s);
  }
}

// Runs of single-byte characters and runs of UTF-16 in turn, parted by a zero byte.
void AppendCompressed(View v, std::string& s) {
  bool one_byte = true;
  for (std::size_t from = 0; from <= v.size();) {
    const auto zero = std::find(v.begin() + static_cast<std::ptrdiff_t>(from), v.end(), 0);
    const View run = v.subspan(from, static_cast<std::size_t>(zero - v.begin()) - from);
    if (!one_byte) {
      AppendUtf16(run, s);
    } else if (IsAscii(run)) {
      s += Characters(run);
    } else {
      for (const auto b : run) AppendPoint(b, s);
    }
    one_byte = !one_byte;
    from += run.size() + 1;
  }
}

void ReadCodePage(const FileHeader& header, View bytes, std::string& target) {
  if (IsAscii(bytes)) {
    target.assign(Characters(bytes));
  } else if (header.code_page == 1252 || header.code_page == 0) {
    target = base::FromCp1252(Characters(bytes));
  } else {
    // Guessing would show, and perhaps pay, another person's name.
    throw base::StorageFault("La base guarda sus textos en la página de códigos " +
                             std::to_string(header.code_page) +
                             ", que este programa no lee: conviértala al formato de Access 2000 o posterior");
  }
}

}  // namespace

void ReadName(const FileHeader& header, View bytes, std::string& target) {
  if (header.Jet3()) return ReadCodePage(header, bytes, target);
  target.clear();
  AppendUtf16(bytes, target);
}

void ReadText(const FileHeader& header, View bytes, std::string& target) {
  if (header.Jet3()) return ReadCodePage(header, bytes, target);
  target.clear();
  if (bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE) {
    AppendCompressed(bytes.subspan(2), target);
  } else {
    AppendUtf16(bytes, target);
  }
}

}  // namespace internal

std::string DecodeText(const FileHeader& header, View bytes) {
  std::string text;
  internal::ReadText(header, bytes, text);
  return text;
}

}  // namespace mdb
