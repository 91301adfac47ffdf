// The statements written for Access name, outside of a derived table or of a table under an alias, the base
// table that it reads (`TiposLiquidacion.id_TipoLiq` where only TL, a SELECT from TiposLiquidacion, stands in
// the FROM). Drivers take such a name for a value that was not given; here it becomes the alias.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jetsql/ast.h"
#include "jetsql/catalog.h"

namespace engine_odbc {

class Qualifiers {
 public:
  // The catalog is asked only when a qualifier names no table in scope. A table that it does not list, or
  // cannot, counts as having every column.
  explicit Qualifiers(jetsql::Catalog& catalog) : catalog_(catalog) {}

  // Puts every such qualifier of the statement right; false when there was none and the tree is unchanged.
  bool Resolve(jetsql::Statement& statement);

 private:
  struct Scope {
    const Scope* parent = nullptr;
    std::vector<jetsql::Source*> sources;
  };
  void Visit(jetsql::Query& c, const Scope* parent);
  void Visit(jetsql::Select& s, const Scope* parent);
  void Visit(jetsql::Update& s);
  void Visit(jetsql::Delete& s);
  void Visit(const jetsql::ExprPtr& e, const Scope& scope);
  void VisitDerived(const Scope& scope);
  void VisitConditions(jetsql::Branch& branch, const Scope* parent);
  void Set(std::string& qualifier, const std::string& name, const Scope& scope);
  static const std::string& AliasOf(jetsql::Source& f, int& unnamed);
  bool HasColumn(const jetsql::Source& f, std::string_view name) const;

  jetsql::Catalog& catalog_;
  int unnamed_ = 0;  // derived tables that were given an alias
  bool changed_ = false;
};

}  // namespace engine_odbc
