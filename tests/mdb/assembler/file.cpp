#include "mdb/assembler/file.h"

#include <algorithm>

#include "base/date.h"

namespace assembler {
namespace {

constexpr std::int64_t kTables = 0x0F000001, kDatabases = 0x0F000002, kRelationships = 0x0F000003,
                       kRoot = 0x0F000000, kFirstObject = -2147483648LL;
constexpr double kCreated = 38442.75;  // 31 March 2005, 18:00

Datum N(std::int64_t n) { return n; }
Datum T(const std::string& text) { return text; }
Datum TextOrNull(const std::string& text) { return text.empty() ? Datum{} : Datum{text}; }

Column Col(std::string name, ColumnType type, unsigned length = 0) {
  Column c;
  c.name = std::move(name);
  c.type = type;
  c.length = length;
  return c;
}

Index Over(std::string name, std::vector<std::string> columns, bool unique, bool primary) {
  Index i;
  i.name = std::move(name);
  i.columns = std::move(columns);
  i.unique = unique;
  i.primary = primary;
  return i;
}

bool Same(const std::vector<std::string>& a, const std::vector<std::string>& b) { return a == b; }

std::size_t IndexOver(const Table& table, const std::vector<std::string>& columns, bool unique) {
  for (std::size_t i = 0; i < table.indexes.size(); ++i) {
    const Index& x = table.indexes[i];
    if (Same(x.columns, columns) && (!unique || x.unique || x.primary)) return i;
  }
  throw std::runtime_error("no index of " + table.name + " for a relationship");
}

}  // namespace

const Table& Builder::TableOf(const std::string& name) const {
  return file_.tables.at(static_cast<std::size_t>(
      std::find_if(file_.tables.begin(), file_.tables.end(), [&](const Table& t) { return t.name == name; }) -
      file_.tables.begin()));
}

PageNumber Builder::PageOf(const std::string& table) const {
  return table_pages_.at(static_cast<std::size_t>(&TableOf(table) - file_.tables.data()));
}

// The table's own indexes, then those of its relationships: ".rB", ".rC", … where it is the parent (the
// letter is the number), the relationship's name where it is the child.
std::vector<Builder::Logical> Builder::Logicals(const Table& table) const {
  std::vector<Logical> all;
  const auto add = [&](const std::string& name, std::size_t real) -> Logical& {
    Logical l;
    l.name = name;
    l.number = static_cast<std::uint32_t>(all.size());
    l.real = static_cast<std::uint32_t>(real);
    all.push_back(l);
    return all.back();
  };
  for (std::size_t i = 0; i < table.indexes.size(); ++i) {
    Logical& l = add(table.indexes[i].name, i);
    if (table.indexes[i].primary) l.kind = 1;
  }
  // The number of the logical index that a relationship has in one of its two tables.
  const auto number = [&](const Relation& wanted, const Table& of, bool as_parent) {
    auto n = static_cast<std::uint32_t>(of.indexes.size());
    for (const Relation& r : file_.relations) {
      if ((r.flags & 2) != 0) continue;
      if (r.parent == of.name) {
        if (&r == &wanted && as_parent) return n;
        ++n;
      }
      if (r.table == of.name) {
        if (&r == &wanted && !as_parent) return n;
        ++n;
      }
    }
    throw std::runtime_error("no relationship " + wanted.name);
  };
  for (const Relation& r : file_.relations) {
    if ((r.flags & 2) != 0) continue;
    const auto fill = [&](Logical& l, const std::string& other, bool parent) {
      l.side = parent ? 1 : 2;
      l.kind = 2;
      l.other_table = PageOf(other);
      l.other_index = number(r, TableOf(other), !parent);
      l.updates = (r.flags & 0x100) != 0 ? 1 : 0;
      l.deletes = (r.flags & 0x1000) != 0 ? 1 : 0;
    };
    if (r.parent == table.name) {
      const std::string name{'.', 'r', static_cast<char>('A' + all.size())};
      fill(add(name, IndexOver(table, r.parent_columns, true)), r.table, true);
    }
    if (r.table == table.name) fill(add(r.name, IndexOver(table, r.columns, false)), r.parent, false);
  }
  std::stable_sort(all.begin(), all.end(),
                   [](const Logical& a, const Logical& b) { return a.name < b.name; });
  return all;
}

void Builder::Write(const Table& table, PageNumber page) {
  Stored stored;
  Rows(table, page, stored);
  Indexes(table, page, stored);
  Definition(table, page, stored);
}

Table Builder::Objects() const {
  using enum ColumnType;
  Table t;
  t.name = "MSysObjects";
  t.columns = {Col("Id", Long),
               Col("ParentId", Long),
               Col("Name", Text, 255),
               Col("Type", Integer),
               Col("DateCreate", Date),
               Col("DateUpdate", Date),
               Col("Owner", Binary, 255),
               Col("Flags", Long),
               Col("Database", Memo),
               Col("Connect", Memo),
               Col("ForeignName", Text, 255),
               Col("RmtInfoShort", Binary, 255),
               Col("RmtInfoLong", Ole),
               Col("Lv", Ole),
               Col("LvProp", Ole),
               Col("LvModule", Ole),
               Col("LvExtra", Ole)};
  t.indexes = {Over("ParentIdName", {"ParentId", "Name"}, true, false), Over("Id", {"Id"}, true, true)};
  const auto add = [&](std::int64_t id, std::int64_t parent, const std::string& name, std::int64_t type,
                       std::int64_t flags) -> Row& {
    RowSpec row;
    row.values.resize(17);
    row.values[0] = id;
    row.values[1] = parent;
    row.values[2] = name;
    row.values[3] = type;
    row.values[4] = row.values[5] = base::Date{kCreated};
    row.values[6] = Bytes{0x02, 0x01};
    row.values[7] = flags;
    t.rows.push_back(std::move(row));
    return t.rows.back().values;
  };
  constexpr std::int64_t kSystem = -2147483648LL;
  add(kTables, kRoot, "Tables", 3, kSystem);
  add(kDatabases, kRoot, "Databases", 3, kSystem);
  add(kRelationships, kRoot, "Relationships", 3, kSystem);
  add(0x10000000, kDatabases, "MSysDb", 2, kSystem);
  const bool swapped = file_.queries_on_page_5;
  add(2, kTables, "MSysObjects", 1, kSystem);
  add(3, kTables, "MSysACEs", 1, kSystem);
  add(swapped ? 5 : 4, kTables, "MSysQueries", 1, kSystem);
  add(swapped ? 4 : 5, kTables, "MSysRelationships", 1, kSystem);
  for (std::size_t i = 0; i < file_.tables.size(); ++i) {
    const Table& table = file_.tables[i];
    Row& row = add(table_pages_[i], kTables, table.name, 1, 0);
    if (!table.properties.empty()) row[14] = Properties(file_.format, table.properties);
  }
  std::int64_t id = kFirstObject;
  for (const Query& q : file_.queries) add(id++, kTables, q.name, 5, q.flags);
  for (const Link& l : file_.links) {
    Row& row = add(id++, kTables, l.name, l.type, 0x200000);
    row[8] = TextOrNull(l.database);
    row[9] = TextOrNull(l.connection);
    row[10] = TextOrNull(l.table);
  }
  for (const Relation& r : file_.relations) add(id++, kRelationships, r.name, 8, 0);
  return t;
}

Table Builder::Permissions() const {
  using enum ColumnType;
  Table t;
  t.name = "MSysACEs";
  t.columns = {Col("ObjectId", Long), Col("SID", Binary, 255), Col("ACM", Long),
               Col("FInheritable", Boolean)};
  t.indexes = {Over("ObjectId", {"ObjectId"}, false, false)};
  for (const std::int64_t id : {kTables, kRelationships, std::int64_t{2}, std::int64_t{3}})
    for (const std::uint8_t who : {std::uint8_t{1}, std::uint8_t{3}})
      t.rows.push_back({{N(id), Bytes{who, 0x02}, N(0xFFFFF), Datum{id >= kTables}}});
  return t;
}

Table Builder::Queries() const {
  using enum ColumnType;
  Table t;
  t.name = "MSysQueries";
  t.columns = {Col("ObjectId", Long),   Col("Attribute", Byte),  Col("Order", Binary, 255),
               Col("Name1", Text, 255), Col("Name2", Text, 255), Col("Expression", Memo),
               Col("Flag", Integer),    Col("LvExtra", Long)};
  t.indexes = {Over("ObjectIdAttribute", {"ObjectId", "Attribute", "Order"}, true, true)};
  std::int64_t id = kFirstObject;
  for (const Query& q : file_.queries) {
    std::vector<mdb::QueryRow> rows = q.rows;
    rows.insert(rows.begin(), mdb::QueryRow{});
    rows.push_back({255, 0, {}, {}, {}, {}, {}});
    for (const auto& r : rows) {
      Bytes order;
      AddHighFirst(order, r.order, 4);
      t.rows.push_back({{N(id), N(r.attribute), order, r.name1 ? T(*r.name1) : Datum{},
                         r.name2 ? T(*r.name2) : Datum{}, r.expression ? T(*r.expression) : Datum{},
                         r.flag ? N(*r.flag) : Datum{}, r.extra ? N(*r.extra) : Datum{}}});
    }
    ++id;
  }
  return t;
}

Table Builder::Relationships() const {
  using enum ColumnType;
  Table t;
  t.name = "MSysRelationships";
  t.columns = {Col("szRelationship", Text, 255),
               Col("grbit", Long),
               Col("ccolumn", Long),
               Col("icolumn", Long),
               Col("szObject", Text, 255),
               Col("szColumn", Text, 255),
               Col("szReferencedObject", Text, 255),
               Col("szReferencedColumn", Text, 255)};
  for (const char* name : {"szRelationship", "szObject", "szReferencedObject"}) {
    t.indexes.push_back(Over(name, {name}, false, false));
    t.indexes.back().ignores_nulls = true;
  }
  for (const Relation& r : file_.relations)
    for (std::size_t i = 0; i < r.columns.size(); ++i)
      t.rows.push_back({{T(r.name), N(r.flags), N(static_cast<std::int64_t>(r.columns.size())),
                         N(static_cast<std::int64_t>(i)), T(r.table), T(r.columns[i]), T(r.parent),
                         T(r.parent_columns.at(i))}});
  return t;
}

// Row 0: a bit for each page that is free, those behind the end too. Row 1: nothing.
void Builder::FreeMap() {
  const std::size_t bytes =
      std::max<std::size_t>(pages_.Jet3() ? 128 : 64, (pages_.all.size() / 8 + 4) / 4 * 4);
  Bytes map(5 + bytes), none(5 + bytes);
  for (std::size_t p = pages_.all.size(); p < bytes * 8; ++p)
    map[5 + p / 8] |= static_cast<std::uint8_t>(1U << p % 8);
  for (const PageNumber p : free_) map[5 + p / 8] |= static_cast<std::uint8_t>(1U << p % 8);
  Pages one{file_.format, {}};
  RowPages page(one, 1);
  page.Place(map);
  page.Place(none);
  page.Finish();
  pages_.all[1] = one.all.front();
}

void Builder::Header() {
  const bool jet3 = pages_.Jet3(), ace = file_.format == Format::Ace;
  Bytes& b = pages_.all[0];
  std::fill(b.begin(), b.end(), std::uint8_t{0});
  b[1] = 1;
  const std::string name = ace ? "Standard ACE DB" : "Standard Jet DB";
  std::copy(name.begin(), name.end(), b.begin() + 4);
  b[0x14] = jet3 ? 0 : ace ? file_.version : 1;
  Put(b, 0x18, 0x100, 4);
  Put(b, 0x1C, 0x101, 4);
  for (unsigned i = 0; i < 4; ++i) Put(b, 0x20 + 4 * i, 2 + i, 4);
  Put(b, 0x3C, file_.code_page, 2);
  Put(b, 0x3E, file_.key, 4);
  Bytes password = Text(file_.format, file_.password);
  password.resize(jet3 ? 20 : 40);
  if (jet3) {
    Put(b, 0x3A, file_.lcid, 2);
  } else {
    const auto salt = static_cast<std::uint32_t>(kCreated);
    for (std::size_t i = 0; i < 40; ++i) password[i] ^= static_cast<std::uint8_t>(salt >> (8 * (i % 4)));
    Put(b, 0x6A, 0x2649, 4);
    Put(b, 0x6E, file_.lcid, 2);
    b[0x71] = static_cast<std::uint8_t>(file_.order_version);
    Put(b, 0x72, Bits<std::uint64_t>(kCreated), 8);
    Put(b, 0x98, 0x0654, 4);
    Put(b, 0x9C, 0x302E34, 3);
  }
  std::copy(password.begin(), password.end(), b.begin() + 0x42);
  Cipher({0xC7, 0xDA, 0x39, 0x6B}, b, 0x18, jet3 ? 126 : 128);
  const std::size_t counters = jet3 ? 0x600 : 0xE00;
  for (std::size_t i = 0; i < 256; ++i) Put(b, counters + 2 * i, i == 0 ? 0x0101 : 0x0100, 2);
}

Bytes Builder::Make() {
  for (int i = 0; i < 6; ++i) pages_.Add();
  for (std::size_t i = 0; i < file_.tables.size(); ++i) table_pages_.push_back(pages_.Add());
  for (std::size_t i = 0; i < file_.tables.size(); ++i) Write(file_.tables[i], table_pages_[i]);
  for (unsigned i = 0; i < file_.free_pages; ++i) free_.push_back(pages_.Add());
  const bool swapped = file_.queries_on_page_5;
  Write(Objects(), 2);
  Write(Permissions(), 3);
  Write(Queries(), swapped ? 5 : 4);
  Write(Relationships(), swapped ? 4 : 5);
  maps_.Finish();
  FreeMap();
  Header();
  if (file_.format != Format::Ace && file_.key != 0)
    for (PageNumber n = 1; n < pages_.all.size(); ++n) {
      Bytes key;
      Add(key, file_.key ^ n, 4);
      Cipher(key, pages_.all[n], 0, pages_.Size());
    }
  Bytes all;
  for (const Bytes& p : pages_.all) Append(all, p);
  return all;
}

Bytes Assemble(const File& file) { return Builder(file).Make(); }

}  // namespace assembler
