// The mirrors of a file: what the translator asks, what is read on first use, what has changed.
#pragma once

#include <sqlite3.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine_mdb/mdb_connection.h"
#include "engine_mdb/mirror_internal.h"

namespace engine_mdb {

// A file that linked tables name, opened once for reading.
class Links {
 public:
  explicit Links(std::string path) : path_(std::move(path)) {}
  // Throws base::Error, naming the link, when it leads to another kind of source or its file cannot be read.
  std::shared_ptr<mdb::Database> Open(const mdb::Object& object);
  void Forget() { open_.clear(); }

 private:
  std::string path_;  // of our file
  std::map<std::string, std::shared_ptr<mdb::Database>> open_;
};

// Why nothing can be written into a base, as a sentence; empty when it can.
std::string WhyNotWritable(const mdb::Database& base);

// A statement that would write into a base of which that is known since it was opened: nothing was lost, and
// the base may be tried again.
class BaseNotWritable : public db::Error {
 public:
  using db::Error::Error;
};

class MdbSource final : public engine_sqlite::TableSource {
 public:
  // `private_copy`: what the file's state forbids to write may be written in the mirrors, which keep it.
  MdbSource(mdb::Database& base, std::string_view path, Counters& counters, bool private_copy)
      : base_(base), links_(std::string(path)), counters_(counters), private_copy_(private_copy) {}
  // The handle on which the mirrors live; registers what they call. `on_write` is called before a
  // statement that writes, when all is ready for it.
  void Attach(sqlite3* mirror, std::function<void()> on_write);
  // Drops every prepared statement, before the handle closes.
  void Release();

  const jetsql::TableInfo* Table(std::string_view name) override;
  const std::string* Query(std::string_view name) override;
  void BeforeRun(const jetsql::Translation& statement) override;

  // Definitions may run in the mirror, to be taken back; otherwise one that came so far is refused, because
  // the file would know nothing of it.
  void SetRehearsing(bool on) { rehearsing_ = on; }
  // A statement begins: what another one asked for and did not use is forgotten.
  void Begin() { requested_.clear(); }
  // The table's mirror, read if it was not; null when there is no such table.
  MirrorTable* LookAt(std::string_view name);

  // Transactions, inside one of SQLite's.
  void SaveState();
  void RestoreState();
  bool HasChanges() const;
  // Throws a fault of the storage when a change could not be noted.
  void CheckNoted() const;

  // The mark inside a transaction. ReturnToMark is called when SQLite and the pages are back there. What had
  // been read, indexed or made ready since was undone with the rest and is listed in `to_renew_`; Renew,
  // called where the mark does not stand, makes it anew, so that a line that is refused again and again does
  // not read a table each time.
  void SetMark();
  void ForgetMark() { tables_at_mark_.reset(); }
  // Before the first definition after the mark, which drops mirrors that an undo needs again.
  void KeepForMark();
  void ReturnToMark();
  bool AnythingToRenew() const { return !to_renew_.empty(); }
  void Renew();
  // Brings the file's pages to what the mirrors hold; the rows' new identities wait for Settle, `permanent`
  // when the transaction has ended.
  void WriteChanges();
  void Settle(bool permanent);

  // After the file's definitions changed: the mirrors of these tables, or of all, and every text of a query
  // are made anew when they are next named. Their changes must have been written.
  void Discard(const std::vector<std::string>& tables);
  void DiscardAll();

  // The functions that the mirrors call.
  std::int64_t NextAutonumber(int table);
  void SeeAutonumber(int table, std::int64_t value);
  // Throws base::Error for a text that no index of the file can hold.
  void TryKey(int table, int column, const std::string& text) const;

 private:
  using Tables = std::unordered_map<std::string, std::shared_ptr<MirrorTable>>;

  void RegisterFunctions();
  MirrorTable* Find(std::string_view name) const;
  std::shared_ptr<MirrorTable> Describe(const mdb::Object& object);
  void JudgeWriting(const mdb::Object& object, MirrorTable& table) const;
  void Load(MirrorTable& table);
  void BuildIndexes(MirrorTable& table);
  void AttendPending();
  void Prepare(MirrorTable& table, bool all);
  void WatchAutonumber(const MirrorTable& table);
  void WatchForms(const MirrorTable& table);
  void WatchAsChild(const MirrorTable& child, const mdb::TableRelationship& relationship);
  void WatchAsParent(const MirrorTable& parent, const mdb::TableRelationship& relationship);
  void Execute(const std::string& sql);
  MirrorTable& Local(const std::string& name);
  void WriteTable(MirrorTable& table);
  void Remove(Tables::iterator it);
  void AfterUndo();

  static void OnChange(void* source, int what, const char* base, const char* table, sqlite3_int64 row);
  static int Authorise(void* source, int action, const char* a, const char* b, const char* c, const char* d);

  struct Identity {
    MirrorTable* table;
    sqlite3_int64 row;
    mdb::RowId id;
  };

  mdb::Database& base_;
  Links links_;
  Counters& counters_;
  const bool private_copy_;
  sqlite3* mirror_ = nullptr;
  std::function<void()> on_write_;

  // What the mirrors were at the mark, when a definition ran after it.
  struct AtMark {
    Tables tables;
    std::vector<MirrorTable*> by_number;
    std::vector<std::vector<sqlite3_int64>> touched;  // by number
  };

  Tables tables_;  // by name in lower case
  std::vector<MirrorTable*> by_number_;
  std::unordered_map<std::string, std::string> queries_;
  std::vector<MirrorTable*> requested_;        // by the statement that is being translated
  std::vector<MirrorTable*> without_indexes_;  // large ones, read so far without
  int statements_ = 0;                         // run since the last of those was read
  std::vector<Identity> to_settle_;
  std::optional<AtMark> tables_at_mark_;
  // Names of tables that were read, and written, since the mark that was gone back to.
  struct ToRenew {
    std::string table;
    bool indexes = false, ready_to_insert = false, ready_for_all = false;
  };
  std::vector<ToRenew> to_renew_;
  bool unnoted_ = false;  // a change that there was no memory to note
  bool rehearsing_ = false;
  bool own_ = false;             // what runs is ours: not noted as a change
  MirrorTable* last_ = nullptr;  // of the last change noted
};

}  // namespace engine_mdb
