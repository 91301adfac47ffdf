#include "mdb/pages/page_map.h"
#include "mdb/schema_support.h"

namespace {

using namespace mdb_test;
using mdb::ColumnType;

constexpr ColumnType kTypes[] = {
    ColumnType::Boolean, ColumnType::Byte,   ColumnType::Integer, ColumnType::Long, ColumnType::Currency,
    ColumnType::Single,  ColumnType::Double, ColumnType::Date,    ColumnType::Text, ColumnType::Memo,
    ColumnType::Binary,  ColumnType::Ole,    ColumnType::Decimal, ColumnType::Guid};

mdb::NewTable TableOfEverything() {
  mdb::NewTable t{"Años y niñez", {}, {}};
  int n = 0;
  for (const auto type : kTypes) t.columns.push_back(Col("Columna ñ " + std::to_string(++n), type));
  t.columns[12].precision = 10;
  t.columns[12].scale = 4;
  return t;
}

mdb::Row RowOfEverything() {
  return RowOf(true, N(200), N(-300), N(70000), base::Currency{-12345}, 1.5F, -2.25, base::Date{46347.5},
               S("José Ñandú"), S(std::string(3000, 'm')), mdb::Bytes{1, 2, 3}, mdb::Bytes(9000, 7),
               mdb::DecimalFromText("-12.5", 4), mdb::GuidFromText("00112233-4455-6677-8899-AABBCCDDEEFF"));
}

TEST(CreateTable, HoldsEveryType) {
  for (const std::uint16_t order : {std::uint16_t{3082}, std::uint16_t{1034}, std::uint16_t{1033}}) {
    TestDatabase b(order);
    b->CreateTable(TableOfEverything(), Today());
    const auto d = b.Def("AÑOS Y NIÑEZ");  // whatever the case
    ASSERT_EQ(d.columns.size(), std::size(kTypes));
    EXPECT_EQ(d.max_columns, std::size(kTypes));
    EXPECT_EQ(d.variables, 4);
    for (std::size_t i = 0; i < d.columns.size(); ++i) {
      EXPECT_EQ(d.columns[i].type, kTypes[i]);
      EXPECT_EQ(d.columns[i].number, i);
      EXPECT_EQ(d.columns[i].position, i);
      EXPECT_EQ(d.columns[i].lcid, d.columns[i].type == ColumnType::Decimal ? 0 : order);
    }
    EXPECT_EQ(d.columns[12].precision, 10);
    EXPECT_EQ(d.columns[12].scale, 4);
    b.Insert("Años y niñez", {RowOfEverything(), mdb::Row(std::size(kTypes))});
    const auto rows = b.Rows("Años y niñez");
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0], RowOfEverything());
    EXPECT_EQ(rows[1][0], mdb::Datum(false));
    EXPECT_EQ(rows[1][7], Nothing());
    b.ExpectSound();
  }
}

TEST(CreateTable, OtherReadersSeeItsSchema) {
  if (!HasMdbtools()) GTEST_SKIP() << "no mdbtools";
  TestDatabase b;
  auto t = TableOfEverything();
  t.columns[3].auto_number = true;
  t.columns[8].length = 40;
  t.columns[8].required = true;
  t.columns[8].default_value = "\"nadie\"";
  b->CreateTable(t, Today());
  EXPECT_EQ(Mdbtools("mdb-tables", "-1", b.Saved()), "Años y niñez\n");
  const std::string schema = b.Schema("--default-values --not-null", "access");
  for (const char* line :
       {"CREATE TABLE [Años y niñez]", "[Columna ñ 1]\t\t\tBoolean NOT NULL", "[Columna ñ 2]\t\t\tByte",
        "[Columna ñ 3]\t\t\tInteger", "[Columna ñ 4]\t\t\tLong Integer", "[Columna ñ 5]\t\t\tCurrency",
        "[Columna ñ 6]\t\t\tSingle", "[Columna ñ 7]\t\t\tDouble", "[Columna ñ 8]\t\t\tDateTime",
        "[Columna ñ 9]\t\t\tText (40) NOT NULL DEFAULT 'nadie'", "[Columna ñ 10]\t\t\tMemo/Hyperlink (255)",
        "[Columna ñ 11]\t\t\tBinary", "[Columna ñ 12]\t\t\tOLE (255)", "[Columna ñ 13]\t\t\tNumeric (10, 4)",
        "[Columna ñ 14]\t\t\tReplication ID"})
    EXPECT_NE(schema.find(line), std::string::npos) << line << "\n" << schema;
}

