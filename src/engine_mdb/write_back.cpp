// From the mirrors back to the file: each row that a statement touched is compared with the file's, and only
// what differs is written.
#include <algorithm>

#include "base/error.h"
#include "engine_mdb/cells_internal.h"
#include "engine_mdb/source_internal.h"
#include "mdb/rows/table.h"

namespace engine_mdb {
namespace {

// The row that the reader stands on, or none: reset when done, so that it does not hold the table.
class Reading {
 public:
  Reading(sqlite3* mirror, sqlite3_stmt* s, sqlite3_int64 row) : s_(s) {
    sqlite3_bind_int64(s_, 1, row);
    const int rc = sqlite3_step(s_);
    if (rc != SQLITE_ROW && rc != SQLITE_DONE) engine_sqlite::ThrowError(mirror);
    has_ = rc == SQLITE_ROW;
  }
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;
  ~Reading() { sqlite3_reset(s_); }
  bool Has() const { return has_; }

 private:
  sqlite3_stmt* s_;
  bool has_ = false;
};

mdb::Row NewRow(const MirrorTable& t, sqlite3_stmt* s) {
  mdb::Row row(t.definition.columns.size());
  for (std::size_t i = 0; i < t.columns.size(); ++i)
    row[t.columns[i]] = CellDatum(t.definition.columns[t.columns[i]], s, static_cast<int>(i));
  return row;
}

mdb::RowChange Difference(MirrorTable& t, mdb::RowId id, sqlite3_stmt* s) {
  const auto old = mdb::ReadRow(t.base->Pages(), t.definition, id);
  if (!old)
    throw base::StorageFault("Una fila de la tabla " + t.info.name + " ya no está en el archivo (página " +
                             std::to_string(id.page) + ").");
  mdb::RowChange change{id, {}};
  for (std::size_t i = 0; i < t.columns.size(); ++i) {
    const std::size_t c = t.columns[i];
    if (!SameValue((*old)[c], s, static_cast<int>(i)))
      change.values.emplace_back(c, CellDatum(t.definition.columns[c], s, static_cast<int>(i)));
  }
  return change;
}

mdb::RowId IdentityOf(const MirrorTable& t, sqlite3_int64 row) {
  const auto& rows = *t.state.rows;
  return row > 0 && static_cast<std::uint64_t>(row) < rows.size() ? rows[static_cast<std::size_t>(row)]
                                                                  : mdb::RowId{};
}

}  // namespace

bool MdbSource::HasChanges() const {
  return std::any_of(tables_.begin(), tables_.end(),
                     [](const auto& t) { return !t.second->touched.empty(); });
}

void MdbSource::WriteTable(MirrorTable& t) {
  std::sort(t.touched.begin(), t.touched.end());
  t.touched.erase(std::unique(t.touched.begin(), t.touched.end()), t.touched.end());
  sqlite3_stmt* reader = RowReader(mirror_, t);
  mdb::Changes changes;
  std::vector<sqlite3_int64> inserted;
  for (const sqlite3_int64 number : t.touched) {
    const mdb::RowId id = IdentityOf(t, number);
    const Reading reading(mirror_, reader, number);
    if (!reading.Has()) {
      if (id.page == 0) continue;  // came and went
      changes.deleted.push_back(id);
      to_settle_.push_back({&t, number, {}});
    } else if (id.page == 0) {
      changes.inserted.push_back(NewRow(t, reader));
      inserted.push_back(number);
    } else if (auto change = Difference(t, id, reader); !change.values.empty()) {
      changes.changed.push_back(std::move(change));
    }
  }
  if (changes.deleted.empty() && changes.changed.empty() && changes.inserted.empty()) return;
  const std::vector<mdb::RowId> ids = base_.Apply(t.name_in_base, changes);
  for (std::size_t i = 0; i < inserted.size(); ++i) to_settle_.push_back({&t, inserted[i], ids.at(i)});
  counters_.rows_written +=
      static_cast<std::int64_t>(changes.deleted.size() + changes.changed.size() + inserted.size());
}

void MdbSource::WriteChanges() {
  to_settle_.clear();
  CheckNoted();
  for (auto& [key, t] : tables_)
    if (!t->touched.empty()) WriteTable(*t);
}

// The rows' identities are shared with what a rollback would go back to: inside a transaction they are copied
// before they change.
void MdbSource::Settle(bool permanent) {
  if (permanent)
    for (auto& [key, t] : tables_) {
      t->saved.rows.reset();
      t->at_mark.rows.reset();
    }
  for (const Identity& i : to_settle_) {
    auto& rows = i.table->state.rows;
    if (rows.use_count() > 1) rows = std::make_shared<std::vector<mdb::RowId>>(*rows);
    if (rows->size() <= static_cast<std::size_t>(i.row)) rows->resize(static_cast<std::size_t>(i.row) + 1);
    (*rows)[static_cast<std::size_t>(i.row)] = i.id;
  }
  to_settle_.clear();
  for (auto& [key, t] : tables_) t->touched.clear();
}

}  // namespace engine_mdb
