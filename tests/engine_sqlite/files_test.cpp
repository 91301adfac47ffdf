// Files: what can be opened, what is said of the others, and several programs on one file.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

#include "engine_sqlite/sqlite_connection.h"
#include "render.h"
#include "support/temp_folder.h"

#ifndef _WIN32
#include <sys/resource.h>

#include <csignal>
#endif

namespace {

using engine_sqlite::Open;
using engine_sqlite::Options;

Options Create() {
  Options o;
  o.create = true;
  o.wait_ms = 50;
  return o;
}

std::string Reason(const std::string& path, const Options& options = {}) {
  try {
    Open(path, options);
  } catch (const db::Error& e) {
    return e.Description();
  }
  return "no error";
}

template <typename Step>
std::string FailureOf(Step&& step) {
  try {
    step();
  } catch (const db::Error& e) {
    return e.Description();
  }
  return "no error";
}

constexpr const char* kBusy =
    "La base está ocupada: otro programa la está usando. Inténtelo de nuevo en un momento.";

class Files : public testing::Test {
 protected:
  support::TempFolder folder_;
};

TEST_F(Files, WhatIsSavedComesBack) {
  const std::string path = folder_.Path("Personal ñandú.db");
  {
    const auto base = Open(path, Create());
    base->Execute("CREATE TABLE t (k LONG, v TEXT(20))");
    base->Execute("CREATE VIEW q AS SELECT v FROM t WHERE k > 1");
    base->Execute("INSERT INTO t VALUES (1, 'uno')");
    base->Execute("INSERT INTO t VALUES (2, 'dos')");
  }
  ASSERT_TRUE(std::filesystem::exists(std::filesystem::u8path(path)));
  const auto base = Open(path);
  EXPECT_EQ(support::Rows(base->Execute("SELECT * FROM t")), "1|uno\n2|dos");
  EXPECT_EQ(support::Rows(base->Execute("SELECT * FROM q")), "dos");
}

TEST_F(Files, WhatCannotBeOpenedSaysItsReason) {
  const std::string missing = folder_.Path("falta.db");
  EXPECT_EQ(Reason(missing), "No existe el archivo de la base " + missing + ".");
  EXPECT_FALSE(std::filesystem::exists(missing));
  EXPECT_EQ(Reason(""), "Falta la ruta de la base.");
  EXPECT_EQ(Reason(folder_.Folder()), "No existe el archivo de la base " + folder_.Folder() + ".");

  const std::string foreign = ". El archivo no es una base de datos que este programa pueda leer.";
  for (const std::string& bytes :
       {std::string("hola"), std::string(5000, 'x'),
        std::string("\0\1\0\0Standard Jet DB\0\1\0\0\0", 25) + std::string(8000, '\0')}) {
    const std::string path = folder_.Write("ajeno.db", bytes);
    EXPECT_EQ(Reason(path), "No se puede abrir la base " + path + foreign);
    EXPECT_EQ(folder_.Read("ajeno.db"), bytes);
  }
  const std::string empty = folder_.Write("vacio.db", "");
  EXPECT_EQ(Reason(empty), "No se puede abrir la base " + empty + ". El archivo está vacío.");
  const std::string no_folder = folder_.Path("no/existe.db");
  EXPECT_EQ(Reason(no_folder, Create()),
            "No se puede abrir la base " + no_folder + ". No se puede abrir el archivo de la base.");
}

// No statement saves a crosstab, but a file that another program filled may have one. Its columns are looked
// up whenever it is read.
TEST_F(Files, ASavedCrosstabIsRead) {
  const std::string path = folder_.Path("c.db");
  {
    const auto base = Open(path, Create());
    for (const char* sql :
         {"CREATE TABLE wk (e LONG, c TEXT(5), h DOUBLE)", "CREATE VIEW cruz AS SELECT e FROM wk",
          "CREATE VIEW encima AS SELECT e FROM wk", "INSERT INTO wk VALUES (1, 'X', 8)",
          "INSERT INTO wk VALUES (1, 'Y', 4)", "INSERT INTO wk VALUES (2, 'X', 7)"})
      base->Execute(sql);
  }
  sqlite3* raw = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &raw), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(
                raw,
                "UPDATE MSysConsultas SET Texto = 'TRANSFORM Sum(h) SELECT e FROM wk GROUP BY e PIVOT c'"
                " WHERE Nombre = 'cruz';"
                "UPDATE MSysConsultas SET Texto = 'TRANSFORM Count(*) SELECT X FROM cruz GROUP BY X PIVOT e'"
                " WHERE Nombre = 'encima'",
                nullptr, nullptr, nullptr),
            SQLITE_OK);
  sqlite3_close(raw);

  const auto base = Open(path);
  const auto all = [&](const char* sql) {
    const db::Recordset rows = base->Execute(sql);
    return support::Header(rows) + "\n" + support::Rows(rows);
  };
  EXPECT_EQ(all("SELECT * FROM cruz ORDER BY e"), "e:int|X:number|Y:number\n1|8|4\n2|7|NULL");
  base->Execute("INSERT INTO wk VALUES (2, 'Z', 1)");
  EXPECT_EQ(all("SELECT cruz.e, Z, wk.h FROM cruz INNER JOIN wk ON cruz.e = wk.e WHERE wk.c = 'Z'"),
            "e:int|Z:number|h:number\n2|1|1");
  EXPECT_EQ(all("SELECT * FROM encima ORDER BY X"), "X:number|1:int|2:int\n7|NULL|1\n8|1|NULL");
  EXPECT_EQ(support::Rows(base->Query("SELECT Count(*) FROM cruz")), "2");
  EXPECT_THROW(base->Execute("INSERT INTO wk (e) SELECT e FROM cruz"), db::Error);
  EXPECT_THROW(base->Query("SELECT e INTO copia FROM cruz"), db::Error);
  EXPECT_THROW(base->Execute("SELECT NoHay FROM cruz"), db::Error);
}

