#include "jetsql/parser_internal.h"

namespace jetsql {

std::vector<std::string> Parser::ReadNameList() {
  std::vector<std::string> names;
  Expect("(");
  do {
    names.push_back(ReadName("el nombre de una columna"));
    Count(names.size(), kMaxColumns, "Una lista de columnas");
  } while (Accept(","));
  Expect(")");
  return names;
}

Insert Parser::ReadInsert() {
  Insert s;
  Expect("INTO");
  s.table = ReadName("el nombre de una tabla");
  if (Is("IN")) FailUnsupported("Una tabla de otra base de datos (IN)");
  if (Is("(") && !StartsQuery()) s.columns = ReadNameList();
  if (Accept("VALUES")) {
    Expect("(");
    do {
      s.values.push_back(ReadExpr());
      Count(s.values.size(), kMaxColumns, "VALUES");
    } while (Accept(","));
    Expect(")");
    return s;
  }
  if (!StartsQuery()) Fail("VALUES o SELECT");
  s.query = ReadQuery();
  return s;
}

Update Parser::ReadUpdate() {
  Update s;
  Accept("DISTINCTROW");
  s.from = ReadFrom();
  Expect("SET");
  do {
    Assignment a;
    a.column = ReadNameExpr();
    if (a.column->node != Node::Column) Fail("el nombre de una columna");
    Expect("=");
    a.value = ReadExpr();
    s.changes.push_back(std::move(a));
    Count(s.changes.size(), kMaxColumns, "SET");
  } while (Accept(","));
  if (Accept("WHERE")) s.where = ReadExpr();
  return s;
}

Delete Parser::ReadDelete() {
  Delete s;
  Accept("DISTINCTROW");
  if (!Accept("*") && !Is("FROM")) {
    s.target = ReadAnyName("'*', FROM o una tabla");
    if (Accept(".") || Accept("!")) Expect("*");
  }
  Expect("FROM");
  s.from = ReadFrom();
  if (Accept("WHERE")) s.where = ReadExpr();
  return s;
}

}  // namespace jetsql
