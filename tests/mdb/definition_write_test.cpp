#include <gtest/gtest.h>

#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/definitions/definition_internal.h"
#include "mdb/outside.h"
#include "mdb/pages/page_map.h"
#include "mdb/samples.h"
#include "mdb/schema/new_file.h"

namespace {

mdb::PaginasEnMemoria Nueva() {
  mdb::Bytes bytes = mdb::NuevaBase(3082, base::FechaDe(2026, 11, 21));
  const mdb::Cabecera cabecera = mdb::LeerCabecera(bytes);
  return {cabecera, std::move(bytes)};
}

// What is read from the pages, serialized: two definitions are alike exactly when these bytes are.
mdb::Bytes DePaginas(mdb::Paginas& paginas, mdb::NumPagina numero) {
  return mdb::SerializarDefinicion(mdb::LeerDefinicion(paginas, numero));
}

mdb::Columna Texto(std::uint16_t numero, std::size_t letras) {
  mdb::Columna c;
  c.nombre = std::to_string(numero);
  c.nombre.resize(letras, 'x');
  c.tipo = mdb::TipoColumna::Texto;
  c.numero = c.variable = numero;
  c.lcid = 3082;
  c.largo = 510;
  return c;
}

mdb::Definicion DeTextos(std::uint16_t cantidad, std::size_t letras) {
  mdb::Definicion d;
  for (std::uint16_t i = 0; i < cantidad; ++i) d.columnas.push_back(Texto(i, letras));
  d.max_columnas = d.variables = cantidad;
  return d;
}

// Every table of every file, written again in place: the same pages, the same definition, a sound file.
TEST(EscribirDefinicion, WritesTheTablesOfOthersAsTheyWere) {
  int tablas = 0;
  for (const auto& ruta : mdb_test::EveryFile()) {
    SCOPED_TRACE(ruta);
    const auto paginas = mdb_test::Cargar(ruta);
    if (paginas->Cab().version != mdb::Version::Jet4) continue;
    const mdb::Catalogo catalogo(*paginas);
    for (const auto& o : catalogo.Objetos()) {
      if (o.tipo != mdb::Objeto::Tabla) continue;
      SCOPED_TRACE(o.nombre);
      auto d = mdb::LeerDefinicion(*paginas, static_cast<mdb::NumPagina>(o.id));
      const auto antes = mdb::SerializarDefinicion(d);
      // The whole length is what the original program wrote too.
      EXPECT_EQ(antes.size(), mdb::U32(*paginas->Leer(d.Pagina()), 8));
      const auto suyas = d.paginas;
      const auto libres = mdb::U16(*paginas->Leer(d.Pagina()), 2);
      mdb::EscribirDefinicion(*paginas, d);
      EXPECT_EQ(d.paginas, suyas);
      EXPECT_EQ(mdb::U16(*paginas->Leer(d.Pagina()), 2), libres);
      EXPECT_EQ(DePaginas(*paginas, d.Pagina()), antes);
      ++tablas;
    }
    paginas->Confirmar();
    if (paginas->Cab().clave == 0) {  // the checker does not decrypt
      EXPECT_EQ(mdb_test::Controlar(paginas->Guardado(), false), "");
    }
  }
  EXPECT_GT(tablas, 50);
}

TEST(EscribirDefinicion, GrowsOverPagesAndShrinksBackKeepingTheFirst) {
  auto paginas = Nueva();
  auto d = DeTextos(3, 10);
  mdb::EscribirDefinicion(paginas, d);
  ASSERT_EQ(d.paginas.size(), 1U);
  const auto primera = d.Pagina();
  d = DeTextos(255, 60);
  d.paginas = {primera};
  mdb::EscribirDefinicion(paginas, d);
  // 63 + 255 * (25 + 2 + 120) + 2 bytes: 4096 on the first page, 4088 on each other.
  ASSERT_EQ(d.paginas.size(), 10U);
  EXPECT_EQ(d.Pagina(), primera);
  EXPECT_EQ(DePaginas(paginas, primera), mdb::SerializarDefinicion(d));
  EXPECT_EQ(mdb::LeerDefinicion(paginas, primera).paginas, d.paginas);
  const auto todas = paginas.Cantidad();
  auto corta = DeTextos(100, 10);
  corta.paginas = d.paginas;
  mdb::EscribirDefinicion(paginas, corta);
  EXPECT_EQ(corta.paginas.size(), 2U);
  EXPECT_EQ(DePaginas(paginas, primera), mdb::SerializarDefinicion(corta));
  // The pages that it gave back serve the next one.
  auto otra = DeTextos(200, 60);
  mdb::EscribirDefinicion(paginas, otra);
  EXPECT_EQ(paginas.Cantidad(), todas);
}

// A definition that ends exactly with its page has no second one; one byte more has.
TEST(EscribirDefinicion, FillsAPageToItsLastByte) {
  // Names have whole characters of two bytes: 65 bytes and 27 a column are odd or even with the columns.
  for (const std::size_t sobran : {0U, 1U}) {
    auto paginas = Nueva();
    const std::uint16_t columnas = 31;
    std::size_t faltan = 4096 + sobran - (63 + columnas * 27 + 2);
    ASSERT_EQ(faltan % 2, sobran == 0 ? 0U : 1U);
    if (sobran != 0) faltan += 1;
    auto d = DeTextos(columnas, 2);
    faltan -= columnas * 4;
    for (auto& c : d.columnas) {
      const std::size_t letras = std::min<std::size_t>(faltan / 2, 62);
      c.nombre.resize(2 + letras, 'y');
      faltan -= letras * 2;
    }
    ASSERT_EQ(faltan, 0U);
    mdb::EscribirDefinicion(paginas, d);
    EXPECT_EQ(d.paginas.size(), sobran == 0 ? 1U : 2U);
    EXPECT_EQ(mdb::U16(*paginas.Leer(d.Pagina()), 2), 0);
    EXPECT_EQ(DePaginas(paginas, d.Pagina()), mdb::SerializarDefinicion(d));
  }
}

TEST(EscribirDefinicion, RefusesWhatTheFormatCannotHold) {
  auto paginas = Nueva();
  auto d = DeTextos(256, 5);
  EXPECT_THROW(mdb::EscribirDefinicion(paginas, d), base::Error);
  d = DeTextos(3, 5);
  d.reales.emplace_back().partes.resize(11);
  EXPECT_THROW(mdb::EscribirDefinicion(paginas, d), base::Error);
  EXPECT_FALSE(paginas.HayCambios());
}

TEST(EscribirDefinicion, OtherFormatsAreOnlyRead) {
  const auto paginas = mdb_test::LoadSample("queries97.mdb");
  auto d = mdb::LeerDefinicion(*paginas, 2);
  EXPECT_THROW(mdb::EscribirDefinicion(*paginas, d), base::Error);
}

}  // namespace
