#include "base/text.h"
#include "jetsql/parser_internal.h"
#include "jetsql/statement_kind.h"

namespace jetsql {

bool Parser::StartsQuery(std::size_t ahead) const {
  for (int open = 0; Is("(", ahead); ++ahead)
    if (++open > kMaxColumns) return false;  // more than may nest: refused as brackets
  return Is("SELECT", ahead) || (Is("TABLE", ahead) && IsName(ahead + 1));
}

QueryPtr Parser::ReadQuery() {
  const Level level(*this);
  auto c = std::make_unique<Query>();
  c->parts.push_back(ReadPart());
  while (Accept("UNION")) {
    c->all.push_back(Accept("ALL"));
    c->parts.push_back(ReadPart());
    CheckHeight(static_cast<int>(c->parts.size()));
  }
  if (Accept("ORDER")) ReadOrder(c->order);
  return c;
}

// Behind TRANSFORM. "PIVOT x IN (…)" reads as a predicate, whose list is the columns.
QueryPtr Parser::ReadCrosstab() {
  auto crosstab = std::make_unique<Crosstab>();
  crosstab->value = ReadExpr();
  if (Accept("AS")) ReadAnyName("un nombre");
  if (!StartsQuery()) Fail("SELECT");
  QueryPtr c = ReadQuery();
  if (c->parts.size() > 1) FailUnsupported("Una unión dentro de TRANSFORM");
  Expect("PIVOT");
  crosstab->pivot = ReadExpr();
  if (crosstab->pivot->node == Node::InList && !crosstab->pivot->negated) {
    const ExprPtr predicate = crosstab->pivot;
    crosstab->pivot = predicate->children[0];
    crosstab->list.assign(predicate->children.begin() + 1, predicate->children.end());
    crosstab->has_list = true;
  }
  c->crosstab = std::move(crosstab);
  return c;
}

// A part of a union in brackets keeps its own order and union inside.
Select Parser::ReadPart() {
  if (!Is("(")) return ReadSelect();
  const Level level(*this);
  Expect("(");
  QueryPtr inside = ReadQuery();
  Expect(")");
  if (inside->parts.size() == 1 && inside->order.empty()) return std::move(inside->parts.front());
  Select s;
  s.list.emplace_back();
  auto source = std::make_unique<Source>();
  source->query = std::move(inside);
  s.from.push_back(Leaf(std::move(source)));
  return s;
}

Select Parser::ReadSelect() {
  Select s;
  if (Accept("TABLE")) {
    s.list.emplace_back();
    s.from.push_back(ReadLeaf());
    return s;
  }
  if (!Accept("SELECT")) Fail("SELECT");
  ReadPredicate(s);
  do {
    s.list.push_back(ReadItem());
    Count(s.list.size(), kMaxColumns, "La lista de una consulta");
  } while (Accept(","));
  if (Is("INTO")) {
    ++intos_;
    last_into_ = Current().start;
    ++i_;
    s.target = ReadName("el nombre de la tabla nueva");
    if (Is("IN")) FailUnsupported("Una tabla de otra base de datos (IN)");
  }
  if (Accept("FROM")) s.from = ReadFrom();
  if (Accept("WHERE")) s.where = ReadExpr();
  if (Accept("GROUP")) {
    Expect("BY");
    do {
      s.group.push_back(ReadExpr());
      Count(s.group.size(), kMaxColumns, "GROUP BY");
    } while (Accept(","));
  }
  if (Accept("HAVING")) s.having = ReadExpr();
  return s;
}

void Parser::ReadPredicate(Select& s) {
  if (Accept("DISTINCT"))
    s.distinctness = Distinctness::Distinct;
  else if (Accept("DISTINCTROW"))
    s.distinctness = Distinctness::DistinctRow;
  else
    Accept("ALL");
  if (!Accept("TOP")) return;
  if (Current().kind != TokenKind::Integer) Fail("un número entero después de TOP");
  s.limit = ReadLiteralExpr();
  s.limit_is_percent = Accept("PERCENT");
}

ListItem Parser::ReadItem() {
  ListItem item;
  if (Accept("*")) return item;
  const bool has_name = Current().kind == TokenKind::Name || Current().kind == TokenKind::Brackets;
  if (has_name && (Is(".", 1) || Is("!", 1)) && Is("*", 2)) {
    item.qualifier = ReadAnyName("un nombre");
    i_ += 2;
    return item;
  }
  item.expr = ReadExpr();
  if (Accept("AS")) item.alias = ReadAnyName("el nombre de la columna");
  return item;
}

void Parser::ReadOrder(std::vector<OrderItem>& order) {
  Expect("BY");
  do {
    OrderItem item;
    item.expr = ReadExpr();
    if (Accept("DESC"))
      item.descending = true;
    else
      Accept("ASC");
    order.push_back(std::move(item));
    Count(order.size(), kMaxColumns, "ORDER BY");
  } while (Accept(","));
}

std::vector<BranchPtr> Parser::ReadFrom() {
  std::vector<BranchPtr> from;
  do {
    from.push_back(ReadBranch());
    Count(from.size(), kMaxTables, "FROM");
  } while (Accept(","));
  if (Is("IN")) FailUnsupported("Una tabla de otra base de datos (IN)");
  return from;
}

bool Parser::ReadJoinType(JoinType& type) {
  if (Is("INNER") || Is("JOIN")) {
    Accept("INNER");
    type = JoinType::Inner;
  } else if (Is("LEFT") || Is("RIGHT")) {
    type = Is("LEFT") ? JoinType::Left : JoinType::Right;
    ++i_;
    Accept("OUTER");
  } else {
    return false;
  }
  Expect("JOIN");
  return true;
}

BranchPtr Parser::ReadBranch() {
  const Level level(*this);
  BranchPtr branch = ReadLeaf();
  JoinType type{};
  while (ReadJoinType(type)) {
    auto fresh = std::make_unique<Branch>();
    fresh->type = type;
    fresh->left = std::move(branch);
    fresh->right = ReadLeaf();
    Expect("ON");
    fresh->condition = ReadExpr();
    fresh->height = 1 + std::max(fresh->left->height, fresh->right->height);
    CheckHeight(fresh->height);
    branch = std::move(fresh);
  }
  return branch;
}

BranchPtr Parser::Leaf(std::unique_ptr<Source> source) const {
  auto branch = std::make_unique<Branch>();
  branch->leaf = std::move(source);
  return branch;
}

std::string Parser::ReadTableAlias() {
  if (Accept("AS")) return ReadAnyName("el alias de la tabla");
  return IsName() ? ReadAnyName("el alias de la tabla") : std::string();
}

// At "(": whether it opens a derived table. "((SELECT …) AS a INNER JOIN …)" opens a join tree, while
// "((SELECT …) UNION SELECT …)" opens a derived table: what follows the inner bracket decides.
bool Parser::OpensDerivedTable() const {
  if (!Is("(", 1)) return StartsQuery(1);
  if (!StartsQuery(1)) return false;
  return Is("UNION", Peek(1).closing - i_);
}

BranchPtr Parser::ReadLeaf() {
  if (Is("(")) {
    const Level level(*this);
    const bool derived = OpensDerivedTable();
    Expect("(");
    if (!derived) {
      BranchPtr branch = ReadBranch();
      Expect(")");
      return branch;
    }
    auto source = std::make_unique<Source>();
    source->query = ReadQuery();
    Expect(")");
    source->alias = ReadTableAlias();
    return Leaf(std::move(source));
  }
  auto source = std::make_unique<Source>();
  const Lexeme start = Current();
  std::string name = ReadName("una tabla o consulta");
  if (start.kind == TokenKind::Brackets && Is(".")) {
    // The old spelling of a derived table: [SELECT …]. AS d
    constexpr const char* kOtherDatabase = "Una tabla de otra base de datos no se admite";
    const std::string_view inside = base::TrimView(name);
    if (!BeginsQuery(inside)) FailAt(start.start, kOtherDatabase);
    ++i_;
    const Level level(*this);
    Parser inner(inside, Literals::InText);  // its literals are part of the name in the shape
    inner.level_ = level_;
    Statement s = inner.ReadStatement();
    const auto query = std::get_if<QueryPtr>(&s);
    if (query == nullptr || (*query)->crosstab) FailAt(start.start, kOtherDatabase);
    source->query = std::move(*query);
    if (!source->query->parts[0].target.empty()) {
      ++intos_;
      last_into_ = start.start;
    }
  } else {
    source->name = std::move(name);
  }
  source->alias = ReadTableAlias();
  return Leaf(std::move(source));
}

}  // namespace jetsql
