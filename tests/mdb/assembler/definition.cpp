// Tables: their rows, their indexes, their page maps and their definition.
#include <algorithm>
#include <map>

#include "mdb/assembler/file.h"

namespace assembler {
namespace {

std::uint8_t ColumnFlags(const Table& table, const Column& c) {
  unsigned flags = 0x02;
  if (IsFixed(c)) flags |= 0x01;
  if (c.autonumber) flags |= c.type == ColumnType::Guid ? 0x40 : 0x04;
  if (table.name.rfind("MSys", 0) == 0) flags |= 0x10;
  return static_cast<std::uint8_t>(flags);
}

void AddColumn(Bytes& b, const File& file, const Table& table, const Layout& layout, std::size_t i) {
  const Column& c = table.columns[i];
  const bool jet3 = file.format == Format::Jet3;
  const auto seat = std::find(table.shown.begin(), table.shown.end(), i) - table.shown.begin();
  Add(b, static_cast<unsigned>(c.type), 1);
  if (!jet3) Add(b, 1625, 4);
  Add(b, i, 2);
  Add(b, layout.variable_index[i], 2);
  Add(b, table.shown.empty() ? i : static_cast<std::size_t>(seat), 2);
  if (jet3) Add(b, i, 2);
  if (c.type == ColumnType::Decimal) {
    Add(b, c.precision, 1);
    Add(b, c.scale, 1);
  } else {
    Add(b, file.lcid, 2);
  }
  if (jet3) {
    Add(b, file.code_page, 2);
  } else {
    Add(b, 0, 1);
    Add(b, file.order_version, 1);
  }
  Add(b, ColumnFlags(table, c), 1);
  if (!jet3) {
    Add(b, (c.compresses ? 0x01U : 0U) | (c.calculated ? 0xC0U : 0U), 1);
    Add(b, 0, 4);
  }
  Add(b, IsFixed(c) ? layout.fixed_offset[i] : 0xDEAD, 2);
  Add(b, StoredLength(file.format, c), 2);
}

void AddName(Bytes& b, Format format, const std::string& name) {
  const Bytes text = Text(format, name);
  Add(b, text.size(), format == Format::Jet3 ? 1 : 2);
  Append(b, text);
}

}  // namespace

unsigned Builder::Number(const Table& table, const std::string& column) {
  const std::string name = column[0] == '-' ? column.substr(1) : column;
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    if (table.columns[i].name == name && !table.columns[i].gone) return static_cast<unsigned>(i);
  throw std::runtime_error(table.name + " has no column " + name);
}

// The bits of a map that starts at page 0, or the list of the page that holds them.
mdb::RowId Builder::Map(const std::vector<PageNumber>& set, bool bitmap_page) {
  Bytes row(pages_.Jet3() ? 133 : 69);
  if (bitmap_page) {
    const PageNumber page = pages_.Add();
    Bytes& b = pages_.all[page];
    std::fill(b.begin(), b.end(), std::uint8_t{0});
    Put(b, 0, 0x0105, 2);
    for (const PageNumber p : set) b.at(4 + p / 8) |= static_cast<std::uint8_t>(1U << p % 8);
    row[0] = 1;
    Put(row, 1, page, 4);
  } else {
    for (const PageNumber p : set) row.at(5 + p / 8) |= static_cast<std::uint8_t>(1U << p % 8);
  }
  return maps_.Place(row);
}

void Builder::Rows(const Table& table, PageNumber page, Stored& stored) {
  RowPages pages(pages_, page, table.rows_a_page), elsewhere(pages_, page, table.rows_a_page);
  std::vector<LongPages*> long_pages(table.columns.size());
  std::vector<std::unique_ptr<LongPages>> owners;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const ColumnType type = table.columns[i].type;
    if (table.columns[i].gone || (type != ColumnType::Memo && type != ColumnType::Ole)) continue;
    owners.push_back(
        std::make_unique<LongPages>(LongPages{RowPages(pages_, RowPages::kLongValues), table.chains}));
    long_pages[i] = owners.back().get();
  }
  for (const RowSpec& row : table.rows) {
    const Bytes bytes =
        row.state == RowSpec::Emptied ? Bytes() : EncodeRow(file_.format, table, row, long_pages);
    if (row.state == RowSpec::Moved) {
      Bytes pointer;
      AddPointer(pointer, elsewhere.Place(bytes, 0x8000));
      stored.rows.push_back(pages.Place(pointer, 0x4000));
    } else {
      stored.rows.push_back(pages.Place(bytes, row.state == RowSpec::Here ? 0 : 0xC000));
    }
  }
  pages.Finish();
  elsewhere.Finish();
  std::vector<PageNumber> own = pages.Numbers(), room = pages.WithRoom();
  for (const PageNumber p : elsewhere.Numbers()) own.push_back(p);
  for (const PageNumber p : elsewhere.WithRoom()) room.push_back(p);
  stored.own = Map(own, table.bitmap_pages);
  stored.room = Map(room);
  for (std::size_t i = 0; i < long_pages.size(); ++i) {
    if (long_pages[i] == nullptr) continue;
    long_pages[i]->pages.Finish();
    const auto mine = Map(long_pages[i]->pages.Numbers());
    stored.long_maps.push_back({static_cast<unsigned>(i), mine, Map(long_pages[i]->pages.WithRoom())});
  }
}

