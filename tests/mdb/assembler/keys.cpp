// Keys of indexes, the texts by the tables of weights in tests/data/mdb.
#include <algorithm>
#include <fstream>
#include <map>

#include "base/encoding.h"
#include "base/text.h"
#include "mdb/assembler/bytes.h"
#include "support/source_dir.h"

namespace assembler {
namespace {

Bytes Hex(const std::string& text) {
  Bytes b;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2)
    b.push_back(static_cast<std::uint8_t>(std::stoul(text.substr(i, 2), nullptr, 16)));
  return b;
}

struct Weight {
  std::string kind;
  Bytes inline_bytes;
  unsigned accent = 0, special = 0;
};

// Lines of a table of weights, by the number in their first field.
std::map<unsigned, Weight> ReadWeights(const std::string& name) {
  std::ifstream file(support::SourceDir() + "/tests/data/mdb/" + name, std::ios::binary);
  if (!file) throw std::runtime_error("no table of weights " + name);
  const auto number = [](const std::string& t) {
    return t.empty() ? 0U : static_cast<unsigned>(std::stoul(t, nullptr, 16));
  };
  std::map<unsigned, Weight> weights;
  for (std::string line; std::getline(file, line);) {
    auto fields = base::Split(line, "\t");
    if (line.empty() || line[0] == '#' || fields.size() < 3 || fields[0] == "byte" ||
        fields[0] == "codepoint")
      continue;
    fields.resize(6);
    const bool wide = fields[0].rfind("U+", 0) == 0;
    Weight w;
    w.kind = fields[wide ? 2 : 1];
    w.inline_bytes = Hex(fields[wide ? 3 : 2]);
    w.accent = number(fields[wide ? 4 : 3]);
    w.special = number(fields[5]);
    weights[number(wide ? fields[0].substr(2) : fields[0])] = w;
  }
  return weights;
}

const Weight& WeightOf(const std::map<unsigned, Weight>& weights, unsigned character) {
  const auto it = weights.find(character);
  if (it == weights.end()) throw std::runtime_error("no weight of character " + std::to_string(character));
  return it->second;
}

void Invert(Bytes& b, std::size_t from = 0) {
  for (std::size_t i = from; i < b.size(); ++i) b[i] = static_cast<std::uint8_t>(~b[i]);
}

// Letters that the Spanish orders count as one, in small letters, and their code.
Bytes SpanishLetter(std::uint16_t lcid, const std::u16string& text, std::size_t at, std::size_t& taken) {
  const auto small = [&](std::size_t i) -> char16_t {
    if (i >= text.size()) return 0;
    const char16_t u = text[i];
    return u < 0x80 && u >= u'A' && u <= u'Z' ? static_cast<char16_t>(u + 32) : u;
  };
  taken = 1;
  if (lcid == 1033) return {};
  if (small(at) == u'ñ' || small(at) == u'Ñ') return {0x63, 0x04};
  taken = 2;
  if (lcid == 1034 && small(at) == u'c' && small(at + 1) == u'h') return {0x4E, 0x04};
  if (lcid == 1034 && small(at) == u'l' && small(at + 1) == u'l') return {0x5F, 0x04};
  taken = 1;
  return {};
}

Bytes WideKey(std::uint16_t lcid, const std::string& text) {
  static const auto kWeights = ReadWeights("sort_general_legacy.tsv");
  std::u16string units = base::ToUtf16(text).substr(0, 255);
  while (!units.empty() && units.back() == u' ') units.pop_back();
  Bytes letters, accents, specials;
  for (std::size_t i = 0, taken = 1; i < units.size(); i += taken) {
    const Bytes own = SpanishLetter(lcid, units, i, taken);
    if (!own.empty()) {
      Append(letters, own);
      accents.push_back(2);
      continue;
    }
    const Weight& w = WeightOf(kWeights, units[i]);
    if (w.kind == "special") {
      AddHighFirst(specials, 0x8000 | (7 + 4 * accents.size()), 2);
      Append(specials, {0x06, static_cast<std::uint8_t>(w.special)});
      continue;
    }
    Append(letters, w.inline_bytes);
    if (w.kind == "accent") {
      accents.push_back(static_cast<std::uint8_t>(w.accent));
    } else {
      accents.insert(accents.end(), units[i] == u'ß' ? 2 : 1, 2);
    }
  }
  while (!accents.empty() && accents.back() <= 2) accents.pop_back();
  Bytes key = letters;
  key.push_back(1);
  Append(key, accents);
  if (!specials.empty()) {
    Append(key, {1, 1, 1});
    Append(key, specials);
  }
  key.push_back(0);
  return key;
}

// Half bytes behind the letters when one of these has an accent: 2 for each that could have one.
Bytes NarrowKey(const std::string& text) {
  static const auto kWeights = ReadWeights("sort_general97.tsv");
  Bytes key;
  std::vector<unsigned> halves;
  std::size_t last = 0;
  for (const char c : base::ToCp1252(text)) {
    const Weight& w = WeightOf(kWeights, static_cast<unsigned char>(c));
    Append(key, w.inline_bytes);
    if (w.kind == "sig") halves.push_back(2);
    if (w.kind == "accent") {
      halves.push_back(w.accent);
      last = halves.size();
    }
  }
  if (last == 0) {
    key.push_back(0);
    return key;
  }
  halves.resize(last);
  halves.insert(halves.begin(), 0);
  halves.push_back(0);
  if (halves.size() % 2 != 0) halves.push_back(0);
  for (std::size_t i = 0; i < halves.size(); i += 2)
    key.push_back(static_cast<std::uint8_t>(halves[i] << 4 | halves[i + 1]));
  return key;
}

// Pieces of eight, the last filled and with its length behind it; 09 between them, never inverted.
void AddPieces(Bytes& key, const Bytes& data, bool descending) {
  const std::uint8_t turn = descending ? 0xFF : 0;
  for (std::size_t from = 0; from < data.size(); from += 8) {
    const std::size_t length = std::min<std::size_t>(8, data.size() - from);
    for (std::size_t i = 0; i < 8; ++i)
      key.push_back(static_cast<std::uint8_t>((i < length ? data[from + i] : 0) ^ turn));
    const bool more = from + 8 < data.size();
    key.push_back(more ? 9 : static_cast<std::uint8_t>(length ^ turn));
  }
}

Bytes Real(std::uint64_t bits, int width) {
  const std::uint64_t top = std::uint64_t{1} << (8 * width - 1);
  Bytes b;
  AddHighFirst(b, (bits & top) != 0 ? ~bits : bits | top, width);
  return b;
}

Bytes NumericKey(Format format, const mdb::Decimal& value, bool descending) {
  Bytes b{static_cast<std::uint8_t>(format == Format::Ace ? 0xFF : value.negative ? 0x80 : 0)};
  for (const std::uint32_t word : value.magnitude) AddHighFirst(b, word, 4);
  if (value.negative != descending) Invert(b);
  if (format != Format::Ace) b[0] = value.negative ? 0 : 0xFF;
  return b;
}

}  // namespace

