// The tree of a statement: plain data, made by the parser, annotated by Resolver, printed back by Print or
// written as SQLite text. Fields under "resolved" are empty until Resolver has run.
#pragma once

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "base/value.h"
#include "jetsql/catalog.h"
#include "jetsql/functions.h"

namespace jetsql {

struct Query;
struct Source;
struct Expr;
// Shared, because the alias of a list item that stands in another expression is that item's own tree.
using ExprPtr = std::shared_ptr<Expr>;
using QueryPtr = std::unique_ptr<Query>;

enum class Node {
  Literal,
  True,
  False,
  Null,
  Column,      // [qualifier.]name
  Star,        // of Count(*)
  Unary,       // Minus, Plus, No
  Binary,      // two operands; And, Or and & hold the whole chain
  Call,        // name(children)
  Between,     // x BETWEEN a AND b
  InList,      // x IN (…): x first
  InQuery,     // x IN (SELECT …)
  Exists,      // EXISTS (SELECT …)
  Subquery,    // (SELECT …) as a value
  Quantified,  // x op ANY|ALL (SELECT …)
  IsNull,      // x IS NULL
  Like         // x LIKE pattern
};

// From the loosest to the tightest.
enum class Op {
  Imp,
  Eqv,
  Xor,
  Or,
  And,
  Not,
  Equal,
  NotEqual,
  Less,
  Greater,
  LessOrEqual,
  GreaterOrEqual,
  Concat,
  Add,
  Subtract,
  Mod,
  IntDiv,
  Multiply,
  Div,
  Minus,
  Plus,
  Power
};

// The functions that the writer handles itself.
enum class Special {
  None,
  IIf,
  Switch,
  Choose,
  IsNull,
  Count,
  Sum,
  Avg,
  Min,
  Max,
  First,
  Last,
  StDev,
  StDevP,
  Var,
  VarP
};

constexpr bool IsAggregate(Special e) { return e >= Special::Count; }

// What is known of a value before it is computed.
struct ExprType {
  base::Type type = base::Type::Null;  // Null: not known
  bool null = false;                   // always Null: goes with any type
};

struct Expr {
  explicit Expr(Node n) : node(n) {}

  Node node;
  Op op = Op::Equal;
  bool negated = false;    // NOT BETWEEN, NOT IN, NOT LIKE, IS NOT NULL
  bool all = false;        // of Quantified: ALL
  bool distinct = false;   // of an aggregate: DISTINCT
  bool parameter = false;  // of a column: a name that PARAMETERS declares
  int height = 1;          // of the tree, for the depth limit
  base::Value literal;
  int index = -1;  // of a literal in the statement's Shape; -1: written into the text as it is
  std::string qualifier;
  std::string name;
  std::vector<ExprPtr> children;
  QueryPtr query;
  ExprPtr filter;  // of an aggregate in a column of a crosstab: the rows that it is made of

  // resolved
  ExprType type;
  const Source* source = nullptr;  // of a column
  int column = -1;                 // in source->columns
  const Function* function = nullptr;
  Special special = Special::None;
  bool resolved = false;
};

struct ListItem {
  ExprPtr expr;  // null: * or qualifier.*
  std::string qualifier;
  std::string alias;

  // resolved; stars are then expanded
  std::string name;      // of the result column
  std::string sql_name;  // unique in its SELECT, whatever the case
  bool resolving = false;
};

struct SourceColumn {
  std::string name;       // for the dialect
  std::string long_name;  // "table.column" when another column of the source has the same name
  std::string sql_name;   // inside the SQLite text
  ExprType type;
  bool collated = false;  // compares by JET without being told
};

// One table of a FROM: a base table, a saved query or a derived table.
struct Source {
  std::string name;  // empty for a derived table
  std::string alias;
  QueryPtr query;  // of a derived table; of a saved query once resolved

