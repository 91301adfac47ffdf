#include "mdb/rows/table.h"

#include <gtest/gtest.h>

#include "mdb/pages/page_map.h"

namespace {

using mdb::Bytes;

constexpr std::size_t kPage = 4096;
constexpr mdb::PageNumber kTable = 5;
constexpr std::uint32_t kLval = 0x4C41564C;

struct Slot {
  std::uint16_t flags;
  Bytes bytes;
};

// A data page: rows from its end downwards, slots behind its head.
Bytes DataPage(std::uint32_t owner, const std::vector<Slot>& slots) {
  Bytes p(kPage, 0xEE);  // what is free is not zero in real files either
  p[0] = p[1] = 1;
  mdb::Put32(p, 4, owner);
  mdb::Put16(p, 12, static_cast<std::uint16_t>(slots.size()));
  std::size_t end = kPage, pos = 14;
  for (const auto& r : slots) {
    end -= r.bytes.size();
    mdb::PutBytes(p, end, r.bytes);
    mdb::Put16(p, pos, static_cast<std::uint16_t>(end | r.flags));
    pos += 2;
  }
  return p;
}

Bytes PointerBytes(mdb::RowId id) {
  Bytes b{id.row};
  mdb::Append24(b, id.page);
  return b;
}

Bytes InlineMap(std::uint32_t first, std::initializer_list<unsigned> pages) {
  Bytes b(5 + 8);
  mdb::Put32(b, 1, first);
  for (const unsigned p : pages) b[5 + (p - first) / 8] |= static_cast<std::uint8_t>(1U << (p - first) % 8);
  return b;
}

// A row of the table below: a Long and a Text.
Bytes RowOf(std::int32_t n, const std::string& text) {
  Bytes b{2, 0};
  mdb::Append32(b, static_cast<std::uint32_t>(n));
  b.insert(b.end(), {0xFF, 0xFE});
  b.insert(b.end(), text.begin(), text.end());
  mdb::Append16(b, static_cast<std::uint16_t>(8 + text.size()));
  mdb::Append16(b, 6);
  mdb::Append16(b, 1);
  b.push_back(3);
  return b;
}

mdb::Definition Table() {
  mdb::Definition d;
  d.pages = {kTable};
  d.max_columns = 2;
  d.variables = 1;
  mdb::Column n, t;
  n.name = "N";
  n.flags |= mdb::Column::kFixed;
  t.name = "T";
  t.type = mdb::ColumnType::Text;
  t.number = 1;
  d.columns = {n, t};
  d.owned_pages = {1, 0};
  return d;
}

// Page 1 holds the map, the pages from 2 on are given.
struct File {
  mdb::MemoryPages pages;
  mdb::Definition table = Table();

  explicit File(const std::vector<Bytes>& from_two, const Bytes& map = InlineMap(0, {2}))
      : pages(mdb::FileHeader{}, Join(from_two, map)) {}

  static Bytes Join(const std::vector<Bytes>& from_two, const Bytes& map) {
    Bytes all(kPage);
    mdb::AppendBytes(all, DataPage(0, {{0, map}}));
    for (const auto& p : from_two) mdb::AppendBytes(all, p);
    return all;
  }

