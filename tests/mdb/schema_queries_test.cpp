#include <algorithm>

#include "engine_mdb/query_text.h"
#include "mdb/exported.h"
#include "mdb/queries/saved_query.h"
#include "mdb/samples.h"
#include "mdb/schema_support.h"

namespace {

using namespace mdb_test;
using mdb::ColumnType;

mdb::QueryRow Row(std::uint8_t attribute, std::optional<std::string> name1,
                  std::optional<std::string> expression, std::optional<std::int16_t> flag = std::nullopt) {
  mdb::QueryRow f;
  f.attribute = attribute;
  f.name1 = std::move(name1);
  f.expression = std::move(expression);
  f.flag = flag;
  return f;
}

mdb::SavedQuery SimpleQuery(std::string name) {
  mdb::SavedQuery c;
  c.name = std::move(name);
  c.rows = {Row(5, "Legajos", std::nullopt), Row(6, std::nullopt, "Legajos.Código", std::int16_t{0}),
            Row(6, "Doble", "Sueldo*2", std::int16_t{0}), Row(8, std::nullopt, "((Legajos.Código)>5)")};
  return c;
}

// Every saved query of files that another wrote, saved again in a new one: the same text, ours and that of
// other readers.
TEST(CreateQuery, QueriesOfOthersComeBackAsTheyWere) {
  int count = 0;
  std::vector<std::string> files = {SamplePath("queries.mdb")};
  for (const std::string& path : CorpusFiles())
    if (path.find("queryTestV200") != std::string::npos) files.push_back(path);
  for (const std::string& file : files) {
    mdb::Database original(Load(file));
    const mdb::Bytes bytes = dynamic_cast<mdb::MemoryPages&>(original.Pages()).Stored();
    TestDatabase b(original.Header().order);
    std::vector<std::string> names;
    for (const auto& o : original.Catalog().Objects())
      if (o.type == mdb::Object::Query) names.push_back(o.name);
    ASSERT_GE(names.size(), 9U);
    for (const auto& name : names) b->CreateQuery(original.Catalog().QueryOf(name), Today());
    for (const auto& name : names) {
      SCOPED_TRACE(name);
      const auto its_own = original.Catalog().QueryOf(name), ours = b->Catalog().QueryOf(name);
      EXPECT_EQ(ours.flags, its_own.flags);
      EXPECT_EQ(engine_mdb::QueryText(ours), engine_mdb::QueryText(its_own));
      EXPECT_EQ(Mdbtools("mdb-queries", "", b.Saved(), Quoted(name)),
                Mdbtools("mdb-queries", "", bytes, Quoted(name)));
      ++count;
    }
    b.ExpectSound();
  }
  EXPECT_GE(count, 10);
}

TEST(CreateQuery, NumbersWhatHasNoNumber) {
  TestDatabase b;
  b->CreateQuery(SimpleQuery("Años de niñez"), Today());
  const auto loaded = b->Catalog().QueryOf("AÑOS DE NIÑEZ");
  std::vector<std::pair<int, unsigned>> rows;
  for (const auto& f : loaded.rows) rows.emplace_back(f.attribute, f.order);
  std::sort(rows.begin(), rows.end());
  EXPECT_EQ(rows, (std::vector<std::pair<int, unsigned>>{{0, 1}, {5, 1}, {6, 1}, {6, 2}, {8, 1}, {255, 1}}));
  EXPECT_EQ(loaded.flags, 0U);
  b.ExpectSound();
  if (HasMdbtools()) {
    EXPECT_EQ(Mdbtools("mdb-queries", "-L -1", b.Saved()), "Años de niñez\n");
  }
}

// What the object says of its kind follows the rows, whatever the caller gave.
TEST(CreateQuery, FlagsTellTheKind) {
  TestDatabase b;
  const std::pair<std::int16_t, std::uint32_t> cases[] = {
      {1, 0}, {2, 0x50}, {3, 0x40}, {4, 0x30}, {5, 0x20}, {6, 0x10}, {7, 0x60}, {8, 0x70}, {9, 0x80}};
  for (const auto& [kind, flags] : cases) {
    auto c = SimpleQuery("c" + std::to_string(kind));
    c.rows.push_back(Row(1, "x", "y", kind));
    c.flags = 0x08 | 0x20;  // hidden; the kind is wrong but for one
    b->CreateQuery(c, Today());
    EXPECT_EQ(b->Catalog().QueryOf(c.name).flags, flags | 0x08) << kind;
  }
  b.ExpectSound();
}

TEST(CreateQuery, TakesTheSmallestFreeNumber) {
  TestDatabase b;
  const auto id = [&](const char* name) { return b->Catalog().Find(name)->id; };
  for (const char* name : {"a", "b", "c"}) b->CreateQuery(SimpleQuery(name), Today());
  EXPECT_EQ(id("a"), INT32_MIN);
  EXPECT_EQ(id("b"), INT32_MIN + 1);
  EXPECT_EQ(id("c"), INT32_MIN + 2);
  b->DropQuery("B");
  EXPECT_EQ(b->Catalog().Find("b"), nullptr);
  b->CreateQuery(SimpleQuery("d"), Today());
  EXPECT_EQ(id("d"), INT32_MIN + 1);
  // Only its own rows went.
  for (const char* name : {"a", "c", "d"}) EXPECT_EQ(b->Catalog().QueryOf(name).rows.size(), 6U);
  b.ExpectSound();
}

TEST(CreateQuery, LongTextsAndParametersAreKept) {
  TestDatabase b;
  auto c = SimpleQuery("Larga");
  c.rows[3].expression = "((Legajos.Nombre)='" + std::string(6000, 'x') + "')";
  auto parameter = Row(2, "Mes de pago", std::nullopt, std::int16_t{10});
  parameter.extra = 50;
  c.rows.push_back(parameter);
  b->CreateQuery(c, Today());
  const auto loaded = b->Catalog().QueryOf("Larga");
  const auto row = [&](int attribute) {
    return *std::find_if(loaded.rows.begin(), loaded.rows.end(),
                         [&](const auto& f) { return f.attribute == attribute; });
  };
  EXPECT_EQ(row(8).expression, c.rows[3].expression);
  EXPECT_EQ(row(2).extra, 50);
  EXPECT_EQ(row(2).name1, "Mes de pago");
  EXPECT_EQ(row(5).expression, std::nullopt);
  b.ExpectSound();
}

TEST(CreateQuery, SharesItsNamesWithTables) {
  TestDatabase b;
  b->CreateTable({"Legajos", {Col("a", ColumnType::Long)}, {}}, Today());
  b.ExpectRejected("ya tiene una tabla", [&] { b->CreateQuery(SimpleQuery("legajos"), Today()); });
  b->CreateQuery(SimpleQuery("Vista"), Today());
  b.ExpectRejected("ya tiene una consulta", [&] { b->CreateQuery(SimpleQuery("VISTA"), Today()); });
  b.ExpectRejected("ya tiene una consulta", [&] {
    b->CreateTable({"vista", {Col("a", ColumnType::Long)}, {}}, Today());
  });
  b.ExpectRejected("es una consulta, no una tabla", [&] { b->DropTable("Vista"); });
  b.ExpectRejected("no tiene una consulta 'Legajos'", [&] { b->DropQuery("Legajos"); });
  b.ExpectRejected("lleva el signo !", [&] { b->CreateQuery(SimpleQuery("a!b"), Today()); });
}

}  // namespace
