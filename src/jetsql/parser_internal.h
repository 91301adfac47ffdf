// The recursive-descent parser; its methods are spread over parser_*.cpp by the kind of text they read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jetsql/parser.h"
#include "jetsql/scanner_internal.h"

namespace jetsql {

// A text of any length is read, or refused, in a moment. Statements that the program writes are far inside.
inline constexpr std::size_t kMaxTokens = 100'000;
inline constexpr int kMaxColumns = 255;    // of a list of columns, values, keys or arguments, as in Access
inline constexpr int kMaxListed = 20'000;  // values in IN (…)
inline constexpr int kMaxTables = 64;      // of one FROM
inline constexpr int kMaxChain = 10'000;   // conditions joined by AND, or by OR; pieces joined by &

class Parser {
 public:
  Parser(std::string_view sql, Literals literals);
  Statement ReadStatement();

 private:
  struct Lexeme {
    TokenKind kind;
    std::string_view text;
    std::size_t start;
    int literal;              // its index among the literals
    std::size_t closing = 0;  // of "(": the token behind its ")"
  };

  // Tokens (parser.cpp).
  const Lexeme& Current() const { return lexemes_[i_]; }
  const Lexeme& Peek(std::size_t ahead) const;
  bool Is(std::string_view word_or_sign, std::size_t ahead = 0) const;
  bool Accept(std::string_view word_or_sign);
  void Expect(std::string_view word_or_sign);
  bool IsName(std::size_t ahead = 0) const;  // a name that needs no brackets, or one in brackets
  std::string ReadName(std::string_view what);
  std::string ReadAnyName(std::string_view what);  // after AS or ".": any word
  int ReadSmallInteger(std::string_view what);
  [[noreturn]] void Fail(std::string_view expected) const;
  [[noreturn]] void FailAt(std::size_t byte, std::string_view description) const;
  [[noreturn]] void FailUnsupported(std::string_view what) const;
  void ReadParameters();
  bool IsParameter(const Expr& column) const;
  void CheckHeight(int height) const;  // throws when a tree is too high
  void PairBrackets();
  // Throws when a list that grew to `count` has one too many: "… no puede tener más de …".
  void Count(std::size_t count, int most, std::string_view what) const;
  void RefuseIntoElsewhere(const Statement& s) const;
  std::string TextFrom(std::size_t lexeme) const;

  class Level;  // counts the recursion

  // SELECT (parser_select.cpp).
  bool StartsQuery(std::size_t ahead = 0) const;
  QueryPtr ReadQuery();
  QueryPtr ReadCrosstab();
  Select ReadPart();
  Select ReadSelect();
  void ReadPredicate(Select& s);
  ListItem ReadItem();
  void ReadOrder(std::vector<OrderItem>& order);
  std::vector<BranchPtr> ReadFrom();
  BranchPtr ReadBranch();
  BranchPtr ReadLeaf();
  bool OpensDerivedTable() const;
  bool ReadJoinType(JoinType& type);
  std::string ReadTableAlias();
  BranchPtr Leaf(std::unique_ptr<Source> source) const;

  // Expressions (parser_expr.cpp).
  ExprPtr ReadExpr(int minimum = 0);
  ExprPtr ReadPrefix();
  ExprPtr ReadPrimary();
  ExprPtr ReadLiteralExpr();
  ExprPtr ReadNameExpr();
  ExprPtr ReadCall(std::string name);
  ExprPtr ReadComparison(ExprPtr left, Op op);
  bool ReadPostfixPredicate(ExprPtr& left);
  ExprPtr ReadIn(ExprPtr x, bool negated);
  ExprPtr ReadBetween(ExprPtr x, bool negated);
  ExprPtr Unary(Op op, ExprPtr x) const;
  ExprPtr Binary(Op op, ExprPtr a, ExprPtr b) const;
  void Close(Expr& e) const;  // its height

  // Changes (parser_dml.cpp).
  Insert ReadInsert();
  Update ReadUpdate();
  Delete ReadDelete();
  std::vector<std::string> ReadNameList();

  // Definitions (parser_ddl.cpp).
  Statement ReadDefinition();
  Statement ReadCreate();
  CreateTable ReadCreateTable();
  CreateIndex ReadCreateIndex(bool unique);
  CreateView ReadCreateView();
  ColumnDefinition ReadColumn();
  void ReadType(ColumnDefinition& c);
  void ReadColumnConstraints(ColumnDefinition& c);
  Constraint ReadConstraint();
  Reference ReadReference();
  Drop ReadDrop();
  AlterTable ReadAlter();

  std::string_view sql_;
  Literals mode_;
  std::vector<Lexeme> lexemes_;
  std::size_t i_ = 0;
  int level_ = 0;
  std::vector<std::string> parameters_;    // the names that PARAMETERS declares
  std::size_t intos_ = 0, last_into_ = 0;  // SELECT … INTO met so far, and where the last one stands
};

// One step down into a text; too many end in an error, not in the end of the stack.
class Parser::Level {
 public:
  explicit Level(Parser& p) : p_(p) {
    p_.level_++;
    p_.CheckHeight(p_.level_ * 2);  // a step takes more of the stack than a node of a tree
  }
  ~Level() { p_.level_--; }
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;

 private:
  Parser& p_;
};

}  // namespace jetsql
