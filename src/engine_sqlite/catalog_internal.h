// What the translator asks of a SQLite file: tables with typed columns, and saved queries.
//
// A saved query is a row (Nombre, Texto) of the table MSysConsultas, which the catalog hides. The list of
// names is read when the first name is asked, a table's columns when that table is; Forget makes both be
// read anew.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "jetsql/catalog.h"
#include "jetsql/translate.h"

namespace engine_sqlite {

// Its name and its columns' stay Spanish: they stand in files already made.
inline constexpr std::string_view kQueryTable = "MSysConsultas";

class SqliteCatalog final : public jetsql::Catalog {
 public:
  explicit SqliteCatalog(sqlite3* base) : base_(base) {}
  // The catalog of a mirror: the source answers alone.
  explicit SqliteCatalog(jetsql::Catalog& source) : source_(&source) {}

  const jetsql::TableInfo* Table(std::string_view name) override;
  const std::string* Query(std::string_view name) override;

  void Forget();

  // Throws db::Error when the definition would take a name that is in use or ours.
  void VerifyNameIsFree(const jetsql::Definition& definition);
  // Throws db::Error when there is none to delete.
  void CreateQuery(std::string_view name, std::string_view text);
  void DropQuery(std::string_view name);

 private:
  struct Entry {
    std::string name;                                  // as it was created
    std::unique_ptr<const jetsql::TableInfo> columns;  // null until asked
  };
  struct Saved {
    std::string name;  // as it was created
    std::string text;
  };
  void Read();
  void ReadQueries();

  sqlite3* base_ = nullptr;
  jetsql::Catalog* source_ = nullptr;
  bool loaded_ = false;
  std::unordered_map<std::string, Entry> tables_;   // by name in lower case
  std::unordered_map<std::string, Saved> queries_;  // likewise
};

}  // namespace engine_sqlite
