#include "mdb/damage.h"

#include <algorithm>

#include "mdb/catalog/catalog.h"

namespace {

using namespace mdb_test;

// --- definitions ---

std::vector<Dano> DeDefiniciones() {
  return {
      {"length of a definition", kIndices,
       [](Obra& o) {
         const auto p = o.Def("Table1").Pagina();
         o.P(p)[8] ^= 4;
         return p;
       },
       "la definición dice medir"},
      {"a column of a type of later versions", kIndices,
       [](Obra& o) {
         const auto p = o.Def("Table1").Pagina();
         o.P(p)[o.PosColumna("Table1", 0)] = 19;
         return p;
       },
       "es de un tipo que su versión no tiene (19)"},
      {"a table without a map", kIndices,
       [](Obra& o) {
         const auto p = o.Def("Table1").Pagina();
         mdb::Poner32(o.P(p), 59, 0);
         return p;
       },
       "la tabla no tiene los mapas de sus páginas"},
      {"a constant of a definition", kIndices,
       [](Obra& o) {
         const auto p = o.Def("Table1").Pagina();
         o.P(p)[12] ^= 1;
         return p;
       },
       "no tiene las marcas"},
      {"a constant of an index", kIndices,
       [](Obra& o) {
         const auto p = o.Def("Table1").Pagina();
         o.P(p)[o.PosReal("Table1", 1)] ^= 1;
         return p;
       },
       "no tiene las marcas"},
      {"two columns of one number", kIndices,
       [](Obra& o) {
         const auto d = o.Def("Table1");
         mdb::Poner16(o.P(d.Pagina()), o.PosColumna("Table1", 1) + 5, d.columnas[0].numero);
         return d.Pagina();
       },
       "que ya tiene otra"},
      {"a column beyond the table's count", kIndices,
       [](Obra& o) {
         const auto d = o.Def("Table1");
         mdb::Poner16(o.P(d.Pagina()), o.PosColumna("Table1", 1) + 5, 90);
         return d.Pagina();
       },
       "tiene el número 90, y la tabla llega a"},
      {"two columns of one name", kIndices,
       [](Obra& o) {
         const auto d = o.Def("Table1");
         auto& p = o.P(d.Pagina());
         std::size_t pos = o.PosColumna("Table1", d.columnas.size());
         std::vector<std::size_t> nombres;  // by length
         for (std::size_t i = 0; i < d.columnas.size(); ++i) {
           const auto largo = mdb::U16(p, pos);
           for (const auto otro : nombres)
             if (mdb::U16(p, otro) == largo) {
               const Bytes copia(p.begin() + static_cast<std::ptrdiff_t>(otro),
                                 p.begin() + static_cast<std::ptrdiff_t>(otro) + 2 + largo);
               mdb::PonerBytes(p, pos, copia);
               return d.Pagina();
             }
           nombres.push_back(pos);
           pos += 2U + largo;
         }
         ADD_FAILURE() << "no two names of one length";
         return d.Pagina();
       },
       "hay dos columnas con el nombre"},
      {"a variable column without its place", kIndices,
       [](Obra& o) {
         const auto d = o.Def("MSysObjects");
         std::size_t k = 0;
         while (d.columnas[k].Fija()) ++k;
         mdb::Poner16(o.P(2), o.PosColumna("MSysObjects", k) + 7, 60);
         return NumPagina{2};
       },
       "entre las de largo variable, que no hay"},
      {"a definition of another type", kIndices,
       [](Obra& o) {
         const auto p = o.Def("Table3").Pagina();
         o.P(p)[0] = 1;
         return p;
       },
       "tabla «Table3»: no es una definición de tabla"},
      {"a definition that comes back", kDosPaginas,
       [](Obra& o) {
         const auto d = o.Def("Larga");
         mdb::Poner32(o.P(d.paginas[1]), 4, d.paginas[0]);
         return d.paginas[0];
       },
       "vuelve sobre sus páginas"},
      {"a definition that goes on beyond the end", kDosPaginas,
       [](Obra& o) {
         const auto d = o.Def("Larga");
         mdb::Poner32(o.P(d.paginas[1]), 4, 5000000);
         return NumPagina{5000000};
       },
       "tabla «Larga»"},
      {"a definition with a column of no end", kIndices,
       [](Obra& o) {
         const auto d = o.Def("Table3");
         mdb::Poner16(o.P(d.Pagina()), 45, 200);
         return d.Pagina();
       },
       "tabla «Table3»"},
      {"an index over a column that is not there", kIndices,
       [](Obra& o) {
         const auto d = o.Def("Table1");
         mdb::Poner16(o.P(d.Pagina()), o.PosReal("Table1", 0) + 4, 77);
         return d.Pagina();
       },
       "un índice nombra la columna número 77"},
      {"an index of a relationship with a table that is not there", kIndices,
       [](Obra& o) {
         const auto d = o.Def("Table1");
         std::size_t k = 0;
         while (d.logicos[k].lado == 0) ++k;
         mdb::Poner32(o.P(d.Pagina()), o.PosLogico("Table1", k) + 4 + 13, 9999);
         return d.Pagina();
       },
       "de la página 9999, que no existe"},
      {"an index of a relationship without its other one", kIndices,
       [](Obra& o) {
         const auto d = o.Def("Table1");
         std::size_t k = 0;
         while (d.logicos[k].lado == 0) ++k;
         mdb::Poner32(o.P(d.Pagina()), o.PosLogico("Table1", k) + 4 + 9, 44);
         return d.Pagina();
       },
       "que no tiene el índice que va con él"},
  };
}

// --- catalog, relationships, queries ---

std::vector<Dano> DeCatalogo() {
  const auto objeto = [](Obra& o, const char* nombre, const char* columna) {
    return o.Celda("MSysObjects", o.Donde("MSysObjects", "Name", std::string(nombre)), columna);
  };
  return {
      {"a table whose definition is beyond the end", kIndices,
       [objeto](Obra& o) {
         const auto c = objeto(o, "Table3", "Id");
         mdb::Poner32(o.P(c.pagina), c.pos, 123456);
         return c.pagina;
       },
       "la tabla «Table3» dice tener su definición en la página 123456"},
      {"a table whose definition is a page of data", kIndices,
       [objeto](Obra& o) {
         const auto c = objeto(o, "Table3", "Id");
         const auto p = o.Datos("Table1");
         mdb::Poner32(o.P(c.pagina), c.pos, p);
         return p;
       },
       "tabla «Table3»: no es una definición de tabla"},
      {"two objects of one identity", kIndices,
       [objeto](Obra& o) {
         const auto c = objeto(o, "Table3", "Id");
         mdb::Poner32(o.P(c.pagina), c.pos, o.Def("Table2").Pagina());
         return c.pagina;
       },
       "tienen el mismo identificador"},
      {"two objects of one name", kIndices,
       [objeto](Obra& o) {
         const auto a = objeto(o, "Table2", "Name"), b = objeto(o, "Table3", "Name");
         const auto imagen = o.paginas->Leer(a.pagina);
         mdb::PonerBytes(o.P(b.pagina), b.pos, mdb::Trozo(*imagen, a.pos, a.largo));
         return b.pagina;
       },
       "hay dos objetos con el nombre «Table2»"},
      {"a system table that the catalog lost", kIndices,
       [objeto](Obra& o) {
         const auto c = objeto(o, "MSysACEs", "Type");
         mdb::Poner16(o.P(c.pagina), c.pos, 3);
         return NumPagina{3};
       },
       "no está en el catálogo"},
      {"the catalog itself", kIndices,
       [](Obra& o) {
         o.P(2)[0] = 0;
         return NumPagina{2};
       },
       "tabla «MSysObjects»: no es una definición de tabla"},
      {"a row without the one that a relationship asks for", kIndices,
       [](Obra& o) {
         const auto relacion = mdb::Catalogo(*o.paginas).Relaciones();
         const auto r = std::find_if(relacion.begin(), relacion.end(),
                                     [](const auto& x) { return x.nombre == "Table2Table1"; });
         for (const IdFila id : o.Filas(r->tabla)) {
           const auto c = o.Celda(r->tabla, id, r->columnas[0]);
           mdb::Poner32(o.P(c.pagina), c.pos, 777);
           return c.pagina;
         }
         return NumPagina{0};
       },
       "relación «Table2Table1»: la fila"},
      {"a relationship with a table that is not there", kIndices,
       [](Obra& o) {
         const auto c =
             o.Celda("MSysRelationships",
                     o.Donde("MSysRelationships", "szRelationship", std::string("Table2Table1")), "szObject");
         o.P(c.pagina)[c.pos + c.largo - 2] = 'Z';  // two bytes a character
         return NumPagina{0};
       },
       "«Table2Table1»: nombra la tabla «TableZ», que no existe"},
      {"a relationship with a column that is not there", kIndices,
       [](Obra& o) {
         const auto c =
             o.Celda("MSysRelationships",
                     o.Donde("MSysRelationships", "szRelationship", std::string("Table2Table1")), "szColumn");
         o.P(c.pagina)[c.pos + c.largo - 2] = 'Z';  // two bytes a character
         return NumPagina{0};
       },
       "«Table2Table1»: nombra la columna"},
      {"a query without its last row", kConsultas,
       [](Obra& o) {
         const auto c =
             o.Celda("MSysQueries", o.Donde("MSysQueries", "Attribute", std::int64_t{255}), "Attribute");
         o.P(c.pagina)[c.pos] = 254;
         return NumPagina{0};
       },
       "no tiene una fila de comienzo y una de fin"},
      {"a query without rows", kConsultas,
       [objeto](Obra& o) {
         const auto c = objeto(o, "De todas", "Id");
         Sumar16(o.P(c.pagina), c.pos, 1000);
         return NumPagina{0};
       },
       "consulta «De todas»: el catálogo la tiene, y no están sus filas"},
  };
}

TEST(VerificarDanos, InDefinitions) { Plantar(DeDefiniciones()); }

TEST(VerificarDanos, InTheCatalogItsRelationshipsAndQueries) { Plantar(DeCatalogo()); }

}  // namespace
