// The samples, and the further files where they are here: every table has its rows, every query answers or
// says why not, and no file changes by being read.
#include "mdb/corpus.h"
#include "engine_mdb/query_text.h"
#include "mdb/rows/table.h"
#include "mdb/samples.h"
#include "test_bench.h"

namespace {

std::size_t RowsOf(mdb::Database& base, const std::string& table) {
  std::size_t n = 0;
  mdb::WalkRows(base.Pages(), *base.Catalog().Table(table), [&](mdb::RowId, const mdb::Row&) {
    ++n;
    return true;
  });
  return n;
}

// Why a query gives no rows here; empty when it must.
std::string Reason(const mdb::SavedQuery& query, bool sample) {
  const auto kind = mdb::KindOf(query);
  if (kind == mdb::QueryKind::Select) return {};
  // Those of the further files have SELECTs without a FROM.
  if (kind == mdb::QueryKind::Union) return sample ? "" : "No se encuentra la columna 'Table1.col1'";
  if (kind == mdb::QueryKind::Crosstab) return {};
  return "La consulta '" + query.name + "' es " + engine_mdb::KindName(kind) +
         ": no da filas y no se puede usar como tabla";
}

void Check(const std::string& path, const std::string& password) {
  SCOPED_TRACE(path);
  const bool sample = password != "ucanaccess";
  const std::string before = *base::ReadWholeFile(path);
  const auto date = std::filesystem::last_write_time(path);
  {
    engine_mdb::Options o;
    o.password = password;
    const auto connection = engine_mdb::Open(path, o);
    const auto base = mdb::Database::Open(path, {true, password});
    for (const mdb::Object& object : base->Catalog().Objects()) {
      if (object.type == mdb::Object::Table) {
        SCOPED_TRACE(object.name);
        db::Recordset r;
        ASSERT_NO_THROW(r = connection->Query("SELECT * FROM [" + object.name + "]"));
        EXPECT_EQ(r.Count(), RowsOf(*base, object.name)) << object.name;
        EXPECT_EQ(r.Fields().size(), base->Catalog().Table(object.name)->columns.size()) << object.name;
      } else if (object.type == mdb::Object::Query) {
        std::string failure;
        try {
          connection->Query("SELECT * FROM [" + object.name + "]");
        } catch (const db::Error& e) {
          failure = e.Description();
        }
        if (object.name == "CrosstabQuery") {
          EXPECT_NE(failure, "") << "it has a total in its WHERE";
        } else {
          EXPECT_EQ(failure, Reason(base->Catalog().QueryOf(object.name), sample)) << object.name;
        }
      }
    }
  }
  EXPECT_EQ(*base::ReadWholeFile(path), before);
  EXPECT_EQ(std::filesystem::last_write_time(path), date);
}

TEST(CorpusMdb, EachTableAndEachQuery) {
  const support::TempFolder folder;
  for (const std::string& path : mdb_test::EveryFile()) {
    const auto name = std::filesystem::path(path).filename();
    const std::string further = mdb_test::CorpusFolder();
    const bool sample = further.empty() || !path.starts_with(further);
    const std::string copy = folder.Path((sample ? "muestra " : "") + name.string());
    std::filesystem::copy_file(path, copy);
    std::filesystem::permissions(copy, std::filesystem::perms::owner_all);
    Check(copy, sample ? "contraseña" : "ucanaccess");
  }
}

// A file of another writer with relationships: one deletes with its parent, the other changes its key with
// it.
TEST(CorpusMdb, TheRelationshipsOfAForeignFile) {
  const support::TempFolder folder;
  const std::string path = folder.Write("r.mdb", *base::ReadWholeFile(mdb_test::SamplePath("relations.mdb")));
  {
    const auto c = engine_mdb::Open(path);
    const auto failure = [&](const char* sql) -> std::string {
      try {
        c->Execute(sql);
      } catch (const db::Error& e) {
        return e.Description();
      }
      return "no error";
    };
    EXPECT_EQ(failure("INSERT INTO Table1 (id, otherfk1, otherfk2, data) VALUES (100, 999, 11, 'x')"),
              "No se puede guardar el registro en la tabla Table1: falta el registro relacionado en la tabla "
              "Table2 "
              "(relación Table2Table1).");
    EXPECT_EQ(failure("UPDATE Table2 SET id = 77 WHERE id = 1"),
              "No se puede borrar el registro de la tabla Table2 ni cambiar su clave: la tabla Table1 tiene "
              "registros "
              "relacionados (relación Table2Table1).");
    EXPECT_EQ(failure("DELETE FROM Table3 WHERE id = 10"),
              "No se puede borrar el registro de la tabla Table3 ni cambiar su clave: la tabla Table1 tiene "
              "registros "
              "relacionados (relación Table3Table1).");
    c->Execute("DELETE FROM Table2 WHERE id = 1");
    EXPECT_EQ(c->AffectedRows(), 1);
    c->Execute("UPDATE Table3 SET id = 50 WHERE id = 10");
  }
  EXPECT_EQ(support::Rows(engine_mdb::Open(path)->Execute("SELECT id, otherfk2 FROM Table1 ORDER BY id")),
            "0|50\n3|13");
}

}  // namespace
