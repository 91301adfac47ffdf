#include <algorithm>

#include "base/text.h"
#include "jetsql/parser_internal.h"

namespace jetsql {
namespace {

// Binding strength of the binary operators; the unary ones stand between.
constexpr int kImp = 1, kEqv = 2, kXor = 3, kOr = 4, kAnd = 5, kNo = 6, kComparacion = 7, kConcat = 8,
              kSuma = 9, kMod = 10, kDivEntera = 11, kPor = 12, kSigno = 13, kPotencia = 14;

struct OpBinario {
  std::string_view texto;
  Op op;
  int fuerza;
};

constexpr OpBinario kBinarios[] = {
    {"IMP", Op::Imp, kImp},
    {"EQV", Op::Eqv, kEqv},
    {"XOR", Op::Xor, kXor},
    {"OR", Op::Or, kOr},
    {"AND", Op::And, kAnd},
    {"=", Op::Igual, kComparacion},
    {"<>", Op::Distinto, kComparacion},
    {"<", Op::Menor, kComparacion},
    {">", Op::Mayor, kComparacion},
    {"<=", Op::MenorIgual, kComparacion},
    {">=", Op::MayorIgual, kComparacion},
    {"&", Op::Concat, kConcat},
    {"+", Op::Suma, kSuma},
    {"-", Op::Resta, kSuma},
    {"MOD", Op::Mod, kMod},
    {"\\", Op::DivEntera, kDivEntera},
    {"*", Op::Por, kPor},
    {"/", Op::Div, kPor},
    {"^", Op::Potencia, kPotencia},
};

// The collections of Access's own windows, "Forms!window!control".
bool DeAccess(std::string_view nombre) {
  return base::IgualSinCaso(nombre, "Forms") || base::IgualSinCaso(nombre, "Reports");
}

std::string SinAccess(const std::string& referencia) {
  return "La referencia " + referencia +
         " a una ventana de Access no se admite: fuera de Access no tiene valor";
}

}  // namespace

void Parser::Cerrar(Expr& e) const {
  int mayor = 0;
  for (const auto& h : e.hijos) mayor = std::max(mayor, h->altura);
  e.altura = mayor + 1;
  Alto(e.altura);
}

ExprPtr Parser::Unario(Op op, ExprPtr x) const {
  auto e = std::make_shared<Expr>(Nodo::Unario);
  e->op = op;
  e->hijos.push_back(std::move(x));
  Cerrar(*e);
  return e;
}

// And, Or and & are held as one chain: a filter of a thousand dates is then a flat tree.
ExprPtr Parser::Binario(Op op, ExprPtr a, ExprPtr b) const {
  const bool cadena = op == Op::And || op == Op::Or || op == Op::Concat;
  if (cadena && a->nodo == Nodo::Binario && a->op == op) {
    const int altura = b->altura + 1;
    a->hijos.push_back(std::move(b));
    Count(a->hijos.size(), kMaxChain, "Una cadena de AND, OR o &");
    if (altura > a->altura) {  // only the new operand is looked at: a chain may have thousands
      a->altura = altura;
      Alto(altura);
    }
    return a;
  }
  auto e = std::make_shared<Expr>(Nodo::Binario);
  e->op = op;
  e->hijos.push_back(std::move(a));
  e->hijos.push_back(std::move(b));
  Cerrar(*e);
  return e;
}

ExprPtr Parser::LeerExpr(int minimo) {
  const Nivel nivel(*this);
  ExprPtr izquierda = LeerPrefijo();
  for (;;) {
    if (minimo <= kComparacion && LeerPredicadoPosfijo(izquierda)) continue;
    const OpBinario* hallado = nullptr;
    for (const auto& b : kBinarios)
      if (b.fuerza >= minimo && Es(b.texto)) hallado = &b;
    if (hallado == nullptr) return izquierda;
    ++i_;
    if (hallado->fuerza == kComparacion && (Es("ALL") || Es("ANY") || Es("SOME")) && Es("(", 1))
      izquierda = LeerComparacion(std::move(izquierda), hallado->op);
    else
      izquierda = Binario(hallado->op, std::move(izquierda), LeerExpr(hallado->fuerza + 1));
  }
}

ExprPtr Parser::LeerComparacion(ExprPtr izquierda, Op op) {
  auto e = std::make_shared<Expr>(Nodo::Cuantificada);
  e->op = op;
  e->todos = Es("ALL");
  ++i_;
  Espera("(");
  if (!EmpiezaConsulta()) Falla("SELECT");
  e->hijos.push_back(std::move(izquierda));
  e->consulta = LeerConsulta();
  Espera(")");
  Cerrar(*e);
  return e;
}

ExprPtr Parser::LeerPrefijo() {
  if (Come("NOT")) return Unario(Op::No, LeerExpr(kNo));
  if (Come("-")) {
    // The minus of a literal binds before "^", that of anything else after it.
    if (Actual().clase == ClaseToken::Entero || Actual().clase == ClaseToken::Real)
      return Unario(Op::Menos, LeerLiteralExpr());
    return Unario(Op::Menos, LeerExpr(kSigno));
  }
  if (Come("+")) return Unario(Op::Mas, LeerExpr(kSigno));
  return LeerPrimario();
}

// IS, IN, BETWEEN and LIKE after an operand; false when none of them stands here.
bool Parser::LeerPredicadoPosfijo(ExprPtr& x) {
  if (Come("IS")) {
    auto e = std::make_shared<Expr>(Nodo::EsNulo);
    e->negado = Come("NOT");
    Espera("NULL");
    e->hijos.push_back(std::move(x));
    Cerrar(*e);
    x = std::move(e);
    return true;
  }
  const bool negado = Es("NOT");
  const std::size_t detras = negado ? 1 : 0;
  if (!Es("IN", detras) && !Es("BETWEEN", detras) && !Es("LIKE", detras)) return false;
  i_ += detras;
  if (Come("IN")) {
    x = LeerEn(std::move(x), negado);
  } else if (Come("BETWEEN")) {
    x = LeerEntre(std::move(x), negado);
  } else {
    Espera("LIKE");
    auto e = std::make_shared<Expr>(Nodo::Como);
    e->negado = negado;
    e->hijos.push_back(std::move(x));
    e->hijos.push_back(LeerExpr(kConcat));
    Cerrar(*e);
    x = std::move(e);
  }
  return true;
}

ExprPtr Parser::LeerEn(ExprPtr x, bool negado) {
  Espera("(");
  const bool consulta = EmpiezaConsulta() && !Es("(");
  auto e = std::make_shared<Expr>(consulta ? Nodo::EnConsulta : Nodo::EnLista);
  e->negado = negado;
  e->hijos.push_back(std::move(x));
  if (consulta) {
    e->consulta = LeerConsulta();
  } else {
    do {
      e->hijos.push_back(LeerExpr());
      Count(e->hijos.size() - 1, kMaxListed, "La lista de IN");
    } while (Come(","));
  }
  Espera(")");
  Cerrar(*e);
  return e;
}

ExprPtr Parser::LeerEntre(ExprPtr x, bool negado) {
  auto e = std::make_shared<Expr>(Nodo::Entre);
  e->negado = negado;
  e->hijos.push_back(std::move(x));
  e->hijos.push_back(LeerExpr(kConcat));
  Espera("AND");
  e->hijos.push_back(LeerExpr(kConcat));
  Cerrar(*e);
  return e;
}

ExprPtr Parser::LeerLiteralExpr() {
  const Lexema& l = Actual();
  auto e = std::make_shared<Expr>(Nodo::Literal);
  if (!LeerLiteral(l.clase, l.texto, e->literal)) {
    FallaEn(l.inicio, l.clase == ClaseToken::Fecha
                          ? "Error de sintaxis en la fecha " + std::string(l.texto)
                          : "El número " + std::string(l.texto) + " es demasiado grande");
  }
  if (modo_ == Literales::Numerados) e->indice = l.literal;
  ++i_;
  return e;
}

ExprPtr Parser::LeerPrimario() {
  const Lexema& l = Actual();
  if (EsLiteral(l.clase)) return LeerLiteralExpr();
  if (Es("(")) {
    ++i_;
    ExprPtr e;
    if (EmpiezaConsulta() && !Es("(")) {
      e = std::make_shared<Expr>(Nodo::Subconsulta);
      e->consulta = LeerConsulta();
    } else {
      e = LeerExpr();
    }
    Espera(")");
    return e;
  }
  if (Come("TRUE")) return std::make_shared<Expr>(Nodo::Verdadero);
  if (Come("FALSE")) return std::make_shared<Expr>(Nodo::Falso);
  if (Come("NULL")) return std::make_shared<Expr>(Nodo::Nulo);
  if (Come("EXISTS")) {
    auto e = std::make_shared<Expr>(Nodo::Existe);
    Espera("(");
    if (!EmpiezaConsulta()) Falla("SELECT");
    e->consulta = LeerConsulta();
    Espera(")");
    return e;
  }
  if ((Es("LEFT") || Es("RIGHT")) && Es("(", 1)) return LeerLlamada(LeerNombreLibre("una función"));
  if (EsNombre()) return LeerNombreExpr();
  Falla("una expresión");
}

ExprPtr Parser::LeerNombreExpr() {
  const bool palabra = Actual().clase == ClaseToken::Nombre;
  const std::size_t inicio = Actual().inicio;
  std::string nombre = LeerNombreLibre("un nombre");
  if (palabra && Es("(")) return LeerLlamada(std::move(nombre));
  auto e = std::make_shared<Expr>(Nodo::Columna);
  if (Come(".") || Come("!")) {
    e->calificador = std::move(nombre);
    e->nombre = LeerNombreLibre("el nombre de una columna");
    if (Es(".") || Es("!")) {
      if (DeAccess(e->calificador)) FallaEn(inicio, SinAccess(e->calificador + "!" + e->nombre + "!…"));
      Falla("un operador");
    }
  } else {
    e->nombre = std::move(nombre);
    e->parametro = EsParametro(*e);
  }
  return e;
}

ExprPtr Parser::LeerLlamada(std::string nombre) {
  auto e = std::make_shared<Expr>(Nodo::Llamada);
  e->nombre = std::move(nombre);
  Espera("(");
  if (Es("*") && Es(")", 1)) {
    ++i_;
    e->hijos.push_back(std::make_shared<Expr>(Nodo::Estrella));
  } else if (!Es(")")) {
    e->distinto = Come("DISTINCT");
    do {
      e->hijos.push_back(LeerExpr());
      Count(e->hijos.size(), kMaxColumns, "Una función");
    } while (Come(","));
  }
  Espera(")");
  Cerrar(*e);
  return e;
}

}  // namespace jetsql