  // "page:row number text" of each row.
  std::string Read(const std::vector<std::size_t>& columns = {}, std::size_t count = 100) {
    std::string output;
    mdb::WalkRows(
        pages, table,
        [&](mdb::RowId id, const mdb::Row& row) {
          output += std::to_string(id.page) + ":" + std::to_string(id.row);
          if (const auto* n = std::get_if<std::int64_t>(&row[0])) output += " " + std::to_string(*n);
          if (const auto* t = std::get_if<std::string>(&row[1])) output += " " + *t;
          output += "\n";
          return --count > 0;
        },
        columns);
    return output;
  }
  // What reading all rows complains of.
  std::string Complaint() {
    try {
      Read();
    } catch (const mdb::Damage& d) {
      return d.Description();
    }
    return "none";
  }
};

std::string DamageMessage(int page, const std::string& reason) {
  return "El archivo está dañado, página " + std::to_string(page) + ": " + reason;
}

// Page 2: a row, a deleted one with and one without its bytes, a moved one and the last; page 3: a place of a
// moved row.
File WithEverything() {
  return File({DataPage(kTable, {{0, RowOf(1, "uno")},
                                 {0xC000, RowOf(2, "dos")},
                                 {0xC000, {}},
                                 {0x4000, PointerBytes({3, 0})},
                                 {0, RowOf(5, "cinco")}}),
               DataPage(kTable, {{0x8000, RowOf(4, "cuatro")}})},
              InlineMap(0, {2, 3}));
}

TEST(Table, WalksLiveRowsByTheirIdentities) {
  auto a = WithEverything();
  EXPECT_EQ(a.Read(), "2:0 1 uno\n2:3 4 cuatro\n2:4 5 cinco\n");
  EXPECT_EQ(a.Read({1}), "2:0 uno\n2:3 cuatro\n2:4 cinco\n");
  EXPECT_EQ(a.Read({}, 2), "2:0 1 uno\n2:3 4 cuatro\n");
}

TEST(Table, FindsOneRowByItsIdentity) {
  auto a = WithEverything();
  EXPECT_EQ(mdb::ReadRow(a.pages, a.table, {2, 0}), (mdb::Row{std::int64_t{1}, std::string("uno")}));
  EXPECT_EQ(mdb::ReadRow(a.pages, a.table, {2, 3}), (mdb::Row{std::int64_t{4}, std::string("cuatro")}));
  EXPECT_FALSE(mdb::ReadRow(a.pages, a.table, {2, 1}));
  EXPECT_FALSE(mdb::ReadRow(a.pages, a.table, {2, 2}));
  EXPECT_FALSE(mdb::ReadRow(a.pages, a.table, {3, 0}));  // the place of a moved row is nobody's identity
  EXPECT_FALSE(mdb::ReadRow(a.pages, a.table, {2, 9}));
  EXPECT_EQ(mdb::FindRow(a.pages, a.table, {2, 0})->place, (mdb::RowId{2, 0}));
  EXPECT_EQ(mdb::FindRow(a.pages, a.table, {2, 3})->place, (mdb::RowId{3, 0}));
  EXPECT_THROW(mdb::ReadRow(a.pages, a.table, {1, 0}), mdb::Damage);  // a page of maps
  EXPECT_THROW(mdb::ReadRow(a.pages, a.table, {99, 0}), mdb::Damage);
}

TEST(Table, DamageNamesItsPage) {
  EXPECT_EQ(File({DataPage(7, {{0, RowOf(1, "uno")}})}).Complaint(), DamageMessage(2, "es de otra tabla"));
  EXPECT_EQ(File({Bytes(kPage)}).Complaint(), DamageMessage(2, "no es una página de datos"));
  EXPECT_EQ(File({DataPage(kTable, {{0, RowOf(1, "uno")}})}, InlineMap(0, {2, 3})).Complaint(),
            DamageMessage(1, "una tabla tiene la página 3 y el archivo termina antes: está cortado"));
  EXPECT_EQ(File({DataPage(kTable, {{0, RowOf(1, "uno")}, {0, {2, 0}}})}).Complaint(),
            DamageMessage(2, "la fila 1 no se puede leer"));
  // A moved row may lead to the place of a moved row alone: never to a row, a deleted one, another moved one.
  for (const unsigned flags : {0x0000U, 0xC000U, 0x4000U})
    EXPECT_EQ(File({DataPage(kTable, {{0x4000, PointerBytes({3, 0})}}),
                    DataPage(kTable, {{static_cast<std::uint16_t>(flags), RowOf(4, "cuatro")}})})
                  .Complaint(),
              DamageMessage(3, "una fila movida no está donde debe"));
  EXPECT_EQ(File({DataPage(kTable, {{0x4000, PointerBytes({2, 0})}})}).Complaint(),
            DamageMessage(2, "una fila movida no está donde debe"));
  EXPECT_EQ(File({DataPage(kTable, {{0x4000, {1, 2}}})}).Complaint(),
            DamageMessage(2, "una fila movida no se puede seguir"));
  EXPECT_EQ(File({DataPage(kTable, {{0x4000, PointerBytes({77, 0})}})}).Complaint(),
            DamageMessage(77, "el archivo tiene 3 páginas"));
  EXPECT_EQ(File({DataPage(kTable, {{0x4000, PointerBytes({3, 1})}}),
                  DataPage(kTable, {{0x8000, RowOf(4, "cuatro")}})})
                .Complaint(),
            DamageMessage(3, "no tiene la fila 1"));
}

TEST(Table, SlotsOutOfPlaceAreDamage) {
  Bytes p = DataPage(kTable, {{0, RowOf(1, "uno")}, {0, RowOf(2, "dos")}});
  mdb::Put16(p, 16, 4095);  // rises
  EXPECT_EQ(File({p}).Complaint(), DamageMessage(2, "la fila 1 está fuera de lugar"));
  mdb::Put16(p, 16, 16);  // inside the list of slots
  EXPECT_EQ(File({p}).Complaint(), DamageMessage(2, "la fila 1 está fuera de lugar"));
  mdb::Put16(p, 14, 0x1FFF);  // beyond the page
  EXPECT_EQ(File({p}).Complaint(), DamageMessage(2, "la fila 0 está fuera de lugar"));
  mdb::Put16(p, 12, 3000);
  EXPECT_EQ(File({p}).Complaint(), DamageMessage(2, "la lista de filas no cabe"));
}

// The 12 bytes of a long value in its row.
Bytes Field(std::uint32_t word, mdb::RowId id) {
  Bytes b;
  mdb::Append32(b, word);
  mdb::AppendBytes(b, PointerBytes(id));
  mdb::Append32(b, 0x12345678);  // Access leaves what it likes here
  return b;
}

Bytes Piece(mdb::RowId next, const std::string& data) {
  Bytes b = PointerBytes(next);
  b.insert(b.end(), data.begin(), data.end());
  return b;
}

std::string Length(std::uint32_t word, mdb::RowId id, const std::vector<Slot>& pieces,
                   std::uint32_t owner = kLval) {
  File a({DataPage(owner, pieces)});
  try {
    mdb::Column column;
    column.type = mdb::ColumnType::Ole;
    const auto value = std::get<mdb::Bytes>(mdb::Decode(a.pages, column, Field(word, id)));
    return {value.begin(), value.end()};
  } catch (const mdb::Damage& d) {
    return d.Description();
  }
}

TEST(CheckLongValue, StandsInOneRowOrInAChain) {
  EXPECT_EQ(Length(0x40000003, {2, 0}, {{0, {'a', 'b', 'c'}}}), "abc");
  EXPECT_EQ(Length(0x40000002, {2, 0}, {{0, {'a', 'b', 'c'}}}), "ab");
  EXPECT_EQ(Length(6, {2, 1}, {{0, Piece({}, "def")}, {0, Piece({2, 0}, "abc")}}), "abcdef");
  EXPECT_EQ(Length(1, {2, 0}, {{0, Piece({}, "a")}}), "a");
  EXPECT_EQ(Length(0, {}, {}), "");
  EXPECT_EQ(Length(0x40000000, {}, {}), "");
}

TEST(CheckLongValue, DamagedChainsEnd) {
  EXPECT_EQ(Length(9, {2, 0}, {{0, Piece({}, "abc")}}),
            "El archivo está dañado: un valor largo está incompleto");
  // A chain that comes back ends at the value's length.
  EXPECT_EQ(Length(7, {2, 0}, {{0, Piece({2, 0}, "abc")}}), "abcabca");
  EXPECT_EQ(Length(7, {2, 0}, {{0, Piece({2, 0}, "")}}),
            DamageMessage(2, "un valor largo tiene una pieza vacía"));
  EXPECT_EQ(Length(0x3FFFFFFF, {2, 0}, {{0, Piece({2, 0}, "abc")}}),
            "El archivo está dañado: un valor largo es más largo que el archivo");
  EXPECT_EQ(Length(0x40000009, {2, 0}, {{0, {'a'}}}), DamageMessage(2, "un valor largo está incompleto"));
  EXPECT_EQ(Length(0x40000001, {2, 1}, {{0, {'a'}}}), DamageMessage(2, "no tiene la fila 1"));
  EXPECT_EQ(Length(0x40000001, {2, 0}, {{0xC000, {'a'}}}),
            DamageMessage(2, "un valor largo lleva a una fila que no lo es"));
  EXPECT_EQ(Length(0x40000001, {2, 0}, {{0, {'a'}}}, kTable),
            DamageMessage(2, "un valor largo lleva a una fila que no lo es"));
  EXPECT_EQ(Length(0x40000001, {88, 0}, {}), DamageMessage(88, "el archivo tiene 3 páginas"));
}

Bytes MapPage(std::initializer_list<unsigned> bits) {
  Bytes p(kPage);
  p[0] = 5;
  p[1] = 1;
  for (const unsigned b : bits) p[4 + b / 8] |= static_cast<std::uint8_t>(1U << b % 8);
  return p;
}

TEST(CheckMap, IsABitmapFromItsStart) {
  File a(std::vector<Bytes>(30, Bytes(kPage)), InlineMap(8, {9, 16, 31, 32, 60}));
  // The file has 32 pages: what lies beyond is left out.
  EXPECT_EQ(mdb::ReadMap(a.pages, {1, 0}), (std::vector<mdb::PageNumber>{9, 16, 31}));
  EXPECT_TRUE(mdb::PagesOfMap(a.pages, {1, 0}).empty());
  EXPECT_TRUE(mdb::IsInMap(a.pages, {1, 0}, 9));
  EXPECT_FALSE(mdb::IsInMap(a.pages, {1, 0}, 10));
  EXPECT_FALSE(mdb::IsInMap(a.pages, {1, 0}, 1));
  EXPECT_FALSE(mdb::IsInMap(a.pages, {1, 0}, 5000));
}

TEST(CheckMap, OrAListOfBitmapPages) {
  Bytes map{1};
  for (const std::uint32_t p : {0U, 0xFFFFFFFFU, 0U}) mdb::Append32(map, p);
  mdb::Put32(map, 1, 2);
  File a({MapPage({0, 2, 3, 4, 32735})}, map);
  EXPECT_EQ(mdb::ReadMap(a.pages, {1, 0}), (std::vector<mdb::PageNumber>{0, 2}));
  EXPECT_EQ(mdb::PagesOfMap(a.pages, {1, 0}), (std::vector<mdb::PageNumber>{2}));
  EXPECT_TRUE(mdb::IsInMap(a.pages, {1, 0}, 32735));
  EXPECT_FALSE(mdb::IsInMap(a.pages, {1, 0}, 32736));   // the second pointer is none
  EXPECT_FALSE(mdb::IsInMap(a.pages, {1, 0}, 999999));  // beyond the pointers
}

TEST(CheckMap, NoneIsEmpty) {
  File a({});
  EXPECT_TRUE(mdb::ReadMap(a.pages, {}).empty());
  EXPECT_TRUE(mdb::PagesOfMap(a.pages, {}).empty());
  EXPECT_FALSE(mdb::IsInMap(a.pages, {}, 3));
}

TEST(CheckMap, DamageNamesItsPage) {
  const auto complaint = [](const Bytes& map, const std::vector<Bytes>& pages) {
    File a(pages, map);
    try {
      mdb::ReadMap(a.pages, {1, 0});
    } catch (const mdb::Damage& d) {
      return d.Description();
    }
    return std::string("none");
  };
  EXPECT_EQ(complaint({2, 0, 0, 0, 0}, {}), DamageMessage(1, "un mapa de páginas de otra clase"));
  EXPECT_EQ(complaint({}, {}), DamageMessage(1, "un mapa de páginas de otra clase"));
  EXPECT_EQ(complaint({0, 0, 0}, {}), DamageMessage(1, "un mapa de páginas de otra clase"));
  EXPECT_EQ(complaint({1, 9, 0, 0, 0}, {}), DamageMessage(1, "un mapa lleva a la página 9, que no hay"));
  EXPECT_EQ(complaint({1, 2, 0, 0, 0}, {Bytes(kPage)}), DamageMessage(2, "no es una página de mapa"));
  EXPECT_EQ(complaint({1, 2}, {}), "none");
}

// A chain of definition pages that comes back.
TEST(Definition, AChainThatComesBackIsDamage) {
  Bytes p(kPage);
  p[0] = 2;
  p[1] = 1;
  mdb::Put32(p, 4, 2);
  File a({p});
  EXPECT_THROW(mdb::ReadDefinition(a.pages, 2), mdb::Damage);
  try {
    mdb::ReadDefinition(a.pages, 2);
  } catch (const mdb::Damage& d) {
    EXPECT_EQ(d.Description(), DamageMessage(2, "la definición de la tabla vuelve sobre sus páginas"));
  }
  EXPECT_THROW(mdb::ReadDefinition(a.pages, 1), mdb::Damage);
  EXPECT_THROW(mdb::ReadDefinition(a.pages, 50), mdb::Damage);
}

TEST(Definition, CountsThatLeadBeyondItsPagesAreDamage) {
  for (const std::size_t field : {std::size_t{45}, std::size_t{47}, std::size_t{51}}) {
    Bytes p(kPage);
    p[0] = 2;
    p[1] = 1;
    mdb::Put32(p, field, field == 45 ? 0x00000300 : 0xFFFFFFFF);
    File a({p});
    try {
      mdb::ReadDefinition(a.pages, 2);
      ADD_FAILURE() << field;
    } catch (const mdb::Damage& d) {
      EXPECT_EQ(d.Description(), DamageMessage(2, "la definición de la tabla no se puede leer"));
    }
  }
}

TEST(Definition, OrdersColumnsAsTheyAreShown) {
  mdb::Definition d;
  const std::pair<int, int> places[] = {{0, 3}, {1, 1}, {2, 2}, {3, 1}};
  for (const auto& [number, position] : places) {
    mdb::Column c;
    c.name = "C" + std::to_string(number);
    c.number = static_cast<std::uint16_t>(number);
    c.position = static_cast<std::uint16_t>(position);
    d.columns.insert(d.columns.begin(), c);  // stored the other way round
  }
  std::string order;
  for (const auto i : d.InOrder()) order += d.columns[i].name + " ";
  EXPECT_EQ(order, "C1 C3 C2 C0 ");
  EXPECT_EQ(d.ByNumber(3), 0U);
  EXPECT_EQ(d.ByName("c0"), 3U);
  EXPECT_FALSE(d.ByName("C4"));
  EXPECT_EQ(d.PrimaryKey(), nullptr);
}

}  // namespace
