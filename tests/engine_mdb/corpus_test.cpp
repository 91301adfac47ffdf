// The samples, and the further files where they are here: every table has its rows, every query answers or
// says why not, and no file changes by being read.
#include "mdb/corpus.h"
#include "engine_mdb/query_text.h"
#include "mdb/rows/table.h"
#include "mdb/samples.h"
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

// Why a query gives no rows here; empty when it must.
std::string Reason(const mdb::ConsultaGuardada& query, bool sample) {
  const auto kind = mdb::ClaseDe(query);
  if (kind == mdb::ClaseConsulta::Seleccion) return {};
  // Those of the further files have SELECTs without a FROM.
  if (kind == mdb::ClaseConsulta::Union) return sample ? "" : "No se encuentra la columna 'Table1.col1'";
  if (kind == mdb::ClaseConsulta::Cruzada) return {};
  return "La consulta '" + query.nombre + "' es " + engine_mdb::KindName(kind) +
         ": no da filas y no se puede usar como tabla";
}

void Comprobar(const std::string& ruta, const std::string& password) {
  SCOPED_TRACE(ruta);
  const bool sample = password != "ucanaccess";
  const std::string antes = *base::LeerArchivo(ruta);
  const auto fecha = std::filesystem::last_write_time(ruta);
  {
    engine_mdb::Opciones o;
    o.contrasena = password;
    const auto conexion = engine_mdb::Abrir(ruta, o);
    const auto base = mdb::Base::Abrir(ruta, {true, password});
    for (const mdb::Objeto& objeto : base->Indice().Objetos()) {
      if (objeto.tipo == mdb::Objeto::Tabla) {
        SCOPED_TRACE(objeto.nombre);
        db::Recordset r;
        ASSERT_NO_THROW(r = conexion->Consultar("SELECT * FROM [" + objeto.nombre + "]"));
        EXPECT_EQ(r.Cantidad(), FilasDe(*base, objeto.nombre)) << objeto.nombre;
        EXPECT_EQ(r.Campos().size(), base->Indice().Tabla(objeto.nombre)->columnas.size()) << objeto.nombre;
      } else if (objeto.tipo == mdb::Objeto::Consulta) {
        std::string falla;
        try {
          conexion->Consultar("SELECT * FROM [" + objeto.nombre + "]");
        } catch (const db::Error& e) {
          falla = e.Descripcion();
        }
        if (objeto.nombre == "CrosstabQuery") {
          EXPECT_NE(falla, "") << "it has a total in its WHERE";
        } else {
          EXPECT_EQ(falla, Reason(base->Indice().ConsultaDe(objeto.nombre), sample)) << objeto.nombre;
        }
      }
    }
  }
  EXPECT_EQ(*base::LeerArchivo(ruta), antes);
  EXPECT_EQ(std::filesystem::last_write_time(ruta), fecha);
}

TEST(CorpusMdb, CadaTablaYCadaConsulta) {
  const support::CarpetaTemporal carpeta;
  for (const std::string& path : mdb_test::EveryFile()) {
    const auto name = std::filesystem::path(path).filename();
    const std::string further = mdb_test::CarpetaDeCorpus();
    const bool sample = further.empty() || !path.starts_with(further);
    const std::string copy = carpeta.Ruta((sample ? "muestra " : "") + name.string());
    std::filesystem::copy_file(path, copy);
    std::filesystem::permissions(copy, std::filesystem::perms::owner_all);
    Comprobar(copy, sample ? "contraseña" : "ucanaccess");
  }
}

// A file of another writer with relationships: one deletes with its parent, the other changes its key with
// it.
TEST(CorpusMdb, LasRelacionesDeUnArchivoAjeno) {
  const support::CarpetaTemporal carpeta;
  const std::string ruta =
      carpeta.Escribir("r.mdb", *base::LeerArchivo(mdb_test::SamplePath("relations.mdb")));
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
    EXPECT_EQ(falla("INSERT INTO Table1 (id, otherfk1, otherfk2, data) VALUES (100, 999, 11, 'x')"),
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
