// A base made by our own code, in memory, with short ways to fill it.
#pragma once

#include "mdb/corpus.h"
#include "mdb/outside.h"
#include "mdb/schema/database.h"
#include "mdb/schema/new_file.h"
#include "mdb/verify/verify.h"

namespace mdb_test {

inline mdb::NewColumn Column(std::string name, mdb::ColumnType type, std::uint16_t length = 0) {
  mdb::NewColumn c;
  c.name = std::move(name);
  c.type = type;
  c.length = length;
  return c;
}

inline mdb::RowChange ChangeOf(mdb::RowId row, std::vector<std::pair<std::size_t, mdb::Datum>> values) {
  return {row, std::move(values)};
}

// The findings of our own check, one a line; notes are what files of Access have too.
inline std::string Findings(mdb::PageFile& pages, bool with_notes) {
  std::string text;
  for (const auto& h : mdb::Verify(pages).findings)
    if (with_notes || h.severity == mdb::Finding::Severity::Error) text += h.text + "\n";
  return text;
}

class NewDatabase {
 public:
  explicit NewDatabase(std::uint16_t order = 3082) {
    mdb::Bytes bytes = mdb::MakeDatabase(order, kNow);
    const mdb::FileHeader header = mdb::ReadHeader(bytes);
    auto pages = std::make_unique<mdb::MemoryPages>(header, std::move(bytes));
    pages_ = pages.get();
    base_ = std::make_unique<mdb::Database>(std::move(pages));
  }
  mdb::Database* operator->() { return base_.get(); }
  mdb::PageFile& Pages() { return *pages_; }
  mdb::Definition Create(const mdb::NewTable& table) {
    base_->CreateTable(table, kNow);
    return *base_->Catalog().Table(table.name);
  }
  const mdb::Bytes& Saved() {
    base_->Commit();
    return pages_->Stored();
  }
  // What the independent checker, or our own, finds wrong with the file as it is. Not `strict`: the other
  // one counts the bitmap pages of an index's map as lost, which only big files have.
  std::string Control(bool strict = true) { return RunChecker(Saved(), strict) + Findings(*pages_, true); }

 private:
  const base::Date kNow{46347};  // 21 November 2026
  mdb::MemoryPages* pages_ = nullptr;
  std::unique_ptr<mdb::Database> base_;
};

}  // namespace mdb_test
