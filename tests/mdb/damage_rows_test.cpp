#include "mdb/damage.h"

#include <algorithm>

namespace {

using namespace mdb_test;

// --- rows and long values ---

std::vector<RowId> MovedRows(Workpiece& o) {
  std::vector<RowId> ids;
  for (const RowId id : o.Rows("Table1"))
    if (mdb::ReadSlot(id.page, *o.pages->Read(id.page), id.row).marks == mdb::Slot::kMoved) ids.push_back(id);
  return ids;
}

// Rows of the catalog with a long value of its own row.
std::vector<RowId> RowsWithLong(Workpiece& o) {
  std::vector<RowId> ids;
  const auto d = o.Def("MSysObjects");
  const auto i = d.ByName("LvProp").value();
  for (const RowId id : o.Rows("MSysObjects")) {
    const auto f = mdb::FindRow(*o.pages, d, id).value();
    const auto cell = mdb::SplitRow(o.pages->Header(), d, f.bytes)[i];
    if (cell && (mdb::U32(*cell, 0) & 0x80000000U) == 0) ids.push_back(id);
  }
  EXPECT_GE(ids.size(), 2U);
  return ids;
}

std::vector<PlantedDamage> RowDamages() {
  return {
      {"a row with more columns than its table", kIndices,
       [](Workpiece& o) {
         const auto f = o.Row("Table1", o.Rows("Table1")[1]);
         Add16(o.P(f.page), f.pos, 40);
         return f.page;
       },
       "la fila dice tener"},
      {"variable columns that overlap", kIndices,
       [](Workpiece& o) {
         const auto f = o.Row("MSysObjects", o.Rows("MSysObjects")[3]);
         auto& p = o.P(f.page);  // 17 columns: three bytes of mask, two of the count, then the offsets
         Add16(p, f.pos + f.length - 3 - 4, 500);
         return f.page;
       },
       "se pisan"},
      {"a count of variable columns that is too large", kIndices,
       [](Workpiece& o) {
         const auto f = o.Row("MSysObjects", o.Rows("MSysObjects")[3]);
         mdb::Put16(o.P(f.page), f.pos + f.length - 3 - 2, 900);
         return f.page;
       },
       "columnas de largo variable"},
      {"a text longer than its column", kIndices,
       [](Workpiece& o) {
         const auto d = o.Def("MSysObjects");
         const auto i = d.ByName("Name").value();
         mdb::Put16(o.P(2), o.ColumnPos("MSysObjects", i) + 23, 8);
         return o.DataPage("MSysObjects");
       },
       "el valor de la columna 'Name' es más largo que la columna"},
      {"a text that ends inside a letter", kIndices,
       [](Workpiece& o) {
         const auto f = o.Row("MSysRelationships", o.Rows("MSysRelationships")[0]);
         auto& p = o.P(f.page);  // one byte of mask, two of the count, then the offsets, the end last
         const auto table = f.pos + f.length - 1 - 4;
         Add16(p, table - 2U * mdb::U16(p, table + 2), -1);
         return f.page;
       },
       "es un texto cortado por la mitad de una letra"},
      {"a Null in a key that may have none", kIndices,
       [](Workpiece& o) {
         const auto f = o.Row("Table1", o.Rows("Table1")[0]);
         const auto d = o.Def("Table1");
         const auto number = d.columns[d.ByName("id").value()].number;
         o.P(f.page)[f.pos + f.length - 1] &= static_cast<std::uint8_t>(~(1U << number));
         return d.reals[1].root;
       },
       "que lo exige"},
      {"a number of another width among the variable columns", kIndices,
       [](Workpiece& o) {
         const auto d = o.Def("MSysObjects");
         const auto p = o.DataPage("MSysObjects");
         o.P(2)[o.ColumnPos("MSysObjects", d.ByName("Name").value())] = 5;  // Currency, 8 bytes
         return p;
       },
       "el valor de la columna 'Name' no mide lo que su tipo"},
      {"a row that is cut", kIndices,
       [](Workpiece& o) {
         const auto id = o.Rows("Table1")[0];
         auto& p = o.P(id.page);
         mdb::Put16(p, Slot(id.row), static_cast<std::uint16_t>(mdb::U16(p, Slot(id.row)) + 8));
         return id.page;
       },
       "tabla 'Table1'"},
      {"a moved row that leads to a row that is none's", kMoved,
       [](Workpiece& o) {
         const RowId id = MovedRows(o)[0];
         auto& p = o.P(id.page);
         const auto r = mdb::ReadSlot(id.page, p, id.row);
         p[r.from] = 0;
         mdb::Put24(p, r.from + 1, o.DataPage("Table1"));
         return PageNumber{0};
       },
       "una fila movida no está donde debe"},
      {"two moved rows in one place", kMoved,
       [](Workpiece& o) {
         const auto ids = MovedRows(o);
         const auto a = mdb::ReadSlot(ids[0].page, *o.pages->Read(ids[0].page), ids[0].row);
         const auto b = mdb::ReadSlot(ids[1].page, *o.pages->Read(ids[1].page), ids[1].row);
         const auto pointer = mdb::U32(*o.pages->Read(ids[0].page), a.from);
         mdb::Put32(o.P(ids[1].page), b.from, pointer);
         return static_cast<PageNumber>(pointer >> 8);
       },
       "dos filas movidas llevan a"},
      {"the place of a moved row that is gone", kMoved,
       [](Workpiece& o) {
         const RowId id = MovedRows(o)[0];
         auto& p = o.P(id.page);
         mdb::Put16(p, Slot(id.row), mdb::U16(p, Slot(id.row)) | 0xC000);
         return PageNumber{0};
       },
       "es la de una fila movida que no existe"},
      {"a moved row beyond the end", kMoved,
       [](Workpiece& o) {
         const RowId id = MovedRows(o)[0];
         auto& p = o.P(id.page);
         mdb::Put24(p, mdb::ReadSlot(id.page, p, id.row).from + 1, 70000);
         return PageNumber{70000};
       },
       "el archivo tiene"},
      {"a long value of another length", kIndices,
       [](Workpiece& o) {
         const auto c = o.Cell("MSysObjects", RowsWithLong(o)[0], "LvProp");
         o.P(c.page)[c.pos] ^= 3;
         return c.page;
       },
       "dice medir"},
      {"a long value in a row of data", kIndices,
       [](Workpiece& o) {
         const auto c = o.Cell("MSysObjects", RowsWithLong(o)[0], "LvProp");
         const auto p = o.DataPage("Table1");
         o.P(c.page)[c.pos + 4] = 0;
         mdb::Put24(o.P(c.page), c.pos + 5, p);
         return p;
       },
       "no es de valores largos"},
      {"a long value in a row that is not there", kIndices,
       [](Workpiece& o) {
         const auto c = o.Cell("MSysObjects", RowsWithLong(o)[0], "LvProp");
         o.P(c.page)[c.pos + 4] = 200;
         return PageNumber{0};
       },
       "no tiene la fila 200"},
      {"one place for two long values", kIndices,
       [](Workpiece& o) {
         const auto ids = RowsWithLong(o);
         const auto a = o.Cell("MSysObjects", ids[0], "LvProp"), b = o.Cell("MSysObjects", ids[1], "LvProp");
         const auto image = o.pages->Read(a.page);
         mdb::PutBytes(o.P(b.page), b.pos, mdb::Slice(*image, a.pos, 12));
         return PageNumber{0};
       },
       "dos valores largos usan"},
      {"a chain of a long value that comes back", kIndices,
       [](Workpiece& o) {
         const auto c = o.Cell("MSysObjects", RowsWithLong(o)[0], "LvProp");
         auto& p = o.P(c.page);
         const auto length = mdb::U32(p, c.pos) & 0x3FFFFFFFU;
         mdb::Put32(p, c.pos, length + 100000);  // a chain now, and longer than its first piece
         const auto pointer = mdb::U32(p, c.pos + 4);
         const PageNumber page = pointer >> 8;
         const auto r = mdb::ReadSlot(page, *o.pages->Read(page), pointer & 0xFF);
         mdb::Put32(o.P(page), r.from, pointer);
         return page;
       },
       "dos valores largos usan"},
      {"a page of long values that its column does not know", kIndices,
       [](Workpiece& o) {
         const auto d = o.Def("MSysObjects");
         const auto map = d.columns[d.ByName("LvProp").value()].lv_owned_pages;
         const auto p = mdb::ReadMap(*o.pages, map).front();
         mdb::RemoveFromMap(*o.pages, map, p);
         return p;
       },
       "que no es de la columna 'LvProp'"},
      {"a page of long values with rows of another kind", kIndices,
       [](Workpiece& o) {
         const auto d = o.Def("MSysObjects");
         const auto p = mdb::ReadMap(*o.pages, d.columns[d.ByName("LvProp").value()].lv_owned_pages).front();
         mdb::Put16(o.P(p), Slot(0),
                    static_cast<std::uint16_t>((mdb::U16(o.P(p), Slot(0)) & 0x1FFF) | 0x4000));
         return p;
       },
       "marcas de otra clase"},
  };
}

TEST(VerifyDamage, InRowsAndLongValues) { Plant(RowDamages()); }

}  // namespace
