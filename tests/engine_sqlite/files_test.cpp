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

using engine_sqlite::Abrir;
using engine_sqlite::Opciones;

Opciones Crear() {
  Opciones o;
  o.crear = true;
  o.espera_ms = 50;
  return o;
}

std::string Razon(const std::string& ruta, const Opciones& opciones = {}) {
  try {
    Abrir(ruta, opciones);
  } catch (const db::Error& e) {
    return e.Descripcion();
  }
  return "no error";
}

template <typename Paso>
std::string Falla(Paso&& paso) {
  try {
    paso();
  } catch (const db::Error& e) {
    return e.Descripcion();
  }
  return "no error";
}

constexpr const char* kOcupada =
    "La base está ocupada: otro programa la está usando. Inténtelo de nuevo en un momento.";

class Archivos : public testing::Test {
 protected:
  support::CarpetaTemporal carpeta_;
};

TEST_F(Archivos, LoGuardadoVuelve) {
  const std::string ruta = carpeta_.Ruta("Personal ñandú.db");
  {
    const auto base = Abrir(ruta, Crear());
    base->Ejecutar("CREATE TABLE t (k LONG, v TEXT(20))");
    base->Ejecutar("CREATE VIEW q AS SELECT v FROM t WHERE k > 1");
    base->Ejecutar("INSERT INTO t VALUES (1, 'uno')");
    base->Ejecutar("INSERT INTO t VALUES (2, 'dos')");
  }
  ASSERT_TRUE(std::filesystem::exists(std::filesystem::u8path(ruta)));
  const auto base = Abrir(ruta);
  EXPECT_EQ(support::Filas(base->Ejecutar("SELECT * FROM t")), "1|uno\n2|dos");
  EXPECT_EQ(support::Filas(base->Ejecutar("SELECT * FROM q")), "dos");
}

TEST_F(Archivos, LoQueNoSePuedeAbrirDiceSuRazon) {
  const std::string falta = carpeta_.Ruta("falta.db");
  EXPECT_EQ(Razon(falta), "No existe el archivo de la base " + falta + ".");
  EXPECT_FALSE(std::filesystem::exists(falta));
  EXPECT_EQ(Razon(""), "Falta la ruta de la base.");
  EXPECT_EQ(Razon(carpeta_.Carpeta()), "No existe el archivo de la base " + carpeta_.Carpeta() + ".");

  const std::string ajeno = ". El archivo no es una base de datos que este programa pueda leer.";
  for (const std::string& bytes :
       {std::string("hola"), std::string(5000, 'x'),
        std::string("\0\1\0\0Standard Jet DB\0\1\0\0\0", 25) + std::string(8000, '\0')}) {
    const std::string ruta = carpeta_.Escribir("ajeno.db", bytes);
    EXPECT_EQ(Razon(ruta), "No se puede abrir la base " + ruta + ajeno);
    EXPECT_EQ(carpeta_.Leer("ajeno.db"), bytes);
  }
  const std::string vacio = carpeta_.Escribir("vacio.db", "");
  EXPECT_EQ(Razon(vacio), "No se puede abrir la base " + vacio + ". El archivo está vacío.");
  const std::string sin_carpeta = carpeta_.Ruta("no/existe.db");
  EXPECT_EQ(Razon(sin_carpeta, Crear()),
            "No se puede abrir la base " + sin_carpeta + ". No se puede abrir el archivo de la base.");
}