TEST(CreateTable, KeepsPropertiesOfItsColumns) {
  TestDatabase b;
  mdb::NewTable t{"Legajos", {Col("Código", ColumnType::Text, 10), Col("Alta", ColumnType::Date)}, {}};
  t.columns[0].required = true;
  t.columns[0].allows_empty = false;
  t.columns[0].compress = false;
  t.columns[1].default_value = "Date()+1";
  t.columns.push_back(Col("Marca", ColumnType::Guid));
  t.columns[2].auto_number = true;
  b->CreateTable(t, Today());
  const auto& p = b->Catalog().PropertiesOf("legajos");
  const auto value = [&](const char* column, const char* name) {
    const auto* datum = mdb::Find(p, column, name);
    return datum == nullptr ? Nothing() : *datum;
  };
  EXPECT_EQ(value("Código", "Required"), mdb::Datum(true));
  EXPECT_EQ(value("Código", "AllowZeroLength"), mdb::Datum(false));
  EXPECT_EQ(value("Código", "UnicodeCompression"), mdb::Datum(false));
  EXPECT_EQ(value("Alta", "DefaultValue"), S("Date()+1"));
  EXPECT_EQ(value("Alta", "AllowZeroLength"), Nothing());
  EXPECT_EQ(value("Marca", "DefaultValue"), S("GenGUID()"));
  EXPECT_EQ(b.Def("Legajos").columns[2].flags, 0x43);
  EXPECT_EQ(b.Def("Legajos").columns[0].extended_flags, 0);
  b.ExpectSound();
}

TEST(CreateTable, TakesTheColumnsThatThereMayBe) {
  TestDatabase b;
  mdb::NewTable t{"Ancha", {}, {}};
  for (int i = 0; i < 255; ++i)
    t.columns.push_back(
        Col("columna número " + std::to_string(i) + std::string(30, 'x'), i % 5 == 0 ? ColumnType::Boolean
                                                                          : i % 2    ? ColumnType::Text
                                                                                     : ColumnType::Long));
  b->CreateTable(t, Today());
  auto d = b.Def("Ancha");
  EXPECT_EQ(d.columns.size(), 255U);
  EXPECT_GT(d.pages.size(), 4U);
  mdb::Row row(255);
  for (std::size_t i = 0; i < 255; ++i)
    row[i] = i % 5 == 0 ? mdb::Datum(i % 10 == 0)
             : i % 2    ? S("t" + std::to_string(i))
                        : N(static_cast<int>(i));
  b.Insert("Ancha", {row, row});
  EXPECT_EQ(b.Rows("Ancha"), (std::vector<mdb::Row>{row, row}));
  b.ExpectSound();
  if (HasMdbtools()) {
    const std::string schema = b.Schema("");
    EXPECT_NE(schema.find("columna número 254"), std::string::npos);
  }
  b.ExpectRejected("255 columnas", [&] { b->AddColumn("Ancha", Col("una más", ColumnType::Long)); });
  t.name = "Otra";
  t.columns.push_back(Col("una más", ColumnType::Long));
  b.ExpectRejected("255 columnas", [&] { b->CreateTable(t, Today()); });
  b->DropTable("Ancha");
  EXPECT_EQ(b->Catalog().Find("Ancha"), nullptr);
  b.ExpectSound();
}

