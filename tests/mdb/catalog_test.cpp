#include "mdb/catalog/catalog.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "mdb/corpus.h"
#include "mdb/exported.h"
#include "mdb/rows/table.h"
#include "mdb/samples.h"
#include "mdb/tables/table_writer.h"

namespace {

TEST(Catalog, FindsTablesAndQueriesWhateverTheirCase) {
  const auto pages = mdb_test::LoadSample("queries.mdb");
  const mdb::SystemCatalog catalog(*pages);
  const auto* table = catalog.Find("hORAS");
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->name, "Horas");
  EXPECT_EQ(table->type, mdb::Object::Table);
  EXPECT_FALSE(table->IsSystem());
  EXPECT_EQ(catalog.Find("de todas")->type, mdb::Object::Query);
  EXPECT_TRUE(catalog.Find("msysobjects")->IsSystem());
  EXPECT_EQ(catalog.Find("Tables"), nullptr);  // a container
  EXPECT_EQ(catalog.Find("Table9"), nullptr);
  const auto definition = catalog.Table("HORAS");
  ASSERT_NE(definition, nullptr);
  EXPECT_EQ(definition->name, "Horas");
  EXPECT_EQ(static_cast<std::int32_t>(definition->Page()), table->id);
  EXPECT_EQ(catalog.Table("horas"), definition);  // read once
  EXPECT_EQ(catalog.Table("De todas"), nullptr);
  EXPECT_EQ(catalog.Table("Table9"), nullptr);
  EXPECT_THROW(catalog.QueryOf("Horas"), base::Error);
  EXPECT_EQ(catalog.QueryOf("DE TODAS").name, "De todas");
}

// The row of an object in MSysObjects, written through the pages under the catalog's feet.
TEST(Catalog, IsReadAnewAfterAChange) {
  const auto pages = mdb_test::LoadSample("relations.mdb");
  mdb::SystemCatalog catalog(*pages);
  const auto object = *catalog.Find("Table1");
  const auto definition = mdb::ReadDefinition(*pages, pages->Header().objects);
  const auto row = mdb::FindRow(*pages, definition, object.row);
  ASSERT_TRUE(row);
  const auto place = static_cast<std::size_t>(row->bytes.data() - row->image->data());
  const std::string name("T\0a\0b\0l\0e\0001\0", 12);  // as stored: not compressed
  auto& page = pages->Modify(object.row.page);
  const auto where =
      std::search(page.begin() + static_cast<std::ptrdiff_t>(place), page.end(), name.begin(), name.end());
  ASSERT_NE(where, page.end());
  *where = 'S';
  EXPECT_NE(catalog.Find("Table1"), nullptr);
  catalog.Forget();
  EXPECT_EQ(catalog.Find("Table1"), nullptr);
  EXPECT_EQ(catalog.Find("Sable1")->id, object.id);
}

TEST(Catalog, GivesRelationshipsWithTheirRules) {
  const auto pages = mdb_test::LoadSample("relations.mdb");
  const mdb::SystemCatalog catalog(*pages);
  const auto& relationships = catalog.Relationships();
  const auto r = std::find_if(relationships.begin(), relationships.end(),
                              [](const auto& x) { return x.name == "Table3Table1"; });
  ASSERT_NE(r, relationships.end());
  EXPECT_EQ(r->table, "Table1");
  EXPECT_EQ(r->columns, std::vector<std::string>{"otherfk2"});
  EXPECT_EQ(r->referenced_table, "Table3");
  EXPECT_EQ(r->referenced_columns, std::vector<std::string>{"id"});
  EXPECT_EQ(r->flags, mdb::TableRelationship::kCascadesUpdates);
  EXPECT_TRUE(r->IsEnforced());
}

