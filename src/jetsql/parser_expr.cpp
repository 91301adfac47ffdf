#include <algorithm>

#include "base/text.h"
#include "jetsql/parser_internal.h"

namespace jetsql {
namespace {

// Binding strength of the binary operators; the unary ones stand between.
constexpr int kImp = 1, kEqv = 2, kXor = 3, kOr = 4, kAnd = 5, kNot = 6, kComparison = 7, kConcat = 8,
              kSum = 9, kMod = 10, kIntDiv = 11, kMultiply = 12, kSign = 13, kPower = 14;

struct BinaryOp {
  std::string_view text;
  Op op;
  int strength;
};

constexpr BinaryOp kBinaryOps[] = {
    {"IMP", Op::Imp, kImp},
    {"EQV", Op::Eqv, kEqv},
    {"XOR", Op::Xor, kXor},
    {"OR", Op::Or, kOr},
    {"AND", Op::And, kAnd},
    {"=", Op::Equal, kComparison},
    {"<>", Op::NotEqual, kComparison},
    {"<", Op::Less, kComparison},
    {">", Op::Greater, kComparison},
    {"<=", Op::LessOrEqual, kComparison},
    {">=", Op::GreaterOrEqual, kComparison},
    {"&", Op::Concat, kConcat},
    {"+", Op::Add, kSum},
    {"-", Op::Subtract, kSum},
    {"MOD", Op::Mod, kMod},
    {"\\", Op::IntDiv, kIntDiv},
    {"*", Op::Multiply, kMultiply},
    {"/", Op::Div, kMultiply},
    {"^", Op::Power, kPower},
};

// The collections of Access's own windows, "Forms!window!control".
bool IsOfAccess(std::string_view name) {
  return base::EqualIgnoringCase(name, "Forms") || base::EqualIgnoringCase(name, "Reports");
}

std::string OutsideAccessText(const std::string& reference) {
  return "La referencia " + reference +
         " a una ventana de Access no se admite: fuera de Access no tiene valor";
}

}  // namespace

void Parser::Close(Expr& e) const {
  int largest = 0;
  for (const auto& h : e.children) largest = std::max(largest, h->height);
  e.height = largest + 1;
  CheckHeight(e.height);
}

ExprPtr Parser::Unary(Op op, ExprPtr x) const {
  auto e = std::make_shared<Expr>(Node::Unary);
  e->op = op;
  e->children.push_back(std::move(x));
  Close(*e);
  return e;
}

// And, Or and & are held as one chain: a filter of a thousand dates is then a flat tree.
ExprPtr Parser::Binary(Op op, ExprPtr a, ExprPtr b) const {
  const bool chain = op == Op::And || op == Op::Or || op == Op::Concat;
  if (chain && a->node == Node::Binary && a->op == op) {
    const int height = b->height + 1;
    a->children.push_back(std::move(b));
    Count(a->children.size(), kMaxChain, "Una cadena de AND, OR o &");
    if (height > a->height) {  // only the new operand is looked at: a chain may have thousands
      a->height = height;
      CheckHeight(height);
    }
    return a;
  }
  auto e = std::make_shared<Expr>(Node::Binary);
  e->op = op;
  e->children.push_back(std::move(a));
  e->children.push_back(std::move(b));
  Close(*e);
  return e;
}

ExprPtr Parser::ReadExpr(int minimum) {
  const Level level(*this);
  ExprPtr left = ReadPrefix();
  for (;;) {
    if (minimum <= kComparison && ReadPostfixPredicate(left)) continue;
    const BinaryOp* found = nullptr;
    for (const auto& b : kBinaryOps)
      if (b.strength >= minimum && Is(b.text)) found = &b;
    if (found == nullptr) return left;
    ++i_;
    if (found->strength == kComparison && (Is("ALL") || Is("ANY") || Is("SOME")) && Is("(", 1))
      left = ReadComparison(std::move(left), found->op);
    else
      left = Binary(found->op, std::move(left), ReadExpr(found->strength + 1));
  }
}

ExprPtr Parser::ReadComparison(ExprPtr left, Op op) {
  auto e = std::make_shared<Expr>(Node::Quantified);
  e->op = op;
  e->all = Is("ALL");
  ++i_;
  Expect("(");
  if (!StartsQuery()) Fail("SELECT");
  e->children.push_back(std::move(left));
  e->query = ReadQuery();
  Expect(")");
  Close(*e);
  return e;
}

ExprPtr Parser::ReadPrefix() {
  if (Accept("NOT")) return Unary(Op::Not, ReadExpr(kNot));
  if (Accept("-")) {
    // The minus of a literal binds before "^", that of anything else after it.
    if (Current().kind == TokenKind::Integer || Current().kind == TokenKind::Real)
      return Unary(Op::Minus, ReadLiteralExpr());
    return Unary(Op::Minus, ReadExpr(kSign));
  }
  if (Accept("+")) return Unary(Op::Plus, ReadExpr(kSign));
  return ReadPrimary();
}

// IS, IN, BETWEEN and LIKE after an operand; false when none of them stands here.
bool Parser::ReadPostfixPredicate(ExprPtr& x) {
  if (Accept("IS")) {
    auto e = std::make_shared<Expr>(Node::IsNull);
    e->negated = Accept("NOT");
    Expect("NULL");
    e->children.push_back(std::move(x));
    Close(*e);
    x = std::move(e);
    return true;
  }
  const bool negated = Is("NOT");
  const std::size_t behind = negated ? 1 : 0;
  if (!Is("IN", behind) && !Is("BETWEEN", behind) && !Is("LIKE", behind)) return false;
  i_ += behind;
  if (Accept("IN")) {
    x = ReadIn(std::move(x), negated);
  } else if (Accept("BETWEEN")) {
    x = ReadBetween(std::move(x), negated);
  } else {
    Expect("LIKE");
    auto e = std::make_shared<Expr>(Node::Like);
    e->negated = negated;
    e->children.push_back(std::move(x));
    e->children.push_back(ReadExpr(kConcat));
    Close(*e);
    x = std::move(e);
  }
  return true;
}

ExprPtr Parser::ReadIn(ExprPtr x, bool negated) {
  Expect("(");
  const bool query = StartsQuery() && !Is("(");
  auto e = std::make_shared<Expr>(query ? Node::InQuery : Node::InList);
  e->negated = negated;
  e->children.push_back(std::move(x));
  if (query) {
    e->query = ReadQuery();
  } else {
    do {
      e->children.push_back(ReadExpr());
      Count(e->children.size() - 1, kMaxListed, "La lista de IN");
    } while (Accept(","));
  }
  Expect(")");
  Close(*e);
  return e;
}

ExprPtr Parser::ReadBetween(ExprPtr x, bool negated) {
  auto e = std::make_shared<Expr>(Node::Between);
  e->negated = negated;
  e->children.push_back(std::move(x));
  e->children.push_back(ReadExpr(kConcat));
  Expect("AND");
  e->children.push_back(ReadExpr(kConcat));
  Close(*e);
  return e;
}

ExprPtr Parser::ReadLiteralExpr() {
  const Lexeme& l = Current();
  auto e = std::make_shared<Expr>(Node::Literal);
  if (!ReadLiteral(l.kind, l.text, e->literal)) {
    FailAt(l.start, l.kind == TokenKind::Date ? "Error de sintaxis en la fecha " + std::string(l.text)
                                              : "El número " + std::string(l.text) + " es demasiado grande");
  }
  if (mode_ == Literals::Numbered) e->index = l.literal;
  ++i_;
  return e;
}

ExprPtr Parser::ReadPrimary() {
  const Lexeme& l = Current();
  if (IsLiteral(l.kind)) return ReadLiteralExpr();
  if (Is("(")) {
    ++i_;
    ExprPtr e;
    if (StartsQuery() && !Is("(")) {
      e = std::make_shared<Expr>(Node::Subquery);
      e->query = ReadQuery();
    } else {
      e = ReadExpr();
    }
    Expect(")");
    return e;
  }
  if (Accept("TRUE")) return std::make_shared<Expr>(Node::True);
  if (Accept("FALSE")) return std::make_shared<Expr>(Node::False);
  if (Accept("NULL")) return std::make_shared<Expr>(Node::Null);
  if (Accept("EXISTS")) {
    auto e = std::make_shared<Expr>(Node::Exists);
    Expect("(");
    if (!StartsQuery()) Fail("SELECT");
    e->query = ReadQuery();
    Expect(")");
    return e;
  }
  if ((Is("LEFT") || Is("RIGHT")) && Is("(", 1)) return ReadCall(ReadAnyName("una función"));
  if (IsName()) return ReadNameExpr();
  Fail("una expresión");
}

ExprPtr Parser::ReadNameExpr() {
  const bool word = Current().kind == TokenKind::Name;
  const std::size_t start = Current().start;
  std::string name = ReadAnyName("un nombre");
  if (word && Is("(")) return ReadCall(std::move(name));
  auto e = std::make_shared<Expr>(Node::Column);
  if (Accept(".") || Accept("!")) {
    e->qualifier = std::move(name);
    e->name = ReadAnyName("el nombre de una columna");
    if (Is(".") || Is("!")) {
      if (IsOfAccess(e->qualifier)) FailAt(start, OutsideAccessText(e->qualifier + "!" + e->name + "!…"));
      Fail("un operador");
    }
  } else {
    e->name = std::move(name);
    e->parameter = IsParameter(*e);
  }
  return e;
}

ExprPtr Parser::ReadCall(std::string name) {
  auto e = std::make_shared<Expr>(Node::Call);
  e->name = std::move(name);
  Expect("(");
  if (Is("*") && Is(")", 1)) {
    ++i_;
    e->children.push_back(std::make_shared<Expr>(Node::Star));
  } else if (!Is(")")) {
    e->distinct = Accept("DISTINCT");
    do {
      e->children.push_back(ReadExpr());
      Count(e->children.size(), kMaxColumns, "Una función");
    } while (Accept(","));
  }
  Expect(")");
  Close(*e);
  return e;
}

}  // namespace jetsql
