// The files of Access beside the checkout: every table has its rows, every query answers or says why not, and
// no file changes by being read.
#include "engine_mdb/query_text.h"
#include "mdb/rows/table.h"
#include "mesa.h"

namespace {

std::size_t FilasDe(mdb::Base& base, const std::string& tabla) {
  std::size_t n = 0;
  mdb::RecorrerFilas(base.Hojas(), *base.Indice().Tabla(tabla), [&](mdb::IdFila, const mdb::Fila&) {
    ++n;
    return true;
  });
  return n;
}

void Comprobar(const std::string& ruta) {
  SCOPED_TRACE(ruta);
  const std::string antes = *base::LeerArchivo(ruta);
  const auto fecha = std::filesystem::last_write_time(ruta);
  {
    engine_mdb::Opciones o;
    o.contrasena = "ucanaccess";
    const auto conexion = engine_mdb::Abrir(ruta, o);
    const auto base = mdb::Base::Abrir(ruta, {true, "ucanaccess"});
    for (const mdb::Objeto& objeto : base->Indice().Objetos()) {
      if (objeto.tipo == mdb::Objeto::Tabla) {
        const auto r = conexion->Consultar("SELECT * FROM [" + objeto.nombre + "]");
        EXPECT_EQ(r.Cantidad(), FilasDe(*base, objeto.nombre)) << objeto.nombre;
        EXPECT_EQ(r.Campos().size(), base->Indice().Tabla(objeto.nombre)->columnas.size()) << objeto.nombre;
      } else if (objeto.tipo == mdb::Objeto::Consulta) {
        const auto clase = mdb::ClaseDe(base->Indice().ConsultaDe(objeto.nombre));
        std::string falla;
        try {
          conexion->Consultar("SELECT * FROM [" + objeto.nombre + "]");
        } catch (const db::Error& e) {
          falla = e.Descripcion();
        }
        if (clase == mdb::ClaseConsulta::Seleccion)
          EXPECT_EQ(falla, "") << objeto.nombre;
        else if (clase == mdb::ClaseConsulta::Union)  // its SELECTs have no FROM
          EXPECT_EQ(falla, "No se encuentra la columna 'Table1.col1'");
        else if (clase == mdb::ClaseConsulta::Cruzada && objeto.nombre == "CrosstabQuery")
          EXPECT_NE(falla, "") << "it has a total in its WHERE";
        else if (clase == mdb::ClaseConsulta::Cruzada)
          EXPECT_EQ(falla, "") << objeto.nombre;
        else
          EXPECT_EQ(falla, "La consulta '" + objeto.nombre + "' es " + engine_mdb::KindName(clase) +
                               ": no da filas y no se puede usar como tabla");
      }
    }
  }
  EXPECT_EQ(*base::LeerArchivo(ruta), antes);
  EXPECT_EQ(std::filesystem::last_write_time(ruta), fecha);
}

TEST(CorpusMdb, CadaTablaYCadaConsulta) {
  if (!std::filesystem::is_directory(prueba::Corpus()))
    GTEST_SKIP() << "the corpus is not beside this checkout";
  const support::CarpetaTemporal carpeta;
  int archivos = 0;
  for (const auto& entrada : std::filesystem::directory_iterator(prueba::Corpus())) {
    const std::string nombre = entrada.path().filename().string();
    if (entrada.path().extension() != ".mdb" && entrada.path().extension() != ".accdb") continue;
    std::filesystem::copy_file(entrada.path(), carpeta.Ruta(nombre));
    std::filesystem::permissions(carpeta.Ruta(nombre), std::filesystem::perms::owner_all);
    Comprobar(carpeta.Ruta(nombre));
    ++archivos;
  }
  EXPECT_GE(archivos, 20);
}

// A file of Access itself with relationships: one deletes with its parent, the other changes its key with it.
TEST(CorpusMdb, LasRelacionesDeUnArchivoDeAccess) {
  const std::string origen = prueba::Corpus() + "/indexTestV2003.mdb";
  if (!base::ExisteArchivo(origen)) GTEST_SKIP() << "the corpus is not beside this checkout";
  const support::CarpetaTemporal carpeta;
  const std::string ruta = carpeta.Escribir("r.mdb", *base::LeerArchivo(origen));
  {
    const auto c = engine_mdb::Abrir(ruta);
    const auto falla = [&](const char* sql) -> std::string {
      try {
        c->Ejecutar(sql);
      } catch (const db::Error& e) {
        return e.Descripcion();
      }
      return "no error";
    };
    EXPECT_EQ(falla("INSERT INTO Table1 (id, otherfk1, otherfk2) VALUES (100, 999, 11)"),
              "No se puede guardar el registro en la tabla Table1: falta el registro relacionado en la tabla "
              "Table2 "
              "(relación Table2Table1).");
    EXPECT_EQ(falla("UPDATE Table2 SET id = 77 WHERE id = 1"),
              "No se puede borrar el registro de la tabla Table2 ni cambiar su clave: la tabla Table1 tiene "
              "registros "
              "relacionados (relación Table2Table1).");
    EXPECT_EQ(falla("DELETE FROM Table3 WHERE id = 10"),
              "No se puede borrar el registro de la tabla Table3 ni cambiar su clave: la tabla Table1 tiene "
              "registros "
              "relacionados (relación Table3Table1).");
    c->Ejecutar("DELETE FROM Table2 WHERE id = 1");
    EXPECT_EQ(c->FilasAfectadas(), 1);
    c->Ejecutar("UPDATE Table3 SET id = 50 WHERE id = 10");
  }
  EXPECT_EQ(support::Filas(engine_mdb::Abrir(ruta)->Ejecutar("SELECT id, otherfk2 FROM Table1 ORDER BY id")),
            "0|50\n3|13");
}

}  // namespace
