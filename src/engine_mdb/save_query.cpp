#include "engine_mdb/save_query.h"

#include <algorithm>

#include "base/error.h"
#include "base/text.h"
#include "jetsql/parser.h"

namespace engine_mdb {
namespace {

using jetsql::Branch;
using jetsql::Expr;
using jetsql::JoinType;
using jetsql::Node;
using jetsql::Select;

namespace codes = mdb::query_codes;

// What Access calls a derived table that has no name, and the sides of a union.
constexpr const char* kNoAlias = "%$##@_Alias";
constexpr const char* kSideOne = "X7YZ_____1";
constexpr const char* kSideTwo = "X7YZ_____2";

const std::string& NameOf(const jetsql::Source& f) { return f.alias.empty() ? f.name : f.alias; }

void Leaves(const Branch& r, std::vector<const jetsql::Source*>& leaves) {
  if (r.leaf) {
    leaves.push_back(r.leaf.get());
    return;
  }
  Leaves(*r.left, leaves);
  Leaves(*r.right, leaves);
}

void Columns(const Expr& e, std::vector<const Expr*>& columns) {
  if (e.node == Node::Column) columns.push_back(&e);
  for (const auto& h : e.children) Columns(*h, columns);
}

class Decomposition {
 public:
  Decomposition(std::string name, jetsql::Catalog& catalog) : catalog_(catalog) {
    query_.name = std::move(name);
    Row(codes::kStart).flag = 0;
  }

  mdb::SavedQuery Build(const jetsql::Query& c) {
    if (c.crosstab) throw base::Error("Una consulta de referencias cruzadas no se puede guardar");
    if (c.parts.size() > 1)
      Join(c);
    else
      DecomposeSelect(c.parts[0]);
    for (const auto& o : c.order) {
      mdb::QueryRow& f = Row(codes::kOrder, jetsql::Print(*o.expr));
      if (o.descending) f.name1 = "D";
    }
    Row(codes::kEnd);
    return std::move(query_);
  }

 private:
  mdb::QueryRow& Row(std::uint8_t attribute, std::string expression = {}) {
    std::uint32_t order = 1;
    for (const auto& f : query_.rows) order += f.attribute == attribute ? 1U : 0U;
    mdb::QueryRow row;
    row.attribute = attribute;
    row.order = order;
    if (!expression.empty()) row.expression = std::move(expression);
    query_.rows.push_back(std::move(row));
    return query_.rows.back();
  }

  // The last SELECT, and before it all the others as one text.
  void Join(const jetsql::Query& c) {
    query_.flags = mdb::ObjectFlagsOf(mdb::QueryKind::Union);
    Row(codes::kKind).flag = mdb::CodeOf(mdb::QueryKind::Union);
    Row(codes::kOptions).flag = c.all.back() ? codes::kAll : codes::kDistinct;
    std::string before;
    for (std::size_t i = 0; i + 1 < c.parts.size(); ++i) {
      if (i > 0) before += c.all[i - 1] ? " UNION ALL " : " UNION ";
      before += jetsql::Print(c.parts[i]);
    }
    Row(codes::kSource, before).name2 = kSideOne;
    Row(codes::kSource, jetsql::Print(c.parts.back())).name2 = kSideTwo;
  }

  void DecomposeSelect(const Select& s) {
    Row(codes::kKind).flag = mdb::CodeOf(mdb::QueryKind::Select);
    Options(s);
    for (const auto& branch : s.from) Sources(*branch);
    for (const auto& item : s.list) Column(s, item);
    for (const auto& branch : s.from) Joins(*branch);
    if (s.where) Row(codes::kWhere, jetsql::Print(*s.where));
    for (const auto& g : s.group) Row(codes::kGroup, jetsql::Print(*g));
    if (s.having) Row(codes::kHaving, jetsql::Print(*s.having));
  }

  static bool OnlyStar(const Select& s) {
    return s.list.size() == 1 && !s.list[0].expr && s.list[0].qualifier.empty();
  }

