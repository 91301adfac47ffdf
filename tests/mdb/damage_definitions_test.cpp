#include "mdb/damage.h"

#include <algorithm>

#include "mdb/catalog/catalog.h"

namespace {

using namespace mdb_test;

// --- definitions ---

std::vector<PlantedDamage> DefinitionDamages() {
  return {
      {"length of a definition", kIndices,
       [](Workpiece& o) {
         const auto p = o.Def("Table1").Page();
         o.P(p)[8] ^= 4;
         return p;
       },
       "la definición dice medir"},
      {"a column of a type of later versions", kIndices,
       [](Workpiece& o) {
         const auto p = o.Def("Table1").Page();
         o.P(p)[o.ColumnPos("Table1", 0)] = 19;
         return p;
       },
       "es de un tipo que su versión no tiene (19)"},
      {"a table without a map", kIndices,
       [](Workpiece& o) {
         const auto p = o.Def("Table1").Page();
         mdb::Put32(o.P(p), 59, 0);
         return p;
       },
       "la tabla no tiene los mapas de sus páginas"},
      {"a constant of a definition", kIndices,
       [](Workpiece& o) {
         const auto p = o.Def("Table1").Page();
         o.P(p)[12] ^= 1;
         return p;
       },
       "no tiene las marcas"},
      {"a constant of an index", kIndices,
       [](Workpiece& o) {
         const auto p = o.Def("Table1").Page();
         o.P(p)[o.RealPos("Table1", 1)] ^= 1;
         return p;
       },
       "no tiene las marcas"},
      {"two columns of one number", kIndices,
       [](Workpiece& o) {
         const auto d = o.Def("Table1");
         mdb::Put16(o.P(d.Page()), o.ColumnPos("Table1", 1) + 5, d.columns[0].number);
         return d.Page();
       },
       "que ya tiene otra"},
      {"a column beyond the table's count", kIndices,
       [](Workpiece& o) {
         const auto d = o.Def("Table1");
         mdb::Put16(o.P(d.Page()), o.ColumnPos("Table1", 1) + 5, 90);
         return d.Page();
       },
       "tiene el número 90, y la tabla llega a"},
      {"two columns of one name", kIndices,
       [](Workpiece& o) {
         const auto d = o.Def("Table1");
         auto& p = o.P(d.Page());
         std::size_t pos = o.ColumnPos("Table1", d.columns.size());
         std::vector<std::size_t> names;  // by length
         for (std::size_t i = 0; i < d.columns.size(); ++i) {
           const auto length = mdb::U16(p, pos);
           for (const auto other : names)
             if (mdb::U16(p, other) == length) {
               const Bytes copy(p.begin() + static_cast<std::ptrdiff_t>(other),
                                p.begin() + static_cast<std::ptrdiff_t>(other) + 2 + length);
               mdb::PutBytes(p, pos, copy);
               return d.Page();
             }
           names.push_back(pos);
           pos += 2U + length;
         }
         ADD_FAILURE() << "no two names of one length";
         return d.Page();
       },
       "hay dos columnas con el nombre"},
      {"a variable column without its place", kIndices,
       [](Workpiece& o) {
         const auto d = o.Def("MSysObjects");
         std::size_t k = 0;
         while (d.columns[k].IsFixed()) ++k;
         mdb::Put16(o.P(2), o.ColumnPos("MSysObjects", k) + 7, 60);
         return PageNumber{2};
       },
       "entre las de largo variable, que no hay"},
      {"a definition of another type", kIndices,
       [](Workpiece& o) {
         const auto p = o.Def("Table3").Page();
         o.P(p)[0] = 1;
         return p;
       },
       "tabla 'Table3': no es una definición de tabla"},
      {"a definition that comes back", kTwoPages,
       [](Workpiece& o) {
         const auto d = o.Def("Larga");
         mdb::Put32(o.P(d.pages[1]), 4, d.pages[0]);
         return d.pages[0];
       },
       "vuelve sobre sus páginas"},
      {"a definition that goes on beyond the end", kTwoPages,
       [](Workpiece& o) {
         const auto d = o.Def("Larga");
         mdb::Put32(o.P(d.pages[1]), 4, 5000000);
         return PageNumber{5000000};
       },
       "tabla 'Larga'"},
      {"a definition with a column of no end", kIndices,
       [](Workpiece& o) {
         const auto d = o.Def("Table3");
         mdb::Put16(o.P(d.Page()), 45, 200);
         return d.Page();
       },
       "tabla 'Table3'"},
      {"an index over a column that is not there", kIndices,
       [](Workpiece& o) {
         const auto d = o.Def("Table1");
         mdb::Put16(o.P(d.Page()), o.RealPos("Table1", 0) + 4, 77);
         return d.Page();
       },
       "un índice nombra la columna número 77"},
      {"an index of a relationship with a table that is not there", kIndices,
       [](Workpiece& o) {
         const auto d = o.Def("Table1");
         std::size_t k = 0;
         while (d.logicals[k].side == 0) ++k;
         mdb::Put32(o.P(d.Page()), o.LogicalPos("Table1", k) + 4 + 13, 9999);
         return d.Page();
       },
       "de la página 9999, que no existe"},
      {"an index of a relationship without its other one", kIndices,
       [](Workpiece& o) {
         const auto d = o.Def("Table1");
         std::size_t k = 0;
         while (d.logicals[k].side == 0) ++k;
         mdb::Put32(o.P(d.Page()), o.LogicalPos("Table1", k) + 4 + 9, 44);
         return d.Page();
       },
       "que no tiene el índice que va con él"},
  };
}

// --- catalog, relationships, queries ---

std::vector<PlantedDamage> CatalogDamages() {
  const auto object = [](Workpiece& o, const char* name, const char* column) {
    return o.Cell("MSysObjects", o.Where("MSysObjects", "Name", std::string(name)), column);
  };
  return {
      {"a table whose definition is beyond the end", kIndices,
       [object](Workpiece& o) {
         const auto c = object(o, "Table3", "Id");
         mdb::Put32(o.P(c.page), c.pos, 123456);
         return c.page;
       },
       "la tabla 'Table3' dice tener su definición en la página 123456"},
      {"a table whose definition is a page of data", kIndices,
       [object](Workpiece& o) {
         const auto c = object(o, "Table3", "Id");
         const auto p = o.DataPage("Table1");
         mdb::Put32(o.P(c.page), c.pos, p);
         return p;
       },
       "tabla 'Table3': no es una definición de tabla"},
      {"two objects of one identity", kIndices,
       [object](Workpiece& o) {
         const auto c = object(o, "Table3", "Id");
         mdb::Put32(o.P(c.page), c.pos, o.Def("Table2").Page());
         return c.page;
       },
       "tienen el mismo identificador"},
      {"two objects of one name", kIndices,
       [object](Workpiece& o) {
         const auto a = object(o, "Table2", "Name"), b = object(o, "Table3", "Name");
         const auto image = o.pages->Read(a.page);
         mdb::PutBytes(o.P(b.page), b.pos, mdb::Slice(*image, a.pos, a.length));
         return b.page;
       },
       "hay dos objetos con el nombre 'Table2'"},
      {"a system table that the catalog lost", kIndices,
       [object](Workpiece& o) {
         const auto c = object(o, "MSysACEs", "Type");
         mdb::Put16(o.P(c.page), c.pos, 3);
         return PageNumber{3};
       },
       "no está en el catálogo"},
      {"the catalog itself", kIndices,
       [](Workpiece& o) {
         o.P(2)[0] = 0;
         return PageNumber{2};
       },
       "tabla 'MSysObjects': no es una definición de tabla"},
      {"a row without the one that a relationship asks for", kIndices,
       [](Workpiece& o) {
         const auto relationship = mdb::SystemCatalog(*o.pages).Relationships();
         const auto r = std::find_if(relationship.begin(), relationship.end(),
                                     [](const auto& x) { return x.name == "Table2Table1"; });
         for (const RowId id : o.Rows(r->table)) {
           const auto c = o.Cell(r->table, id, r->columns[0]);
           mdb::Put32(o.P(c.page), c.pos, 777);
           return c.page;
         }
         return PageNumber{0};
       },
       "relación 'Table2Table1': la fila"},
      {"a relationship with a table that is not there", kIndices,
       [](Workpiece& o) {
         const auto c =
             o.Cell("MSysRelationships",
                    o.Where("MSysRelationships", "szRelationship", std::string("Table2Table1")), "szObject");
         o.P(c.page)[c.pos + c.length - 2] = 'Z';  // two bytes a character
         return PageNumber{0};
       },
       "'Table2Table1': nombra la tabla 'TableZ', que no existe"},
      {"a relationship with a column that is not there", kIndices,
       [](Workpiece& o) {
         const auto c =
             o.Cell("MSysRelationships",
                    o.Where("MSysRelationships", "szRelationship", std::string("Table2Table1")), "szColumn");
         o.P(c.page)[c.pos + c.length - 2] = 'Z';  // two bytes a character
         return PageNumber{0};
       },
       "'Table2Table1': nombra la columna"},
      {"a query without its last row", kQueries,
       [](Workpiece& o) {
         const auto c =
             o.Cell("MSysQueries", o.Where("MSysQueries", "Attribute", std::int64_t{255}), "Attribute");
         o.P(c.page)[c.pos] = 254;
         return PageNumber{0};
       },
       "no tiene una fila de comienzo y una de fin"},
      {"a query without rows", kQueries,
       [object](Workpiece& o) {
         const auto c = object(o, "De todas", "Id");
         Add16(o.P(c.page), c.pos, 1000);
         return PageNumber{0};
       },
       "consulta 'De todas': el catálogo la tiene, y no están sus filas"},
  };
}

TEST(VerifyDamage, InDefinitions) { Plant(DefinitionDamages()); }

TEST(VerifyDamage, InTheCatalogItsRelationshipsAndQueries) { Plant(CatalogDamages()); }

}  // namespace
