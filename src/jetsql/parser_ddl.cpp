#include "jetsql/parser_internal.h"

namespace jetsql {
namespace {

struct TypeName {
  std::string_view text;
  ColumnKind kind;
};

constexpr TypeName kTypes[] = {
    {"YESNO", ColumnKind::YesNo},
    {"BIT", ColumnKind::YesNo},
    {"LOGICAL", ColumnKind::YesNo},
    {"LOGICAL1", ColumnKind::YesNo},
    {"BOOLEAN", ColumnKind::YesNo},
    {"BYTE", ColumnKind::Byte},
    {"TINYINT", ColumnKind::Byte},
    {"INTEGER1", ColumnKind::Byte},
    {"SHORT", ColumnKind::Short},
    {"SMALLINT", ColumnKind::Short},
    {"INTEGER2", ColumnKind::Short},
    {"LONG", ColumnKind::Long},
    {"INTEGER", ColumnKind::Long},
    {"INT", ColumnKind::Long},
    {"INTEGER4", ColumnKind::Long},
    {"COUNTER", ColumnKind::Counter},
    {"IDENTITY", ColumnKind::Counter},
    {"AUTOINCREMENT", ColumnKind::Counter},
    {"SINGLE", ColumnKind::Single},
    {"REAL", ColumnKind::Single},
    {"FLOAT4", ColumnKind::Single},
    {"IEEESINGLE", ColumnKind::Single},
    {"DOUBLE", ColumnKind::Double},
    {"FLOAT", ColumnKind::Double},
    {"NUMBER", ColumnKind::Double},
    {"FLOAT8", ColumnKind::Double},
    {"IEEEDOUBLE", ColumnKind::Double},
    {"CURRENCY", ColumnKind::Currency},
    {"MONEY", ColumnKind::Currency},
    {"DECIMAL", ColumnKind::Decimal},
    {"NUMERIC", ColumnKind::Decimal},
    {"DEC", ColumnKind::Decimal},
    {"DATETIME", ColumnKind::Date},
    {"DATE", ColumnKind::Date},
    {"TIME", ColumnKind::Date},
    {"TIMESTAMP", ColumnKind::Date},
    {"TEXT", ColumnKind::Text},
    {"CHAR", ColumnKind::Text},
    {"VARCHAR", ColumnKind::Text},
    {"CHARACTER", ColumnKind::Text},
    {"STRING", ColumnKind::Text},
    {"ALPHANUMERIC", ColumnKind::Text},
    {"NCHAR", ColumnKind::Text},
    {"NVARCHAR", ColumnKind::Text},
    {"MEMO", ColumnKind::Memo},
    {"LONGTEXT", ColumnKind::Memo},
    {"LONGCHAR", ColumnKind::Memo},
    {"NOTE", ColumnKind::Memo},
    {"NTEXT", ColumnKind::Memo},
    {"BINARY", ColumnKind::Binary},
    {"VARBINARY", ColumnKind::Binary},
    {"IMAGE", ColumnKind::Ole},
    {"LONGBINARY", ColumnKind::Ole},
    {"OLEOBJECT", ColumnKind::Ole},
    {"GENERAL", ColumnKind::Ole},
    {"GUID", ColumnKind::Guid},
    {"UNIQUEIDENTIFIER", ColumnKind::Guid},
};

}  // namespace

void Parser::ReadType(ColumnDefinition& c) {
  const TypeName* found = nullptr;
  for (const auto& t : kTypes)
    if (Is(t.text)) found = &t;
  if (found == nullptr) Fail("un tipo de columna");
  ++i_;
  c.kind = found->kind;
  if (c.kind == ColumnKind::Double) Accept("PRECISION");
  if (c.kind == ColumnKind::Text) Accept("VARYING");
  if (!Accept("(")) return;
  const int first = ReadSmallInteger("un número entero");
  const bool two = Accept(",");
  const int second = two ? ReadSmallInteger("un número entero") : 0;
  Expect(")");
  if (c.kind == ColumnKind::Counter) {
    c.seed = first;
    if (two) c.increment = second;
    if (c.increment != 1) FailUnsupported("Un contador con un incremento que no es 1");
  } else if (c.kind == ColumnKind::Text || c.kind == ColumnKind::Binary) {
    c.length = first;
  } else if (c.kind == ColumnKind::Decimal) {
    c.precision = first;
    c.scale = second;
  }
}

Reference Parser::ReadReference() {
  Reference r;
  r.table = ReadName("el nombre de una tabla");
  if (Is("(")) r.columns = ReadNameList();
  while (Accept("ON")) {
    const bool deletes = Is("DELETE");
    if (!Accept("DELETE")) Expect("UPDATE");
    if (Accept("CASCADE"))
      (deletes ? r.cascades_deletes : r.cascades_updates) = true;
    else if (Accept("NO"))
      Expect("ACTION");
    else
      Fail("CASCADE");
  }
  return r;
}

void Parser::ReadColumnConstraints(ColumnDefinition& c) {
  for (;;) {
    if (Accept("CONSTRAINT")) c.constraint_name = ReadName("el nombre de la restricción");
    if (Accept("NOT")) {
      Expect("NULL");
      c.not_null = true;
    } else if (Accept("NULL")) {
    } else if (Accept("PRIMARY")) {
      Expect("KEY");
      c.key = true;
    } else if (Accept("UNIQUE")) {
      c.unique = true;
    } else if (Accept("DEFAULT")) {
      c.default_value = ReadExpr(8);  // "8": no AND or NOT, so that NOT NULL may follow
    } else if (Accept("REFERENCES")) {
      c.reference = std::make_unique<Reference>(ReadReference());
    } else if (Accept("WITH")) {
      if (!Accept("COMPRESSION")) Expect("COMP");
    } else {
      return;
    }
  }
}

ColumnDefinition Parser::ReadColumn() {
  ColumnDefinition c;
  c.name = ReadName("el nombre de una columna");
  ReadType(c);
  ReadColumnConstraints(c);
  return c;
}

Constraint Parser::ReadConstraint() {
  Constraint r;
  if (Accept("CONSTRAINT")) r.name = ReadName("el nombre de la restricción");
  if (Accept("PRIMARY")) {
    Expect("KEY");
    r.what = Constraint::What::Key;
  } else if (Accept("UNIQUE")) {
    r.what = Constraint::What::Unique;
  } else if (Accept("NOT")) {
    Expect("NULL");
    r.what = Constraint::What::NotNull;
  } else if (Accept("FOREIGN")) {
    Expect("KEY");
    if (Accept("NO")) Expect("INDEX");
    r.what = Constraint::What::Foreign;
  } else {
    Fail("PRIMARY KEY, UNIQUE, NOT NULL o FOREIGN KEY");
  }
  r.columns = ReadNameList();
  if (r.what == Constraint::What::Foreign) {
    Expect("REFERENCES");
    r.reference = ReadReference();
  }
  return r;
}

CreateTable Parser::ReadCreateTable() {
  CreateTable s;
  s.name = ReadName("el nombre de la tabla");
  Expect("(");
  do {
    const bool constraint = Is("CONSTRAINT") || (Is("PRIMARY") && Is("KEY", 1)) ||
                            (Is("UNIQUE") && Is("(", 1)) || (Is("FOREIGN") && Is("KEY", 1));
    if (constraint)
      s.constraints.push_back(ReadConstraint());
    else
      s.columns.push_back(ReadColumn());
    Count(s.columns.size() + s.constraints.size(), kMaxColumns, "Una tabla");
  } while (Accept(","));
  Expect(")");
  return s;
}

CreateIndex Parser::ReadCreateIndex(bool unique) {
  CreateIndex s;
  s.unique = unique;
  s.name = ReadName("el nombre del índice");
  Expect("ON");
  s.table = ReadName("el nombre de la tabla");
  Expect("(");
  do {
    CreateIndex::Column c;
    c.name = ReadName("el nombre de una columna");
    if (Accept("DESC"))
      c.descending = true;
    else
      Accept("ASC");
    s.columns.push_back(std::move(c));
    Count(s.columns.size(), kMaxColumns, "Un índice");
  } while (Accept(","));
  Expect(")");
  if (!Accept("WITH")) return s;
  do {
    if (Accept("PRIMARY")) {
      s.primary = true;
    } else if (Accept("DISALLOW")) {
      Expect("NULL");
      s.disallows_nulls = true;
    } else if (Accept("IGNORE")) {
      Expect("NULL");
      s.ignores_nulls = true;
    } else {
      Fail("PRIMARY, DISALLOW NULL o IGNORE NULL");
    }
  } while (Accept(",") || Is("PRIMARY") || Is("DISALLOW") || Is("IGNORE"));
  return s;
}

CreateView Parser::ReadCreateView() {
  CreateView s;
  s.name = ReadName("el nombre de la consulta");
  if (Is("(")) s.columns = ReadNameList();
  Expect("AS");
  if (!StartsQuery()) Fail("SELECT");
  const std::size_t start = i_;
  s.query = ReadQuery();
  s.text = TextFrom(start);
  return s;
}

Statement Parser::ReadCreate() {
  if (Accept("TABLE")) return ReadCreateTable();
  if (Accept("INDEX")) return ReadCreateIndex(false);
  if (Accept("UNIQUE")) {
    Expect("INDEX");
    return ReadCreateIndex(true);
  }
  if (Accept("VIEW")) return ReadCreateView();
  if (Current().kind == TokenKind::Name) FailUnsupported("CREATE " + std::string(Current().text));
  Fail("TABLE, INDEX, UNIQUE INDEX o VIEW");
}

// A database keeps its definitions with their literals.
Statement Parser::ReadDefinition() {
  mode_ = Literals::InText;
  if (Accept("CREATE")) return ReadCreate();
  if (Accept("DROP")) return ReadDrop();
  Expect("ALTER");
  return ReadAlter();
}

Drop Parser::ReadDrop() {
  Drop s;
  if (Accept("INDEX")) {
    s.what = Drop::What::Index;
    s.name = ReadName("el nombre del índice");
    Expect("ON");
    s.table = ReadName("el nombre de la tabla");
    return s;
  }
  s.what = Is("VIEW") ? Drop::What::View : Drop::What::Table;
  if (!Accept("VIEW") && !Accept("TABLE")) {
    if (Current().kind == TokenKind::Name) FailUnsupported("DROP " + std::string(Current().text));
    Fail("TABLE, INDEX o VIEW");
  }
  s.name = ReadName("un nombre");
  return s;
}

AlterTable Parser::ReadAlter() {
  AlterTable s;
  if (!Accept("TABLE")) {
    if (Current().kind == TokenKind::Name) FailUnsupported("ALTER " + std::string(Current().text));
    Fail("TABLE");
  }
  s.table = ReadName("el nombre de la tabla");
  if (Accept("ADD")) {
    if (Is("CONSTRAINT") || (Is("PRIMARY") && Is("KEY", 1)) || (Is("FOREIGN") && Is("KEY", 1))) {
      s.what = AlterTable::What::AddConstraint;
      s.constraint = ReadConstraint();
      return s;
    }
    Accept("COLUMN");
    s.column = ReadColumn();
    return s;
  }
  if (Is("ALTER")) FailUnsupported("Cambiar el tipo de una columna (ALTER COLUMN)");
  Expect("DROP");
  s.what = Accept("CONSTRAINT") ? AlterTable::What::DropConstraint : AlterTable::What::Drop;
  if (s.what == AlterTable::What::Drop) Accept("COLUMN");
  s.name = ReadName("un nombre");
  return s;
}

}  // namespace jetsql
