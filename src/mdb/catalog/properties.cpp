#include <algorithm>
#include <bit>
#include <unordered_map>

#include "base/encoding.h"
#include "base/text.h"
#include "mdb/catalog/catalog.h"
#include "mdb/pages/text.h"
#include "mdb/rows/table.h"

namespace mdb {
namespace {

constexpr std::string_view kJet4{"MR2\0", 4}, kJet3{"KKD\0", 4};
constexpr std::uint16_t kNames = 0x80, kOfTable = 0, kOfColumn = 1;

class Reader {
 public:
  Reader(const FileHeader& header, View bytes) : header_(header), v_(bytes) {}

  Properties Read() {
    Properties output;
    if (v_.empty()) return output;
    const std::string_view mark(reinterpret_cast<const char*>(Slice(v_, 0, 4).data()), 4);
    if (mark != kJet4 && mark != kJet3) throw Damage("Las propiedades de una tabla son de otra clase");
    for (std::size_t p = 4; p + 6 <= v_.size();) {
      const std::size_t length = U32(v_, p);
      if (length < 6) throw Damage("Las propiedades de una tabla están dañadas");
      const View block = Slice(v_, p, length);
      const std::uint16_t kind = U16(block, 4);
      if (kind == kNames) ReadNames(block);
      if (kind == kOfTable || kind == kOfColumn) ReadBlock(block, kind == kOfColumn, output);
      p += length;
    }
    return output;
  }

 private:
  // A text behind its length of two bytes.
  std::string Name(View v, std::size_t& pos) const {
    const std::size_t length = U16(v, pos);
    std::string name;
    internal::ReadName(header_, Slice(v, pos + 2, length), name);
    pos += 2 + length;
    return name;
  }

  void ReadNames(View block) {
    names_.clear();
    for (std::size_t p = 6; p < block.size();) names_.push_back(Name(block, p));
  }

  void ReadBlock(View block, bool of_column, Properties& output) const {
    const std::size_t name_part = U32(block, 6);
    Slice(block, 6, name_part);
    std::string owner;
    if (std::size_t p = 10; of_column && name_part >= 6) owner = Name(block, p);
    auto& list = output[owner];
    for (std::size_t p = 6 + std::max<std::size_t>(name_part, 4); p < block.size();) {
      const std::size_t length = U16(block, p);
      if (length < 8) throw Damage("Las propiedades de una tabla están dañadas");
      list.push_back(ReadProperty(Slice(block, p, length)));
      p += length;
    }
  }

  Property ReadProperty(View record) const {
    Property property;
    property.ddl = U8(record, 2) != 0;
    property.type = U8(record, 3);
    const std::size_t name = U16(record, 4);
    if (name >= names_.size()) throw Damage("Una propiedad no tiene nombre");
    property.name = names_[name];
    property.value = Value(property.type, Slice(record, 8, U16(record, 6)));
    return property;
  }

  // Here a Memo's and an OLE's bytes stand themselves, not a pointer to them.
  Datum Value(std::uint8_t type, View bytes) const {
    switch (static_cast<ColumnType>(type)) {
      case ColumnType::Boolean:
        return !bytes.empty() && bytes[0] != 0;
      case ColumnType::Text:
      case ColumnType::Memo:
        return DecodeText(header_, bytes);
      case ColumnType::Byte:
        return std::int64_t{U8(bytes, 0)};
      case ColumnType::Integer:
        return std::int64_t{I16(bytes, 0)};
      case ColumnType::Long:
        return std::int64_t{I32(bytes, 0)};
      case ColumnType::Currency:
        return base::Currency{I64(bytes, 0)};
      case ColumnType::Single:
        return F32(bytes, 0);
      case ColumnType::Double:
        return F64(bytes, 0);
      case ColumnType::Date:
        return base::Date{F64(bytes, 0)};
      default:
        return Bytes(bytes.begin(), bytes.end());
    }
  }

