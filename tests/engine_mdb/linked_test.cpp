// Tables of another Access file.
#include "test_bench.h"

namespace {

class LinkedTables : public test::MdbTestBench {
 protected:
  // Access makes these; here their rows of the catalog are written by hand.
  void Link(std::int16_t type, const std::string& name, const std::string& file, const std::string& table,
            const std::string& connection = {}) {
    base_.reset();
    const auto base = mdb::Database::Open(path_);
    const auto d = base->Catalog().Table("MSysObjects");
    ASSERT_NE(d, nullptr);
    mdb::Row row(d->columns.size());
    const auto put = [&](const char* column, mdb::Datum datum) {
      row[d->ByName(column).value()] = std::move(datum);
    };
    put("Id", std::int64_t{-2147483648LL + 1000 + ++count_});
    put("ParentId", std::int64_t{0x0F000001});
    put("Name", name);
    put("Type", std::int64_t{type});
    put("DateCreate", base::MakeDate(2020, 1, 1));
    put("DateUpdate", base::MakeDate(2020, 1, 1));
    put("Flags", std::int64_t{0x200000});
    put("Database", file);
    put("ForeignName", table);
    if (!connection.empty()) put("Connect", connection);
    mdb::Changes changes;
    changes.inserted.push_back(std::move(row));
    base->Apply("MSysObjects", changes);
    base->Commit();
  }
  void CreateOther(const std::string& name) const {
    const auto other = engine_mdb::Create(folder_.Path(name));
    other->Execute("CREATE TABLE Lejos (k LONG, v TEXT(10))");
    other->Execute("INSERT INTO Lejos VALUES (1, 'uno')");
    other->Execute("INSERT INTO Lejos VALUES (2, 'dos')");
  }
  int count_ = 0;
};

TEST_F(LinkedTables, AreReadFromTheirFile) {
  NewDatabase();
  RunSql("CREATE TABLE t (k LONG)");
  RunSql("INSERT INTO t VALUES (2)");
  CreateOther("otra.mdb");
  Link(mdb::Object::Linked, "Cerca", folder_.Path("otra.mdb"), "Lejos");
  OpenConnection();
  EXPECT_EQ(RowsOf("SELECT * FROM Cerca ORDER BY k"), "1|uno\n2|dos");
  EXPECT_EQ(RowsOf("SELECT v FROM t INNER JOIN cerca ON t.k = cerca.k"), "dos");
  EXPECT_EQ(FailureOfSql("INSERT INTO Cerca VALUES (3, 'tres')"),
            "La tabla Cerca está vinculada a otro archivo (" + folder_.Path("otra.mdb") +
                "): desde aquí se puede leer, no escribir.");
  RunSql("INSERT INTO t SELECT k + 10 AS k FROM Cerca");
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM t"), "3");
}

// A path of another machine: the file may stand beside ours.
TEST_F(LinkedTables, TheFileBesideTheBase) {
  NewDatabase();
  CreateOther("otra.mdb");
  Link(mdb::Object::Linked, "Cerca", "D:\\Sueldos\\otra.mdb", "Lejos");
  OpenConnection();
  EXPECT_EQ(RowsOf("SELECT Count(*) FROM Cerca"), "2");
}

TEST_F(LinkedTables, ThoseThatCannotBeReadSayWhy) {
  NewDatabase();
  CreateOther("otra.mdb");
  Link(mdb::Object::Linked, "Falta", "D:\\Sueldos\\falta.mdb", "Lejos");
  Link(mdb::Object::Linked, "Hoja", "D:\\h.xls", "Hoja1$", "Excel 8.0;HDR=YES;DATABASE=D:\\h.xls");
  Link(mdb::Object::LinkedOdbc, "Servidor", "", "dbo.t", "ODBC;DSN=x");
  Link(mdb::Object::Linked, "Vacia", folder_.Path("otra.mdb"), "NoEsta");
  OpenConnection();
  EXPECT_EQ(FailureOfSql("SELECT * FROM Falta"),
            "La tabla vinculada Falta es del archivo D:\\Sueldos\\falta.mdb, que no existe, ni está junto a "
            "la base.");
  EXPECT_EQ(FailureOfSql("SELECT * FROM Hoja"),
            "La tabla vinculada Hoja no es de otra base de Access (Excel 8.0): no se puede leer desde aquí.");
  EXPECT_EQ(FailureOfSql("SELECT * FROM Servidor"),
            "La tabla Servidor está vinculada por ODBC a otra base: no se puede leer desde aquí.");
  EXPECT_EQ(
      FailureOfSql("SELECT * FROM Vacia"),
      "La tabla vinculada Vacia nombra la tabla NoEsta, que no está en " + folder_.Path("otra.mdb") + ".");
  EXPECT_EQ(RowsOf("SELECT 1"), "1");
}

}  // namespace
