#include "mdb/damage.h"

#include <algorithm>

namespace {

using namespace mdb_test;

// --- pages of rows ---

std::vector<PlantedDamage> PageDamages() {
  return {
      {"free space of a data page", kCompound,
       [](Workpiece& o) {
         const auto p = o.DataPage("Table1");
         Add16(o.P(p), 2, 1);
         return p;
       },
       "bytes libres y tiene"},
      {"an offset that rises", kCompound,
       [](Workpiece& o) {
         const auto p = o.DataPage("Table1");
         Add16(o.P(p), Slot(5), 300);
         return p;
       },
       "detrás de donde debe terminar"},
      {"a row inside the list of rows", kCompound,
       [](Workpiece& o) {
         const auto p = o.DataPage("Table1");
         mdb::Put16(o.P(p), Slot(5), 16);
         return p;
       },
       "dentro de la lista de filas"},
      {"more rows than a page holds", kCompound,
       [](Workpiece& o) {
         const auto p = o.DataPage("Table1");
         mdb::Put16(o.P(p), 12, 3000);
         return p;
       },
       "que no caben"},
      {"a data page of another type", kCompound,
       [](Workpiece& o) {
         const auto p = o.DataPage("Table1", 1);
         o.P(p)[0] = 4;
         return p;
       },
       "es de otra clase (4)"},
      {"a data page of another table", kCompound,
       [](Workpiece& o) {
         const auto p = o.DataPage("Table1", 1);
         o.P(p)[4] ^= 1;
         return p;
       },
       "dice ser de la página"},
      {"a page of long values among the data", kIndices,
       [](Workpiece& o) {
         const auto p = o.DataPage("Table1");
         mdb::Put32(o.P(p), 4, mdb::kLongValuesOwner);
         return p;
       },
       "es de valores largos"},
      {"free space of a page of maps", kIndices,
       [](Workpiece& o) {
         const auto p = o.Def("Table1").owned_pages.page;
         Add16(o.P(p), 2, -1);
         return p;
       },
       "mapas de páginas: dice tener"},
      {"a used page in the map of free pages", kIndices,
       [](Workpiece& o) {
         const auto p = o.DataPage("Table2");
         const auto map = o.Map({1, 0});
         o.P(1)[map.pos + 5 + p / 8] |= static_cast<std::uint8_t>(1U << p % 8);
         return p;
       },
       "figura como libre, y la usa los datos de la tabla 'Table2'"},
      {"a page that two tables claim", kIndices,
       [](Workpiece& o) {
         const auto p = o.DataPage("Table2");
         mdb::AddToMap(*o.pages, o.Def("Table1").owned_pages, p);
         return p;
       },
       "la reclaman dos: los datos de la tabla 'Table1' y los datos de la tabla 'Table2'"},
      {"a page with room that is not the table's", kIndices,
       [](Workpiece& o) {
         const auto p = o.DataPage("Table2");
         mdb::AddToMap(*o.pages, o.Def("Table1").free_pages, p);
         return p;
       },
       "figura con espacio libre"},
      {"a map of an unknown kind", kIndices,
       [](Workpiece& o) {
         const auto map = o.Map(o.Def("Table1").owned_pages);
         o.P(map.page)[map.pos] = 7;
         return map.page;
       },
       "no es un mapa de páginas"},
      {"a map that names a page beyond the end", kIndices,
       [](Workpiece& o) {
         const auto map = o.Map(o.Def("Table1").owned_pages);
         o.P(map.page)[map.pos + 5 + 60] = 1;
         return map.page;
       },
       "un mapa nombra la página 480"},
      {"a map of pages that are not there", kIndices,
       [](Workpiece& o) {
         const auto map = o.Map(o.Def("Table1").owned_pages);
         auto& p = o.P(map.page);
         std::fill_n(p.begin() + static_cast<std::ptrdiff_t>(map.pos), map.length, std::uint8_t{0});
         p[map.pos] = 1;
         mdb::Put32(p, map.pos + 1, 90000);
         return PageNumber{0};
       },
       "nombra la página 90000"},
      {"a map of bits on a page of another type", kIndices,
       [](Workpiece& o) {
         const auto map = o.Map(o.Def("Table1").owned_pages);
         auto& p = o.P(map.page);
         std::fill_n(p.begin() + static_cast<std::ptrdiff_t>(map.pos), map.length, std::uint8_t{0});
         p[map.pos] = 1;
         const auto data = o.DataPage("Table2");
         mdb::Put32(p, map.pos + 1, data);
         return data;
       },
       "se esperaba una página de un mapa"},
      {"a map that serves twice", kIndices,
       [](Workpiece& o) {
         const auto other = o.Def("Table2").owned_pages;
         auto& p = o.P(o.Def("Table1").Page());
         mdb::Put8(p, 55, other.row);
         mdb::Put24(p, 56, other.page);
         return other.page;
       },
       "sirve a dos cosas a la vez"},
      {"page 1 without its map", kIndices,
       [](Workpiece& o) {
         o.P(1)[0] = 3;
         return PageNumber{1};
       },
       "mapa de páginas libres: no es una página de datos"},
  };
}

TEST(VerifyDamage, InPagesOfRowsAndMaps) { Plant(PageDamages()); }

}  // namespace
