#include "mdb/definitions/definition.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "base/text.h"
#include "mdb/pages/data_page_internal.h"
#include "mdb/pages/text.h"

namespace mdb {
namespace {

// More pages than the largest table (255 columns with long names, 32 indexes) could need.
constexpr std::size_t kMaxPages = 256;
constexpr unsigned kMaxColumns = 255, kIndexColumns = 10;
constexpr std::uint16_t kNoColumn = 0xFFFF;

// The pages of a definition as one text: the first whole, the others without their first 8 bytes.
Bytes Collect(PageFile& pages, PageNumber first, std::vector<PageNumber>& numbers) {
  Bytes joined;
  for (PageNumber number = first; number != 0;) {
    const Image image = pages.Read(number);
    if (image->at(0) != internal::kDefinitionPage) ThrowPageDamage(number, "no es una definición de tabla");
    if (std::find(numbers.begin(), numbers.end(), number) != numbers.end() || numbers.size() >= kMaxPages)
      ThrowPageDamage(number, "la definición de la tabla vuelve sobre sus páginas");
    AppendBytes(joined, View(*image).subspan(numbers.empty() ? 0 : 8));
    numbers.push_back(number);
    number = U32(*image, 4);
  }
  return joined;
}

// Reads a definition from its start to its end.
class Reader {
 public:
  Reader(const FileHeader& header, View bytes) : header_(header), v_(bytes), jet3_(header.Jet3()) {}

  void Read(Definition& d) {
    ReadHead(d);
    ReadColumns(d);
    ReadIndexes(d);
    ReadLongMaps(d);
  }

 private:
  void ReadHead(Definition& d) {
    d.rows = U32(v_, jet3_ ? 12 : 16);
    d.last_auto_number = I32(v_, jet3_ ? 16 : 20);
    if (!jet3_) d.increment = I32(v_, 24);
    const std::size_t p = jet3_ ? 20 : 40;
    d.kind = U8(v_, p);
    d.max_columns = U16(v_, p + 1);
    d.variables = U16(v_, p + 3);
    columns_ = U16(v_, p + 5);
    logical_count_ = U32(v_, p + 7);
    real_count_ = U32(v_, p + 11);
    d.owned_pages = internal::ReadPointer(v_, p + 15);
    d.free_pages = internal::ReadPointer(v_, p + 19);
    if (columns_ > kMaxColumns) throw Damage("Demasiadas columnas");
    counters_ = p + 23;
    pos_ = counters_ + static_cast<std::size_t>(real_count_) * (jet3_ ? 8 : 12);
  }

  Column ReadColumn(std::size_t p) const {
    Column c;
    c.type = static_cast<ColumnType>(U8(v_, p));
    const std::size_t q = jet3_ ? p + 1 : p + 5;
    c.number = U16(v_, q);
    c.variable = U16(v_, q + 2);
    c.position = U16(v_, q + 4);
    if (c.type != ColumnType::Decimal) c.lcid = U16(v_, jet3_ ? p + 9 : p + 11);
    if (c.type == ColumnType::Decimal) {
      c.precision = U8(v_, p + 11);
      c.scale = U8(v_, p + 12);
    }
    if (!jet3_) {
      if (c.IsText()) c.order_version = U8(v_, p + 14);
      c.extended_flags = U8(v_, p + 16);
    }
    c.flags = U8(v_, jet3_ ? p + 13 : p + 15);
    c.offset = U16(v_, jet3_ ? p + 14 : p + 21);
    c.length = U16(v_, jet3_ ? p + 16 : p + 23);
    return c;
  }

  void ReadColumns(Definition& d) {
    const std::size_t width = jet3_ ? 18 : 25;
    for (unsigned i = 0; i < columns_; ++i, pos_ += width) d.columns.push_back(ReadColumn(pos_));
    for (auto& c : d.columns) c.name = ReadName();
  }