  void Options(const Select& s) {
    std::int16_t options = OnlyStar(s) ? codes::kAll : 0;
    if (s.distinctness == jetsql::Distinctness::Distinct) options |= codes::kDistinct;
    if (s.distinctness == jetsql::Distinctness::DistinctRow) options |= codes::kDistinctRows;
    if (s.limit) options |= codes::kTop;
    if (s.limit && s.limit_is_percent) options |= codes::kPercent;
    mdb::QueryRow& f = Row(codes::kOptions);
    f.flag = options;
    if (s.limit) f.name1 = jetsql::Print(*s.limit);
  }

  void Column(const Select& s, const jetsql::ListItem& item) {
    if (OnlyStar(s)) return;
    if (item.expr) {
      mdb::QueryRow& f = Row(codes::kColumn, jetsql::Print(*item.expr));
      f.flag = 0;
      if (!item.alias.empty()) f.name1 = item.alias;
      return;
    }
    std::string all = "*";
    if (!item.qualifier.empty()) {
      Expr e(Node::Column);
      e.name = item.qualifier;
      all = jetsql::Print(e) + ".*";
    }
    Row(codes::kColumn, all).flag = 0;
  }

  void Sources(const Branch& branch) {
    std::vector<const jetsql::Source*> leaves;
    Leaves(branch, leaves);
    for (const jetsql::Source* h : leaves) {
      mdb::QueryRow& f = Row(codes::kSource);
      if (h->query) {
        f.expression = jetsql::Print(*h->query);
        f.name2 = h->alias.empty() ? kNoAlias : h->alias;
      } else {
        f.name1 = h->name;
        if (!h->alias.empty()) f.name2 = h->alias;
      }
    }
  }

  // The conditions of one pair are read in the reverse of their order.
  void Joins(const Branch& branch) {
    if (branch.leaf) return;
    Joins(*branch.left);
    Joins(*branch.right);
    std::vector<const jetsql::Source*> left, right;
    Leaves(*branch.left, left);
    Leaves(*branch.right, right);
    std::vector<const Expr*> parts;
    if (branch.condition->node == Node::Binary && branch.condition->op == jetsql::Op::And)
      for (const auto& h : branch.condition->children) parts.push_back(h.get());
    else
      parts.push_back(branch.condition.get());
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
      mdb::QueryRow& f = Row(codes::kJoin, jetsql::Print(**part));
      f.name1 = SideOf(**part, left);
      f.name2 = SideOf(**part, right);
      f.flag = branch.type == JoinType::Inner  ? codes::kInner
               : branch.type == JoinType::Left ? codes::kLeft
                                               : codes::kRight;
    }
  }

  // Which of these the condition speaks of.
  std::string SideOf(const Expr& condition, const std::vector<const jetsql::Source*>& leaves) const {
    std::vector<const Expr*> columns;
    Columns(condition, columns);
    for (const Expr* c : columns)
      for (const jetsql::Source* h : leaves)
        if (c->qualifier.empty() ? Has(*h, c->name) : base::EqualIgnoringCase(NameOf(*h), c->qualifier))
          return NameOrDerived(*h);
    return NameOrDerived(*leaves.front());
  }
  static std::string NameOrDerived(const jetsql::Source& f) {
    const std::string& name = NameOf(f);
    return name.empty() ? kNoAlias : name;
  }
  bool Has(const jetsql::Source& f, std::string_view column) const {
    const jetsql::TableInfo* table = f.query ? nullptr : catalog_.Table(f.name);
    return table != nullptr && std::any_of(table->columns.begin(), table->columns.end(), [&](const auto& c) {
             return base::EqualIgnoringCase(c.name, column);
           });
  }

  jetsql::Catalog& catalog_;
  mdb::SavedQuery query_;
};

}  // namespace

mdb::SavedQuery DecomposeQuery(const std::string& name, const jetsql::Query& query,
                               jetsql::Catalog& catalog) {
  return Decomposition(name, catalog).Build(query);
}

}  // namespace engine_mdb
