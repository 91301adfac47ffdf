#include "mdb/damage.h"

#include <algorithm>

namespace {

using namespace mdb_test;

// --- indexes ---

NumPagina Raiz(Obra& o) { return o.Def("Table1").reales[0].raiz; }
NumPagina Hoja(Obra& o, std::size_t k) { return o.Indice(Raiz(o)).Hijo(k); }

std::vector<Dano> DePaginasDeIndice() {
  return {
      {"free space of an index page", kCompuesto,
       [](Obra& o) {
         const auto p = Hoja(o, 0);
         Sumar16(o.P(p), 2, 2);
         return p;
       },
       "bytes libres y tiene"},
      {"an index page of another type", kCompuesto,
       [](Obra& o) {
         const auto p = Hoja(o, 0);
         o.P(p)[0] = 5;
         return p;
       },
       "se esperaba una página de índice"},
      {"an index page of another table", kCompuesto,
       [](Obra& o) {
         const auto p = Hoja(o, 0);
         o.P(p)[4] ^= 2;
         return p;
       },
       "la página dice ser de la tabla de la página"},
      {"a leaf that says it is a node's level", kCompuesto,
       [](Obra& o) {
         const auto p = Hoja(o, 0);
         o.P(p)[26] = 3;
         return p;
       },
       "la hoja dice ser del nivel 3"},
      {"a leaf with a child", kCompuesto,
       [](Obra& o) {
         const auto p = Hoja(o, 0);
         o.P(p)[20] = 3;
         return p;
       },
       "la hoja tiene un hijo"},
      {"a common part longer than the first entry", kCompuesto,
       [](Obra& o) {
         const auto p = Hoja(o, 0);
         mdb::Poner16(o.P(p), 24, 600);
         return p;
       },
       "más corta que la parte común"},
      {"a leaf without entries", kCompuesto,
       [](Obra& o) {
         const auto p = Hoja(o, 0);
         std::fill_n(o.P(p).begin() + kMascara, 453, std::uint8_t{0});
         mdb::Poner16(o.P(p), 2, 3616);
         return p;
       },
       "la hoja está vacía"},
      {"a link to the wrong next page", kCompuesto,
       [](Obra& o) {
         const auto p = Hoja(o, 0);
         mdb::Poner32(o.P(p), 16, 0);
         return p;
       },
       "dice que la página siguiente es la 0"},
      {"a link to the wrong page before", kCompuesto,
       [](Obra& o) {
         const auto p = Hoja(o, 1);
         mdb::Poner32(o.P(p), 12, 2);
         return p;
       },
       "dice que la página anterior es la 2"},
      {"a node whose key is not its child's last", kCompuesto,
       [](Obra& o) {
         const auto raiz = o.Indice(Raiz(o));
         o.P(raiz.numero)[kEntradas + raiz.Completa(0).size() - 5] ^= 1;  // the row of the first entry
         return raiz.numero;
       },
       "no es la última que hay debajo de ella"},
      {"a node that is its own child", kCompuesto,
       [](Obra& o) {
         const auto p = Raiz(o);
         mdb::Poner32(o.P(p), 20, p);
         return p;
       },
       "está dos veces entre las páginas del índice"},
      {"one leaf twice in a node", kCompuesto,
       [](Obra& o) {
         mdb::Poner32(o.P(Raiz(o)), 20, Hoja(o, 0));
         return Hoja(o, 0);
       },
       "está dos veces entre las páginas"},
      {"a node without children", kCompuesto,
       [](Obra& o) {
         auto& p = o.P(Raiz(o));
         std::fill_n(p.begin() + kMascara, 453, std::uint8_t{0});
         mdb::Poner32(p, 20, 0);
         return Raiz(o);
       },
       "el nodo no tiene hijos"},
      {"a child that is a page of data", kCompuesto,
       [](Obra& o) {
         mdb::Poner32(o.P(Raiz(o)), 20, o.Datos("Table1"));
         return o.Datos("Table1");
       },
       "la reclaman dos: los datos de la tabla «Table1» y el índice"},
      {"an index page that the index's map lacks", kCompuesto,
       [](Obra& o) {
         const auto p = Hoja(o, 0);
         mdb::QuitarDeMapa(*o.paginas, o.Def("Table1").reales[0].mapa, p);
         return p;
       },
       "su mapa no la nombra"},
      {"a page in the index's map that is not of the index", kCompuesto,
       [](Obra& o) {
         const auto p = mdb::ReservarPagina(*o.paginas);
         mdb::PonerEnMapa(*o.paginas, o.Def("Table1").reales[0].mapa, p);
         return p;
       },
       "el índice no la usa"},
      {"an entry that ends beyond the page", kCompuesto,
       [](Obra& o) {
         const auto p = Hoja(o, 0);
         o.P(p)[479] |= 0x40;
         return p;
       },
       "no caben en la página"},
  };
}

std::vector<Dano> DeEntradas() {
  return {
      {"two entries out of order", kIndices,
       [](Obra& o) {
         const auto raiz = o.Indice(o.Def("Table1").reales[1].raiz);
         const mdb::Vista a = raiz.Completa(0), b = raiz.Completa(1);
         EXPECT_EQ(a.size(), b.size());
         const Bytes primera(a.begin(), a.end()), segunda(b.begin(), b.end());
         mdb::PonerBytes(o.P(raiz.numero), kEntradas, segunda);
         mdb::PonerBytes(o.P(raiz.numero), kEntradas + segunda.size(), primera);
         return raiz.numero;
       },
       "no está en su orden"},
      {"an entry of a row that is not there", kIndices,
       [](Obra& o) {
         const auto raiz = o.Indice(o.Def("Table1").reales[1].raiz);
         o.P(raiz.numero)[kEntradas + raiz.Completa(0).size() - 1] = 99;
         return raiz.numero;
       },
       "hay una entrada de la fila 99"},
      {"an entry of a deleted row", kIndices,
       [](Obra& o) {
         const IdFila id = o.Filas("Table1")[1];
         mdb::Poner16(o.P(id.pagina), Ranura(id.fila), mdb::U16(o.P(id.pagina), Ranura(id.fila)) | 0xC000);
         return o.Def("Table1").reales[1].raiz;
       },
       "que no existe"},
      {"a row without an entry", kIndices,
       [](Obra& o) {
         const auto e = o.Entradas("Table1", 1).at(2);
         EXPECT_TRUE(o.Arbol("Table1", 1).Borrar(e.clave, e.fila));
         return e.fila.pagina;
       },
       "no tiene entrada en el índice"},
      {"a row with two entries", kIndices,
       [](Obra& o) {
         auto e = o.Entradas("Table1", 1).at(2);
         e.clave.back() ^= 0x55;
         o.Arbol("Table1", 1).Insertar(e.clave, e.fila);
         return o.Def("Table1").reales[1].raiz;
       },
       "tiene más de una entrada"},
      {"a key that is not the row's", kIndices,
       [](Obra& o) {
         auto e = o.Entradas("Table1", 1).back();
         o.Arbol("Table1", 1).Borrar(e.clave, e.fila);
         e.clave.back() ^= 0x40;
         o.Arbol("Table1", 1).Insertar(e.clave, e.fila);
         return o.Def("Table1").reales[1].raiz;
       },
       "y la de sus valores es 7F"},
      {"a value that changed behind the index", kIndices,
       [](Obra& o) {
         const auto c = o.Celda("Table1", o.Filas("Table1")[0], "id");
         o.P(c.pagina)[c.pos + 1] ^= 0x10;
         return o.Def("Table1").reales[1].raiz;
       },
       "y la de sus valores es"},
      {"one key twice in a unique index", kIndices,
       [](Obra& o) {
         const auto v = o.Entradas("Table1", 1);
         o.Arbol("Table1", 1).Borrar(v[1].clave, v[1].fila);
         o.Arbol("Table1", 1).Insertar(v[0].clave, v[1].fila);
         return o.Def("Table1").reales[1].raiz;
       },
       "el índice es único"},
  };
}

TEST(VerificarDanos, InPagesOfIndexes) { Plantar(DePaginasDeIndice()); }

TEST(VerificarDanos, InEntriesOfIndexes) { Plantar(DeEntradas()); }

}  // namespace