TEST(Catalog, GivesThePropertiesOfATable) {
  const auto pages = mdb_test::LoadSample("types.mdb");
  const mdb::SystemCatalog catalog(*pages);
  const auto& properties = catalog.PropertiesOf("TIPOS");
  const auto* required = mdb::Find(properties, "TEXTO", "required");
  ASSERT_NE(required, nullptr);
  EXPECT_EQ(*required, mdb::Datum(true));
  EXPECT_EQ(*mdb::Find(properties, "Texto", "AllowZeroLength"), mdb::Datum(false));
  EXPECT_EQ(*mdb::Find(properties, "doble", "DefaultValue"), mdb::Datum(std::string("8,5")));
  EXPECT_EQ(mdb::Find(properties, "Texto", "Nothing"), nullptr);
  EXPECT_EQ(mdb::Find(properties, "nobody", "Required"), nullptr);
  EXPECT_TRUE(catalog.PropertiesOf("no such table").empty());
}

// Adds a row to a system table, by the names of its columns; the others stay Null.
void AddRow(mdb::PageFile& pages, mdb::PageNumber table,
            const std::vector<std::pair<const char*, mdb::Datum>>& values) {
  auto definition = mdb::ReadDefinition(pages, table);
  mdb::Row row(definition.columns.size());
  for (const auto& c : definition.columns)
    if (c.type == mdb::ColumnType::Boolean) row[*definition.ByName(c.name)] = false;
  for (const auto& [name, value] : values) row.at(definition.ByName(name).value()) = value;
  mdb::Changes changes;
  changes.inserted.push_back(std::move(row));
  mdb::Apply(pages, definition, changes);
}
void AddObject(mdb::PageFile& pages, std::int64_t id, const char* name, std::int64_t type, std::int64_t flags,
               std::vector<std::pair<const char*, mdb::Datum>> more = {}) {
  more.insert(more.end(), {{"Id", id},
                           {"ParentId", std::int64_t{0x0F000001} + (flags != 0 ? 1 : 0)},
                           {"Name", std::string(name)},
                           {"Type", type},
                           {"Flags", flags}});
  AddRow(pages, pages.Header().objects, more);
}

TEST(Catalog, KeepsWhereLinkedTablesComeFrom) {
  const auto pages = mdb_test::LoadSample("empty.mdb");
  AddObject(*pages, -2147483640, "Vinculada", 6, 0,
            {{"Database", std::string("C:\\datos\\Año.mdb")}, {"ForeignName", std::string("Original")}});
  AddObject(*pages, -2147483639, "Remota", 4, 0,
            {{"Connect", std::string("DSN=Nómina")}, {"ForeignName", std::string("dbo.Remota")}});
  const mdb::SystemCatalog catalog(*pages);
  const auto* linked = catalog.Find("vinculada");
  ASSERT_NE(linked, nullptr);
  EXPECT_EQ(linked->type, mdb::Object::Linked);
  EXPECT_EQ(linked->base, "C:\\datos\\Año.mdb");
  EXPECT_EQ(linked->external_name, "Original");
  EXPECT_EQ(linked->connection, "");
  const auto* remote = catalog.Find("REMOTA");
  ASSERT_NE(remote, nullptr);
  EXPECT_EQ(remote->type, mdb::Object::LinkedOdbc);
  EXPECT_EQ(remote->connection, "DSN=Nómina");
  EXPECT_EQ(catalog.Table("Vinculada"), nullptr);
}

TEST(Catalog, PrefersTheObjectThatUsersSee) {
  const auto pages = mdb_test::LoadSample("empty.mdb");
  AddObject(*pages, -2147483640, "Doble", 5, 3);  // a hidden query of Access itself
  AddObject(*pages, -2147483639, "DOBLE", 6, 0);
  AddObject(*pages, -2147483638, "Suelta", 5, 3);
  AddObject(*pages, -2147483637, "Suelta", -32768, 0);  // a form: another kind of thing
  const mdb::SystemCatalog catalog(*pages);
  EXPECT_EQ(catalog.Find("doble")->id, -2147483639);
  EXPECT_EQ(catalog.Find("suelta")->id, -2147483638);
}