// No statement saves a crosstab, but a file that another program filled may have one. Its columns are looked
// up whenever it is read.
TEST_F(Archivos, UnaConsultaCruzadaGuardadaSeLee) {
  const std::string ruta = carpeta_.Ruta("c.db");
  {
    const auto base = Abrir(ruta, Crear());
    for (const char* sql :
         {"CREATE TABLE wk (e LONG, c TEXT(5), h DOUBLE)", "CREATE VIEW cruz AS SELECT e FROM wk",
          "CREATE VIEW encima AS SELECT e FROM wk", "INSERT INTO wk VALUES (1, 'X', 8)",
          "INSERT INTO wk VALUES (1, 'Y', 4)", "INSERT INTO wk VALUES (2, 'X', 7)"})
      base->Ejecutar(sql);
  }
  sqlite3* cruda = nullptr;
  ASSERT_EQ(sqlite3_open(ruta.c_str(), &cruda), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(
                cruda,
                "UPDATE MSysConsultas SET Texto = 'TRANSFORM Sum(h) SELECT e FROM wk GROUP BY e PIVOT c'"
                " WHERE Nombre = 'cruz';"
                "UPDATE MSysConsultas SET Texto = 'TRANSFORM Count(*) SELECT X FROM cruz GROUP BY X PIVOT e'"
                " WHERE Nombre = 'encima'",
                nullptr, nullptr, nullptr),
            SQLITE_OK);
  sqlite3_close(cruda);

  const auto base = Abrir(ruta);
  const auto todo = [&](const char* sql) {
    const db::Recordset filas = base->Ejecutar(sql);
    return support::Cabecera(filas) + "\n" + support::Filas(filas);
  };
  EXPECT_EQ(todo("SELECT * FROM cruz ORDER BY e"), "e:int|X:number|Y:number\n1|8|4\n2|7|NULL");
  base->Ejecutar("INSERT INTO wk VALUES (2, 'Z', 1)");
  EXPECT_EQ(todo("SELECT cruz.e, Z, wk.h FROM cruz INNER JOIN wk ON cruz.e = wk.e WHERE wk.c = 'Z'"),
            "e:int|Z:number|h:number\n2|1|1");
  EXPECT_EQ(todo("SELECT * FROM encima ORDER BY X"), "X:number|1:int|2:int\n7|NULL|1\n8|1|NULL");
  EXPECT_EQ(support::Filas(base->Consultar("SELECT Count(*) FROM cruz")), "2");
  EXPECT_THROW(base->Ejecutar("INSERT INTO wk (e) SELECT e FROM cruz"), db::Error);
  EXPECT_THROW(base->Consultar("SELECT e INTO copia FROM cruz"), db::Error);
  EXPECT_THROW(base->Ejecutar("SELECT NoHay FROM cruz"), db::Error);
}

TEST_F(Archivos, UnNombreComoDireccionEsUnNombre) {
  const auto antes = std::filesystem::current_path();
  std::filesystem::current_path(carpeta_.Carpeta());
  Abrir("file:x?mode=memory", Crear())->Ejecutar("CREATE TABLE t (k LONG)");
  std::filesystem::current_path(antes);
  EXPECT_TRUE(std::filesystem::exists(carpeta_.Ruta("file:x?mode=memory")));
}

// The indexes of a file hold for one order alone, so that it goes with the file.
TEST_F(Archivos, ElOrdenEsElDelArchivo) {
  const std::string ruta = carpeta_.Ruta("o.db");
  Opciones tradicional = Crear();
  tradicional.orden = base::Orden::EspanolTradicional;
  {
    const auto base = Abrir(ruta, tradicional);
    base->Ejecutar("CREATE TABLE t (v TEXT(20) CONSTRAINT pk PRIMARY KEY)");
    for (const char* v : {"cuna", "chico", "dado"})
      base->Ejecutar("INSERT INTO t VALUES ('" + std::string(v) + "')");
  }
  Opciones general = Crear();
  general.orden = base::Orden::General;
  const auto base = Abrir(ruta, general);
  EXPECT_EQ(support::Filas(base->Ejecutar("SELECT v FROM t ORDER BY v")), "cuna\nchico\ndado");
  EXPECT_EQ(support::Filas(base->Ejecutar("SELECT v FROM t WHERE v > 'CZ'")), "chico\ndado");
  EXPECT_EQ(support::Filas(base->Ejecutar("SELECT StrComp('ch', 'cz')")), "1");
}