Bytes TextKey(Format format, std::uint16_t lcid, const std::string& text, bool descending) {
  if (format == Format::Jet3) {
    Bytes b = NarrowKey(text);
    if (descending) Invert(b);
    return b;
  }
  Bytes b = WideKey(lcid, text);
  if (descending) {
    Invert(b);
    b.push_back(0);
  }
  return b;
}

Bytes Key(const File& file, const Column& column, const Datum& value, bool descending) {
  if (column.type == ColumnType::Boolean) {
    const auto* yes = std::get_if<bool>(&value);
    const bool low = (yes != nullptr && *yes) != descending;
    return {static_cast<std::uint8_t>(descending ? 0x80 : 0x7F), static_cast<std::uint8_t>(low ? 0 : 0xFF)};
  }
  if (mdb::IsNull(value)) return {static_cast<std::uint8_t>(descending ? 0xFF : 0)};
  Bytes key{static_cast<std::uint8_t>(descending ? 0x80 : 0x7F)};
  if (const auto* text = std::get_if<std::string>(&value)) {
    Append(key, TextKey(file.format, file.lcid, *text, descending));
  } else if (const auto* bytes = std::get_if<Bytes>(&value)) {
    AddPieces(key, *bytes, descending);
  } else if (const auto* guid = std::get_if<mdb::Guid>(&value)) {
    AddPieces(key, {guid->bytes.begin(), guid->bytes.end()}, descending);
  } else if (const auto* decimal = std::get_if<mdb::Decimal>(&value)) {
    Append(key, NumericKey(file.format, *decimal, descending));
  } else {
    Bytes b;
    if (const auto* n = std::get_if<std::int64_t>(&value)) {
      using enum ColumnType;
      const int width = column.type == Byte         ? 1
                        : column.type == Integer    ? 2
                        : column.type == BigInteger ? 8
                                                    : 4;
      AddHighFirst(b, static_cast<std::uint64_t>(*n), width);
      if (column.type != Byte) b[0] ^= 0x80;
    } else if (const auto* m = std::get_if<base::Currency>(&value)) {
      AddHighFirst(b, static_cast<std::uint64_t>(m->ten_thousandths), 8);
      b[0] ^= 0x80;
    } else if (const auto* f = std::get_if<float>(&value)) {
      b = Real(Bits<std::uint32_t>(*f), 4);
    } else if (const auto* d = std::get_if<double>(&value)) {
      b = Real(Bits<std::uint64_t>(*d), 8);
    } else {
      b = Real(Bits<std::uint64_t>(std::get<base::Date>(value).serial), 8);
    }
    if (descending) Invert(b);
    Append(key, b);
  }
  return key;
}

}  // namespace assembler
