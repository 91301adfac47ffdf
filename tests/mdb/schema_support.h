// A base in memory for tests of its schema.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "mdb/corpus.h"
#include "mdb/outside.h"
#include "mdb/rows/table.h"
#include "mdb/schema/database.h"
#include "mdb/schema/new_file.h"
#include "mdb/verify/verify.h"

namespace mdb_test {

inline base::Date Today() { return base::MakeDate(2026, 11, 21); }

class TestDatabase {
 public:
  explicit TestDatabase(std::uint16_t order = 3082) : TestDatabase(NewPages(order)) {}
  explicit TestDatabase(std::unique_ptr<mdb::MemoryPages> pages)
      : pages_(pages.get()), base_(std::make_unique<mdb::Database>(std::move(pages))) {}
  mdb::Database* operator->() { return base_.get(); }
  mdb::Database& operator*() { return *base_; }

  const mdb::Bytes& Saved() {
    base_->Commit();
    return pages_->Stored();
  }
  // Files made here from nothing are held to everything.
  void ExpectSound(bool strict = true) {
    EXPECT_EQ(RunChecker(Saved(), strict), "");
    ExpectChecked(strict);
  }
  // By our own check alone, which takes no process.
  void ExpectChecked(bool strict = true) {
    for (const auto& h : mdb::Verify(base_->Pages()).findings)
      EXPECT_TRUE(!strict && h.severity == mdb::Finding::Severity::Note) << h.text;
  }
  std::string Schema(const std::string& options, const std::string& dialect = "") {
    return Mdbtools("mdb-schema", options, Saved(), dialect);
  }
  // The definition as the pages hold it now.
  mdb::Definition Def(const std::string& table) {
    const auto known = base_->Catalog().Table(table);
    if (!known) throw base::Error("no table " + table);
    return *known;
  }
  std::vector<mdb::Row> Rows(const std::string& table) {
    std::vector<mdb::Row> rows;
    mdb::WalkRows(base_->Pages(), Def(table), [&](mdb::RowId, const mdb::Row& row) {
      rows.push_back(row);
      return true;
    });
    return rows;
  }
  std::vector<mdb::RowId> Insert(const std::string& table, std::vector<mdb::Row> rows) {
    mdb::Changes changes;
    changes.inserted = std::move(rows);
    return base_->Apply(table, changes);
  }

  // `step` must be refused with a text that holds `stated`, and leave every page as it was.
  template <typename Step>
  void ExpectRejected(const std::string& stated, Step&& step) {
    const mdb::Bytes before = Saved();
    try {
      step();
      ADD_FAILURE() << "was not refused: " << stated;
    } catch (const base::Error& e) {
      EXPECT_NE(e.Description().find(stated), std::string::npos) << e.Description();
    }
    EXPECT_FALSE(base_->Pages().HasChanges());
    EXPECT_TRUE(Saved() == before) << "the refused step left something behind: " << stated;
  }

 private:
  static std::unique_ptr<mdb::MemoryPages> NewPages(std::uint16_t order) {
    mdb::Bytes bytes = mdb::MakeDatabase(order, Today());
    const mdb::FileHeader header = mdb::ReadHeader(bytes);
    return std::make_unique<mdb::MemoryPages>(header, std::move(bytes));
  }
  mdb::MemoryPages* pages_;
  std::unique_ptr<mdb::Database> base_;
};

inline mdb::NewColumn Col(std::string name, mdb::ColumnType type, std::uint16_t length = 0) {
  mdb::NewColumn c;
  c.name = std::move(name);
  c.type = type;
  c.length = length;
  return c;
}

inline mdb::NewIndex Ind(std::string name, std::vector<std::string> columns) {
  mdb::NewIndex i;
  i.name = std::move(name);
  for (auto& c : columns) {
    const bool descending = !c.empty() && c[0] == '-';
    i.parts.push_back({descending ? c.substr(1) : c, descending});
  }
  return i;
}
inline mdb::NewIndex UniqueIndex(std::string name, std::vector<std::string> columns) {
  auto i = Ind(std::move(name), std::move(columns));
  i.unique = true;
  return i;
}
inline mdb::NewIndex Key(std::vector<std::string> columns) {
  auto i = Ind("PrimaryKey", std::move(columns));
  i.primary = true;
  return i;
}

template <typename... T>
mdb::Row RowOf(T&&... values) {
  mdb::Row row;
  (row.emplace_back(std::forward<T>(values)), ...);
  return row;
}
inline mdb::Datum N(std::int64_t n) { return n; }
inline mdb::Datum S(std::string text) { return text; }
inline mdb::Datum Nothing() { return {}; }

}  // namespace mdb_test
