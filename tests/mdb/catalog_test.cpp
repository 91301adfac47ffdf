#include "mdb/catalog/catalog.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "mdb/corpus.h"
#include "mdb/exported.h"
#include "mdb/rows/table.h"
#include "mdb/samples.h"
#include "mdb/tables/table_writer.h"

namespace {

TEST(Catalogo, FindsTablesAndQueriesWhateverTheirCase) {
  const auto paginas = mdb_test::LoadSample("queries.mdb");
  const mdb::Catalogo catalogo(*paginas);
  const auto* tabla = catalogo.Buscar("hORAS");
  ASSERT_NE(tabla, nullptr);
  EXPECT_EQ(tabla->nombre, "Horas");
  EXPECT_EQ(tabla->tipo, mdb::Objeto::Tabla);
  EXPECT_FALSE(tabla->DeSistema());
  EXPECT_EQ(catalogo.Buscar("de todas")->tipo, mdb::Objeto::Consulta);
  EXPECT_TRUE(catalogo.Buscar("msysobjects")->DeSistema());
  EXPECT_EQ(catalogo.Buscar("Tables"), nullptr);  // a container
  EXPECT_EQ(catalogo.Buscar("Table9"), nullptr);
  const auto definicion = catalogo.Tabla("HORAS");
  ASSERT_NE(definicion, nullptr);
  EXPECT_EQ(definicion->nombre, "Horas");
  EXPECT_EQ(static_cast<std::int32_t>(definicion->Pagina()), tabla->id);
  EXPECT_EQ(catalogo.Tabla("horas"), definicion);  // read once
  EXPECT_EQ(catalogo.Tabla("De todas"), nullptr);
  EXPECT_EQ(catalogo.Tabla("Table9"), nullptr);
  EXPECT_THROW(catalogo.ConsultaDe("Horas"), base::Error);
  EXPECT_EQ(catalogo.ConsultaDe("DE TODAS").nombre, "De todas");
}

// The row of an object in MSysObjects, written through the pages under the catalog's feet.
TEST(Catalogo, IsReadAnewAfterAChange) {
  const auto paginas = mdb_test::LoadSample("relations.mdb");
  mdb::Catalogo catalogo(*paginas);
  const auto objeto = *catalogo.Buscar("Table1");
  const auto definicion = mdb::LeerDefinicion(*paginas, paginas->Cab().objetos);
  const auto fila = mdb::BuscarFila(*paginas, definicion, objeto.fila);
  ASSERT_TRUE(fila);
  const auto lugar = static_cast<std::size_t>(fila->bytes.data() - fila->imagen->data());
  const std::string nombre("T\0a\0b\0l\0e\0001\0", 12);  // as stored: not compressed
  auto& pagina = paginas->Modificar(objeto.fila.pagina);
  const auto donde = std::search(pagina.begin() + static_cast<std::ptrdiff_t>(lugar), pagina.end(),
                                 nombre.begin(), nombre.end());
  ASSERT_NE(donde, pagina.end());
  *donde = 'S';
  EXPECT_NE(catalogo.Buscar("Table1"), nullptr);
  catalogo.Olvidar();
  EXPECT_EQ(catalogo.Buscar("Table1"), nullptr);
  EXPECT_EQ(catalogo.Buscar("Sable1")->id, objeto.id);
}

TEST(Catalogo, GivesRelationshipsWithTheirRules) {
  const auto paginas = mdb_test::LoadSample("relations.mdb");
  const mdb::Catalogo catalogo(*paginas);
  const auto& relaciones = catalogo.Relaciones();
  const auto r = std::find_if(relaciones.begin(), relaciones.end(),
                              [](const auto& x) { return x.nombre == "Table3Table1"; });
  ASSERT_NE(r, relaciones.end());
  EXPECT_EQ(r->tabla, "Table1");
  EXPECT_EQ(r->columnas, std::vector<std::string>{"otherfk2"});
  EXPECT_EQ(r->tabla_referida, "Table3");
  EXPECT_EQ(r->columnas_referidas, std::vector<std::string>{"id"});
  EXPECT_EQ(r->banderas, mdb::RelacionDeTablas::kActualizaEnCascada);
  EXPECT_TRUE(r->Exigida());
}

TEST(Catalogo, GivesThePropertiesOfATable) {
  const auto paginas = mdb_test::LoadSample("types.mdb");
  const mdb::Catalogo catalogo(*paginas);
  const auto& propiedades = catalogo.PropiedadesDe("TIPOS");
  const auto* requerida = mdb::Buscar(propiedades, "TEXTO", "required");
  ASSERT_NE(requerida, nullptr);
  EXPECT_EQ(*requerida, mdb::Dato(true));
  EXPECT_EQ(*mdb::Buscar(propiedades, "Texto", "AllowZeroLength"), mdb::Dato(false));
  EXPECT_EQ(*mdb::Buscar(propiedades, "doble", "DefaultValue"), mdb::Dato(std::string("8,5")));
  EXPECT_EQ(mdb::Buscar(propiedades, "Texto", "Nothing"), nullptr);
  EXPECT_EQ(mdb::Buscar(propiedades, "nobody", "Required"), nullptr);
  EXPECT_TRUE(catalogo.PropiedadesDe("no such table").empty());
}

// Adds a row to a system table, by the names of its columns; the others stay Null.
void AgregarFila(mdb::Paginas& paginas, mdb::NumPagina tabla,
                 const std::vector<std::pair<const char*, mdb::Dato>>& valores) {
  auto definicion = mdb::LeerDefinicion(paginas, tabla);
  mdb::Fila fila(definicion.columnas.size());
  for (const auto& c : definicion.columnas)
    if (c.tipo == mdb::TipoColumna::Booleano) fila[*definicion.PorNombre(c.nombre)] = false;
  for (const auto& [nombre, valor] : valores) fila.at(definicion.PorNombre(nombre).value()) = valor;
  mdb::Cambios cambios;
  cambios.nuevas.push_back(std::move(fila));
  mdb::Aplicar(paginas, definicion, cambios);
}
void AgregarObjeto(mdb::Paginas& paginas, std::int64_t id, const char* nombre, std::int64_t tipo,
                   std::int64_t banderas, std::vector<std::pair<const char*, mdb::Dato>> mas = {}) {
  mas.insert(mas.end(), {{"Id", id},
                         {"ParentId", std::int64_t{0x0F000001} + (banderas != 0 ? 1 : 0)},
                         {"Name", std::string(nombre)},
                         {"Type", tipo},
                         {"Flags", banderas}});
  AgregarFila(paginas, paginas.Cab().objetos, mas);
}

TEST(Catalogo, KeepsWhereLinkedTablesComeFrom) {
  const auto paginas = mdb_test::LoadSample("empty.mdb");
  AgregarObjeto(*paginas, -2147483640, "Vinculada", 6, 0,
                {{"Database", std::string("C:\\datos\\Año.mdb")}, {"ForeignName", std::string("Original")}});
  AgregarObjeto(*paginas, -2147483639, "Remota", 4, 0,
                {{"Connect", std::string("DSN=Nómina")}, {"ForeignName", std::string("dbo.Remota")}});
  const mdb::Catalogo catalogo(*paginas);
  const auto* vinculada = catalogo.Buscar("vinculada");
  ASSERT_NE(vinculada, nullptr);
  EXPECT_EQ(vinculada->tipo, mdb::Objeto::Vinculada);
  EXPECT_EQ(vinculada->base, "C:\\datos\\Año.mdb");
  EXPECT_EQ(vinculada->nombre_externo, "Original");
  EXPECT_EQ(vinculada->conexion, "");
  const auto* remota = catalogo.Buscar("REMOTA");
  ASSERT_NE(remota, nullptr);
  EXPECT_EQ(remota->tipo, mdb::Objeto::VinculadaOdbc);
  EXPECT_EQ(remota->conexion, "DSN=Nómina");
  EXPECT_EQ(catalogo.Tabla("Vinculada"), nullptr);
}

TEST(Catalogo, PrefersTheObjectThatUsersSee) {
  const auto paginas = mdb_test::LoadSample("empty.mdb");
  AgregarObjeto(*paginas, -2147483640, "Doble", 5, 3);  // a hidden query of Access itself
  AgregarObjeto(*paginas, -2147483639, "DOBLE", 6, 0);
  AgregarObjeto(*paginas, -2147483638, "Suelta", 5, 3);
  AgregarObjeto(*paginas, -2147483637, "Suelta", -32768, 0);  // a form: another kind of thing
  const mdb::Catalogo catalogo(*paginas);
  EXPECT_EQ(catalogo.Buscar("doble")->id, -2147483639);
  EXPECT_EQ(catalogo.Buscar("suelta")->id, -2147483638);
}

// The pairs of columns stand in the order of their numbers, not in that of the rows.
TEST(Catalogo, PutsTheColumnsOfARelationshipInOrder) {
  const auto paginas = mdb_test::LoadSample("empty.mdb");
  for (const std::int64_t i : {2, 0, 1})
    AgregarFila(*paginas, paginas->Cab().relaciones,
                {{"szRelationship", std::string("Triple")},
                 {"ccolumn", std::int64_t{3}},
                 {"icolumn", i},
                 {"grbit", std::int64_t{0x1002}},
                 {"szObject", std::string("Muchos")},
                 {"szColumn", "m" + std::to_string(i)},
                 {"szReferencedObject", std::string("Uno")},
                 {"szReferencedColumn", "u" + std::to_string(i)}});
  const mdb::Catalogo catalogo(*paginas);
  ASSERT_EQ(catalogo.Relaciones().size(), 1U);
  const auto& r = catalogo.Relaciones().front();
  EXPECT_EQ(r.columnas, (std::vector<std::string>{"m0", "m1", "m2"}));
  EXPECT_EQ(r.columnas_referidas, (std::vector<std::string>{"u0", "u1", "u2"}));
  EXPECT_EQ(r.tabla, "Muchos");
  EXPECT_EQ(r.tabla_referida, "Uno");
  EXPECT_EQ(r.banderas, mdb::RelacionDeTablas::kNoExigida | mdb::RelacionDeTablas::kBorraEnCascada);
  EXPECT_FALSE(r.Exigida());
}

// What we write is read back the same for every object of every file.
TEST(Propiedades, OfEveryFileComeBack) {
  std::size_t cuantas = 0;
  for (const auto& ruta : mdb_test::EveryFile()) {
    const auto paginas = mdb_test::Cargar(ruta);
    const mdb::Catalogo catalogo(*paginas);
    for (const auto& o : catalogo.Objetos()) {
      const auto leidas = mdb::LeerPropiedades(paginas->Cab(), o.propiedades);
      const auto otra_vez = mdb::LeerPropiedades(mdb::Cabecera{}, mdb::SerializarPropiedades(leidas));
      const auto listar = [&](const mdb::Propiedades& propiedades) {
        std::vector<std::tuple<std::string, std::string, int, bool, mdb::Dato>> lista;
        for (const auto& [dueno, suyas] : propiedades)
          for (const auto& p : suyas) lista.emplace_back(dueno, p.nombre, p.tipo, p.ddl, p.valor);
        return lista;
      };
      EXPECT_TRUE(listar(leidas) == listar(otra_vez)) << ruta << " " << o.nombre;
      cuantas += listar(leidas).size();
    }
  }
  EXPECT_GT(cuantas, 50U);
}

// Each page of a file made unreadable without its key: Jet 3 and Jet 4 encrypt the same way.
TEST(Cifrado, AnEncryptedFileReadsLikeThePlainOne) {
  for (const char* archivo : {"queries97.mdb", "types.mdb", "compound.mdb", "moved.mdb", "moved97.mdb"}) {
    SCOPED_TRACE(archivo);
    const auto plano = mdb_test::LoadSample(archivo);
    mdb::Bytes bytes = plano->Guardado();
    mdb::Cabecera con_clave = plano->Cab();
    con_clave.clave = 0xA1B2C3D4;
    // The key of the header is masked by a constant stream, and was 0.
    for (std::size_t i = 0; i < 4; ++i)
      bytes[0x3E + i] ^= static_cast<std::uint8_t>(con_clave.clave >> (8 * i));
    for (mdb::NumPagina n = 1; n < plano->Cantidad(); ++n)
      mdb::CifrarPagina(con_clave, n, std::span(bytes).subspan(n * plano->Tamano(), plano->Tamano()));
    EXPECT_NE(bytes, plano->Guardado());
    const mdb::Cabecera leida = mdb::LeerCabecera(bytes);
    EXPECT_EQ(leida.clave, con_clave.clave);
    mdb::PaginasEnMemoria cifrado(leida, bytes);
    const mdb::Catalogo uno(*plano), otro(cifrado);
    ASSERT_EQ(uno.Objetos().size(), otro.Objetos().size());
    std::size_t filas = 0;
    for (const auto& o : uno.Objetos()) {
      if (o.tipo != mdb::Objeto::Tabla) continue;
      const auto t = mdb_test::Leida(*plano, *uno.Tabla(o.nombre));
      EXPECT_EQ(t.filas, mdb_test::Leida(cifrado, *otro.Tabla(o.nombre)).filas);
      filas += t.filas.size();
    }
    EXPECT_GT(filas, 50U);
    // The same bytes read as a plain file are damage, not rows.
    mdb::PaginasEnMemoria sin_clave(plano->Cab(), bytes);
    EXPECT_THROW(mdb::Catalogo(sin_clave).Objetos(), mdb::Danio);
  }
}

}  // namespace