  const FileHeader& header_;
  View v_;
  std::vector<std::string> names_;
};

void AppendName(Bytes& b, const std::string& name) {
  const auto units = base::ToUtf16(name);
  Append16(b, static_cast<std::uint16_t>(2 * units.size()));
  for (const char16_t u : units) Append16(b, static_cast<std::uint16_t>(u));
}

struct Writer {
  std::uint8_t type;
  Bytes& b;
  void operator()(base::Null) const {}
  void operator()(bool v) const { Append8(b, v ? 1 : 0); }
  void operator()(std::int64_t v) const {
    const auto n = static_cast<std::uint64_t>(v);
    switch (static_cast<ColumnType>(type)) {
      case ColumnType::Byte:
        return Append8(b, static_cast<std::uint8_t>(n));
      case ColumnType::Integer:
        return Append16(b, static_cast<std::uint16_t>(n));
      default:
        return Append32(b, static_cast<std::uint32_t>(n));
    }
  }
  void operator()(float v) const { Append32(b, std::bit_cast<std::uint32_t>(v)); }
  void operator()(double v) const { Append64(b, std::bit_cast<std::uint64_t>(v)); }
  void operator()(base::Currency v) const { Append64(b, static_cast<std::uint64_t>(v.ten_thousandths)); }
  void operator()(base::Date v) const { (*this)(v.serial); }
  void operator()(const std::string& v) const {
    for (const char16_t u : base::ToUtf16(v)) Append16(b, static_cast<std::uint16_t>(u));
  }
  void operator()(const Bytes& v) const { AppendBytes(b, v); }
  void operator()(const Guid& v) const { AppendBytes(b, View(v.bytes)); }
  void operator()(const Decimal& v) const { (*this)(v.Text()); }
};

void AppendBlock(Bytes& output, std::uint16_t kind, const Bytes& content) {
  Append32(output, static_cast<std::uint32_t>(content.size() + 6));
  Append16(output, kind);
  AppendBytes(output, content);
}

Bytes BuildRecord(const Property& property, std::uint16_t name) {
  Bytes datum;
  std::visit(Writer{property.type, datum}, property.value);
  if (datum.size() > 0xFFFF - 8) throw base::Error("La propiedad '" + property.name + "' es muy larga");
  Bytes b;
  Append16(b, static_cast<std::uint16_t>(datum.size() + 8));
  Append8(b, property.ddl ? 1 : 0);
  Append8(b, property.type);
  Append16(b, name);
  Append16(b, static_cast<std::uint16_t>(datum.size()));
  AppendBytes(b, datum);
  return b;
}

}  // namespace

Properties ReadProperties(const FileHeader& header, View bytes) { return Reader(header, bytes).Read(); }

Bytes SerializeProperties(const Properties& properties) {
  std::unordered_map<std::string, std::uint16_t> numbers;
  Bytes names;
  for (const auto& [owner, list] : properties)
    for (const auto& p : list)
      if (numbers.emplace(p.name, static_cast<std::uint16_t>(numbers.size())).second)
        AppendName(names, p.name);
  Bytes output(kJet4.begin(), kJet4.end());
  AppendBlock(output, kNames, names);
  for (const auto& [owner, list] : properties) {
    Bytes name, content;
    AppendName(name, owner);
    Append32(content, static_cast<std::uint32_t>(name.size() + 4));
    AppendBytes(content, name);
    for (const auto& p : list) AppendBytes(content, BuildRecord(p, numbers.at(p.name)));
    AppendBlock(output, owner.empty() ? kOfTable : kOfColumn, content);
  }
  return output;
}

const Datum* Find(const Properties& properties, std::string_view owner, std::string_view name) {
  for (const auto& [who, list] : properties) {
    if (!base::EqualIgnoringCase(who, owner)) continue;
    for (const auto& p : list)
      if (base::EqualIgnoringCase(p.name, name)) return &p.value;
  }
  return nullptr;
}

}  // namespace mdb