TEST(CreateTable, RefusesWhatAccessWould) {
  TestDatabase b;
  const auto table = [&](std::string name, std::vector<mdb::NewColumn> columns) {
    return [&b, t = mdb::NewTable{std::move(name), std::move(columns), {}}] { b->CreateTable(t, Today()); };
  };
  const auto long_column = Col("a", ColumnType::Long);
  b->CreateTable({"Una", {long_column}, {}}, Today());
  b.ExpectRejected("ya tiene una tabla con el nombre 'Una'", table("UNA", {long_column}));
  b.ExpectRejected("ya tiene una tabla", table("MSysObjects", {long_column}));
  b.ExpectRejected("no tiene columnas", table("Otra", {}));
  b.ExpectRejected("Falta el nombre de una tabla", table("", {long_column}));
  b.ExpectRejected("más de 64 letras", table(std::string(65, 'x'), {long_column}));
  b.ExpectRejected("empieza con un espacio", table(" x", {long_column}));
  for (const char* sign : {".", "!", "`", "[", "]"})
    b.ExpectRejected("lleva el signo " + std::string(sign),
                     table("a" + std::string(sign) + "b", {long_column}));
  b.ExpectRejected("carácter de control", table("a\tb", {long_column}));
  b.ExpectRejected("ya tiene una columna 'A'", table("Otra", {long_column, Col("A", ColumnType::Text)}));
  b.ExpectRejected("lleva el signo .", table("Otra", {Col("a.b", ColumnType::Text)}));
  b.ExpectRejected("más de 255 letras", table("Otra", {Col("a", ColumnType::Text, 256)}));
  b.ExpectRejected("más de 510 bytes", table("Otra", {Col("a", ColumnType::Binary, 511)}));
  b.ExpectRejected("no tiene", table("Otra", {Col("a", ColumnType::BigInteger)}));
  auto decimal = Col("a", ColumnType::Decimal);
  decimal.precision = 29;
  b.ExpectRejected("cantidad de cifras", table("Otra", {decimal}));
  decimal.precision = 5;
  decimal.scale = 6;
  b.ExpectRejected("cantidad de cifras", table("Otra", {decimal}));
  auto autonumber = long_column;
  autonumber.auto_number = true;
  auto second = autonumber;
  second.name = "b";
  b.ExpectRejected("ya tiene una columna autonumérica, 'a'", table("Otra", {autonumber, second}));
  second.type = ColumnType::Text;
  b.ExpectRejected("no es un entero largo", table("Otra", {second}));
  std::vector<mdb::NewColumn> decimals;
  for (int i = 0; i < 240; ++i) decimals.push_back(Col("d" + std::to_string(i), ColumnType::Decimal));
  b.ExpectRejected("no caben en una fila", table("Otra", decimals));
  // A bad index takes the whole table back.
  mdb::NewTable with_index{"Otra", {long_column, Col("m", ColumnType::Memo)}, {Ind("i", {"falta"})}};
  b.ExpectRejected("no tiene una columna 'falta'", [&] { b->CreateTable(with_index, Today()); });
  b.ExpectSound();
}

// A name of 64 letters counts letters, not bytes.
TEST(CreateTable, NamesAreCountedInLetters) {
  TestDatabase b;
  std::string name;
  for (int i = 0; i < 64; ++i) name += "ñ";
  b->CreateTable({name, {Col(name, ColumnType::Long)}, {Ind(name, {name})}}, Today());
  EXPECT_NE(b->Catalog().Find(name), nullptr);
  b.ExpectSound();
}

TEST(DropTable, GivesAllPagesBack) {
  TestDatabase b;
  auto t = TableOfEverything();
  t.indexes = {Key({"Columna ñ 4"}), Ind("Texto", {"Columna ñ 9"})};
  std::size_t pages = 0;
  for (int round = 0; round < 5; ++round) {
    b->CreateTable(t, Today());
    std::vector<mdb::Row> rows;
    for (int i = 0; i < 50; ++i) {
      rows.push_back(RowOfEverything());
      rows.back()[3] = N(i);
    }
    b.Insert(t.name, rows);
    b.ExpectSound();
    const auto now = b.Saved().size();
    if (round == 0) pages = now;
    EXPECT_EQ(now, pages) << round;
    b->DropTable("años y niñez");
    b.ExpectSound();
  }
  EXPECT_EQ(Mdbtools("mdb-tables", "-1", b.Saved()), "");
}

