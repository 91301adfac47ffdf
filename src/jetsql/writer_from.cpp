#include "base/error.h"
#include "base/text.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {

// A tree of joins as one chain from left to right. The product of A with (B LEFT JOIN C) is (A, B) LEFT JOIN
// C, so that only the right side of an outer join has to stay in brackets; the condition of an inner join
// between two trees becomes a filter of the whole.
void FromWriter::Flatten(const Branch& r, std::vector<Step>& steps, std::vector<const Expr*>& filters) {
  if (r.leaf) {
    steps.push_back({&r, false, nullptr});
    return;
  }
  const bool right = r.type == JoinType::Right;
  const Branch& a = right ? *r.right : *r.left;
  const Branch& b = right ? *r.left : *r.right;
  Flatten(a, steps, filters);
  if (r.type != JoinType::Inner) {
    steps.push_back({&b, true, r.condition.get()});
    return;
  }
  Flatten(b, steps, filters);
  if (b.leaf)
    steps.back().condition = r.condition.get();
  else
    filters.push_back(r.condition.get());
}

void FromWriter::Leaf(const Source& f) {
  if (f.table != nullptr) {
    d_.Name(f.table->name);
    if (f.alias_sql == f.table->name) return;
  } else {
    ListMode mode;
    mode.names = mode.collate = true;
    t_ += '(';
    d_.query.WriteQuery(*f.query, mode);
    t_ += ')';
  }
  t_ += " AS ";
  d_.Name(f.alias_sql);
}

// As it is written: inside the right side of an outer join.
void FromWriter::Nested(const Branch& r) {
  if (r.leaf) {
    Leaf(*r.leaf);
    return;
  }
  const bool right = r.type == JoinType::Right;
  const Branch& a = right ? *r.right : *r.left;
  const Branch& b = right ? *r.left : *r.right;
  Nested(a);
  t_ += r.type == JoinType::Inner ? " JOIN " : " LEFT JOIN ";
  if (!b.leaf) t_ += '(';
  Nested(b);
  if (!b.leaf) t_ += ')';
  t_ += " ON ";
  d_.expr.Condition(*r.condition);
}

void FromWriter::FromAndWhere(const std::vector<BranchPtr>& from, const ExprPtr& where) {
  std::vector<Step> steps;
  std::vector<const Expr*> filters;
  for (const auto& branch : from) Flatten(*branch, steps, filters);
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const Step& p = steps[i];
    t_ += i == 0 ? " FROM " : p.left ? " LEFT JOIN " : " JOIN ";
    if (p.branch->leaf) {
      Leaf(*p.branch->leaf);
    } else {
      t_ += '(';
      Nested(*p.branch);
      t_ += ')';
    }
    if (p.condition == nullptr) continue;
    t_ += " ON ";
    d_.expr.Condition(*p.condition);
  }
  if (where) filters.push_back(where.get());
  for (std::size_t i = 0; i < filters.size(); ++i) {
    t_ += i == 0 ? " WHERE " : " AND ";
    d_.expr.Condition(*filters[i], filters.size() > 1 ? strength::kAnd : 0);
  }
}

// SQLite gives a row's number three names; a column may have taken one.
void FromWriter::RowOf(const Source& f) {
  std::string_view row = "rowid";
  for (const std::string_view other : {"_rowid_", "oid"}) {
    bool taken = false;
    for (const auto& c : f.columns) taken = taken || base::EqualIgnoringCase(c.name, row);
    if (!taken) break;
    row = other;
  }
  d_.Name(f.alias_sql);
  t_.append(".").append(row);
}

// Whether the rows of a table can be named outside the FROM: not inside brackets.
bool FromWriter::IsReachable(const std::vector<BranchPtr>& from, const Source& f) {
  std::vector<Step> steps;
  std::vector<const Expr*> filters;
  for (const auto& branch : from) Flatten(*branch, steps, filters);
  for (const auto& p : steps)
    if (p.branch->leaf.get() == &f) return true;
  return false;
}

}  // namespace jetsql
