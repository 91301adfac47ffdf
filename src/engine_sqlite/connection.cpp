// From a text of the dialect to its rows.
#include <cmath>

#include "base/currency.h"
#include "base/number.h"
#include "engine_sqlite/connection_internal.h"
#include "engine_sqlite/work_limit_internal.h"

namespace engine_sqlite {
namespace {

using jetsql::Kind;
using What = jetsql::Definition::What;

constexpr const char* kQueriesOnly = "La sentencia no es de consulta: aquí solo se puede leer.";

Prepared PreparedOf(jetsql::Translation translation) {
  Prepared p;
  p.translation = std::move(translation);
  p.statements.resize(p.translation.steps.size());
  auto columns = std::make_shared<db::Columns>();
  for (const jetsql::ResultColumn& c : p.translation.columns) columns->push_back({c.name, c.type});
  p.columns = std::move(columns);
  return p;
}

// Leaves a statement ready for its next run, whatever happened in this one.
class StatementReset {
 public:
  explicit StatementReset(sqlite3_stmt* s) : s_(s) {}
  StatementReset(const StatementReset&) = delete;
  StatementReset& operator=(const StatementReset&) = delete;
  ~StatementReset() {
    sqlite3_reset(s_);
    sqlite3_clear_bindings(s_);
  }

 private:
  sqlite3_stmt* s_;
};

// Several steps, all or none: a savepoint inside a transaction, else a transaction of their own.
class AllOrNone {
 public:
  AllOrNone(sqlite3* base, bool in_transaction, bool reads) : base_(base), nested_(in_transaction) {
    ExecuteOwn(base_, nested_ ? "SAVEPOINT idm_statement" : (reads ? "BEGIN" : "BEGIN IMMEDIATE"));
  }
  AllOrNone(const AllOrNone&) = delete;
  AllOrNone& operator=(const AllOrNone&) = delete;
  ~AllOrNone() {
    if (done_ || sqlite3_get_autocommit(base_) != 0) return;
    const char* undo = nested_ ? "ROLLBACK TO idm_statement; RELEASE idm_statement" : "ROLLBACK";
    if (sqlite3_exec(base_, undo, nullptr, nullptr, nullptr) == SQLITE_OK || !nested_) return;
    // Half a statement must not be kept: then nothing of the transaction is, and what comes next is told so.
    sqlite3_exec(base_, "ROLLBACK", nullptr, nullptr, nullptr);
  }
  void Commit() {
    ExecuteOwn(base_, nested_ ? "RELEASE idm_statement" : "COMMIT");
    done_ = true;
  }