  // resolved
  const TableInfo* table = nullptr;
  std::string alias_sql;
  std::vector<SourceColumn> columns;
  std::vector<std::string> reads;  // the base tables under it
};

enum class JoinType { Inner, Left, Right };

// A join tree: a leaf or a join of two.
struct Branch {
  std::unique_ptr<Source> leaf;
  JoinType type = JoinType::Inner;
  std::unique_ptr<Branch> left, right;
  ExprPtr condition;
  int height = 1;
};
using BranchPtr = std::unique_ptr<Branch>;

struct OrderItem {
  ExprPtr expr;
  bool descending = false;
  // resolved
  int position = -1;  // of the list's item that it names, from 0
};

enum class Distinctness { None, Distinct, DistinctRow };

struct Select {
  Distinctness distinctness = Distinctness::None;
  ExprPtr limit;  // TOP n: a literal
  bool limit_is_percent = false;
  std::vector<ListItem> list;
  std::string target;  // SELECT … INTO
  std::vector<BranchPtr> from;
  ExprPtr where;
  std::vector<ExprPtr> group;
  ExprPtr having;

  // resolved
  bool aggregated = false;        // has groups or aggregates
  std::vector<Source*> sources;   // in the order of the text
  std::vector<Source*> distinct;  // DISTINCTROW: the tables whose rows tell the result's rows apart
};

// TRANSFORM … PIVOT: a column more for each value of an expression.
struct Crosstab {
  ExprPtr value;  // made of aggregates
  ExprPtr pivot;  // its values are the columns
  std::vector<ExprPtr> list;
  bool has_list = false;  // PIVOT … IN (list): these columns, whatever the rows hold
};

struct Query {
  std::vector<Select> parts;
  std::vector<bool> all;  // before part i+1: UNION ALL
  std::vector<OrderItem> order;
  std::unique_ptr<Crosstab> crosstab;

  // resolved
  std::vector<SourceColumn> output;
  bool orders_by_outer = false;  // ORDER BY names a table of an outer query
};

struct Insert {
  std::string table;
  std::vector<std::string> columns;
  std::vector<ExprPtr> values;
  QueryPtr query;
  // resolved
  const TableInfo* info = nullptr;
  std::vector<int> targets;  // in info->columns
};

struct Assignment {
  ExprPtr column;
  ExprPtr value;
};

struct Update {
  std::vector<BranchPtr> from;
  std::vector<Assignment> changes;
  ExprPtr where;
  std::vector<Source*> sources;  // resolved
};

struct Delete {
  std::string target;  // of DELETE t.*; empty when not named
  std::vector<BranchPtr> from;
  ExprPtr where;
  // resolved
  std::vector<Source*> sources;
  const Source* source = nullptr;
};

enum class ColumnKind {
  YesNo,
  Byte,
  Short,
  Long,
  Counter,
  Single,
  Double,
  Currency,
  Decimal,
  Date,
  Text,
  Memo,
  Binary,
  Guid,
  Ole
};

struct Reference {
  std::string table;
  std::vector<std::string> columns;
  bool cascades_deletes = false, cascades_updates = false;
};

struct ColumnDefinition {
  std::string name;
  ColumnKind kind = ColumnKind::Text;
  int length = 0;                 // of a text or a binary; 0: none given
  int precision = 18, scale = 0;  // of a decimal
  int seed = 1, increment = 1;    // of a counter
  bool not_null = false, key = false, unique = false;
  std::string constraint_name;
  ExprPtr default_value;
  std::unique_ptr<Reference> reference;
};

struct Constraint {
  enum class What { Key, Unique, NotNull, Foreign } what = What::Key;
  std::string name;
  std::vector<std::string> columns;
  Reference reference;
};

struct CreateTable {
  std::string name;
  std::vector<ColumnDefinition> columns;
  std::vector<Constraint> constraints;
};

struct CreateIndex {
  std::string name, table;
  bool unique = false, primary = false, disallows_nulls = false, ignores_nulls = false;
  struct Column {
    std::string name;
    bool descending = false;
  };
  std::vector<Column> columns;
};

struct CreateView {
  std::string name;
  std::vector<std::string> columns;
  QueryPtr query;
  std::string text;  // of the SELECT, as written
};

struct Drop {
  enum class What { Table, Index, View } what = What::Table;
  std::string name, table;
};

struct AlterTable {
  enum class What { Add, Drop, AddConstraint, DropConstraint } what = What::Add;
  std::string table;
  ColumnDefinition column;
  Constraint constraint;
  std::string name;  // of what is dropped
};

using Statement =
    std::variant<QueryPtr, Insert, Update, Delete, CreateTable, CreateIndex, CreateView, Drop, AlterTable>;

}  // namespace jetsql
