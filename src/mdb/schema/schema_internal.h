// What the changes of a file's schema share: names, all-or-nothing, the rows of the system tables.
#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "mdb/catalog/catalog.h"
#include "mdb/schema/database.h"

namespace mdb::internal {

// The pages as they were when this was made come back at its end unless Complete was called; the catalog is
// read anew either way.
class Attempt {
 public:
  Attempt(PageFile& pages, SystemCatalog& catalog) : pages_(pages), catalog_(catalog), point_(pages.Save()) {}
  Attempt(const Attempt&) = delete;
  Attempt& operator=(const Attempt&) = delete;
  ~Attempt() {
    if (!completed_) pages_.RollbackTo(std::move(point_));
    catalog_.Forget();
  }
  void Complete() { completed_ = true; }

 private:
  PageFile& pages_;
  SystemCatalog& catalog_;
  PageFile::Savepoint point_;
  bool completed_ = false;
};

// Throws base::Error for a name that no object, column or index may have. `what`: "una tabla", "una columna"…
void CheckName(std::string_view name, const char* what);
// Tables, linked tables and queries share their names.
void CheckNameIsFree(const SystemCatalog& catalog, std::string_view name);

// A local table that is no table of the system, read anew. Throws base::Error when there is none.
Definition TableToChange(PageFile& pages, const SystemCatalog& catalog, std::string_view name);
// Position of a column in `columns`; throws base::Error when there is none of that name.
std::size_t ColumnOf(const Definition& definition, std::string_view column);
// The index that has this name whatever its case; end() when there is none.
std::vector<LogicalIndex>::iterator FindLogical(Definition& definition, std::string_view name);
// In the order of their names, as Access keeps them.
void InsertLogical(Definition& definition, LogicalIndex logical);
std::uint32_t FreeNumber(const Definition& definition);  // for a new logical index

// Adds a real index filled from the table's rows, with its map and its root; its number in `reals`. The
// definition itself is still to be written. `name` is for the message of a row that it refuses.
std::uint32_t AddReal(PageFile& pages, Definition& definition, RealIndex index, const std::string& name);
// Frees the index's pages and map, and renumbers what names the others.
void RemoveReal(PageFile& pages, Definition& definition, std::uint32_t real);
// Checks it against the definition and adds it, real and logical; the definition is still to be written.
void AddIndex(PageFile& pages, Definition& definition, const NewIndex& fresh);

// The column that `fresh` describes, next in the definition, with the page maps of its long values.
void AddColumn(PageFile& pages, Definition& definition, const NewColumn& fresh);
// What the column has in LvProp.
void AddProperties(Properties& properties, const NewColumn& column);

// A system table by the page of its definition, with its name.
Definition ReadSystemTable(PageFile& pages, PageNumber page);
// A row of a system table, put together by the names of its columns.
class RowByName {
 public:
  explicit RowByName(const Definition& definition)
      : definition_(definition), row_(definition.columns.size()) {}
  RowByName& Set(const char* column, Datum datum);
  Row Take() { return std::move(row_); }

 private:
  const Definition& definition_;
  Row row_;
};

struct NewObject {
  std::int32_t id = 0, parent = 0;
  std::string name;
  std::int16_t type = 0;
  std::uint32_t flags = 0;
  Properties properties;
};
// An identity for an object that is no table: 0x80000000 and the smallest number that none has.
std::int32_t FreeId(const SystemCatalog& catalog);
// Its row of MSysObjects, and those that say who may do what: whoever is named for its container.
void AddObject(PageFile& pages, const SystemCatalog& catalog, const NewObject& object, base::Date now);
void RemoveObject(PageFile& pages, const Object& object);
void ChangeProperties(PageFile& pages, const Object& object, const Properties& properties);
// Deletes the rows of a system table that have this value there.
void DeleteRowsWhere(PageFile& pages, PageNumber table, const char* column, const Datum& value);

// The relationship's rows and object, and its logical indexes when it is enforced.
void RemoveRelationship(PageFile& pages, const SystemCatalog& catalog, const TableRelationship& relationship);

}  // namespace mdb::internal
