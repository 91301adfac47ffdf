#include "engine_odbc/catalog_internal.h"

#include "base/text.h"
#include "engine_odbc/reader_internal.h"

namespace engine_odbc {
namespace {

// Columns of the driver manager's catalog results, from 0.
constexpr std::size_t kTableName = 2;
constexpr std::size_t kColumnName = 3;

void Check(SQLRETURN rc, const Cursor& cursor) {
  if (!SQL_SUCCEEDED(rc))
    throw ErrorOf(Diagnostics(SQL_HANDLE_STMT, cursor.Raw()), "La base no pudo dar la lista de sus tablas");
}

}  // namespace

const jetsql::TableInfo* OdbcCatalog::Table(std::string_view name) {
  if (!loaded_) ReadTables();
  const auto found = tables_.find(base::LowerCase(name));
  if (found == tables_.end()) return nullptr;
  if (found->second.columns == nullptr) ReadColumns(found->second);
  return found->second.columns.get();
}

void OdbcCatalog::Forget() {
  loaded_ = false;
  tables_.clear();
}

void OdbcCatalog::ReadTables() {
  const Cursor cursor = MakeCursor(link_);
  Check(SQLTablesW(cursor.Raw(), nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0), cursor);
  Reader reader(cursor.Raw());
  const std::size_t width = reader.Columns()->size();
  const std::vector<base::Value> cells = reader.Rows();
  if (width > kTableName)
    for (std::size_t i = 0; i < cells.size(); i += width) {
      std::string name = cells[i + kTableName].Text();
      std::string key = base::LowerCase(name);
      tables_.try_emplace(std::move(key), Entry{std::move(name), nullptr});
    }
  loaded_ = true;
}

void OdbcCatalog::ReadColumns(Entry& entry) {
  const Cursor cursor = MakeCursor(link_);
  WideText name(entry.name);
  // The name is a pattern, in which "_" stands for any character: other tables may come too.
  Check(SQLColumnsW(cursor.Raw(), nullptr, 0, nullptr, 0, name.Data(), name.ShortLength(), nullptr, 0),
        cursor);
  Reader reader(cursor.Raw());
  const std::size_t width = reader.Columns()->size();
  const std::vector<base::Value> cells = reader.Rows();
  auto table = std::make_unique<jetsql::TableInfo>();
  table->name = entry.name;
  if (width > kColumnName)
    for (std::size_t i = 0; i < cells.size(); i += width)
      if (base::EqualIgnoringCase(cells[i + kTableName].Text(), entry.name))
        table->columns.push_back({cells[i + kColumnName].Text(), base::Type::Null});
  entry.columns = std::move(table);
}

}  // namespace engine_odbc