 private:
  sqlite3* base_;
  bool nested_;
  bool done_ = false;
};

base::Value ColumnValue(sqlite3_stmt* s, int i, base::Type type) {
  switch (sqlite3_column_type(s, i)) {
    case SQLITE_NULL:
      return {};
    case SQLITE_TEXT:
    case SQLITE_BLOB:
      return std::string(TextOf(s, i));
    case SQLITE_INTEGER:
      if (type == base::Type::Boolean) return sqlite3_column_int64(s, i) != 0;
      if (type == base::Type::Null || type == base::Type::Integer || type == base::Type::Text)
        return std::int64_t{sqlite3_column_int64(s, i)};
      break;
    default:
      break;
  }
  const double v = sqlite3_column_double(s, i);
  switch (type) {
    case base::Type::Boolean:
      return v != 0;
    case base::Type::Single:
      return static_cast<float>(v);
    case base::Type::Currency:
      return base::CurrencyOf(v);
    case base::Type::Date:
      return base::Date{v};
    default:
      return v;
  }
}

}  // namespace

db::Recordset SqliteConnection::ExecuteAs(std::string_view sql, bool query_only) {
  return db::AsConnectionErrors([&] { return ResolveAndRun(sql, query_only); });
}

void SqliteConnection::BeginStatement() {
  VerifyUsable();
  affected_ = 0;
  environment_.now.reset();
  ++counters_.executions;
  if (!in_transaction_) CheckOutsideChanges();
}

void SqliteConnection::RunTranslation(jetsql::Translation translation) {
  db::AsConnectionErrors([&] {
    BeginStatement();
    Prepared p = PreparedOf(std::move(translation));
    if (source_ != nullptr) Announce(p.translation);
    Run(p, {}, {});
  });
}

db::Recordset SqliteConnection::ResolveAndRun(std::string_view sql, bool query_only) {
  BeginStatement();
  const std::vector<base::Value>* literals = nullptr;
  const std::shared_ptr<Prepared> p = Resolve(sql, literals);
  if (query_only && p->translation.kind != Kind::Query) throw db::Error(kQueriesOnly);
  if (source_ != nullptr) Announce(p->translation);
  return Run(*p, *literals, sql);
}

// A source that fails is asked for its tables again the next time, which only a new translation does.
void SqliteConnection::Announce(const jetsql::Translation& statement) {
  try {
    source_->BeforeRun(statement);
  } catch (const base::Error&) {
    ForgetAll();
    throw;
  }
}

void SqliteConnection::CheckOutsideChanges() {
  if (outside_version_ == nullptr) return;
  const StatementReset restore(outside_version_.get());
  if (sqlite3_step(outside_version_.get()) != SQLITE_ROW) ThrowError(base_.get());
  const std::int64_t version = sqlite3_column_int64(outside_version_.get(), 0);
  if (version == seen_version_) return;
  seen_version_ = version;
  ForgetAll();
}

std::shared_ptr<Prepared> SqliteConnection::Resolve(std::string_view sql,
                                                    const std::vector<base::Value>*& literals) {
  if (const MouldCache::Found h = moulds_.Find(sql); h.slot != nullptr) {
    ++(h.equal ? counters_.equal_texts : counters_.known_shapes);
    literals = &h.slot->mould.Literals();
    return h.slot->prepared;
  }
  literals = &shape_.literals;
  if (!jetsql::SeparateLiterals(sql, shape_)) {
    Translate(sql);  // says what is wrong
    throw db::Error("La sentencia tiene un valor mal escrito.");
  }
  std::shared_ptr<Prepared> p = shapes_.Find(shape_);
  if (p != nullptr) {
    ++counters_.known_shapes;
  } else {
    p = Translate(sql);
    for (const int i : p->translation.fixed)
      p->fixed_values.push_back(shape_.literals.at(static_cast<std::size_t>(i)));
    if (p->translation.kind == Kind::Definition) return p;
    shapes_.Store(shape_, p);
  }
  moulds_.Store(sql, shape_, p);
  return p;
}

std::shared_ptr<Prepared> SqliteConnection::Translate(std::string_view sql, const KnownCrosstabs& crosstabs) {
  ++counters_.translations;
  return std::make_shared<Prepared>(PreparedOf(
      crosstabs.empty() ? jetsql::Translate(sql, catalog_, translation_options_)
                        : jetsql::TranslateCrosstab(sql, catalog_, translation_options_, crosstabs)));
}

db::Recordset SqliteConnection::Run(Prepared& p, const std::vector<base::Value>& literals,
                                    std::string_view sql, KnownCrosstabs crosstabs) {
  const jetsql::Translation& t = p.translation;
  if (t.kind == Kind::Definition || t.definition.what != What::None) {
    RunDefinition(p, literals);
    return {p.columns, {}, std::string(sql)};
  }
  std::vector<base::Value> cells;
  std::vector<base::Value>* target = t.kind == Kind::Query ? &cells : nullptr;
  if (t.steps.size() == 1) {
    RunStep(p, 0, literals, target);
    if (jetsql::ChangesRows(t.kind)) affected_ = sqlite3_changes64(base_.get());
  } else {
    AllOrNone all_or_none(base_.get(), in_transaction_, t.kind == Kind::Query);
    for (std::size_t i = 0; i < t.steps.size(); ++i) RunStep(p, i, literals, target);
    if (jetsql::ChangesRows(t.kind)) affected_ = sqlite3_changes64(base_.get());
    all_or_none.Commit();
  }
  if (t.crosstab) {
    crosstabs.push_back({t.crosstab_query, std::move(cells)});
    const std::shared_ptr<Prepared> next = Translate(sql, crosstabs);
    if (source_ != nullptr) Announce(next->translation);
    return Run(*next, literals, sql, std::move(crosstabs));
  }
  return {p.columns, std::move(cells), std::string(sql)};
}

void SqliteConnection::RunDefinition(Prepared& p, const std::vector<base::Value>& literals) {
  const jetsql::Definition& d = p.translation.definition;
  catalog_.VerifyNameIsFree(d);
  {
    AllOrNone all_or_none(base_.get(), in_transaction_, false);
    for (std::size_t i = 0; i < p.translation.steps.size(); ++i) RunStep(p, i, literals, nullptr);
    if (p.translation.fills) affected_ = sqlite3_changes64(base_.get());
    if (d.what == What::CreateView) catalog_.CreateQuery(d.name, d.view_text);
    if (d.what == What::DropView) catalog_.DropQuery(d.name);
    all_or_none.Commit();
  }
  defined_ = true;
  ForgetAll();
}

void SqliteConnection::RunStep(Prepared& p, std::size_t step, const std::vector<base::Value>& literals,
                               std::vector<base::Value>* cells) {
  Statement& statement = p.statements[step];
  const std::string& text = p.translation.steps[step];
  environment_.failed = environment_.out_of_memory = false;
  if (statement == nullptr) {
    ++counters_.preparations;
    statement = Prepare(base_.get(), text);
  }
  sqlite3_stmt* s = statement.get();
  const StatementReset restore(s);
  WorkLimit limit(base_.get(), s, environment_, budget_);
  const int parameters = sqlite3_bind_parameter_count(s);
  for (int i = 0; i < parameters && i < static_cast<int>(literals.size()); ++i) Bind(s, i + 1, literals[i]);
  const int width = sqlite3_column_count(s);
  const bool keep = cells != nullptr && width > 0 && width == static_cast<int>(p.columns->size());
  int rc = SQLITE_OK;
  while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
    if (!keep) continue;
    for (int i = 0; i < width; ++i) cells->push_back(ColumnValue(s, i, (*p.columns)[i].type));
    limit.Row(*cells, static_cast<std::size_t>(width));
  }
  if ((rc & 0xFF) == SQLITE_INTERRUPT && !environment_.out_of_memory) limit.ThrowIfInterrupted();
  if (rc != SQLITE_DONE || environment_.out_of_memory) ThrowFromStep();
}

void SqliteConnection::ThrowFromStep() {
  if (environment_.out_of_memory) throw db::Error(base::StorageFault(base::kOutOfMemory));
  // What SQLite undid by itself was the whole transaction, whatever the reason.
  const bool undone = in_transaction_ && sqlite3_get_autocommit(base_.get()) != 0;
  const base::ErrorKind kind = undone ? base::ErrorKind::Storage : base::ErrorKind::Statement;
  if (environment_.failed) throw db::Error(environment_.description, environment_.number, {}, kind);
  if (!undone) ThrowError(base_.get());
  const int code = sqlite3_extended_errcode(base_.get());
  throw db::Error(DescriptionOf(code, sqlite3_errmsg(base_.get())), 0, {}, kind);
}

void SqliteConnection::ForgetAll() {
  moulds_.Clear();
  shapes_.Clear();
  catalog_.Forget();
}

}  // namespace engine_sqlite
