// The tables of a data source and their columns, as the driver lists them; read when first asked.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "engine_odbc/odbc_internal.h"
#include "jetsql/catalog.h"

namespace engine_odbc {

class OdbcCatalog final : public jetsql::Catalog {
 public:
  // `link` is open whenever something is asked, and outlives the catalog.
  explicit OdbcCatalog(const Link& link) : link_(link) {}

  // Tables, views and saved queries alike: to the driver all have columns. Throws db::Error.
  const jetsql::TableInfo* Table(std::string_view name) override;
  // A driver does not tell the text of a saved query.
  const std::string* Query(std::string_view) override { return nullptr; }

  void Forget();

 private:
  struct Entry {
    std::string name;  // as it was created
    std::unique_ptr<const jetsql::TableInfo> columns;
  };
  void ReadTables();
  void ReadColumns(Entry& entry);

  const Link& link_;
  bool loaded_ = false;
  std::unordered_map<std::string, Entry> tables_;  // by name in lower case
};

}  // namespace engine_odbc
