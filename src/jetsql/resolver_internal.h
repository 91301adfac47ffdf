// Gives every name of a tree its table and column, and every expression its type. The tree must outlive what
// is read from it: columns point at their sources.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jetsql/ast.h"
#include "jetsql/catalog.h"
#include "jetsql/translate.h"

namespace jetsql {

// The tables that a name may come from, from the inside out.
struct Scope {
  const Scope* parent = nullptr;
  std::vector<Source*> sources;
  std::vector<ListItem>* list = nullptr;  // whose aliases may be named, where they may
};

class Resolver {
 public:
  // `crosstabs`: the columns of the crosstabs among the saved queries, as far as they are known.
  explicit Resolver(Catalog& catalog, const base::Locale* locale = nullptr,
                    const std::vector<CrosstabColumns>* crosstabs = nullptr)
      : catalog_(catalog),
        locale_(locale != nullptr ? *locale : base::Locale::spanish()),
        crosstabs_(crosstabs) {}

  void Resolve(Query& c, const Scope* parent = nullptr);
  void Resolve(Insert& s);
  void Resolve(Update& s);
  void Resolve(Delete& s);
  void ResolveAlone(ExprPtr& e);                          // that names no table
  const TableInfo& TableOf(std::string_view name) const;  // throws when there is none

  // Literals that decided something, in any order.
  const std::vector<int>& FixedLiterals() const { return fixed_; }
  bool IsDeterministic() const { return deterministic_; }

 private:
  enum class Aggregates { Forbidden, Allowed, Inside };
  struct Context {
    const Scope& scope;
    Aggregates aggregates = Aggregates::Forbidden;
    bool* has_aggregate = nullptr;
  };
  struct Found {
    const Source* source = nullptr;
    int column = -1;
  };

  // Sources and names (resolver.cpp).
  void Leaves(const std::vector<BranchPtr>& from, std::vector<Source*>& sources) const;
  void Leaves(const Branch& branch, std::vector<Source*>& sources) const;
  void ResolveSources(const std::vector<Source*>& sources, const Scope* parent);
  void ResolveSource(Source& f, const Scope* parent);
  void OpenQuery(Source& f, const std::string& text);
  void OpenCrosstab(const Source& f) const;
  void ResolveConditions(Branch& branch, const Scope* parent);
  std::string UniqueAlias(std::string_view name);
  Found FindInSources(const std::vector<Source*>& sources, const Expr& e) const;
  Found FindByTableRead(const Scope& scope, const Expr& e) const;
  Found Find(const Scope& scope, const Expr& e) const;

  // Queries (resolver_query.cpp).
  void ResolvePart(Select& s, const Scope* parent);
  void Expand(Select& s) const;
  void NameOutput(Select& s) const;
  void ResolveOrder(Query& c, const Scope* parent);
  void ResolveUnionOrder(Query& c);
  void ResolveDistinctOrder(Query& c);
  void ComputeOutput(Query& c) const;
  void ChooseDistinct(Select& s) const;
  static bool NamesOuter(const Expr& e, const Select& s);
  void CheckGroup(Select& s, ExprPtr& e, bool inside_aggregate);
  bool AreEqual(const Expr& a, const Expr& b, std::vector<int>& literals) const;
  bool Match(const Expr& a, const Expr& b);  // the same, noting the literals in fixed_

  // Expressions (resolver_expr.cpp).
  void Resolve(ExprPtr& e, const Context& c);
  void ResolveColumn(ExprPtr& e, const Context& c);
  void ResolveCall(Expr& e, const Context& c);
  void ResolveSpecial(Expr& e);
  bool ResolveByAlias(ExprPtr& e, const Context& c);
  void ResolveSubquery(Expr& e, const Context& c, bool one_column);

  Catalog& catalog_;
  const base::Locale& locale_;
  const std::vector<CrosstabColumns>* crosstabs_;
  std::vector<std::string> open_;       // saved queries being read
  std::vector<std::string> alias_sql_;  // in use, in lower case
  std::vector<int> fixed_;
  bool deterministic_ = true;
};

}  // namespace jetsql
