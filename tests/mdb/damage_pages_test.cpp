#include "mdb/damage.h"

#include <algorithm>

namespace {

using namespace mdb_test;

// --- pages of rows ---

std::vector<Dano> DePaginas() {
  return {
      {"free space of a data page", kCompuesto,
       [](Obra& o) {
         const auto p = o.Datos("Table1");
         Sumar16(o.P(p), 2, 1);
         return p;
       },
       "bytes libres y tiene"},
      {"an offset that rises", kCompuesto,
       [](Obra& o) {
         const auto p = o.Datos("Table1");
         Sumar16(o.P(p), Ranura(5), 300);
         return p;
       },
       "detrás de donde debe terminar"},
      {"a row inside the list of rows", kCompuesto,
       [](Obra& o) {
         const auto p = o.Datos("Table1");
         mdb::Poner16(o.P(p), Ranura(5), 16);
         return p;
       },
       "dentro de la lista de filas"},
      {"more rows than a page holds", kCompuesto,
       [](Obra& o) {
         const auto p = o.Datos("Table1");
         mdb::Poner16(o.P(p), 12, 3000);
         return p;
       },
       "que no caben"},
      {"a data page of another type", kCompuesto,
       [](Obra& o) {
         const auto p = o.Datos("Table1", 1);
         o.P(p)[0] = 4;
         return p;
       },
       "es de otra clase (4)"},
      {"a data page of another table", kCompuesto,
       [](Obra& o) {
         const auto p = o.Datos("Table1", 1);
         o.P(p)[4] ^= 1;
         return p;
       },
       "dice ser de la página"},
      {"a page of long values among the data", kIndices,
       [](Obra& o) {
         const auto p = o.Datos("Table1");
         mdb::Poner32(o.P(p), 4, mdb::kDuenoLargos);
         return p;
       },
       "es de valores largos"},
      {"free space of a page of maps", kIndices,
       [](Obra& o) {
         const auto p = o.Def("Table1").propias.pagina;
         Sumar16(o.P(p), 2, -1);
         return p;
       },
       "mapas de páginas: dice tener"},
      {"a used page in the map of free pages", kIndices,
       [](Obra& o) {
         const auto p = o.Datos("Table2");
         const auto mapa = o.Mapa({1, 0});
         o.P(1)[mapa.pos + 5 + p / 8] |= static_cast<std::uint8_t>(1U << p % 8);
         return p;
       },
       "figura como libre, y la usa los datos de la tabla «Table2»"},
      {"a page that two tables claim", kIndices,
       [](Obra& o) {
         const auto p = o.Datos("Table2");
         mdb::PonerEnMapa(*o.paginas, o.Def("Table1").propias, p);
         return p;
       },
       "la reclaman dos: los datos de la tabla «Table1» y los datos de la tabla «Table2»"},
      {"a page with room that is not the table's", kIndices,
       [](Obra& o) {
         const auto p = o.Datos("Table2");
         mdb::PonerEnMapa(*o.paginas, o.Def("Table1").libres, p);
         return p;
       },
       "figura con espacio libre"},
      {"a map of an unknown kind", kIndices,
       [](Obra& o) {
         const auto mapa = o.Mapa(o.Def("Table1").propias);
         o.P(mapa.pagina)[mapa.pos] = 7;
         return mapa.pagina;
       },
       "no es un mapa de páginas"},
      {"a map that names a page beyond the end", kIndices,
       [](Obra& o) {
         const auto mapa = o.Mapa(o.Def("Table1").propias);
         o.P(mapa.pagina)[mapa.pos + 5 + 60] = 1;
         return mapa.pagina;
       },
       "un mapa nombra la página 480"},
      {"a map of pages that are not there", kIndices,
       [](Obra& o) {
         const auto mapa = o.Mapa(o.Def("Table1").propias);
         auto& p = o.P(mapa.pagina);
         std::fill_n(p.begin() + static_cast<std::ptrdiff_t>(mapa.pos), mapa.largo, std::uint8_t{0});
         p[mapa.pos] = 1;
         mdb::Poner32(p, mapa.pos + 1, 90000);
         return NumPagina{0};
       },
       "nombra la página 90000"},
      {"a map of bits on a page of another type", kIndices,
       [](Obra& o) {
         const auto mapa = o.Mapa(o.Def("Table1").propias);
         auto& p = o.P(mapa.pagina);
         std::fill_n(p.begin() + static_cast<std::ptrdiff_t>(mapa.pos), mapa.largo, std::uint8_t{0});
         p[mapa.pos] = 1;
         const auto datos = o.Datos("Table2");
         mdb::Poner32(p, mapa.pos + 1, datos);
         return datos;
       },
       "se esperaba una página de un mapa"},
      {"a map that serves twice", kIndices,
       [](Obra& o) {
         const auto otra = o.Def("Table2").propias;
         auto& p = o.P(o.Def("Table1").Pagina());
         mdb::Poner8(p, 55, otra.fila);
         mdb::Poner24(p, 56, otra.pagina);
         return otra.pagina;
       },
       "sirve a dos cosas a la vez"},
      {"page 1 without its map", kIndices,
       [](Obra& o) {
         o.P(1)[0] = 3;
         return NumPagina{1};
       },
       "mapa de páginas libres: no es una página de datos"},
  };
}

TEST(VerificarDanos, InPagesOfRowsAndMaps) { Plantar(DePaginas()); }

}  // namespace
