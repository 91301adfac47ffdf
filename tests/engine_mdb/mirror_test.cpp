// The mirrors: types both ways, what rows they are, and what a table of Access says of its columns.
#include "mdb/rows/table.h"
#include "mesa.h"

namespace {

using base::Valor;
using mdb::TipoColumna;

mdb::NuevaColumna Columna(const char* nombre, TipoColumna tipo) {
  mdb::NuevaColumna c;
  c.nombre = nombre;
  c.tipo = tipo;
  return c;
}

class Espejos : public prueba::MesaMdb {
 protected:
  void CrearTabla(const mdb::NuevaTabla& tabla) {
    base_.reset();
    const auto base = mdb::Base::Abrir(ruta_);
    base->CrearTabla(tabla, base::FechaDe(2026, 1, 1));
    base->Confirmar();
  }
  std::vector<mdb::Fila> EnElArchivo(const std::string& tabla) {
    base_.reset();
    const auto base = mdb::Base::Abrir(ruta_, {true, {}});
    std::vector<mdb::Fila> filas;
    mdb::RecorrerFilas(base->Hojas(), *base->Indice().Tabla(tabla), [&](mdb::IdFila, const mdb::Fila& f) {
      filas.push_back(f);
      return true;
    });
    return filas;
  }
};

TEST_F(Espejos, CadaTipoVaYVuelve) {
  Nueva();
  Correr(
      "CREATE TABLE t (a YESNO, b BYTE, c SHORT, d LONG, e SINGLE, f DOUBLE, g CURRENCY, h DATETIME, i "
      "TEXT(20), "
      "j MEMO, k DECIMAL(12,3), l GUID, m BINARY(6))");
  Correr(
      "INSERT INTO t VALUES (True, 255, -32768, -2147483648, 0.1, 1.25, 922337203685.4775, #12/29/1899 "
      "06:00#, 'Ñandú', 'largo', -12.5, '{00112233-4455-6677-8899-aabbccddeeff}', 'abc')");
  Correr("INSERT INTO t (b) VALUES (0)");
  const auto comprobar = [&] {
    const db::Recordset r = base_->Ejecutar("SELECT * FROM t ORDER BY b DESC");
    EXPECT_EQ(r.En(0, 0), Valor(true));
    EXPECT_EQ(r.En(1, 0), Valor(255));
    EXPECT_EQ(r.En(2, 0), Valor(-32768));
    EXPECT_EQ(r.En(3, 0), Valor(std::int64_t{-2147483648LL}));
    EXPECT_EQ(r.En(4, 0), Valor(0.1F));
    EXPECT_EQ(r.En(5, 0), Valor(1.25));
    EXPECT_EQ(r.En(6, 0).tipo(), base::Tipo::Moneda);
    EXPECT_EQ(r.En(7, 0), Valor(base::Fecha{-1.25}));
    EXPECT_EQ(r.En(8, 0), Valor("Ñandú"));
    EXPECT_EQ(r.En(9, 0), Valor("largo"));
    EXPECT_EQ(r.En(10, 0), Valor(-12.5));
    EXPECT_EQ(r.En(0, 1), Valor(false));
    for (std::size_t i = 2; i < 13; ++i) EXPECT_TRUE(r.En(i, 1).EsNulo()) << i;
  };
  comprobar();
  Abrir();
  comprobar();
  EXPECT_EQ(Filas("SELECT l FROM t WHERE b = 255"), "{00112233-4455-6677-8899-AABBCCDDEEFF}");
  Revisar();
}

// A decimal has the digits of its column at once, not only when it is read again.
TEST_F(Espejos, UnDecimalSeRedondeaAlGuardarlo) {
  Nueva();
  Correr("CREATE TABLE t (k LONG, d DECIMAL(10,2), g GUID)");
  base_->BeginTrans();
  Correr("INSERT INTO t VALUES (1, 12.345, '00112233-4455-6677-8899-aabbccddeeff')");
  Correr("INSERT INTO t VALUES (2, 12.3456, Null)");
  Correr("UPDATE t SET d = d * 3 WHERE k = 2");
  EXPECT_EQ(Filas("SELECT d, g FROM t ORDER BY k"),
            "12.34|{00112233-4455-6677-8899-AABBCCDDEEFF}\n37.05|NULL");
  base_->CommitTrans();
  Abrir();
  EXPECT_EQ(Filas("SELECT d FROM t ORDER BY k"), "12.34\n37.05");
}

// 28 digits do not go through a double, and a byte of text that is no text is no text: what a statement does
// not change keeps what it was.
TEST_F(Espejos, LoQueNoSeCambiaConservaSusBytes) {
  Nueva();
  mdb::NuevaTabla t{"t", {}, {}};
  mdb::NuevaColumna k = Columna("k", TipoColumna::Largo);
  mdb::NuevaColumna d = Columna("d", TipoColumna::Decimal);
  mdb::NuevaColumna m = Columna("m", TipoColumna::Memo);
  d.precision = 28;
  d.escala = 4;
  t.columnas = {k, d, m};
  CrearTabla(t);
  const mdb::Decimal exacto = mdb::DecimalDeTexto("123456789012345678901234.5678", 4);
  {
    const auto base = mdb::Base::Abrir(ruta_);
    mdb::Cambios c;
    c.nuevas.push_back({std::int64_t{1}, exacto, std::string(5000, 'a')});
    base->Aplicar("t", c);
    base->Confirmar();
  }
  Abrir();
  Correr("UPDATE t SET k = 2");
  EXPECT_EQ(engine_mdb::ContadoresDe(*base_)->filas_escritas, 1);
  const auto filas = EnElArchivo("t");
  ASSERT_EQ(filas.size(), 1U);
  EXPECT_EQ(std::get<std::int64_t>(filas[0][0]), 2);
  EXPECT_EQ(std::get<mdb::Decimal>(filas[0][1]), exacto);
  EXPECT_EQ(std::get<std::string>(filas[0][2]), std::string(5000, 'a'));
}

// The number of a row that went is given to the next one that comes.
TEST_F(Espejos, CadaFilaEsLaSuyaDespuesDeCadaCommit) {
  Nueva();
  Correr("CREATE TABLE t (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(10))");
  for (int i = 1; i <= 5; ++i) Correr("INSERT INTO t VALUES (" + std::to_string(i) + ", 'a')");
  Correr("DELETE FROM t WHERE k = 5");
  Correr("INSERT INTO t VALUES (6, 'seis')");
  Correr("UPDATE t SET v = 'dos' WHERE k = 2");
  Correr("INSERT INTO t VALUES (7, 'siete')");
  Correr("DELETE FROM t WHERE k = 1");
  Correr("UPDATE t SET v = 'SEIS' WHERE k = 6");
  const std::string todas = "2|dos\n3|a\n4|a\n6|SEIS\n7|siete";
  EXPECT_EQ(Filas("SELECT * FROM t ORDER BY k"), todas);
  Abrir();
  EXPECT_EQ(Filas("SELECT * FROM t ORDER BY k"), todas);
  Correr("DELETE FROM t");
  Correr("INSERT INTO t VALUES (1, 'otra')");
  Abrir();
  EXPECT_EQ(Filas("SELECT * FROM t"), "1|otra");
  Revisar();
}

TEST_F(Espejos, DosFilasCambianSusClaves) {
  Nueva();
  Correr("CREATE TABLE t (k LONG CONSTRAINT pk PRIMARY KEY, v TEXT(10))");
  Correr("INSERT INTO t VALUES (1, 'uno')");
  Correr("INSERT INTO t VALUES (2, 'dos')");
  base_->BeginTrans();
  Correr("UPDATE t SET k = 99 WHERE k = 1");
  Correr("UPDATE t SET k = 1 WHERE k = 2");
  Correr("UPDATE t SET k = 2 WHERE k = 99");
  base_->CommitTrans();
  Abrir();
  EXPECT_EQ(Filas("SELECT * FROM t ORDER BY k"), "1|dos\n2|uno");
  Revisar();
}

// Properties that only Access itself gives its columns.
TEST_F(Espejos, LoQueLaTablaDiceDeSusColumnas) {
  Nueva();
  mdb::NuevaTabla t{"t", {}, {}};
  mdb::NuevaColumna id = Columna("id", TipoColumna::Largo);
  mdb::NuevaColumna a = Columna("a", TipoColumna::Texto);
  mdb::NuevaColumna b = Columna("b", TipoColumna::Largo);
  mdb::NuevaColumna c = Columna("c", TipoColumna::Booleano);
  mdb::NuevaColumna f = Columna("f", TipoColumna::Fecha);
  mdb::NuevaColumna x = Columna("x", TipoColumna::Largo);
  id.autonumerica = true;
  a.largo = 10;
  a.permite_vacio = false;
  a.defecto = "\"nada\"";
  b.requerida = true;
  b.defecto = "=1+2";
  c.defecto = "Yes";
  f.defecto = "Date()";
  x.defecto = "DameUno()";
  t.columnas = {id, a, b, c, f, x};
  CrearTabla(t);
  Abrir();
  Correr("INSERT INTO t (x) VALUES (1)");
  EXPECT_EQ(Filas("SELECT * FROM t"), "1|nada|3|-1|2026-10-20|1");
  EXPECT_EQ(Falla("INSERT INTO t (a, x) VALUES ('', 1)"),
            "El campo a de la tabla t no admite un texto sin caracteres.");
  EXPECT_EQ(Falla("UPDATE t SET a = ''"), "El campo a de la tabla t no admite un texto sin caracteres.");
  EXPECT_EQ(Falla("UPDATE t SET b = Null"),
            "El campo b de la tabla t es obligatorio: no puede quedar vacío.");
  EXPECT_EQ(Falla("INSERT INTO t (a) VALUES ('x')"),
            "El valor predeterminado del campo x de la tabla t no se puede calcular: dé un valor.");
  Correr("UPDATE t SET a = Null");
  EXPECT_EQ(Filas("SELECT a, b FROM t"), "NULL|3");
}

// A file may hold what its own conditions do not allow: it is read, and changed elsewhere.
TEST_F(Espejos, LasFilasQueNoCumplenSeLeen) {
  Nueva();
  mdb::NuevaTabla t{"t", {}, {}};
  mdb::NuevaColumna a = Columna("a", TipoColumna::Largo);
  mdb::NuevaColumna b = Columna("b", TipoColumna::Largo);
  b.requerida = true;
  t.columnas = {a, b};
  CrearTabla(t);
  {
    const auto base = mdb::Base::Abrir(ruta_);
    mdb::Cambios c;
    c.nuevas.push_back({std::int64_t{1}, base::Nulo{}});
    base->Aplicar("t", c);
    base->Confirmar();
  }
  Abrir();
  EXPECT_EQ(Filas("SELECT * FROM t"), "1|NULL");
  Correr("UPDATE t SET a = 2");
  EXPECT_EQ(Falla("UPDATE t SET b = Null"),
            "El campo b de la tabla t es obligatorio: no puede quedar vacío.");
  EXPECT_EQ(Filas("SELECT * FROM t"), "2|NULL");
}

TEST_F(Espejos, UnaTablaConLosNombresDeLasFilas) {
  Nueva();
  Correr("CREATE TABLE t (rowid LONG, oid TEXT(5), b LONG)");
  Correr("INSERT INTO t VALUES (7, 'x', 1)");
  Correr("INSERT INTO t VALUES (7, 'y', 2)");
  Correr("UPDATE t SET rowid = 8 WHERE oid = 'y'");
  Correr("DELETE FROM t WHERE rowid = 7");
  Abrir();
  EXPECT_EQ(Filas("SELECT rowid, oid, b FROM t"), "8|y|2");
}

TEST_F(Espejos, SoloSeLeeLoQueSeNombra) {
  Nueva();
  Correr("CREATE TABLE t (k LONG)");
  Correr("CREATE TABLE u (k LONG)");
  Correr("INSERT INTO t VALUES (1)");
  Correr("INSERT INTO u VALUES (1)");
  Abrir();
  EXPECT_EQ(engine_mdb::ContadoresDe(*base_)->espejos, 0);
  Correr("SELECT * FROM t");
  Correr("SELECT * FROM t WHERE k = 1");
  EXPECT_EQ(engine_mdb::ContadoresDe(*base_)->espejos, 1);
  EXPECT_EQ(engine_mdb::ContadoresDe(*base_)->filas_leidas, 1);
}

// The tables of the system can be read, and nothing else.
TEST_F(Espejos, LasTablasDelSistema) {
  Nueva();
  Correr("CREATE TABLE t (k LONG)");
  EXPECT_EQ(Filas("SELECT Type FROM MSysObjects WHERE Name = 'T'"), "1");
  EXPECT_EQ(Falla("DELETE FROM MSysObjects"),
            "La tabla MSysObjects es del sistema: se puede leer, no escribir.");
}

}  // namespace
