// A table of a new base, with short ways to change it and to look at its pages; values written shortly.
#pragma once

#include "mdb/indexes/index_tree.h"
#include "mdb/new_base.h"
#include "mdb/pages/page_map.h"
#include "mdb/pages/page_rows.h"
#include "mdb/rows/table.h"

namespace mdb_test {

const base::Null kNull{};
inline std::int64_t N(int n) { return n; }
inline std::string S(std::size_t length, char letter = 'x') { return std::string(length, letter); }
inline mdb::Datum Text(std::string s) { return s; }

struct Table {
  NewDatabase base;
  mdb::Definition d;
  explicit Table(const mdb::NewTable& t) { d = base.Create(t); }
  mdb::PageFile& P() { return base->Pages(); }
  std::vector<mdb::RowId> Apply(const mdb::Changes& c) { return mdb::Apply(P(), d, c); }
  mdb::RowId Insert(mdb::Row f) { return Apply({{}, {}, {std::move(f)}}).at(0); }
  void Update(mdb::RowId id, std::size_t column, mdb::Datum datum) {
    Apply({{}, {ChangeOf(id, {{column, std::move(datum)}})}, {}});
  }
  void Delete(mdb::RowId id) { Apply({{id}, {}, {}}); }
  mdb::Row Read(mdb::RowId id) { return mdb::ReadRow(P(), d, id).value(); }
  mdb::Slot SlotOf(mdb::RowId id) { return mdb::ReadSlot(id.page, *P().Read(id.page), id.row); }
  mdb::RowId Place(mdb::RowId id) { return mdb::FindRow(P(), d, id).value().place; }
  std::vector<mdb::PageNumber> OwnPages() { return mdb::ReadMap(P(), d.owned_pages); }
  std::vector<mdb::PageNumber> FreePages() { return mdb::ReadMap(P(), d.free_pages); }
  std::vector<mdb::Entry> Entries(std::size_t index) {
    std::vector<mdb::Entry> e;
    mdb::IndexTree(P(), d.Page(), d.reals[index]).Walk([&](const mdb::Entry& x) {
      e.push_back(x);
      return true;
    });
    return e;
  }
  std::string Control() { return base.Control(); }
};

// A key, a unique index over two columns, and one that ignores Nulls.
inline mdb::NewTable WithKey() {
  mdb::NewTable t{"Clave", {}, {}};
  t.columns = {Column("Id", mdb::ColumnType::Long), Column("Nombre", mdb::ColumnType::Text),
               Column("Edad", mdb::ColumnType::Integer)};
  mdb::NewIndex key{"PrimaryKey", {{"Id", false}}, true, true, false, true};
  mdb::NewIndex unique_name{"PorNombre", {{"Nombre", false}, {"Edad", true}}, true, false, false, false};
  mdb::NewIndex age{"PorEdad", {{"Edad", false}}, false, false, true, false};
  t.indexes = {key, unique_name, age};
  return t;
}

}  // namespace mdb_test
