// The objects of a file: tables, saved queries, linked tables, relationships, properties.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "mdb/definitions/definition.h"
#include "mdb/queries/saved_query.h"
#include "mdb/rows/value.h"

namespace mdb {

struct Object {
  enum Type : std::int16_t { Table = 1, Base = 2, LinkedOdbc = 4, Query = 5, Linked = 6, Relationship = 8 };
  std::int32_t id = 0;  // of a table, the page of its definition
  std::int32_t parent = 0;
  std::string name;
  std::int16_t type = 0;
  std::uint32_t flags = 0;
  std::string base, connection, external_name;  // Database, Connect and ForeignName of a linked table
  Bytes properties;                             // LvProp as stored
  RowId row;                                    // in MSysObjects
  bool IsSystem() const { return (flags & 0x80000002U) != 0; }
};

struct Property {
  std::string name;
  std::uint8_t type = 0;  // of ColumnType
  bool ddl = false;       // defined with the table
  Datum value;
};
// By owner: "" for the table itself, else a column's name.
using Properties = std::map<std::string, std::vector<Property>>;
Properties ReadProperties(const FileHeader& header, View bytes);
Bytes SerializeProperties(const Properties& properties);  // Jet 4
// By owner and name whatever their case; null when there is none.
const Datum* Find(const Properties& properties, std::string_view owner, std::string_view name);

struct TableRelationship {
  static constexpr std::uint32_t kOneToOne = 0x1, kNotEnforced = 0x2, kCascadesUpdates = 0x100,
                                 kCascadesDeletes = 0x1000, kSetsNull = 0x2000;
  std::string name;
  std::string table;  // the "many" side
  std::vector<std::string> columns;
  std::string referenced_table;  // the "one" side
  std::vector<std::string> referenced_columns;
  std::uint32_t flags = 0;
  bool IsEnforced() const { return (flags & kNotEnforced) == 0; }
};

// Read once; Forget after a change of the catalog. Pointers hold until then.
class SystemCatalog {
 public:
  explicit SystemCatalog(PageFile& pages) : pages_(pages) {}
  const std::vector<Object>& Objects() const;
  // A table, linked table or query by name whatever its case; null when there is none.
  const Object* Find(std::string_view name) const;
  // Definition of a local table, with its name; null for another name. Throws Damage.
  std::shared_ptr<const Definition> Table(std::string_view name) const;
  const Properties& PropertiesOf(std::string_view table) const;
  const std::vector<TableRelationship>& Relationships() const;
  // The rows of a saved query (see saved_query.h); throws base::Error when there is none of that name.
  SavedQuery QueryOf(std::string_view name) const;
  void Forget();

 private:
  PageFile& pages_;
  struct Loaded;
  mutable std::shared_ptr<Loaded> loaded_;
  Loaded& Read() const;
  PageNumber SystemTablePage(std::string_view name, PageNumber of_the_header) const;
};

}  // namespace mdb