TEST(DropTable, LeavesTheOthersAlone) {
  TestDatabase b;
  for (const char* name : {"A", "B", "C"}) {
    b->CreateTable({name, {Col("x", ColumnType::Long), Col("m", ColumnType::Memo)}, {Key({"x"})}}, Today());
    b.Insert(name, {RowOf(N(1), S(std::string(5000, name[0])))});
  }
  b->DropTable("B");
  EXPECT_EQ(b.Rows("A"), std::vector<mdb::Row>{RowOf(N(1), S(std::string(5000, 'A')))});
  EXPECT_EQ(b.Rows("C"), std::vector<mdb::Row>{RowOf(N(1), S(std::string(5000, 'C')))});
  b.ExpectSound();
  b.ExpectRejected("no tiene una tabla 'B'", [&] { b->DropTable("B"); });
  b.ExpectRejected("es del sistema", [&] { b->DropTable("MSysACEs"); });
}

// A map that names a page of another table: the table is not dropped, and the other keeps its rows.
TEST(DropTable, StopsAtAPageThatIsNotItsOwn) {
  TestDatabase b;
  for (const char* name : {"A", "B"}) {
    b->CreateTable({name, {Col("x", ColumnType::Long), Col("m", ColumnType::Memo)}, {}}, Today());
    b.Insert(name, {RowOf(N(1), S(std::string(5000, 'm')))});
  }
  auto& pages = b->Pages();
  const auto foreign = mdb::ReadMap(pages, b.Def("B").owned_pages).front();
  mdb::AddToMap(pages, b.Def("A").owned_pages, foreign);
  b.ExpectRejected("página " + std::to_string(foreign) + ": está en el mapa de una tabla",
                   [&] { b->DropTable("A"); });
  mdb::RemoveFromMap(pages, b.Def("A").owned_pages, foreign);
  mdb::AddToMap(pages, b.Def("A").columns[1].lv_owned_pages, foreign);
  EXPECT_THROW(b->DropColumn("A", "m"), mdb::Damage);
  EXPECT_EQ(b.Rows("B").size(), 1U);
}

TEST(AddColumn, LeavesOldRowsWithoutIt) {
  TestDatabase b;
  b->CreateTable({"T", {Col("a", ColumnType::Long), Col("b", ColumnType::Text)}, {}}, Today());
  b.Insert("T", {RowOf(N(1), S("uno"))});
  b->AddColumn("T", Col("c", ColumnType::Double));
  b->AddColumn("T", Col("d", ColumnType::Boolean));
  b->AddColumn("T", Col("e", ColumnType::Memo));
  b.Insert("T", {RowOf(N(2), S("dos"), 2.5, true, S(std::string(4000, 'e')))});
  EXPECT_EQ(b.Rows("T"),
            (std::vector<mdb::Row>{RowOf(N(1), S("uno"), Nothing(), false, Nothing()),
                                   RowOf(N(2), S("dos"), 2.5, true, S(std::string(4000, 'e')))}));
  b.ExpectSound();
  EXPECT_EQ(mdb::Find(b->Catalog().PropertiesOf("T"), "e", "AllowZeroLength") != nullptr, true);
  b.ExpectRejected("ya tiene una columna", [&] { b->AddColumn("T", Col("C", ColumnType::Long)); });
}

// Rows without any column of variable length have no count of them; the first such column gives them one.
TEST(AddColumn, TheFirstVariableOneRewritesTheRows) {
  TestDatabase b;
  b->CreateTable({"T", {Col("a", ColumnType::Long), Col("b", ColumnType::Boolean)}, {Key({"a"})}}, Today());
  std::vector<mdb::Row> rows;
  for (int i = 0; i < 700; ++i) rows.push_back(RowOf(N(i), i % 3 == 0));
  b.Insert("T", rows);
  b->AddColumn("T", Col("t", ColumnType::Text));
  for (auto& f : rows) f.push_back(Nothing());
  EXPECT_EQ(b.Rows("T"), rows);
  b.ExpectSound();
  b->DropColumn("T", "t");
  for (auto& f : rows) f.pop_back();
  b.Insert("T", {RowOf(N(700), false)});
  rows.push_back(RowOf(N(700), false));
  EXPECT_EQ(b.Rows("T"), rows);
  b.ExpectSound();
}

