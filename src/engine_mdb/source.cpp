#include "engine_mdb/source_internal.h"

#include <algorithm>
#include <string>

#include "base/error.h"
#include "base/text.h"
#include "engine_mdb/cells_internal.h"
#include "engine_mdb/query_text.h"
#include "jetsql/parser.h"

namespace engine_mdb {
namespace {

// Smaller tables have their indexes at once; those of a larger one cost more than one statement is worth.
constexpr std::size_t kRowsWithoutWaiting = 2000;
constexpr int kStatementsWithoutIndexes = 3;

// What runs inside is ours.
class OwnWork {
 public:
  explicit OwnWork(bool& mark) : flag_(mark), before_(mark) { flag_ = true; }
  OwnWork(const OwnWork&) = delete;
  OwnWork& operator=(const OwnWork&) = delete;
  ~OwnWork() { flag_ = before_; }

 private:
  bool& flag_;
  bool before_;
};

}  // namespace

std::string WhyNotWritable(const mdb::Database& base) {
  const std::string& reason = base.ReadOnlyReason();
  if (reason.empty() || base.WhyReadOnly() == mdb::ReadOnlyCause::Denied) return reason;
  return "La base se puede leer, no escribir. " + reason + ".";
}

void MdbSource::Attach(sqlite3* mirror, std::function<void()> on_write) {
  mirror_ = mirror;
  on_write_ = std::move(on_write);
  RegisterFunctions();
  sqlite3_update_hook(mirror, OnChange, this);
  sqlite3_set_authorizer(mirror, Authorise, this);
  // A cascade over a table that refers to itself runs its own trigger again.
  engine_sqlite::ExecuteOwn(mirror, "PRAGMA recursive_triggers=ON; PRAGMA foreign_keys=OFF");
}

void MdbSource::Release() {
  if (mirror_ != nullptr) {
    sqlite3_update_hook(mirror_, nullptr, nullptr);
    sqlite3_set_authorizer(mirror_, nullptr, nullptr);
  }
  tables_.clear();
  by_number_.clear();
  requested_.clear();
  without_indexes_.clear();
  last_ = nullptr;
  mirror_ = nullptr;
}

// Without this a DELETE of all rows empties the table at once, and nobody is told of its rows.
int MdbSource::Authorise(void* source, int action, const char* table, const char*, const char* base,
                         const char*) {
  if (action != SQLITE_DELETE || static_cast<MdbSource*>(source)->own_) return SQLITE_OK;
  if (base == nullptr || std::string_view(base) != "main" || table == nullptr) return SQLITE_OK;
  return base::StartsWith(table, "sqlite_") ? SQLITE_OK : SQLITE_IGNORE;
}

void MdbSource::OnChange(void* source, int, const char* base, const char* table, sqlite3_int64 row) {
  auto& f = *static_cast<MdbSource*>(source);
  if (f.own_ || std::string_view(base) != "main") return;
  try {
    if (f.last_ == nullptr || f.last_->info.name != table) f.last_ = f.Find(table);
    if (f.last_ == nullptr) return;
    f.last_->touched.push_back(row);
  } catch (const std::bad_alloc&) {  // SQLite takes no failure from here
    f.unnoted_ = true;
  }
}

void MdbSource::CheckNoted() const {
  if (unnoted_) throw base::StorageFault(base::kOutOfMemory);
}

MirrorTable* MdbSource::Find(std::string_view name) const {
  const auto it = tables_.find(base::LowerCase(name));
  return it == tables_.end() ? nullptr : it->second.get();
}

void MdbSource::JudgeWriting(const mdb::Object& object, MirrorTable& t) const {
  const std::string table = "La tabla " + object.name;
  if (object.type != mdb::Object::Table) {
    t.reason = table + " está vinculada a otro archivo (" + object.base +
               "): desde aquí se puede leer, no escribir.";
  } else if (std::string reason = private_copy_ ? std::string() : WhyNotWritable(base_); !reason.empty()) {
    t.reason = std::move(reason);
    t.base_refuses = true;
  } else if (object.IsSystem()) {
    t.reason = table + " es del sistema: se puede leer, no escribir.";
  } else if (reason = mdb::NotWritableReason(base_.Header(), t.definition); !reason.empty()) {
    t.reason = table + " no se puede escribir: " + reason;
  }
}

std::shared_ptr<MirrorTable> MdbSource::Describe(const mdb::Object& object) {
  auto t = std::make_shared<MirrorTable>();
  if (object.type != mdb::Object::Table) t->linked = links_.Open(object);
  t->base = t->linked != nullptr ? t->linked.get() : &base_;
  t->name_in_base = object.type == mdb::Object::Table ? object.name : object.external_name;
  const auto definition = t->base->Catalog().Table(t->name_in_base);
  if (definition == nullptr)
    throw base::Error("La tabla vinculada " + object.name + " nombra la tabla " + t->name_in_base +
                      ", que no está en " + object.base + ".");
  // The catalog keeps a definition since it was first read; its counters may have moved.
  t->definition = mdb::ReadDefinition(t->base->Pages(), definition->Page());
  t->definition.name = definition->name;
  t->columns = t->definition.InOrder();
  t->info.name = object.name;
  for (const std::size_t i : t->columns) {
    const mdb::Column& c = t->definition.columns[i];
    if (c.IsAutoNumber() && c.type == mdb::ColumnType::Long)
      t->autonumber = static_cast<int>(t->info.columns.size());
    t->info.columns.push_back({c.name, TypeOf(c.type)});
  }
  JudgeWriting(object, *t);
  t->state.last_auto_number = t->definition.last_auto_number;
  t->saved = t->at_mark = t->state;
  return t;
}

const jetsql::TableInfo* MdbSource::Table(std::string_view name) {
  MirrorTable* t = Find(name);
  if (t == nullptr) {
    const mdb::Object* object = base_.Catalog().Find(name);
    if (object == nullptr || object->type == mdb::Object::Query) return nullptr;
    if (object->type == mdb::Object::LinkedOdbc)
      throw base::Error("La tabla " + object->name +
                        " está vinculada por ODBC a otra base: no se puede leer desde aquí.");
    if (base::StartsWith(object->name, "sqlite_", base::Compare::IgnoringCase))
      throw base::Error("El nombre " + object->name + " está reservado.");
    auto fresh = Describe(*object);
    fresh->number = static_cast<int>(by_number_.size());
    t = fresh.get();
    by_number_.push_back(t);
    tables_.emplace(base::LowerCase(object->name), std::move(fresh));
  }
  if (!t->state.loaded && std::find(requested_.begin(), requested_.end(), t) == requested_.end())
    requested_.push_back(t);
  return &t->info;
}

const std::string* MdbSource::Query(std::string_view name) {
  std::string key = base::LowerCase(name);
  if (const auto it = queries_.find(key); it != queries_.end()) return &it->second;
  const mdb::Object* object = base_.Catalog().Find(name);
  if (object == nullptr || object->type != mdb::Object::Query) return nullptr;
  const mdb::SavedQuery query = base_.Catalog().QueryOf(name);
  const mdb::QueryKind kind = mdb::KindOf(query);
  if (!GivesRows(kind) && kind != mdb::QueryKind::Crosstab)
    throw base::Error("La consulta '" + object->name + "' es " + KindName(kind) +
                      ": no da filas y no se puede usar como tabla");
  std::string text = QueryText(query);
  try {
    jetsql::Parse(text);
  } catch (const base::Error& e) {
    throw base::Error("La consulta '" + object->name + "' no se puede usar: " + e.Description());
  }
  return &queries_.emplace(std::move(key), std::move(text)).first->second;
}

void MdbSource::Execute(const std::string& sql) { engine_sqlite::ExecuteOwn(mirror_, sql.c_str()); }

void MdbSource::Load(MirrorTable& t) {
  if (t.state.loaded) return;
  const OwnWork own(own_);
  Execute("SAVEPOINT idm_mirror");
  try {
    Execute(CreateTableText(t, t.base->Catalog().PropertiesOf(t.name_in_base)));
    counters_.rows_read += Fill(mirror_, t);
  } catch (const base::Error&) {
    sqlite3_exec(mirror_, "ROLLBACK TO idm_mirror; RELEASE idm_mirror", nullptr, nullptr, nullptr);
    throw;
  }
  Execute("RELEASE idm_mirror");
  t.state.loaded = true;
  ++counters_.mirrors;
  if (t.state.rows->size() <= kRowsWithoutWaiting) return BuildIndexes(t);
  without_indexes_.push_back(&t);
  statements_ = 0;
}

void MdbSource::BuildIndexes(MirrorTable& t) {
  if (t.state.indexes) return;
  const OwnWork own(own_);
  CreateIndexes(mirror_, t);
  t.state.indexes = true;
}

void MdbSource::AttendPending() {
  if (without_indexes_.empty() || ++statements_ <= kStatementsWithoutIndexes) return;
  for (MirrorTable* t : without_indexes_)
    if (t->state.loaded) BuildIndexes(*t);
  without_indexes_.clear();
}

MirrorTable* MdbSource::LookAt(std::string_view name) {
  if (Table(name) == nullptr) return nullptr;
  MirrorTable* t = Find(name);
  Load(*t);
  return t;
}

void MdbSource::BeforeRun(const jetsql::Translation& statement) {
  const bool define = statement.kind == jetsql::Kind::Definition ||
                      statement.definition.what != jetsql::Definition::What::None;
  if (define && !rehearsing_)
    throw base::Error("Una sentencia que define tablas o consultas no se puede correr de esta forma.");
  for (MirrorTable* t : requested_) Load(*t);
  requested_.clear();
  AttendPending();
  if (statement.writes.empty()) return;
  for (const std::string& name : statement.writes)
    Prepare(Local(name), statement.kind != jetsql::Kind::Insert);
  on_write_();
}

MirrorTable& MdbSource::Local(const std::string& name) {
  MirrorTable* t = LookAt(name);
  if (t == nullptr) throw base::Error("No se encuentra la tabla o consulta '" + name + "'");
  return *t;
}

void MdbSource::SaveState() {
  for (auto& [key, t] : tables_) t->saved = t->state;
}

void MdbSource::RestoreState() {
  to_settle_.clear();
  unnoted_ = false;
  for (auto& [key, t] : tables_) {
    t->state = t->saved;
    t->touched.clear();
  }
  AfterUndo();
}

void MdbSource::AfterUndo() {
  for (auto& [key, t] : tables_)
    if (!t->state.loaded) t->by_row.reset();
  std::erase_if(without_indexes_, [](const MirrorTable* t) { return !t->state.loaded; });
  for (auto& [key, t] : tables_)
    if (t->state.loaded && !t->state.indexes &&
        std::find(without_indexes_.begin(), without_indexes_.end(), t.get()) == without_indexes_.end())
      without_indexes_.push_back(t.get());
}

void MdbSource::SetMark() {
  tables_at_mark_.reset();
  for (auto& [key, t] : tables_) {
    t->at_mark = t->state;
    t->touched_at_mark = t->touched.size();
  }
}

void MdbSource::KeepForMark() {
  if (tables_at_mark_) return;
  AtMark kept{tables_, by_number_, {}};
  for (const MirrorTable* t : by_number_) {
    kept.touched.emplace_back();
    if (t != nullptr)
      kept.touched.back().assign(t->touched.begin(),
                                 t->touched.begin() + static_cast<std::ptrdiff_t>(t->touched_at_mark));
  }
  tables_at_mark_ = std::move(kept);
}

void MdbSource::ReturnToMark() {
  to_renew_.clear();
  requested_.clear();
  unnoted_ = false;
  if (tables_at_mark_) {
    // Definitions are rare: what they dropped is back, the rest is read when it is named again.
    tables_ = std::move(tables_at_mark_->tables);
    by_number_ = std::move(tables_at_mark_->by_number);
    for (auto& [key, t] : tables_)
      t->touched = std::move(tables_at_mark_->touched[static_cast<std::size_t>(t->number)]);
    tables_at_mark_.reset();
    queries_.clear();
    without_indexes_.clear();
    last_ = nullptr;
  } else {
    for (auto& [key, t] : tables_) {
      const MirrorTable::State &now = t->state, &then = t->at_mark;
      t->touched.resize(t->touched_at_mark);
      if (now.loaded != then.loaded || now.indexes != then.indexes ||
          now.ready_to_insert != then.ready_to_insert || now.ready_for_all != then.ready_for_all)
        to_renew_.push_back({t->info.name, now.indexes, now.ready_to_insert, now.ready_for_all});
    }
  }
  for (auto& [key, t] : tables_) t->state = t->at_mark;
  AfterUndo();
}

void MdbSource::Renew() {
  for (const ToRenew& r : to_renew_) {
    MirrorTable& t = Local(r.table);
    if (r.indexes) BuildIndexes(t);
    if (r.ready_to_insert || r.ready_for_all) Prepare(t, r.ready_for_all);
  }
  to_renew_.clear();
}

void MdbSource::Remove(Tables::iterator it) {
  const std::shared_ptr<MirrorTable> kept = it->second;
  MirrorTable* t = kept.get();
  t->by_row.reset();
  if (t->state.loaded) {
    const OwnWork own(own_);
    Execute("DROP TABLE IF EXISTS " + Quoted(t->info.name));
  }
  by_number_[static_cast<std::size_t>(t->number)] = nullptr;
  std::erase(without_indexes_, t);
  std::erase(requested_, t);
  if (last_ == t) last_ = nullptr;
  tables_.erase(it);
}

void MdbSource::Discard(const std::vector<std::string>& tables) {
  queries_.clear();
  for (const std::string& name : tables)
    if (const auto it = tables_.find(base::LowerCase(name)); it != tables_.end()) Remove(it);
  for (auto& [key, t] : tables_) t->state.ready_to_insert = t->state.ready_for_all = false;
}

// By what SQLite holds, since a rollback brings back mirrors that had been dropped.
void MdbSource::DiscardAll() {
  while (!tables_.empty()) Remove(tables_.begin());
  std::vector<std::string> remaining;
  {
    const engine_sqlite::Statement s = engine_sqlite::Prepare(
        mirror_,
        "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\'");
    while (sqlite3_step(s.get()) == SQLITE_ROW)
      remaining.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(s.get(), 0)));
  }
  const OwnWork own(own_);
  for (const std::string& name : remaining) Execute("DROP TABLE " + Quoted(name));
  by_number_.clear();
  queries_.clear();
  links_.Forget();
}

}  // namespace engine_mdb
