#include "engine_odbc/reading_internal.h"

#include <string>

#include "db/connection.h"
#include "jetsql/functions.h"
#include "jetsql/parser.h"
#include "jetsql/statement_kind.h"

namespace engine_odbc {
namespace {

constexpr const char* kQueriesOnly = "La sentencia no es de consulta: aquí solo se puede leer.";

[[noreturn]] void ThrowMark(std::string_view mark) {
  throw db::Error("La sentencia tiene '" + std::string(mark) +
                  "', que otras bases entienden de otra manera: aquí solo se puede leer.");
}

void Visit(const jetsql::Query& c);

void Visit(const jetsql::ExprPtr& e) {
  if (e == nullptr) return;
  if (e->node == jetsql::Node::Call && !jetsql::KnowsFunction(e->name))
    throw db::Error("La función " + e->name + " no es del dialecto: aquí solo se puede leer.");
  for (const jetsql::ExprPtr& child : e->children) Visit(child);
  if (e->query) Visit(*e->query);
  Visit(e->filter);
}

void Visit(const jetsql::Branch& branch) {
  if (branch.leaf) {
    if (branch.leaf->query) Visit(*branch.leaf->query);
    return;
  }
  Visit(*branch.left);
  Visit(*branch.right);
  Visit(branch.condition);
}

void Visit(const jetsql::Query& c) {
  for (const jetsql::Select& s : c.parts) {
    Visit(s.limit);
    for (const jetsql::ListItem& item : s.list) Visit(item.expr);
    for (const jetsql::BranchPtr& branch : s.from) Visit(*branch);
    Visit(s.where);
    for (const jetsql::ExprPtr& g : s.group) Visit(g);
    Visit(s.having);
  }
  for (const jetsql::OrderItem& o : c.order) Visit(o.expr);
  if (c.crosstab == nullptr) return;
  Visit(c.crosstab->value);
  Visit(c.crosstab->pivot);
  for (const jetsql::ExprPtr& e : c.crosstab->list) Visit(e);
}

// What cuts a text for other dialects where it does not for this one.
void CheckMarks(std::string_view sql) {
  jetsql::Shape shape;
  if (!jetsql::SeparateLiterals(sql, shape)) throw db::Error(kQueriesOnly);
  for (const std::string_view mark : {"--", "/*"})
    if (shape.key.find(mark) != std::string::npos) ThrowMark(mark);
  for (const jetsql::Shape::Place& place : shape.places) {
    const std::string_view literal = sql.substr(place.start, place.end - place.start);
    for (const std::string_view mark : {"\\'", "\\\""})
      if (literal.find(mark) != std::string_view::npos) ThrowMark(mark);
  }
}

}  // namespace

jetsql::Statement CheckOnlyReads(std::string_view sql) {
  jetsql::Statement statement;
  try {
    statement = jetsql::Parse(sql);
  } catch (const base::Error& e) {
    throw db::Error("La sentencia no se entiende, y aquí solo se puede leer. " + e.Description());
  }
  if (jetsql::KindOf(statement) != jetsql::Kind::Query) throw db::Error(kQueriesOnly);
  Visit(*std::get<jetsql::QueryPtr>(statement));
  CheckMarks(sql);
  return statement;
}

}  // namespace engine_odbc