void Builder::Indexes(const Table& table, PageNumber page, Stored& stored) {
  for (const Index& index : table.indexes) {
    std::vector<Entry> entries;
    for (std::size_t r = 0; r < table.rows.size(); ++r) {
      const RowSpec& row = table.rows[r];
      if (row.state == RowSpec::Deleted || row.state == RowSpec::Emptied) continue;
      Bytes key;
      bool any = false;
      for (const std::string& name : index.columns) {
        const unsigned c = Number(table, name);
        const bool known = row.columns == 0 || c < row.columns;
        const Datum value = known ? row.values.at(c) : Datum{};
        any = any || !mdb::IsNull(value) || table.columns[c].type == ColumnType::Boolean;
        Append(key, Key(file_, table.columns[c], value, name[0] == '-'));
      }
      if (any || !index.ignores_nulls) entries.push_back({key, stored.rows[r]});
    }
    std::map<Bytes, int> distinct;
    for (const Entry& e : entries) ++distinct[e.key];
    Real real;
    real.entries = entries.size();
    real.distinct = distinct.size();
    const Tree tree = BuildTree(pages_, page, std::move(entries), table.entries_a_leaf, table.prefixes);
    real.root = tree.root;
    real.map = Map(tree.pages);
    stored.reals.push_back(real);
  }
}

void Builder::Definition(const Table& table, PageNumber page, const Stored& stored) {
  const bool jet3 = pages_.Jet3();
  const Layout layout = LayoutOf(table);
  const auto logicals = Logicals(table);
  std::size_t kept = 0, live = 0;
  std::int64_t last = 0;
  for (const Column& c : table.columns) kept += c.gone ? 0 : 1;
  for (const RowSpec& r : table.rows) {
    if (r.state == RowSpec::Deleted || r.state == RowSpec::Emptied) continue;
    ++live;
    for (std::size_t i = 0; i < table.columns.size(); ++i)
      if (table.columns[i].autonumber)
        if (const auto* n = std::get_if<std::int64_t>(&r.values.at(i))) last = std::max(last, *n);
  }
  Bytes b(8);
  Add(b, 0, 4);  // the length, below
  if (!jet3) Add(b, 1625, 4);
  Add(b, live, 4);
  Add(b, static_cast<std::uint64_t>(last), 4);
  if (!jet3) {
    Add(b, 1, 4);
    Add(b, 0, 4);
    Add(b, 0, 8);
  }
  Add(b, table.name.rfind("MSys", 0) == 0 ? 0x53 : 0x4E, 1);
  Add(b, table.columns.size(), 2);
  Add(b, layout.variables, 2);
  Add(b, kept, 2);
  Add(b, logicals.size(), 4);
  Add(b, table.indexes.size(), 4);
  AddPointer(b, stored.own);
  AddPointer(b, stored.room);
  for (const Real& r : stored.reals) {
    Add(b, r.entries, 4);
    Add(b, r.distinct, 4);
    if (!jet3) Add(b, 0, 4);
  }
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    if (!table.columns[i].gone) AddColumn(b, file_, table, layout, i);
  for (const Column& c : table.columns)
    if (!c.gone) AddName(b, file_.format, c.name);
  for (std::size_t k = 0; k < table.indexes.size(); ++k) {
    const Index& index = table.indexes[k];
    if (!jet3) Add(b, 1923, 4);
    for (std::size_t i = 0; i < 10; ++i) {
      const bool there = i < index.columns.size();
      Add(b, there ? Number(table, index.columns[i]) : 0xFFFF, 2);
      Add(b, there && index.columns[i][0] == '-' ? 0 : 1, 1);
    }
    AddPointer(b, stored.reals[k].map);
    Add(b, stored.reals[k].root, 4);
    if (!jet3) Add(b, 0xBADBAD, 4);
    Add(b,
        (index.unique || index.primary ? 1U : 0U) | (index.ignores_nulls ? 2U : 0U) |
            (index.required || index.primary ? 8U : 0U) | (jet3 ? 0U : 0x80U),
        1);
    if (!jet3) Add(b, 0, 5);
  }
  for (const Logical& l : logicals) {
    if (!jet3) Add(b, 1625, 4);
    Add(b, l.number, 4);
    Add(b, l.real, 4);
    Add(b, l.side, 1);
    Add(b, l.other_index, 4);
    Add(b, l.other_table, 4);
    Add(b, l.updates, 1);
    Add(b, l.deletes, 1);
    Add(b, l.kind, 1);
    if (!jet3) Add(b, 0, 4);
  }
  for (const Logical& l : logicals) AddName(b, file_.format, l.name);
  for (const auto& l : stored.long_maps) {
    Add(b, l.column, 2);
    AddPointer(b, l.own);
    AddPointer(b, l.room);
  }
  Add(b, 0xFFFF, 2);
  Put(b, 8, b.size(), 4);
  OverPages(page, b);
}

// Over the first page and as many more as it takes; each begins with its own eight bytes.
void Builder::OverPages(PageNumber first, const Bytes& definition) {
  const std::size_t size = pages_.Size();
  PageNumber page = first;
  for (std::size_t from = 8; from < definition.size();) {
    const std::size_t length = std::min(size - 8, definition.size() - from);
    const PageNumber next = from + length < definition.size() ? pages_.Add() : 0;
    Bytes& b = pages_.all[page];
    Put(b, 0, 0x0102, 2);
    Put(b, 2, pages_.Jet3() ? 0x4356 : size - 8 - std::min(size - 8, length + 8), 2);
    Put(b, 4, next, 4);
    std::copy_n(definition.begin() + static_cast<std::ptrdiff_t>(from), length, b.begin() + 8);
    from += length;
    page = next;
  }
}

}  // namespace assembler
