// What the file cannot hold fails in its statement, not in the commit of what others did; and what fails
// half-way leaves nothing to be written twice.
#include <fstream>

#include "mdb/rows/table.h"
#include "mesa.h"

namespace {

class Rechazos : public prueba::MesaMdb {
 protected:
  void SetUp() override { Nueva(); }
  // Each statement in one transaction between two that are kept.
  void FallaSola(const std::string& sql, const std::string& texto) {
    base_->BeginTrans();
    Correr("INSERT INTO bueno VALUES (1)");
    EXPECT_EQ(Falla(sql), texto) << sql;
    Correr("INSERT INTO bueno VALUES (2)");
    base_->CommitTrans();
    EXPECT_EQ(Filas("SELECT Count(*) FROM bueno"), "2") << sql;
    Correr("DELETE FROM bueno");
  }
};

TEST_F(Rechazos, EnSuSentenciaYNoEnElCommit) {
  Correr("CREATE TABLE bueno (k LONG)");
  Correr("CREATE TABLE t (k LONG, x TEXT(4), i TEXT(20), d DATETIME, n DOUBLE, b BINARY(4))");
  Correr("CREATE INDEX por_i ON t (i)");
  const std::string largo = "El texto es demasiado largo para el campo x.";
  const std::string nul(1, '\0');
  // The file counts in units of UTF-16, two for a character outside the first 65,536.
  Correr("INSERT INTO t (k, x) VALUES (1, '😀😀')");
  FallaSola("INSERT INTO t (k, x) VALUES (2, '😀😀a')", largo);
  FallaSola("UPDATE t SET x = '😀😀😀'", largo);
  // A NUL ends no text.
  FallaSola("INSERT INTO t (k, x) VALUES (2, 'a" + nul + "bcd')", largo);
  Correr("INSERT INTO t (k, x) VALUES (2, 'a" + nul + "bc')");
  FallaSola(
      "INSERT INTO t (k, i) VALUES (3, 'a漢')",
      "El texto «a漢» de la columna «i», que está en un índice, tiene el carácter «漢», cuyo lugar en el "
      "orden de Access no se conoce");
  Correr("INSERT INTO t (k, i) VALUES (3, 'Ñandú’')");
  const std::string fecha = "La fecha del campo d de la tabla t está fuera de los años 100 a 9999.";
  FallaSola("INSERT INTO t (k, d) VALUES (4, 2958466)", fecha);
  FallaSola("INSERT INTO t (k, d) VALUES (4, -657435)", fecha);
  Correr("INSERT INTO t (k, d) VALUES (4, 2958465.5)");
  FallaSola("INSERT INTO t (k, n) VALUES (5, 1e308 * 10)", "El número no cabe en el campo n.");
  FallaSola("INSERT INTO t (k, b) VALUES (6, 'abc')", "El valor es demasiado largo para el campo b.");
  // Text in bytes is what it will be when it is read again.
  Correr("INSERT INTO t (k, b) VALUES (6, 'ab')");
  const std::string todas = Filas("SELECT * FROM t ORDER BY k");
  EXPECT_EQ(Filas("SELECT b FROM t WHERE k = 6"), "a\\x00b\\x00");
  Abrir();
  EXPECT_EQ(Filas("SELECT * FROM t ORDER BY k"), todas);
  Revisar();
}

// SELECT … INTO is found wherever its words stand: in the mirror alone its table would be lost.
TEST_F(Rechazos, UnaTablaNuevaEstaEnElArchivo) {
  Correr("CREATE TABLE t (k LONG)");
  Correr("INSERT INTO t VALUES (1)");
  Correr("(SELECT k INTO u FROM t)");
  Correr("PARAMETERS p LONG; SELECT k INTO v FROM t");
  Correr("SELECT k INTO w FROM t UNION SELECT k + 1 AS k FROM t");
  Abrir();
  EXPECT_EQ(Filas("SELECT Count(*) FROM u"), "1");
  EXPECT_EQ(Filas("SELECT Count(*) FROM v"), "1");
  EXPECT_EQ(Filas("SELECT Count(*) FROM w"), "2");
  Revisar();
}

// A definition first puts the rows of its transaction into the pages. When one table's are refused, those of
// the others must not stay there: the commit writes them.
TEST_F(Rechazos, LasFilasPendientesSeEscribenUnaVez) {
  constexpr int kTablas = 12;
  for (int i = 0; i < kTablas; ++i) Correr("CREATE TABLE t" + std::to_string(i) + " (k LONG)");
  std::string columnas, valores;
  for (int i = 0; i < 9; ++i) {
    columnas += ", c" + std::to_string(i) + " TEXT(255)";
    valores += ", String(255, 'ж') AS c" + std::to_string(i);
  }
  Correr("CREATE TABLE ancha (k LONG" + columnas + ")");
  base_->BeginTrans();
  for (int i = 0; i < kTablas; ++i) Correr("INSERT INTO t" + std::to_string(i) + " VALUES (1)");
  Correr("INSERT INTO ancha SELECT 1 AS k" + valores);
  EXPECT_NE(Falla("CREATE TABLE otra (k LONG)"), "no error");
  Correr("DELETE FROM ancha");
  base_->CommitTrans();
  Abrir();
  for (int i = 0; i < kTablas; ++i) EXPECT_EQ(Filas("SELECT * FROM t" + std::to_string(i)), "1") << i;
  EXPECT_EQ(Filas("SELECT Count(*) FROM ancha"), "0");
  Revisar();
}

// A table that cannot be read says why each time it is named, and the others go on.
TEST_F(Rechazos, UnaTablaDaniadaDiceSiempreLoMismo) {
  Correr("CREATE TABLE t (k LONG)");
  Correr("CREATE TABLE u (k LONG)");
  Correr("INSERT INTO t VALUES (1)");
  Correr("INSERT INTO u VALUES (2)");
  base_.reset();
  mdb::NumPagina pagina = 0;
  {
    const auto base = mdb::Base::Abrir(ruta_, {true, {}});
    mdb::RecorrerFilas(base->Hojas(), *base->Indice().Tabla("t"), [&](mdb::IdFila id, const mdb::Fila&) {
      pagina = id.pagina;
      return false;
    });
  }
  ASSERT_GT(pagina, 0U);
  {
    std::fstream f(std::filesystem::u8path(ruta_), std::ios::in | std::ios::out | std::ios::binary);
    f.seekp(static_cast<std::streamoff>(pagina) * 4096 + 12);
    f.write("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 8);
  }
  Abrir();
  const std::string falla = Falla("SELECT * FROM t");
  EXPECT_NE(falla.find(std::to_string(pagina)), std::string::npos) << falla;
  EXPECT_EQ(Falla("SELECT * FROM t"), falla);
  EXPECT_EQ(Falla("UPDATE t SET k = 3"), falla);
  EXPECT_EQ(Falla("UPDATE t SET k = 3"), falla);
  EXPECT_EQ(Filas("SELECT * FROM u"), "2");
}

}  // namespace
