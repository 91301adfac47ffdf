#include "mdb/damage.h"

#include <algorithm>

namespace {

using namespace mdb_test;

// --- indexes ---

PageNumber Root(Workpiece& o) { return o.Def("Table1").reals[0].root; }
PageNumber Leaf(Workpiece& o, std::size_t k) { return o.Index(Root(o)).Child(k); }

std::vector<PlantedDamage> IndexPageDamages() {
  return {
      {"free space of an index page", kCompound,
       [](Workpiece& o) {
         const auto p = Leaf(o, 0);
         Add16(o.P(p), 2, 2);
         return p;
       },
       "bytes libres y tiene"},
      {"an index page of another type", kCompound,
       [](Workpiece& o) {
         const auto p = Leaf(o, 0);
         o.P(p)[0] = 5;
         return p;
       },
       "se esperaba una página de índice"},
      {"an index page of another table", kCompound,
       [](Workpiece& o) {
         const auto p = Leaf(o, 0);
         o.P(p)[4] ^= 2;
         return p;
       },
       "la página dice ser de la tabla de la página"},
      {"a leaf that says it is a node's level", kCompound,
       [](Workpiece& o) {
         const auto p = Leaf(o, 0);
         o.P(p)[26] = 3;
         return p;
       },
       "la hoja dice ser del nivel 3"},
      {"a leaf with a child", kCompound,
       [](Workpiece& o) {
         const auto p = Leaf(o, 0);
         o.P(p)[20] = 3;
         return p;
       },
       "la hoja tiene un hijo"},
      {"a common part longer than the first entry", kCompound,
       [](Workpiece& o) {
         const auto p = Leaf(o, 0);
         mdb::Put16(o.P(p), 24, 600);
         return p;
       },
       "más corta que la parte común"},
      {"a leaf without entries", kCompound,
       [](Workpiece& o) {
         const auto p = Leaf(o, 0);
         std::fill_n(o.P(p).begin() + kMask, 453, std::uint8_t{0});
         mdb::Put16(o.P(p), 2, 3616);
         return p;
       },
       "la hoja está vacía"},
      {"a link to the wrong next page", kCompound,
       [](Workpiece& o) {
         const auto p = Leaf(o, 0);
         mdb::Put32(o.P(p), 16, 0);
         return p;
       },
       "dice que la página siguiente es la 0"},
      {"a link to the wrong page before", kCompound,
       [](Workpiece& o) {
         const auto p = Leaf(o, 1);
         mdb::Put32(o.P(p), 12, 2);
         return p;
       },
       "dice que la página anterior es la 2"},
      {"a node whose key is not its child's last", kCompound,
       [](Workpiece& o) {
         const auto root = o.Index(Root(o));
         o.P(root.number)[kEntries + root.Whole(0).size() - 5] ^= 1;  // the row of the first entry
         return root.number;
       },
       "no es la última que hay debajo de ella"},
      {"a node that is its own child", kCompound,
       [](Workpiece& o) {
         const auto p = Root(o);
         mdb::Put32(o.P(p), 20, p);
         return p;
       },
       "está dos veces entre las páginas del índice"},
      {"one leaf twice in a node", kCompound,
       [](Workpiece& o) {
         mdb::Put32(o.P(Root(o)), 20, Leaf(o, 0));
         return Leaf(o, 0);
       },
       "está dos veces entre las páginas"},
      {"a node without children", kCompound,
       [](Workpiece& o) {
         auto& p = o.P(Root(o));
         std::fill_n(p.begin() + kMask, 453, std::uint8_t{0});
         mdb::Put32(p, 20, 0);
         return Root(o);
       },
       "el nodo no tiene hijos"},
      {"a child that is a page of data", kCompound,
       [](Workpiece& o) {
         mdb::Put32(o.P(Root(o)), 20, o.DataPage("Table1"));
         return o.DataPage("Table1");
       },
       "la reclaman dos: los datos de la tabla 'Table1' y el índice"},
      {"an index page that the index's map lacks", kCompound,
       [](Workpiece& o) {
         const auto p = Leaf(o, 0);
         mdb::RemoveFromMap(*o.pages, o.Def("Table1").reals[0].map, p);
         return p;
       },
       "su mapa no la nombra"},
      {"a page in the index's map that is not of the index", kCompound,
       [](Workpiece& o) {
         const auto p = mdb::ReservePage(*o.pages);
         mdb::AddToMap(*o.pages, o.Def("Table1").reals[0].map, p);
         return p;
       },
       "el índice no la usa"},
      {"an entry that ends beyond the page", kCompound,
       [](Workpiece& o) {
         const auto p = Leaf(o, 0);
         o.P(p)[479] |= 0x40;
         return p;
       },
       "no caben en la página"},
  };
}

std::vector<PlantedDamage> EntryDamages() {
  return {
      {"two entries out of order", kIndices,
       [](Workpiece& o) {
         const auto root = o.Index(o.Def("Table1").reals[1].root);
         const mdb::View a = root.Whole(0), b = root.Whole(1);
         EXPECT_EQ(a.size(), b.size());
         const Bytes first(a.begin(), a.end()), second(b.begin(), b.end());
         mdb::PutBytes(o.P(root.number), kEntries, second);
         mdb::PutBytes(o.P(root.number), kEntries + second.size(), first);
         return root.number;
       },
       "no está en su orden"},
      {"an entry of a row that is not there", kIndices,
       [](Workpiece& o) {
         const auto root = o.Index(o.Def("Table1").reals[1].root);
         o.P(root.number)[kEntries + root.Whole(0).size() - 1] = 99;
         return root.number;
       },
       "hay una entrada de la fila 99"},
      {"an entry of a deleted row", kIndices,
       [](Workpiece& o) {
         const RowId id = o.Rows("Table1")[1];
         mdb::Put16(o.P(id.page), Slot(id.row), mdb::U16(o.P(id.page), Slot(id.row)) | 0xC000);
         return o.Def("Table1").reals[1].root;
       },
       "que no existe"},
      {"a row without an entry", kIndices,
       [](Workpiece& o) {
         const auto e = o.Entries("Table1", 1).at(2);
         EXPECT_TRUE(o.Tree("Table1", 1).Delete(e.key, e.row));
         return e.row.page;
       },
       "no tiene entrada en el índice"},
      {"a row with two entries", kIndices,
       [](Workpiece& o) {
         auto e = o.Entries("Table1", 1).at(2);
         e.key.back() ^= 0x55;
         o.Tree("Table1", 1).Insert(e.key, e.row);
         return o.Def("Table1").reals[1].root;
       },
       "tiene más de una entrada"},
      {"a key that is not the row's", kIndices,
       [](Workpiece& o) {
         auto e = o.Entries("Table1", 1).back();
         o.Tree("Table1", 1).Delete(e.key, e.row);
         e.key.back() ^= 0x40;
         o.Tree("Table1", 1).Insert(e.key, e.row);
         return o.Def("Table1").reals[1].root;
       },
       "y la de sus valores es 7F"},
      {"a value that changed behind the index", kIndices,
       [](Workpiece& o) {
         const auto c = o.Cell("Table1", o.Rows("Table1")[0], "id");
         o.P(c.page)[c.pos + 1] ^= 0x10;
         return o.Def("Table1").reals[1].root;
       },
       "y la de sus valores es"},
      {"one key twice in a unique index", kIndices,
       [](Workpiece& o) {
         const auto v = o.Entries("Table1", 1);
         o.Tree("Table1", 1).Delete(v[1].key, v[1].row);
         o.Tree("Table1", 1).Insert(v[0].key, v[1].row);
         return o.Def("Table1").reals[1].root;
       },
       "el índice es único"},
  };
}

TEST(VerifyDamage, InPagesOfIndexes) { Plant(IndexPageDamages()); }

TEST(VerifyDamage, InEntriesOfIndexes) { Plant(EntryDamages()); }

}  // namespace
