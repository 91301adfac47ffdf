#include <algorithm>

#include "jetsql/types_internal.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {
namespace {

bool IsConstant(const Expr& e) {
  if (e.node == Node::Column || e.node == Node::Call || e.query) return false;
  return std::all_of(e.children.begin(), e.children.end(), [](const ExprPtr& h) { return IsConstant(*h); });
}

}  // namespace

void QueryWriter::WriteQuery(const Query& c, ListMode mode) {
  if (c.parts.size() == 1) {
    if (c.orders_by_outer && !c.parts[0].limit)
      ByRank(c.parts[0], c.order, mode);  // SQLite's ORDER BY does not see outer tables, its windows do
    else
      Part(c.parts[0], c.order, mode, false);
    return;
  }
  mode.collate = true;  // UNION tells texts apart by it, and so does the order
  mode.output = &c.output;
  for (std::size_t i = 0; i < c.parts.size(); ++i) {
    if (i > 0) t_ += c.all[i - 1] ? " UNION ALL " : " UNION ";
    Part(c.parts[i], {}, mode, true);
  }
  OrderBy(c.order, true);
}

void QueryWriter::Part(const Select& s, const std::vector<OrderItem>& order, const ListMode& mode,
                       bool in_union) {
  if (!s.limit) {
    Core(s, mode);
    OrderBy(order, s.distinctness == Distinctness::Distinct);
    return;
  }
  if (!order.empty() || s.limit_is_percent) {
    ByRank(s, order, mode);
    return;
  }
  if (in_union) t_ += "SELECT * FROM (";
  Core(s, mode);
  t_ += " LIMIT ";
  d_.Literal(*s.limit);
  if (in_union) t_ += ')';
}

void QueryWriter::ListNames(const Select& s) {
  for (std::size_t i = 0; i < s.list.size(); ++i) {
    if (i > 0) t_ += ", ";
    d_.Name(s.list[i].sql_name);
  }
}

// The rank of a row by the order of the query, and for a percentage the number of rows.
std::string QueryWriter::Window(const Select& s, const std::vector<OrderItem>& order) {
  SqlDraft e(d_.options, d_.depth);
  if (order.empty()) {
    e.text = ", row_number() OVER () AS \"jet_r\"";
  } else {
    e.text = ", rank() OVER (";
    for (std::size_t i = 0; i < order.size(); ++i) {
      e.text += i == 0 ? "ORDER BY " : ", ";
      if (s.distinctness == Distinctness::Distinct)
        e.Name(s.list[static_cast<std::size_t>(order[i].position)].sql_name);
      else
        e.query.Key(*order[i].expr);
      if (order[i].descending) e.text += " DESC";
    }
    e.text += ") AS \"jet_r\"";
  }
  if (s.limit_is_percent) e.text += ", count(*) OVER () AS \"jet_n\"";
  return std::move(e.text);
}

// The rows by their rank: TOP n keeps those that tie with the nth.
void QueryWriter::ByRank(const Select& s, const std::vector<OrderItem>& order, const ListMode& mode) {
  ListMode inside = mode;
  inside.names = inside.collate = true;
  const std::string window = Window(s, order);
  t_ += "SELECT ";
  ListNames(s);
  t_ += " FROM (";
  if (s.distinctness == Distinctness::Distinct) {
    t_ += "SELECT ";
    ListNames(s);
    t_.append(window).append(" FROM (");
    Core(s, inside);
    t_ += ')';
  } else {
    inside.extra = window;
    Core(s, inside);
  }
  t_ += ')';
  if (s.limit) {
    // The nth of 100 parts, rounded up: rank <= ceil(count * n / 100).
    t_ += s.limit_is_percent ? " WHERE (\"jet_r\" - 1) * 100 < \"jet_n\" * " : " WHERE \"jet_r\" <= ";
    d_.Literal(*s.limit);
  }
  if (!order.empty()) t_ += " ORDER BY \"jet_r\"";
}

// A key of a group or of an order. A constant parts nothing; SQLite would take a number for a place in the
// list.
void QueryWriter::Key(const Expr& e) {
  if (IsConstant(e))
    t_ += "NULL";
  else
    d_.compare.Collated(e, 0);
}

void QueryWriter::List(const Select& s, const ListMode& mode) {
  for (std::size_t i = 0; i < s.list.size(); ++i) {
    if (i > 0) t_ += ", ";
    const Expr& e = *s.list[i].expr;
    const ExprType output = mode.output != nullptr ? (*mode.output)[i].type : e.type;
    const bool compares = (mode.collate || s.distinctness == Distinctness::Distinct) && MayBeText(output) &&
                          !e.type.null && !d_.compare.IsCollated(e);
    if (mode.targets != nullptr)
      d_.change.Assigned(e, (*mode.targets)[i]);
    else if (output.type == base::Type::Text && IsQuantity(e.type.type))
      d_.expr.Text(e);  // a date or boolean in a column of texts
    else
      d_.expr.Value(e, compares ? strength::kCollate : 0);
    if (compares) t_ += " COLLATE JET";
    if (!mode.names) continue;
    t_ += " AS ";
    d_.Name(s.list[i].sql_name);
  }
}

void QueryWriter::Core(const Select& s, const ListMode& mode) {
  t_ += s.distinctness == Distinctness::Distinct ? "SELECT DISTINCT " : "SELECT ";
  List(s, mode);
  t_ += mode.extra;
  d_.from.FromAndWhere(s.from, s.where);
  for (std::size_t i = 0; i < s.group.size(); ++i) {
    t_ += i == 0 ? " GROUP BY " : ", ";
    Key(*s.group[i]);
  }
  for (std::size_t i = 0; i < s.distinct.size(); ++i) {
    t_ += i == 0 ? " GROUP BY " : ", ";
    d_.from.RowOf(*s.distinct[i]);
  }
  if (s.having) {
    t_ += " HAVING ";
    d_.expr.Condition(*s.having);
  }
}

void QueryWriter::OrderBy(const std::vector<OrderItem>& order, bool by_position) {
  for (std::size_t i = 0; i < order.size(); ++i) {
    t_ += i == 0 ? " ORDER BY " : ", ";
    if (by_position)
      t_ += std::to_string(order[i].position + 1);
    else
      Key(*order[i].expr);
    if (order[i].descending) t_ += " DESC";
  }
}

}  // namespace jetsql