TEST_F(Archivos, UnArchivoDanadoLoDice) {
  const std::string ruta = carpeta_.Ruta("d.db");
  {
    const auto base = Abrir(ruta, Crear());
    base->Ejecutar("CREATE TABLE t (k LONG, v TEXT(200))");
    base->BeginTrans();
    for (int i = 0; i < 2000; ++i)
      base->Ejecutar("INSERT INTO t VALUES (" + std::to_string(i) + ", 'relleno de la fila')");
    base->CommitTrans();
  }
  std::string bytes = carpeta_.Leer("d.db");
  ASSERT_GT(bytes.size(), 30000U);
  for (std::size_t i = 8192; i < bytes.size(); ++i) bytes[i] = '\x55';
  carpeta_.Escribir("d.db", bytes);
  const auto base = Abrir(ruta);
  EXPECT_EQ(Falla([&] { base->Ejecutar("SELECT Sum(k) FROM t"); }), "El archivo de la base está dañado.");
}

TEST_F(Archivos, SoloLecturaNoEscribe) {
  const std::string ruta = carpeta_.Ruta("l.db");
  {
    const auto base = Abrir(ruta, Crear());
    base->Ejecutar("CREATE TABLE t (k LONG)");
    base->Ejecutar("INSERT INTO t VALUES (1)");
  }
  Opciones opciones;
  opciones.solo_lectura = true;
  const auto base = Abrir(ruta, opciones);
  EXPECT_EQ(support::Filas(base->Ejecutar("SELECT k FROM t")), "1");
  const std::string kSoloLectura = "La base es de solo lectura: no se puede modificar.";
  EXPECT_EQ(Falla([&] { base->Ejecutar("INSERT INTO t VALUES (2)"); }), kSoloLectura);
  EXPECT_EQ(Falla([&] { base->Ejecutar("CREATE TABLE u (k LONG)"); }), kSoloLectura);
  EXPECT_EQ(Falla([&] { base->Ejecutar("CREATE VIEW q AS SELECT k FROM t"); }), kSoloLectura);
  EXPECT_EQ(support::Filas(base->Ejecutar("SELECT k FROM t")), "1");
}

TEST_F(Archivos, DosProgramasSeEsperanYSeLoDicen) {
  const std::string ruta = carpeta_.Ruta("c.db");
  const auto uno = Abrir(ruta, Crear());
  uno->Ejecutar("CREATE TABLE t (k LONG)");
  const auto dos = Abrir(ruta, Crear());
  uno->BeginTrans();
  uno->Ejecutar("INSERT INTO t VALUES (1)");
  // Reading goes on and does not see what is not committed; writing waits, then says why.
  EXPECT_EQ(support::Filas(dos->Ejecutar("SELECT Count(*) FROM t")), "0");
  const auto inicio = std::chrono::steady_clock::now();
  EXPECT_EQ(Falla([&] { dos->Ejecutar("INSERT INTO t VALUES (2)"); }), kOcupada);
  EXPECT_GE(std::chrono::steady_clock::now() - inicio, std::chrono::milliseconds(40));
  EXPECT_EQ(Falla([&] { dos->BeginTrans(); }), kOcupada);
  EXPECT_FALSE(dos->EnTransaccion());
  uno->CommitTrans();
  dos->Ejecutar("INSERT INTO t VALUES (2)");
  EXPECT_EQ(support::Filas(uno->Ejecutar("SELECT k FROM t ORDER BY k")), "1\n2");
}