TEST_F(Files, ANameLikeAnAddressIsAName) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.Folder());
  Open("file:x?mode=memory", Create())->Execute("CREATE TABLE t (k LONG)");
  std::filesystem::current_path(before);
  EXPECT_TRUE(std::filesystem::exists(folder_.Path("file:x?mode=memory")));
}

// The indexes of a file hold for one order alone, so that it goes with the file.
TEST_F(Files, TheOrderIsTheFiles) {
  const std::string path = folder_.Path("o.db");
  Options traditional = Create();
  traditional.order = base::SortOrder::TraditionalSpanish;
  {
    const auto base = Open(path, traditional);
    base->Execute("CREATE TABLE t (v TEXT(20) CONSTRAINT pk PRIMARY KEY)");
    for (const char* v : {"cuna", "chico", "dado"})
      base->Execute("INSERT INTO t VALUES ('" + std::string(v) + "')");
  }
  Options general = Create();
  general.order = base::SortOrder::General;
  const auto base = Open(path, general);
  EXPECT_EQ(support::Rows(base->Execute("SELECT v FROM t ORDER BY v")), "cuna\nchico\ndado");
  EXPECT_EQ(support::Rows(base->Execute("SELECT v FROM t WHERE v > 'CZ'")), "chico\ndado");
  EXPECT_EQ(support::Rows(base->Execute("SELECT StrComp('ch', 'cz')")), "1");
}

TEST_F(Files, ADamagedFileSaysSo) {
  const std::string path = folder_.Path("d.db");
  {
    const auto base = Open(path, Create());
    base->Execute("CREATE TABLE t (k LONG, v TEXT(200))");
    base->BeginTrans();
    for (int i = 0; i < 2000; ++i)
      base->Execute("INSERT INTO t VALUES (" + std::to_string(i) + ", 'relleno de la fila')");
    base->CommitTrans();
  }
  std::string bytes = folder_.Read("d.db");
  ASSERT_GT(bytes.size(), 30000U);
  for (std::size_t i = 8192; i < bytes.size(); ++i) bytes[i] = '\x55';
  folder_.Write("d.db", bytes);
  const auto base = Open(path);
  EXPECT_EQ(FailureOf([&] { base->Execute("SELECT Sum(k) FROM t"); }), "El archivo de la base está dañado.");
}

TEST_F(Files, ReadOnlyDoesNotWrite) {
  const std::string path = folder_.Path("l.db");
  {
    const auto base = Open(path, Create());
    base->Execute("CREATE TABLE t (k LONG)");
    base->Execute("INSERT INTO t VALUES (1)");
  }
  Options options;
  options.read_only = true;
  const auto base = Open(path, options);
  EXPECT_EQ(support::Rows(base->Execute("SELECT k FROM t")), "1");
  const std::string kReadOnly = "La base es de solo lectura: no se puede modificar.";
  EXPECT_EQ(FailureOf([&] { base->Execute("INSERT INTO t VALUES (2)"); }), kReadOnly);
  EXPECT_EQ(FailureOf([&] { base->Execute("CREATE TABLE u (k LONG)"); }), kReadOnly);
  EXPECT_EQ(FailureOf([&] { base->Execute("CREATE VIEW q AS SELECT k FROM t"); }), kReadOnly);
  EXPECT_EQ(support::Rows(base->Execute("SELECT k FROM t")), "1");
}

