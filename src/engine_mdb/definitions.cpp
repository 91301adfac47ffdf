// Definition statements: what the translator checks for every engine, then the change of the file itself.
#include <optional>

#include "base/text.h"
#include "engine_mdb/connection_internal.h"
#include "engine_mdb/save_query.h"
#include "jetsql/definition_rules.h"
#include "ports/system_clock.h"

namespace engine_mdb {
namespace {

using jetsql::ColumnKind;
using jetsql::Constraint;
using mdb::ColumnType;

constexpr int kTextLength = 255;

ColumnType TypeOf(ColumnKind kind) {
  switch (kind) {
    case ColumnKind::YesNo:
      return ColumnType::Boolean;
    case ColumnKind::Byte:
      return ColumnType::Byte;
    case ColumnKind::Short:
      return ColumnType::Integer;
    case ColumnKind::Long:
    case ColumnKind::Counter:
      return ColumnType::Long;
    case ColumnKind::Single:
      return ColumnType::Single;
    case ColumnKind::Double:
      return ColumnType::Double;
    case ColumnKind::Currency:
      return ColumnType::Currency;
    case ColumnKind::Decimal:
      return ColumnType::Decimal;
    case ColumnKind::Date:
      return ColumnType::Date;
    case ColumnKind::Text:
      return ColumnType::Text;
    case ColumnKind::Memo:
      return ColumnType::Memo;
    case ColumnKind::Binary:
      return ColumnType::Binary;
    case ColumnKind::Guid:
      return ColumnType::Guid;
    case ColumnKind::Ole:
      break;
  }
  return ColumnType::Ole;
}

mdb::NewColumn ColumnOf(const jetsql::ColumnDefinition& c, bool required) {
  mdb::NewColumn n;
  n.name = c.name;
  n.type = TypeOf(c.kind);
  if (c.kind == ColumnKind::Text || c.kind == ColumnKind::Binary) {
    if (c.length > kTextLength * (c.kind == ColumnKind::Binary ? 2 : 1))
      throw db::Error("El campo " + c.name + " es demasiado largo: un texto tiene hasta 255 caracteres.");
    n.length = static_cast<std::uint16_t>(c.length > 0 ? c.length : kTextLength);
  }
  if (c.kind == ColumnKind::Decimal) {
    if (c.precision < 1 || c.precision > 28 || c.scale < 0 || c.scale > c.precision)
      throw db::Error("El campo " + c.name + " tiene una precisión o una escala que no existe.");
    n.precision = static_cast<std::uint8_t>(c.precision);
    n.scale = static_cast<std::uint8_t>(c.scale);
  }
  n.auto_number = c.kind == ColumnKind::Counter;
  n.seed = c.seed;
  n.increment = c.increment;
  n.required = required && c.kind != ColumnKind::YesNo && !n.auto_number;
  if (c.default_value) n.default_value = jetsql::Print(*c.default_value);
  return n;
}

mdb::NewIndex Index(const std::string& name, const std::vector<std::string>& columns, bool primary) {
  mdb::NewIndex i;
  i.name = name;
  for (const auto& c : columns) i.parts.push_back({c, false});
  i.unique = true;
  i.primary = i.required = primary;
  return i;
}

std::optional<mdb::NewIndex> IndexOf(const jetsql::ColumnDefinition& c) {
  if (!c.key && !c.unique) return std::nullopt;
  return Index(jetsql::IndexName(c), {c.name}, c.key);
}

ColumnKind KindOf(base::Type type) {
  switch (type) {
    case base::Type::Boolean:
      return ColumnKind::YesNo;
    case base::Type::Integer:
      return ColumnKind::Long;
    case base::Type::Single:
      return ColumnKind::Single;
    case base::Type::Number:
      return ColumnKind::Double;
    case base::Type::Currency:
      return ColumnKind::Currency;
    case base::Type::Date:
      return ColumnKind::Date;
    case base::Type::Text:
    case base::Type::Null:
      break;
  }
  return ColumnKind::Memo;
}

const mdb::TableRelationship* FindRelationship(const mdb::SystemCatalog& catalog, std::string_view name) {
  for (const auto& r : catalog.Relationships())
    if (base::EqualIgnoringCase(r.name, name)) return &r;
  return nullptr;
}

// A definition runs in SQLite, and is taken back at the end whatever it said.
class Rehearsal {
 public:
  Rehearsal(sqlite3* mirror, MdbSource& source) : mirror_(mirror), source_(source) {
    engine_sqlite::ExecuteOwn(mirror_, "SAVEPOINT idm_trial");
    source_.SetRehearsing(true);
  }
  Rehearsal(const Rehearsal&) = delete;
  Rehearsal& operator=(const Rehearsal&) = delete;
  ~Rehearsal() {
    source_.SetRehearsing(false);
    sqlite3_exec(mirror_, "ROLLBACK TO idm_trial; RELEASE idm_trial", nullptr, nullptr, nullptr);
  }