TEST_F(Archivos, LoQueOtroProgramaDefineSeVe) {
  const std::string ruta = carpeta_.Ruta("e.db");
  const auto uno = Abrir(ruta, Crear());
  uno->Ejecutar("CREATE TABLE t (k LONG)");
  uno->Ejecutar("INSERT INTO t VALUES (1)");
  const auto dos = Abrir(ruta, Crear());
  EXPECT_EQ(support::Filas(dos->Ejecutar("SELECT k FROM t")), "1");
  EXPECT_THROW(dos->Ejecutar("SELECT k FROM nueva"), db::Error);
  EXPECT_THROW(dos->Ejecutar("SELECT k FROM vista"), db::Error);
  uno->Ejecutar("CREATE TABLE nueva (k LONG)");
  uno->Ejecutar("INSERT INTO nueva VALUES (5)");
  uno->Ejecutar("CREATE VIEW vista AS SELECT k * 2 AS kk FROM nueva");
  uno->Ejecutar("ALTER TABLE t ADD COLUMN z TEXT(5)");
  EXPECT_EQ(support::Filas(dos->Ejecutar("SELECT k FROM nueva")), "5");
  EXPECT_EQ(support::Filas(dos->Ejecutar("SELECT kk FROM vista")), "10");
  EXPECT_EQ(support::Filas(dos->Ejecutar("SELECT k, z FROM t")), "1|NULL");
  // A saved query that now says something else: the old translation must not answer.
  uno->Ejecutar("DROP VIEW vista");
  uno->Ejecutar("CREATE VIEW vista AS SELECT k * 3 AS kk FROM nueva");
  EXPECT_EQ(support::Filas(dos->Ejecutar("SELECT kk FROM vista")), "15");
  uno->Ejecutar("DROP TABLE nueva");
  EXPECT_THROW(dos->Ejecutar("SELECT k FROM nueva"), db::Error);
}

TEST_F(Archivos, SinConfirmarNoQuedaNada) {
  const std::string ruta = carpeta_.Ruta("s.db");
  {
    const auto base = Abrir(ruta, Crear());
    base->Ejecutar("CREATE TABLE t (k LONG)");
    base->BeginTrans();
    base->Ejecutar("INSERT INTO t VALUES (1)");
  }
  EXPECT_EQ(support::Filas(Abrir(ruta)->Ejecutar("SELECT Count(*) FROM t")), "0");
}

#ifndef _WIN32
// Files may not grow past a size for the time of one test.
class LimiteDeArchivo {
 public:
  explicit LimiteDeArchivo(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &antes_);
    const rlimit limite{bytes, antes_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limite);
  }
  ~LimiteDeArchivo() { setrlimit(RLIMIT_FSIZE, &antes_); }
  LimiteDeArchivo(const LimiteDeArchivo&) = delete;
  LimiteDeArchivo& operator=(const LimiteDeArchivo&) = delete;

 private:
  rlimit antes_{};
};

// When the file cannot grow, nothing of the transaction may stay, nor may what is run after it.
TEST_F(Archivos, UnaEscrituraImposibleDejaTodoComoEstaba) {
  const std::string ruta = carpeta_.Ruta("lleno.db");
  const auto base = Abrir(ruta, Crear());
  base->Ejecutar("CREATE TABLE t (k LONG, v MEMO)");
  base->Ejecutar("INSERT INTO t VALUES (0, 'antes')");
  base->BeginTrans();
  base->Ejecutar("INSERT INTO t VALUES (1, 'en la transacción')");
  const std::string largo(100000, 'x');
  std::string razon;
  {
    const LimiteDeArchivo limite(200000);
    for (int i = 2; i < 1000 && razon.empty(); ++i) {
      const std::string sql = "INSERT INTO t VALUES (" + std::to_string(i) + ", '" + largo + "')";
      if (const std::string falla = Falla([&] { base->Ejecutar(sql); }); falla != "no error") razon = falla;
    }
    if (razon.empty()) razon = Falla([&] { base->CommitTrans(); });
  }
  EXPECT_TRUE(razon == "Error al leer o escribir el archivo de la base." ||
              razon == "No queda espacio en el disco para guardar los cambios en la base.")
      << razon;
  if (base->EnTransaccion()) {
    const std::string deshecha = "Un error anterior deshizo la transacción: nada de ella quedó guardado.";
    EXPECT_EQ(Falla([&] { base->Ejecutar("INSERT INTO t VALUES (9999, 'después')"); }), deshecha);
    EXPECT_EQ(Falla([&] { base->CommitTrans(); }), deshecha);
  }
  EXPECT_FALSE(base->EnTransaccion());
  EXPECT_EQ(support::Filas(base->Ejecutar("SELECT k, v FROM t")), "0|antes");
}
#endif

}  // namespace