TEST_F(Files, TwoProgramsWaitAndAreTold) {
  const std::string path = folder_.Path("c.db");
  const auto one = Open(path, Create());
  one->Execute("CREATE TABLE t (k LONG)");
  const auto two = Open(path, Create());
  one->BeginTrans();
  one->Execute("INSERT INTO t VALUES (1)");
  // Reading goes on and does not see what is not committed; writing waits, then says why.
  EXPECT_EQ(support::Rows(two->Execute("SELECT Count(*) FROM t")), "0");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(FailureOf([&] { two->Execute("INSERT INTO t VALUES (2)"); }), kBusy);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(40));
  EXPECT_EQ(FailureOf([&] { two->BeginTrans(); }), kBusy);
  EXPECT_FALSE(two->InTransaction());
  one->CommitTrans();
  two->Execute("INSERT INTO t VALUES (2)");
  EXPECT_EQ(support::Rows(one->Execute("SELECT k FROM t ORDER BY k")), "1\n2");
}

TEST_F(Files, WhatAnotherProgramDefinesIsSeen) {
  const std::string path = folder_.Path("e.db");
  const auto one = Open(path, Create());
  one->Execute("CREATE TABLE t (k LONG)");
  one->Execute("INSERT INTO t VALUES (1)");
  const auto two = Open(path, Create());
  EXPECT_EQ(support::Rows(two->Execute("SELECT k FROM t")), "1");
  EXPECT_THROW(two->Execute("SELECT k FROM nueva"), db::Error);
  EXPECT_THROW(two->Execute("SELECT k FROM vista"), db::Error);
  one->Execute("CREATE TABLE nueva (k LONG)");
  one->Execute("INSERT INTO nueva VALUES (5)");
  one->Execute("CREATE VIEW vista AS SELECT k * 2 AS kk FROM nueva");
  one->Execute("ALTER TABLE t ADD COLUMN z TEXT(5)");
  EXPECT_EQ(support::Rows(two->Execute("SELECT k FROM nueva")), "5");
  EXPECT_EQ(support::Rows(two->Execute("SELECT kk FROM vista")), "10");
  EXPECT_EQ(support::Rows(two->Execute("SELECT k, z FROM t")), "1|NULL");
  // A saved query that now says something else: the old translation must not answer.
  one->Execute("DROP VIEW vista");
  one->Execute("CREATE VIEW vista AS SELECT k * 3 AS kk FROM nueva");
  EXPECT_EQ(support::Rows(two->Execute("SELECT kk FROM vista")), "15");
  one->Execute("DROP TABLE nueva");
  EXPECT_THROW(two->Execute("SELECT k FROM nueva"), db::Error);
}

TEST_F(Files, WithoutACommitNothingStays) {
  const std::string path = folder_.Path("s.db");
  {
    const auto base = Open(path, Create());
    base->Execute("CREATE TABLE t (k LONG)");
    base->BeginTrans();
    base->Execute("INSERT INTO t VALUES (1)");
  }
  EXPECT_EQ(support::Rows(Open(path)->Execute("SELECT Count(*) FROM t")), "0");
}

#ifndef _WIN32
// Files may not grow past a size for the time of one test.
class FileLimit {
 public:
  explicit FileLimit(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileLimit() { setrlimit(RLIMIT_FSIZE, &before_); }
  FileLimit(const FileLimit&) = delete;
  FileLimit& operator=(const FileLimit&) = delete;

 private:
  rlimit before_{};
};

// When the file cannot grow, nothing of the transaction may stay, nor may what is run after it.
TEST_F(Files, AnImpossibleWriteLeavesAllAsItWas) {
  const std::string path = folder_.Path("lleno.db");
  const auto base = Open(path, Create());
  base->Execute("CREATE TABLE t (k LONG, v MEMO)");
  base->Execute("INSERT INTO t VALUES (0, 'antes')");
  base->BeginTrans();
  base->Execute("INSERT INTO t VALUES (1, 'en la transacción')");
  const std::string length(100000, 'x');
  std::string reason;
  {
    const FileLimit limit(200000);
    for (int i = 2; i < 1000 && reason.empty(); ++i) {
      const std::string sql = "INSERT INTO t VALUES (" + std::to_string(i) + ", '" + length + "')";
      if (const std::string failure = FailureOf([&] { base->Execute(sql); }); failure != "no error")
        reason = failure;
    }
    if (reason.empty()) reason = FailureOf([&] { base->CommitTrans(); });
  }
  EXPECT_TRUE(reason == "Error al leer o escribir el archivo de la base." ||
              reason == "No queda espacio en el disco para guardar los cambios en la base.")
      << reason;
  if (base->InTransaction()) {
    const std::string undone = "Un error anterior deshizo la transacción: nada de ella quedó guardado.";
    EXPECT_EQ(FailureOf([&] { base->Execute("INSERT INTO t VALUES (9999, 'después')"); }), undone);
    EXPECT_EQ(FailureOf([&] { base->CommitTrans(); }), undone);
  }
  EXPECT_FALSE(base->InTransaction());
  EXPECT_EQ(support::Rows(base->Execute("SELECT k, v FROM t")), "0|antes");
}
#endif

}  // namespace
