#include <optional>

#include "base/text.h"
#include "engine_mdb/query_text.h"
#include "mdb/catalog/catalog.h"
#include "mdb/pages/text.h"
#include "mdb/rows/table.h"
#include "support/data_test.h"
#include "support/escapes.h"

namespace {

using support::Block;

std::vector<std::string> Lines(const Block& b) { return base::Split(b.entry, "\n"); }

mdb::Bytes FromHex(std::string_view text) {
  mdb::Bytes bytes;
  int high = -1;
  for (const char c : text) {
    const int n = support::HexDigit(c);
    if (n < 0) continue;
    if (high < 0) {
      high = n;
    } else {
      bytes.push_back(static_cast<std::uint8_t>(high * 16 + n));
      high = -1;
    }
  }
  return bytes;
}

std::string Hexadecimal(mdb::View bytes) {
  std::string text;
  for (const auto b : bytes) {
    text += "0123456789ABCDEF"[b >> 4];
    text += "0123456789ABCDEF"[b & 15];
  }
  return text;
}

mdb::FileHeader Header(const Block& b) {
  mdb::FileHeader c;
  if (b.Has("jet3")) {
    c.version = mdb::Version::Jet3;
    c.page_size = 2048;
  }
  c.code_page = static_cast<std::uint16_t>(std::stoi(b.Option("codigos", "1252")));
  return c;
}

// What the step gives, or its error.
template <typename Step>
std::string WithError(Step&& step) {
  try {
    return step();
  } catch (const base::Error& e) {
    return "error: " + e.Description();
  }
}
template <typename Step>
std::string ForEachLine(const Block& b, Step&& step) {
  std::string output;
  for (const auto& line : Lines(b)) output += WithError([&] { return step(line); }) + "\n";
  output.pop_back();
  return output;
}

// "attribute|order|name1|name2|expression|flag|extra"; "-" is Null, and so is what is missing at the end.
mdb::QueryRow Row(const std::string& line) {
  const auto pieces = base::Split(line, "|");
  const auto text = [&](std::size_t i) -> std::optional<std::string> {
    if (i >= pieces.size() || pieces[i] == "-") return {};
    return support::Unescape(pieces[i]);
  };
  mdb::QueryRow f;
  f.attribute = static_cast<std::uint8_t>(std::stoi(pieces[0]));
  f.order = static_cast<std::uint32_t>(std::stoul(pieces[1]));
  f.name1 = text(2);
  f.name2 = text(3);
  f.expression = text(4);
  if (const auto n = text(5)) f.flag = static_cast<std::int16_t>(std::stoi(*n));
  if (const auto n = text(6)) f.extra = std::stoi(*n);
  return f;
}

mdb::SavedQuery Query(const Block& b) {
  mdb::SavedQuery c;
  c.name = "Q";
  c.flags = static_cast<std::uint32_t>(std::stoul(b.Option("banderas", "0"), nullptr, 0));
  for (const auto& line : Lines(b))
    if (!line.empty()) c.rows.push_back(Row(line));
  return c;
}

std::string KindText(const Block& b) {
  return WithError([&] {
    const auto kind = mdb::KindOf(Query(b));
    return std::string(engine_mdb::KindName(kind)) + (engine_mdb::GivesRows(kind) ? ", gives rows" : "");
  });
}

std::string DecimalText(const mdb::Decimal& d) {
  std::string magnitude;
  for (const auto word : d.magnitude) {
    mdb::Bytes bytes;
    mdb::Append32(bytes, word);
    magnitude += Hexadecimal(mdb::Bytes(bytes.rbegin(), bytes.rend()));
  }
  magnitude.erase(0, std::min(magnitude.find_first_not_of('0'), magnitude.size() - 1));
  return d.Text() + " " + (d.negative ? "-" : "+") + magnitude;
}

struct ShowDatum {
  std::string operator()(base::Null) const { return "NULL"; }
  std::string operator()(bool v) const { return v ? "True" : "False"; }
  std::string operator()(std::int64_t v) const { return std::to_string(v); }
  std::string operator()(float v) const { return base::Value(v).CsvText() + "f"; }
  std::string operator()(double v) const { return base::Value(v).CsvText(); }
  std::string operator()(base::Currency v) const { return base::Value(v).CsvText() + "$"; }
  std::string operator()(base::Date v) const { return base::IsoDate(v); }
  std::string operator()(const std::string& v) const { return v.empty() ? "(empty)" : support::Escaped(v); }
  std::string operator()(const mdb::Bytes& v) const { return "0x" + Hexadecimal(v); }
  std::string operator()(const mdb::Guid& v) const { return v.Text(); }
  std::string operator()(const mdb::Decimal& v) const { return v.Text(); }
};

// Lines "name type number fixed offset length" or "name type number variable place length", then "--", then
// rows in hexadecimal. One line a row.
std::string Rows(const Block& b) {
  const auto header = Header(b);
  mdb::MemoryPages pages(header, {});
  mdb::Definition d;
  bool columns = true;
  std::string output;
  for (const auto& line : Lines(b)) {
    if (line == "--") {
      columns = false;
    } else if (columns) {
      const auto p = base::Split(line, " ");
      mdb::Column c;
      c.name = p.at(0);
      c.type = static_cast<mdb::ColumnType>(std::stoi(p.at(1)));
      c.number = static_cast<std::uint16_t>(std::stoi(p.at(2)));
      const auto place = static_cast<std::uint16_t>(std::stoi(p.at(4)));
      if (p.at(3) == "fixed") {
        c.flags |= mdb::Column::kFixed;
        c.offset = place;
      } else {
        c.variable = place;
        d.variables = std::max<std::uint16_t>(d.variables, static_cast<std::uint16_t>(place + 1));
      }
      if (p.size() > 5) c.length = static_cast<std::uint16_t>(std::stoi(p.at(5)));
      if (p.size() > 6) c.extended_flags = static_cast<std::uint8_t>(std::stoi(p.at(6)));
      d.columns.push_back(c);
      d.max_columns = std::max<std::uint16_t>(d.max_columns, static_cast<std::uint16_t>(c.number + 1));
    } else {
      const auto bytes = FromHex(line);
      output += WithError([&] {
        std::vector<std::string> cells;
        const auto raw_values = mdb::SplitRow(header, d, bytes);
        for (std::size_t i = 0; i < raw_values.size(); ++i)
          cells.push_back(raw_values[i]
                              ? std::visit(ShowDatum{}, mdb::Decode(pages, d.columns[i], *raw_values[i]))
                              : "NULL");
        return base::Join(cells, "|");
      });
      output += "\n";
    }
  }
  if (!output.empty()) output.pop_back();
  return output;
}

std::string PropertiesText(const Block& b) {
  return WithError([&] {
    const auto bytes = FromHex(b.entry);
    const auto properties = mdb::ReadProperties(Header(b), bytes);
    std::string output;
    for (const auto& [owner, list] : properties)
      for (const auto& p : list)
        output += (owner.empty() ? "(table)" : owner) + "." + p.name + " " + std::to_string(p.type) +
                  (p.ddl ? " ddl " : " ") + std::visit(ShowDatum{}, p.value) + "\n";
    if (b.Has("igual"))
      output +=
          mdb::SerializeProperties(properties) == bytes ? "the same when written\n" : "written otherwise\n";
    if (!output.empty()) output.pop_back();
    return output.empty() ? std::string("(none)") : output;
  });
}

support::Verbs Prepare() {
  support::Verbs v;
  v["query"] = [](const Block& b) {
    return WithError([&] { return support::Escaped(engine_mdb::QueryText(Query(b))); });
  };
  v["kind"] = KindText;
  v["decimal"] = [](const Block& b) {
    const auto scale = static_cast<std::uint8_t>(std::stoi(b.Option("escala", "0")));
    return ForEachLine(b, [&](const std::string& line) {
      const auto d = mdb::DecimalFromText(line, scale);
      return DecimalText(d);
    });
  };
  v["guid"] = [](const Block& b) {
    return ForEachLine(b, [](const std::string& line) { return mdb::GuidFromText(line).Text(); });
  };
  v["text"] = [](const Block& b) {
    return ForEachLine(b, [&](const std::string& line) {
      const auto text = mdb::DecodeText(Header(b), FromHex(line));
      return text.empty() ? std::string("(empty)") : support::Escaped(text);
    });
  };
  v["rows"] = Rows;
  v["properties"] = PropertiesText;
  return v;
}

}  // namespace

int main(int argc, char** argv) { return support::RunFiles(argc, argv, Prepare); }
