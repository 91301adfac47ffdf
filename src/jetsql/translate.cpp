#include "jetsql/translate.h"

#include <algorithm>

#include "jetsql/crosstab_internal.h"
#include "jetsql/definition_internal.h"
#include "jetsql/parser.h"
#include "jetsql/resolver_internal.h"
#include "jetsql/writer_internal.h"

namespace jetsql {
namespace {

// CREATE, DROP and ALTER hold their literals in the text, where SQLite takes no parameters.
void FixAll(std::string_view sql, Translation& t) {
  Shape shape;
  SeparateLiterals(sql, shape);
  for (std::size_t i = 0; i < shape.literals.size(); ++i) t.fixed.push_back(static_cast<int>(i));
}

class Translator {
 public:
  // `crosstabs`: the columns of crosstabs, as far as they are known.
  Translator(Catalog& catalog, const TranslationOptions& options,
             const std::vector<CrosstabColumns>* crosstabs = nullptr)
      : catalog_(catalog),
        options_(options),
        crosstabs_(crosstabs),
        resolver_(catalog, options.locale, crosstabs) {}

  Translation Make(std::string_view sql) {
    Statement s = Parse(sql);
    if (KindOf(s) == Kind::Definition && !std::holds_alternative<QueryPtr>(s)) FixAll(sql, t_);
    return Make(s);
  }

  Translation Make(Statement& s) {
    t_.kind = KindOf(s);
    std::visit([&](auto& x) { TranslateOne(x); }, s);
    t_.deterministic = resolver_.IsDeterministic();
    for (const int i : resolver_.FixedLiterals()) t_.fixed.push_back(i);
    std::sort(t_.fixed.begin(), t_.fixed.end());
    t_.fixed.erase(std::unique(t_.fixed.begin(), t_.fixed.end()), t_.fixed.end());
    return std::move(t_);
  }

 private:
  void TranslateOne(QueryPtr& c) {
    if (c->crosstab && !c->crosstab->has_list) {
      const CrosstabColumns* own = OwnColumns();
      t_.crosstab = own == nullptr;
      own == nullptr ? AskForValues(*c) : SetValues(*c, own->values);
    }
    const bool reads = t_.kind == Kind::Query;
    try {
      resolver_.Resolve(*c);
    } catch (const MissingColumns& f) {
      if (!reads) throw;
      AskForValuesOf(f.Query());
      return;
    }
    if (!reads) {
      DefineFromQuery(*c, catalog_, options_, t_);
      return;
    }
    t_.steps.push_back(WriteQuery(*c, options_));
    for (const auto& col : c->output) t_.columns.push_back({col.name, col.type.type});
  }
  const CrosstabColumns* OwnColumns() const {
    if (crosstabs_ != nullptr)
      for (const auto& c : *crosstabs_)
        if (c.query.empty()) return &c;
    return nullptr;
  }
  // The values of a saved crosstab first; if it stands on another one, those of that.
  void AskForValuesOf(std::string query) {
    constexpr int kMaxNested = 30;
    for (int i = 0; i < kMaxNested; ++i) {
      Statement s = Parse(*catalog_.Query(query), Literals::InText);
      Query& c = *std::get<QueryPtr>(s);
      AskForValues(c);
      try {
        Resolver(catalog_, options_.locale, crosstabs_).Resolve(c);
      } catch (const MissingColumns& f) {
        query = f.Query();
        continue;
      }
      t_ = {};
      t_.steps.push_back(WriteQuery(c, options_));
      t_.columns.push_back({c.output[0].name, c.output[0].type.type});
      t_.crosstab = true;
      t_.crosstab_query = std::move(query);
      return;
    }
    throw base::Error("La consulta '" + query + "' se contiene a sí misma");
  }
  void TranslateOne(Insert& s) {
    resolver_.Resolve(s);
    t_.steps.push_back(WriteInsert(s, options_));
    t_.writes.push_back(s.info->name);
  }
  void TranslateOne(Update& s) {
    resolver_.Resolve(s);
    t_.steps = WriteUpdate(s, options_);
    for (const Assignment& a : s.changes) {
      const std::string& table = a.column->source->table->name;
      if (std::find(t_.writes.begin(), t_.writes.end(), table) == t_.writes.end()) t_.writes.push_back(table);
    }
  }
  void TranslateOne(Delete& s) {
    resolver_.Resolve(s);
    t_.steps.push_back(WriteDelete(s, options_));
    t_.writes.push_back(s.source->table->name);
  }
  template <typename T>
  void TranslateOne(T& definition) {
    Define(definition, catalog_, t_);
  }

  Catalog& catalog_;
  TranslationOptions options_;
  const std::vector<CrosstabColumns>* crosstabs_;
  Resolver resolver_;
  Translation t_;
};

}  // namespace

Translation Translate(std::string_view sql, Catalog& catalog, const TranslationOptions& options) {
  return Translator(catalog, options).Make(sql);
}

Translation Translate(Statement& statement, Catalog& catalog, const TranslationOptions& options) {
  return Translator(catalog, options).Make(statement);
}

std::string TranslateValue(std::string_view expression, base::Type target) {
  class EmptyCatalog final : public Catalog {
    const TableInfo* Table(std::string_view) override { return nullptr; }
    const std::string* Query(std::string_view) override { return nullptr; }
  };
  const Statement s = Parse("SELECT " + std::string(expression), Literals::InText);
  const auto* query = std::get_if<QueryPtr>(&s);
  if (query == nullptr || (*query)->parts.size() != 1 || (*query)->parts[0].list.size() != 1 ||
      !(*query)->parts[0].list[0].expr || !(*query)->parts[0].from.empty())
    throw base::Error("'" + std::string(expression) + "' no es un valor");
  EmptyCatalog empty;
  ExprPtr value = (*query)->parts[0].list[0].expr;
  Resolver(empty).ResolveAlone(value);
  return WriteValue(*value, target);
}

Translation TranslateCrosstab(std::string_view sql, Catalog& catalog, const TranslationOptions& options,
                              const std::vector<CrosstabColumns>& columns) {
  return Translator(catalog, options, &columns).Make(sql);
}

}  // namespace jetsql