// The pairs of columns stand in the order of their numbers, not in that of the rows.
TEST(Catalog, PutsTheColumnsOfARelationshipInOrder) {
  const auto pages = mdb_test::LoadSample("empty.mdb");
  for (const std::int64_t i : {2, 0, 1})
    AddRow(*pages, pages->Header().relationships,
           {{"szRelationship", std::string("Triple")},
            {"ccolumn", std::int64_t{3}},
            {"icolumn", i},
            {"grbit", std::int64_t{0x1002}},
            {"szObject", std::string("Muchos")},
            {"szColumn", "m" + std::to_string(i)},
            {"szReferencedObject", std::string("Uno")},
            {"szReferencedColumn", "u" + std::to_string(i)}});
  const mdb::SystemCatalog catalog(*pages);
  ASSERT_EQ(catalog.Relationships().size(), 1U);
  const auto& r = catalog.Relationships().front();
  EXPECT_EQ(r.columns, (std::vector<std::string>{"m0", "m1", "m2"}));
  EXPECT_EQ(r.referenced_columns, (std::vector<std::string>{"u0", "u1", "u2"}));
  EXPECT_EQ(r.table, "Muchos");
  EXPECT_EQ(r.referenced_table, "Uno");
  EXPECT_EQ(r.flags, mdb::TableRelationship::kNotEnforced | mdb::TableRelationship::kCascadesDeletes);
  EXPECT_FALSE(r.IsEnforced());
}

// What we write is read back the same for every object of every file.
TEST(PropertiesText, OfEveryFileComeBack) {
  std::size_t count = 0;
  for (const auto& path : mdb_test::EveryFile()) {
    const auto pages = mdb_test::Load(path);
    const mdb::SystemCatalog catalog(*pages);
    for (const auto& o : catalog.Objects()) {
      const auto loaded = mdb::ReadProperties(pages->Header(), o.properties);
      const auto again = mdb::ReadProperties(mdb::FileHeader{}, mdb::SerializeProperties(loaded));
      const auto list = [&](const mdb::Properties& properties) {
        std::vector<std::tuple<std::string, std::string, int, bool, mdb::Datum>> entries;
        for (const auto& [owner, its] : properties)
          for (const auto& p : its) entries.emplace_back(owner, p.name, p.type, p.ddl, p.value);
        return entries;
      };
      EXPECT_TRUE(list(loaded) == list(again)) << path << " " << o.name;
      count += list(loaded).size();
    }
  }
  EXPECT_GT(count, 50U);
}

// Each page of a file made unreadable without its key: Jet 3 and Jet 4 encrypt the same way.
TEST(Encrypted, AnEncryptedFileReadsLikeThePlainOne) {
  for (const char* file : {"queries97.mdb", "types.mdb", "compound.mdb", "moved.mdb", "moved97.mdb"}) {
    SCOPED_TRACE(file);
    const auto plain = mdb_test::LoadSample(file);
    mdb::Bytes bytes = plain->Stored();
    mdb::FileHeader with_key = plain->Header();
    with_key.key = 0xA1B2C3D4;
    // The key of the header is masked by a constant stream, and was 0.
    for (std::size_t i = 0; i < 4; ++i) bytes[0x3E + i] ^= static_cast<std::uint8_t>(with_key.key >> (8 * i));
    for (mdb::PageNumber n = 1; n < plain->Count(); ++n)
      mdb::EncryptPage(with_key, n, std::span(bytes).subspan(n * plain->PageSize(), plain->PageSize()));
    EXPECT_NE(bytes, plain->Stored());
    const mdb::FileHeader loaded = mdb::ReadHeader(bytes);
    EXPECT_EQ(loaded.key, with_key.key);
    mdb::MemoryPages encrypted(loaded, bytes);
    const mdb::SystemCatalog one(*plain), other(encrypted);
    ASSERT_EQ(one.Objects().size(), other.Objects().size());
    std::size_t rows = 0;
    for (const auto& o : one.Objects()) {
      if (o.type != mdb::Object::Table) continue;
      const auto t = mdb_test::TableAsRead(*plain, *one.Table(o.name));
      EXPECT_EQ(t.rows, mdb_test::TableAsRead(encrypted, *other.Table(o.name)).rows);
      rows += t.rows.size();
    }
    EXPECT_GT(rows, 50U);
    // The same bytes read as a plain file are damage, not rows.
    mdb::MemoryPages keyless(plain->Header(), bytes);
    EXPECT_THROW(mdb::SystemCatalog(keyless).Objects(), mdb::Damage);
  }
}

}  // namespace