 private:
  sqlite3* mirror_;
  MdbSource& source_;
};

}  // namespace

template <typename Step>
void MdbConnection::RestoreOnFailure(Step&& step) {
  mdb::PageFile::Savepoint point = base_->Pages().Save();
  try {
    step();
  } catch (const base::Error&) {
    base_->RollbackTo(std::move(point));
    throw;
  }
}

jetsql::Translation MdbConnection::Translate(jetsql::Statement& statement) const {
  return jetsql::Translate(statement, *source_, {options_.dao_wildcards, options_.locale});
}

// What SQLite would say of the statement, without keeping what it did.
void MdbConnection::Rehearse(jetsql::Statement& statement) {
  const Rehearsal rehearsal(mirror_.base, *source_);
  engine_sqlite::RunTranslation(*mirror_.connection, Translate(statement));
}

// The rows changed so far go into the pages first, so that the new definition finds them; a failure goes back
// to here, and out of a transaction the whole statement is one.
void MdbConnection::RunDefinition(jetsql::Statement& statement) {
  if (!open_below_) Begin();
  if (marked_ && !pages_at_mark_) {
    source_->KeepForMark();
    pages_at_mark_ = base_->Pages().Save();
  }
  try {
    // A table that is refused must not leave those before it in the pages: they would be written again.
    RestoreOnFailure([&] { source_->WriteChanges(); });
    source_->Settle(false);
    defined_ = true;
    try {
      RestoreOnFailure([&] { std::visit([&](auto& s) { Apply(statement, s); }, statement); });
    } catch (const base::Error&) {
      source_->DiscardAll();
      engine_sqlite::ForgetTranslations(*mirror_.connection);
      throw;
    }
    engine_sqlite::ForgetTranslations(*mirror_.connection);
  } catch (const base::Error&) {
    if (!in_transaction_) Rollback();
    throw;
  }
  if (!in_transaction_) Commit();
}

void MdbConnection::Relate(const std::string& table, const std::string& name,
                           const std::vector<std::string>& columns, const jetsql::Reference& reference) {
  using mdb::TableRelationship;
  TableRelationship r;
  r.name = name.empty() ? reference.table + table : name;
  for (int n = 1; name.empty() && FindRelationship(base_->Catalog(), r.name) != nullptr; ++n)
    r.name = reference.table + table + std::to_string(n);
  r.table = table;
  r.columns = columns;
  r.referenced_table = reference.table;
  r.referenced_columns = reference.columns;
  if (reference.cascades_updates) r.flags |= TableRelationship::kCascadesUpdates;
  if (reference.cascades_deletes) r.flags |= TableRelationship::kCascadesDeletes;
  base_->CreateRelationship(r, clock_.Now());
  source_->Discard({table, reference.table});
}

// What goes into the file is made of the tree before it is translated: a translation notes in it what it
// found out.
void MdbConnection::Apply(jetsql::Statement& whole, const jetsql::CreateTable& s) {
  mdb::NewTable fresh;
  fresh.name = s.name;
  for (const auto& c : s.columns) {
    fresh.columns.push_back(ColumnOf(c, jetsql::RefusesNull(s, c)));
    if (auto index = IndexOf(c)) fresh.indexes.push_back(std::move(*index));
  }
  for (const auto& r : s.constraints)
    if (r.what == Constraint::What::Key || r.what == Constraint::What::Unique)
      fresh.indexes.push_back(Index(jetsql::IndexName(r), r.columns, r.what == Constraint::What::Key));
  Rehearse(whole);
  base_->CreateTable(fresh, clock_.Now());
  source_->Discard({s.name});
  for (const auto& c : s.columns)
    if (c.reference) Relate(s.name, c.constraint_name, {c.name}, *c.reference);
  for (const auto& r : s.constraints)
    if (r.what == Constraint::What::Foreign) Relate(s.name, r.name, r.columns, r.reference);
}

void MdbConnection::VerifyIndexIsFree(const mdb::Definition& table, const std::string& name) const {
  for (const auto& i : table.logicals)
    if (base::EqualIgnoringCase(i.name, name)) throw db::Error("El índice " + name + " ya existe.");
}

void MdbConnection::Apply(jetsql::Statement& whole, const jetsql::CreateIndex& s) {
  if (MirrorTable* t = source_->LookAt(s.table)) VerifyIndexIsFree(t->definition, s.name);
  Rehearse(whole);
  mdb::NewIndex index;
  index.name = s.name;
  for (const auto& c : s.columns) index.parts.push_back({c.name, c.descending});
  index.unique = s.unique || s.primary;
  index.primary = s.primary;
  index.ignores_nulls = s.ignores_nulls;
  index.required = s.primary || s.disallows_nulls;
  base_->CreateIndex(s.table, index);
  source_->Discard({s.table});
}

void MdbConnection::Apply(jetsql::Statement& whole, jetsql::CreateView& s) {
  jetsql::NameColumns(s);
  const mdb::SavedQuery query = DecomposeQuery(s.name, *s.query, *source_);
  Translate(whole);
  base_->CreateQuery(query, clock_.Now());
  source_->Discard({});
}

void MdbConnection::DropIndex(const std::string& table, const std::string& name) {
  const MirrorTable* t = source_->LookAt(table);
  bool found = false;
  if (t != nullptr)
    for (const auto& i : t->definition.logicals)
      found = found || (base::EqualIgnoringCase(i.name, name) && i.kind != mdb::LogicalIndex::Foreign);
  if (!found) throw db::Error("No existe el índice " + name + ".");
  base_->DropIndex(table, name);
  source_->Discard({table});
}

void MdbConnection::DropConstraint(const std::string& table, const std::string& name) {
  const mdb::TableRelationship* r = FindRelationship(base_->Catalog(), name);
  if (r == nullptr || !base::EqualIgnoringCase(r->table, table)) return DropIndex(table, name);
  const std::vector<std::string> both{r->table, r->referenced_table};
  base_->DropRelationship(name);
  source_->Discard(both);
}

void MdbConnection::Apply(jetsql::Statement& whole, const jetsql::Drop& s) {
  Translate(whole);
  switch (s.what) {
    case jetsql::Drop::What::Table:
      source_->Discard({s.name});
      base_->DropTable(s.name);
      break;
    case jetsql::Drop::What::Index:
      DropIndex(s.table, s.name);
      break;
    case jetsql::Drop::What::View:
      base_->DropQuery(s.name);
      source_->Discard({});
      break;
  }
}

void MdbConnection::AddColumn(const std::string& table, const jetsql::ColumnDefinition& c,
                              const mdb::NewColumn& fresh) {
  base_->AddColumn(table, fresh);
  if (const auto index = IndexOf(c)) base_->CreateIndex(table, *index);
  source_->Discard({table});
  if (c.reference) Relate(table, c.constraint_name, {c.name}, *c.reference);
}

// A constraint that only refuses Null is an index that does.
void MdbConnection::AddConstraint(const std::string& table, const Constraint& r) {
  if (r.what == Constraint::What::Foreign) return Relate(table, r.name, r.columns, r.reference);
  mdb::NewIndex index = Index(jetsql::IndexName(r), r.columns, r.what == Constraint::What::Key);
  if (r.what == Constraint::What::NotNull) {
    index.unique = false;
    index.required = true;
  }
  base_->CreateIndex(table, index);
  source_->Discard({table});
}

void MdbConnection::Apply(jetsql::Statement& whole, const jetsql::AlterTable& s) {
  using What = jetsql::AlterTable::What;
  const bool relates = s.what == What::AddConstraint && s.constraint.what == Constraint::What::Foreign;
  MirrorTable* t = source_->LookAt(s.table);
  if (t == nullptr) throw db::Error("No se encuentra la tabla o consulta '" + s.table + "'");
  const std::string table = t->info.name;
  if (s.what == What::AddConstraint && !relates)
    VerifyIndexIsFree(t->definition, jetsql::IndexName(s.constraint));
  mdb::NewColumn fresh;
  if (s.what == What::Add) fresh = ColumnOf(s.column, s.column.not_null || s.column.key);
  if (s.what == What::Add || (s.what == What::AddConstraint && !relates))
    Rehearse(whole);
  else if (!relates)
    Translate(whole);
  switch (s.what) {
    case What::Add:
      AddColumn(table, s.column, fresh);
      break;
    case What::Drop:
      base_->DropColumn(table, s.name);
      source_->Discard({table});
      break;
    case What::AddConstraint:
      AddConstraint(table, s.constraint);
      break;
    case What::DropConstraint:
      DropConstraint(table, s.name);
      break;
  }
}

// SELECT … INTO: the table with the kinds of the query's columns, then its rows.
void MdbConnection::Apply(jetsql::Statement& whole, const jetsql::QueryPtr&) {
  const jetsql::Translation t = Translate(whole);
  mdb::NewTable fresh;
  fresh.name = t.definition.name;
  for (const auto& c : t.definition.columns) {
    jetsql::ColumnDefinition defined;
    defined.name = c.name;
    defined.kind = KindOf(c.type);
    fresh.columns.push_back(ColumnOf(defined, false));
  }
  base_->CreateTable(fresh, clock_.Now());
  source_->Discard({fresh.name});
  jetsql::Translation fill;
  fill.kind = jetsql::Kind::Insert;
  fill.steps = {t.steps.back()};
  fill.writes = {fresh.name};
  engine_sqlite::RunTranslation(*mirror_.connection, std::move(fill));
  affected_ = mirror_.connection->AffectedRows();
}

std::unique_ptr<db::Connection> Create(std::string_view path, const Options& options, std::uint16_t order) {
  return db::AsConnectionErrors([&]() -> std::unique_ptr<db::Connection> {
    const base::Date now = options.clock != nullptr ? options.clock->Now() : ports::SystemClock().Now();
    return std::make_unique<MdbConnection>(mdb::Database::Create(path, order, now), path, options);
  });
}

}  // namespace engine_mdb
