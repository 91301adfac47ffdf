// An Access file as a whole: what the engine works on.
//
//   const auto file = mdb::Database::Open("Personal.mdb");
//   file->Apply("Horas", {.deleted = {row}});  // a row that a walk over the table gave
//   file->Commit();                            // nothing is on disk before
//
// docs/formats/mdb-library.md makes, writes, reads and verifies a file in a whole program.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "mdb/catalog/catalog.h"
#include "mdb/tables/table_writer.h"

namespace mdb {

struct DatabaseOptions {
  bool read_only = false;
  std::string password;  // compared with the file's, as every program does
};

struct NewColumn {
  std::string name;
  ColumnType type = ColumnType::Long;
  std::uint16_t length = 0;                // characters of a Text, bytes of a Binary; 0: 255 and 255
  std::uint8_t precision = 18, scale = 0;  // of a Numeric
  bool auto_number = false;
  std::int32_t seed = 1, increment = 1;
  bool required = false;
  bool allows_empty = true;   // AllowZeroLength of a text
  std::string default_value;  // expression text; empty: none
  bool compress = true;       // texts
};
struct NewIndex {
  std::string name;
  struct Part {
    std::string column;
    bool descending = false;
  };
  std::vector<Part> parts;
  bool unique = false, primary = false, ignores_nulls = false, required = false;
};
struct NewTable {
  std::string name;
  std::vector<NewColumn> columns;
  std::vector<NewIndex> indexes;
};

class Database {
 public:
  // Opens a file, rolling back the journal of a run that was cut. Throws base::Error: no such file, another
  // kind of file, wrong password, encrypted by a provider, in use. Without read_only a file that cannot be
  // written (read-only, in use by another program, a format that is only read) opens for reading: see
  // ReadOnlyReason.
  static std::unique_ptr<Database> Open(std::string_view path, const DatabaseOptions& options = {});
  // A new Jet 4 file, written at once. Throws base::Error when it exists.
  static std::unique_ptr<Database> Create(std::string_view path, std::uint16_t order, base::Date now);
  // Over pages in memory, for tests and builders.
  explicit Database(std::unique_ptr<PageFile> pages) : pages_(std::move(pages)), catalog_(*pages_) {}

  PageFile& Pages() { return *pages_; }
  const FileHeader& Header() const { return pages_->Header(); }
  const SystemCatalog& Catalog() const { return catalog_; }
  const std::string& ReadOnlyReason() const { return pages_->ReadOnlyReason(); }
  ReadOnlyCause WhyReadOnly() const { return pages_->WhyReadOnly(); }

  // Rows. The definition is read anew for each call, so that counters and maps are those of the pages.
  std::vector<RowId> Apply(std::string_view table, const Changes& changes);

  // The catalog's changes. Each does all or nothing in the pages; nothing is on disk before Commit. All
  // throw base::Error for names that are taken, missing or not allowed. `now` dates the objects.
  void CreateTable(const NewTable& table, base::Date now);
  void DropTable(std::string_view table);  // refused while an enforced relationship names it
  void CreateIndex(std::string_view table, const NewIndex& index);
  void DropIndex(std::string_view table, std::string_view index);
  void AddColumn(std::string_view table, const NewColumn& column);
  void DropColumn(std::string_view table, std::string_view column);
  // Enforced ones need a unique index over the referenced columns, and existing rows that obey.
  void CreateRelationship(const TableRelationship& relationship, base::Date now);
  void DropRelationship(std::string_view name);
  void CreateQuery(const SavedQuery& query, base::Date now);
  void DropQuery(std::string_view name);

  void Commit() { pages_->Commit(); }
  void Rollback() {
    pages_->Rollback();
    catalog_.Forget();
  }
  // Back to a point inside the transaction, the catalog too.
  void RollbackTo(PageFile::Savepoint point) {
    pages_->RollbackTo(std::move(point));
    catalog_.Forget();
  }

 private:
  std::unique_ptr<PageFile> pages_;
  SystemCatalog catalog_;
};

}  // namespace mdb