  std::string ReadName() {
    const std::size_t length = jet3_ ? U8(v_, pos_) : U16(v_, pos_);
    pos_ += jet3_ ? 1 : 2;
    const View bytes = Slice(v_, pos_, length);
    pos_ += length;
    std::string name;
    internal::ReadName(header_, bytes, name);
    return name;
  }

  RealIndex ReadReal(unsigned i) {
    RealIndex r;
    const std::size_t counter = counters_ + static_cast<std::size_t>(i) * (jet3_ ? 8 : 12);
    r.entries = U32(v_, counter);
    r.distinct = U32(v_, counter + 4);
    std::size_t p = jet3_ ? pos_ : pos_ + 4;
    for (unsigned k = 0; k < kIndexColumns; ++k, p += 3)
      if (const auto column = U16(v_, p); column != kNoColumn)
        r.parts.push_back({column, U8(v_, p + 2) == 0});
    r.map = internal::ReadPointer(v_, p);
    r.root = U32(v_, p + 4);
    r.flags = U8(v_, jet3_ ? p + 8 : p + 12);
    pos_ += jet3_ ? 39 : 52;
    return r;
  }

  LogicalIndex ReadLogical() {
    LogicalIndex l;
    const std::size_t p = jet3_ ? pos_ : pos_ + 4;
    l.number = U32(v_, p);
    l.real = U32(v_, p + 4);
    l.side = U8(v_, p + 8);
    l.other_index = I32(v_, p + 9);
    l.other_table = U32(v_, p + 13);
    l.cascades_updates = U8(v_, p + 17);
    l.cascades_deletes = U8(v_, p + 18);
    l.kind = U8(v_, p + 19);
    pos_ += jet3_ ? 20 : 28;
    if (l.real >= real_count_) throw Damage("Un índice sin su árbol");
    return l;
  }

  void ReadIndexes(Definition& d) {
    for (unsigned i = 0; i < real_count_; ++i) d.reals.push_back(ReadReal(i));
    for (unsigned i = 0; i < logical_count_; ++i) d.logicals.push_back(ReadLogical());
    for (auto& l : d.logicals) l.name = ReadName();
  }

  void ReadLongMaps(Definition& d) {
    while (pos_ + 2 <= v_.size()) {
      const auto number = U16(v_, pos_);
      if (number == kNoColumn) break;
      for (auto& c : d.columns) {
        if (c.number != number) continue;
        c.lv_owned_pages = internal::ReadPointer(v_, pos_ + 2);
        c.lv_free_pages = internal::ReadPointer(v_, pos_ + 6);
      }
      pos_ += 10;
    }
  }

  const FileHeader& header_;
  View v_;
  bool jet3_;
  std::size_t pos_ = 0, counters_ = 0;
  unsigned columns_ = 0;
  std::uint32_t logical_count_ = 0, real_count_ = 0;
};

}  // namespace

Definition ReadDefinition(PageFile& pages, PageNumber page) {
  Definition d;
  const Bytes joined = Collect(pages, page, d.pages);
  internal::NamingPage(page, "la definición de la tabla no se puede leer",
                       [&] { Reader(pages.Header(), joined).Read(d); });
  return d;
}

std::vector<std::size_t> Definition::InOrder() const {
  std::vector<std::size_t> order(columns.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  const auto key = [&](std::size_t i) { return std::tuple(columns[i].position, columns[i].number); };
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return key(a) < key(b); });
  return order;
}

std::optional<std::size_t> Definition::ByNumber(std::uint16_t number) const {
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (columns[i].number == number) return i;
  return {};
}

std::optional<std::size_t> Definition::ByName(std::string_view sought) const {
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (base::EqualIgnoringCase(columns[i].name, sought)) return i;
  return {};
}

const LogicalIndex* Definition::PrimaryKey() const {
  for (const auto& l : logicals)
    if (l.kind == LogicalIndex::Primary) return &l;
  return nullptr;
}

}  // namespace mdb
