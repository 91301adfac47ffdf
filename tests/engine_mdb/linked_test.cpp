// Tables of another Access file.
#include "mesa.h"

namespace {

class Vinculadas : public prueba::MesaMdb {
 protected:
  // Access makes these; here their rows of the catalog are written by hand.
  void Vincular(std::int16_t tipo, const std::string& nombre, const std::string& archivo,
                const std::string& tabla, const std::string& conexion = {}) {
    base_.reset();
    const auto base = mdb::Base::Abrir(ruta_);
    const auto d = base->Indice().Tabla("MSysObjects");
    ASSERT_NE(d, nullptr);
    mdb::Fila fila(d->columnas.size());
    const auto poner = [&](const char* columna, mdb::Dato dato) {
      fila[d->PorNombre(columna).value()] = std::move(dato);
    };
    poner("Id", std::int64_t{-2147483648LL + 1000 + ++cuantas_});
    poner("ParentId", std::int64_t{0x0F000001});
    poner("Name", nombre);
    poner("Type", std::int64_t{tipo});
    poner("DateCreate", base::FechaDe(2020, 1, 1));
    poner("DateUpdate", base::FechaDe(2020, 1, 1));
    poner("Flags", std::int64_t{0x200000});
    poner("Database", archivo);
    poner("ForeignName", tabla);
    if (!conexion.empty()) poner("Connect", conexion);
    mdb::Cambios cambios;
    cambios.nuevas.push_back(std::move(fila));
    base->Aplicar("MSysObjects", cambios);
    base->Confirmar();
  }
  void Otra(const std::string& nombre) const {
    const auto otra = engine_mdb::Crear(carpeta_.Ruta(nombre));
    otra->Ejecutar("CREATE TABLE Lejos (k LONG, v TEXT(10))");
    otra->Ejecutar("INSERT INTO Lejos VALUES (1, 'uno')");
    otra->Ejecutar("INSERT INTO Lejos VALUES (2, 'dos')");
  }
  int cuantas_ = 0;
};

TEST_F(Vinculadas, SeLeenDeSuArchivo) {
  Nueva();
  Correr("CREATE TABLE t (k LONG)");
  Correr("INSERT INTO t VALUES (2)");
  Otra("otra.mdb");
  Vincular(mdb::Objeto::Vinculada, "Cerca", carpeta_.Ruta("otra.mdb"), "Lejos");
  Abrir();
  EXPECT_EQ(Filas("SELECT * FROM Cerca ORDER BY k"), "1|uno\n2|dos");
  EXPECT_EQ(Filas("SELECT v FROM t INNER JOIN cerca ON t.k = cerca.k"), "dos");
  EXPECT_EQ(Falla("INSERT INTO Cerca VALUES (3, 'tres')"), "La tabla Cerca está vinculada a otro archivo (" +
                                                               carpeta_.Ruta("otra.mdb") +
                                                               "): desde aquí se puede leer, no escribir.");
  Correr("INSERT INTO t SELECT k + 10 AS k FROM Cerca");
  EXPECT_EQ(Filas("SELECT Count(*) FROM t"), "3");
}

// A path of another machine: the file may stand beside ours.
TEST_F(Vinculadas, ElArchivoJuntoALaBase) {
  Nueva();
  Otra("otra.mdb");
  Vincular(mdb::Objeto::Vinculada, "Cerca", "D:\\Sueldos\\otra.mdb", "Lejos");
  Abrir();
  EXPECT_EQ(Filas("SELECT Count(*) FROM Cerca"), "2");
}

TEST_F(Vinculadas, LasQueNoSePuedenLeerDicenPorQue) {
  Nueva();
  Otra("otra.mdb");
  Vincular(mdb::Objeto::Vinculada, "Falta", "D:\\Sueldos\\falta.mdb", "Lejos");
  Vincular(mdb::Objeto::Vinculada, "Hoja", "D:\\h.xls", "Hoja1$", "Excel 8.0;HDR=YES;DATABASE=D:\\h.xls");
  Vincular(mdb::Objeto::VinculadaOdbc, "Servidor", "", "dbo.t", "ODBC;DSN=x");
  Vincular(mdb::Objeto::Vinculada, "Vacia", carpeta_.Ruta("otra.mdb"), "NoEsta");
  Abrir();
  EXPECT_EQ(Falla("SELECT * FROM Falta"),
            "La tabla vinculada Falta es del archivo D:\\Sueldos\\falta.mdb, que no existe, ni está junto a "
            "la base.");
  EXPECT_EQ(Falla("SELECT * FROM Hoja"),
            "La tabla vinculada Hoja no es de otra base de Access (Excel 8.0): no se puede leer desde aquí.");
  EXPECT_EQ(Falla("SELECT * FROM Servidor"),
            "La tabla Servidor está vinculada por ODBC a otra base: no se puede leer desde aquí.");
  EXPECT_EQ(Falla("SELECT * FROM Vacia"), "La tabla vinculada Vacia nombra la tabla NoEsta, que no está en " +
                                              carpeta_.Ruta("otra.mdb") + ".");
  EXPECT_EQ(Filas("SELECT 1"), "1");
}

}  // namespace