TEST(AddColumn, NumbersTheRowsThatAreThere) {
  TestDatabase b;
  b->CreateTable({"T", {Col("a", ColumnType::Text)}, {}}, Today());
  b.Insert("T", {RowOf(S("x")), RowOf(S("y")), RowOf(S("z"))});
  auto number = Col("n", ColumnType::Long);
  number.auto_number = true;
  number.seed = 10;
  number.increment = -5;
  b->AddColumn("T", number);
  EXPECT_EQ(b.Rows("T"),
            (std::vector<mdb::Row>{RowOf(S("x"), N(10)), RowOf(S("y"), N(5)), RowOf(S("z"), N(0))}));
  EXPECT_EQ(b.Def("T").last_auto_number, 0);
  EXPECT_EQ(b.Def("T").increment, -5);
  auto guid = Col("g", ColumnType::Guid);
  guid.auto_number = true;
  b.ExpectRejected("tabla nueva", [&] { b->AddColumn("T", guid); });
}

TEST(DropColumn, KeepsTheOthersAndItsPlaceInTheCounts) {
  TestDatabase b;
  b->CreateTable({"T",
                  {Col("a", ColumnType::Long), Col("b", ColumnType::Text), Col("m", ColumnType::Memo),
                   Col("c", ColumnType::Text), Col("d", ColumnType::Integer)},
                  {Ind("Por c", {"c"})}},
                 Today());
  b.Insert("T", {RowOf(N(1), S("uno"), S(std::string(6000, 'm')), S("c1"), N(7))});
  const auto memo = b.Def("T").columns[2];
  ASSERT_FALSE(mdb::ReadMap(b->Pages(), memo.lv_owned_pages).empty());
  b.ExpectRejected("la usa el índice 'Por c'", [&] { b->DropColumn("T", "C"); });
  b->DropColumn("T", "M");
  b->DropColumn("T", "a");
  EXPECT_EQ(b.Rows("T"), std::vector<mdb::Row>{RowOf(S("uno"), S("c1"), N(7))});
  EXPECT_EQ(b.Def("T").max_columns, 5);
  EXPECT_EQ(b.Def("T").variables, 3);
  b.ExpectSound();
  EXPECT_EQ(b->Catalog().PropertiesOf("T").count("m"), 0U);
  b.Insert("T", {RowOf(S("dos"), S("c2"), N(8))});
  b->AddColumn("T", Col("m", ColumnType::Memo));  // the same name again, another column
  b.Insert("T", {RowOf(S("tres"), S("c3"), N(9), S(std::string(6000, 'n')))});
  EXPECT_EQ(b.Rows("T"), (std::vector<mdb::Row>{RowOf(S("uno"), S("c1"), N(7), Nothing()),
                                                RowOf(S("dos"), S("c2"), N(8), Nothing()),
                                                RowOf(S("tres"), S("c3"), N(9), S(std::string(6000, 'n')))}));
  b.ExpectSound();
  b->DropIndex("T", "Por c");
  for (const char* c : {"c", "d", "m"}) b->DropColumn("T", c);
  b.ExpectRejected("es la única", [&] { b->DropColumn("T", "b"); });
  b.ExpectRejected("no tiene una columna 'z'", [&] { b->DropColumn("T", "z"); });
  EXPECT_EQ(b.Rows("T"), (std::vector<mdb::Row>{RowOf(S("uno")), RowOf(S("dos")), RowOf(S("tres"))}));
  b.ExpectSound();
}

// An old row, from before two columns and with one that is gone, changes and grows.
TEST(DropColumn, OldRowsCanStillBeChanged) {
  TestDatabase b;
  b->CreateTable(
      {"T", {Col("a", ColumnType::Text), Col("m", ColumnType::Memo), Col("n", ColumnType::Long)}, {}},
      Today());
  const auto id = b.Insert("T", {RowOf(S("a"), S(std::string(3000, 'm')), N(3))}).front();
  b->AddColumn("T", Col("p", ColumnType::Text));
  b->DropColumn("T", "m");
  b->AddColumn("T", Col("q", ColumnType::Double));
  mdb::RowChange change;
  change.row = id;
  change.values.emplace_back(2, S(std::string(200, 'p')));
  mdb::Changes changes;
  changes.changed.push_back(change);
  b->Apply("T", changes);
  EXPECT_EQ(b.Rows("T"), std::vector<mdb::Row>{RowOf(S("a"), N(3), S(std::string(200, 'p')), Nothing())});
  b.ExpectSound();
}

}  // namespace
