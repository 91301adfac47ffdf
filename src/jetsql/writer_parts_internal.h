// Those who write the parts of a SQLite text. Queries hold expressions and expressions hold queries: all of
// them write into one draft and ask each other through it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jetsql/ast.h"
#include "jetsql/translate.h"

namespace jetsql {

// Binding strengths of SQLite's operators, for the fewest brackets: its parser has a short stack.
namespace strength {
constexpr int kOr = 1, kAnd = 2, kNot = 3, kEqual = 4, kLess = 5, kSum = 7, kMultiply = 8, kCollate = 10,
              kUnary = 11, kAtom = 12;
}

class SqlDraft;

// How a SELECT's list is written.
struct ListMode {
  bool names = false;    // every item with its name: the SELECT is read by another one
  bool collate = false;  // every text item compares by JET
  const std::vector<base::Type>* targets = nullptr;   // stored into columns of these types
  const std::vector<SourceColumn>* output = nullptr;  // of the union that it is part of
  std::string extra;                                  // more items
};

// Queries (writer_select.cpp).
class QueryWriter {
 public:
  explicit QueryWriter(SqlDraft& draft);
  void WriteQuery(const Query& c, ListMode mode);
  // One SELECT, with the order of the query when it is its only one.
  void Part(const Select& s, const std::vector<OrderItem>& order, const ListMode& mode, bool in_union);

 private:
  void Core(const Select& s, const ListMode& mode);
  void List(const Select& s, const ListMode& mode);
  void ByRank(const Select& s, const std::vector<OrderItem>& order, const ListMode& mode);
  void Key(const Expr& e);
  void ListNames(const Select& s);
  void OrderBy(const std::vector<OrderItem>& order, bool by_position);
  std::string Window(const Select& s, const std::vector<OrderItem>& order);

  SqlDraft& d_;
  std::string& t_;
};

// FROM and WHERE (writer_from.cpp).
class FromWriter {
 public:
  explicit FromWriter(SqlDraft& draft);
  void FromAndWhere(const std::vector<BranchPtr>& from, const ExprPtr& where);
  void Leaf(const Source& f);
  void RowOf(const Source& f);  // its rowid
  // Whether the rows of a table can be named outside the FROM: not inside brackets.
  static bool IsReachable(const std::vector<BranchPtr>& from, const Source& f);

 private:
  struct Step {
    const Branch* branch = nullptr;
    bool left = false;
    const Expr* condition = nullptr;
  };
  static void Flatten(const Branch& r, std::vector<Step>& steps, std::vector<const Expr*>& filters);
  void Nested(const Branch& r);

  SqlDraft& d_;
  std::string& t_;
};

// INSERT, UPDATE, DELETE and what they store (writer_dml.cpp, writer_store.cpp).
class ChangeWriter {
 public:
  explicit ChangeWriter(SqlDraft& draft);
  void Write(const Insert& s);
  void Write(const Delete& s);
  static std::vector<std::string> Steps(const Update& s, const TranslationOptions& options);
  void InsertQuery(std::string_view table, const std::vector<TableColumn>& columns, const Query& c);
  // A value on its way into a column of a type.
  void Assigned(const Expr& e, base::Type target);

 private:
  void Assign(const Update& s, const Source& table, bool snapshot);
  void Snapshot(const Update& s, const std::vector<const Source*>& tables);

  SqlDraft& d_;
  std::string& t_;
};

// Values and conditions (writer_expr.cpp).
class ExpressionWriter {
 public:
  explicit ExpressionWriter(SqlDraft& draft);
  void Value(const Expr& e, int minimum = 0);
  void Condition(const Expr& e, int minimum = 0);
  void Number(const Expr& e, int minimum);
  void Text(const Expr& e);  // as "&" reads it
  void Tags(const std::vector<ExprPtr>& parts, std::size_t from, std::size_t to);

 private:
  void Column(const Expr& e);
  void Unary(const Expr& e, int minimum);
  void Arithmetic(const Expr& e, int minimum);
  void Helper(std::string_view name, const Expr& e);
  void Concatenate(const std::vector<ExprPtr>& parts, std::size_t to);
  void Logic(const Expr& e, int minimum);
  void String(const Expr& e, std::size_t from, std::size_t to, int minimum);

  SqlDraft& d_;
  std::string& t_;
};

// What compares (writer_compare.cpp).
class ComparisonWriter {
 public:
  explicit ComparisonWriter(SqlDraft& draft);
  void Compare(Op op, const Expr& a, const Expr& b, int minimum);
  void InList(const Expr& e, int minimum);
  void InQuery(const Expr& e, int minimum);
  void Between(const Expr& e, int minimum);
  void Like(const Expr& e, int minimum);
  void Quantified(const Expr& e);
  // A value that is compared, grouped or ordered as it stands.
  void Collated(const Expr& e, int minimum);
  // Whether SQLite compares it by JET without being told.
  static bool IsCollated(const Expr& e);

 private:
  void Side(const Expr& e, const Expr& other, bool collate, int minimum);

  SqlDraft& d_;
  std::string& t_;
};

// Functions and aggregates (writer_call.cpp).
class CallWriter {
 public:
  explicit CallWriter(SqlDraft& draft);
  void Call(const Expr& e);

 private:
  void SpecialCall(const Expr& e);
  void IIf(const Expr& e);
  void ResultOfIf(const Expr& branch, const std::vector<const Expr*>& branches);
  void Aggregate(const Expr& e);
  void Total(const Expr& e);

  SqlDraft& d_;
  std::string& t_;
};

// A text under way and its writers.
class SqlDraft {
 public:
  // `depth`: of the expression that it is part of.
  explicit SqlDraft(const TranslationOptions& options_, int depth_ = 0) : options(options_), depth(depth_) {}
  SqlDraft(const SqlDraft&) = delete;
  SqlDraft& operator=(const SqlDraft&) = delete;

  void Name(std::string_view name);
  void Literal(const Expr& e);
  // Brackets around what binds weaker than its place asks for.
  void OpenBracket(int strength, int minimum);
  void CloseBracket(int strength, int minimum);

  TranslationOptions options;
  std::string text;
  int depth;

  QueryWriter query{*this};
  FromWriter from{*this};
  ChangeWriter change{*this};
  ExpressionWriter expr{*this};
  ComparisonWriter compare{*this};
  CallWriter call{*this};
};

}  // namespace jetsql
