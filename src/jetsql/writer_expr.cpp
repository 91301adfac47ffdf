#include <array>
#include <charconv>
#include <string>

#include "base/error.h"
#include "base/text.h"
#include "jetsql/runtime.h"
#include "jetsql/types_internal.h"
#include "jetsql/writer_internal.h"

namespace jetsql {
namespace {

constexpr int kNivelMaximo = 800;
constexpr std::size_t kLargoMaximo = 8u << 20;
constexpr std::size_t kArgumentosMaximos = 100;  // SQLite's functions take 127
constexpr std::size_t kCadenaLlana = 60;

}  // namespace

// Aliases inside a list share trees, so that a short text can be a long expression.
class Escritor::Nivel {
 public:
  explicit Nivel(Escritor& e) : e_(e) {
    if (++e_.nivel_ > kNivelMaximo || e_.t_.size() > kLargoMaximo)
      throw base::Error("La sentencia es demasiado compleja");
  }
  ~Nivel() { --e_.nivel_; }
  Nivel(const Nivel&) = delete;
  Nivel& operator=(const Nivel&) = delete;

 private:
  Escritor& e_;
};

std::string NombreSql(std::string_view nombre) {
  return std::string("\"").append(base::Reemplazar(nombre, "\"", "\"\"")).append("\"");
}

std::string LiteralSql(const base::Valor& v) {
  if (const auto* n = v.Si<std::int64_t>()) return std::to_string(*n);
  if (const auto* s = v.Si<std::string>())
    return std::string("'").append(base::DoblarComillas(*s)).append("'");
  double d = 0;
  if (const auto* x = v.Si<double>()) d = *x;
  if (const auto* f = v.Si<base::Fecha>()) d = f->serie;
  std::array<char, 40> b{};
  const auto r = std::to_chars(b.data(), b.data() + b.size(), d);
  std::string s(b.data(), r.ptr);
  if (s.find_first_of(".e") == std::string::npos) s += ".0";
  return s;
}

std::string Escritor::Texto() && { return std::move(t_); }

void Escritor::Nombre(std::string_view nombre) { t_ += NombreSql(nombre); }

void Escritor::Abre(int fuerza, int minimo) {
  if (fuerza < minimo) t_ += '(';
}
void Escritor::Cierra(int fuerza, int minimo) {
  if (fuerza < minimo) t_ += ')';
}

void Escritor::Literal(const Expr& e) {
  if (e.indice >= 0)
    t_.append("?").append(std::to_string(e.indice + 1));
  else
    t_ += LiteralSql(e.literal);
}

void Escritor::Columna(const Expr& e) {
  Nombre(e.fuente->alias_sql);
  t_ += '.';
  Nombre(e.fuente->columnas[static_cast<std::size_t>(e.columna)].nombre_sql);
}

// What SQLite itself answers with 1, 0 or NULL.
bool Escritor::EsCondicion(const Expr& e) {
  switch (e.nodo) {
    case Nodo::Unario:
      return e.op == Op::No;
    case Nodo::Binario:
      return e.op < Op::Concat;
    case Nodo::Entre:
    case Nodo::EnLista:
    case Nodo::EnConsulta:
    case Nodo::Existe:
    case Nodo::Cuantificada:
    case Nodo::EsNulo:
    case Nodo::Como:
      return true;
    case Nodo::Llamada:
      return e.especial == Especial::EsNulo;
    default:
      return false;
  }
}

void Escritor::Valor(const Expr& e, int minimo) {
  const Nivel nivel(*this);
  if (EsCondicion(e)) {  // True is -1
    Abre(fuerza::kUnario, minimo);
    t_ += "-(";
    Condicion(e);
    t_ += ')';
    Cierra(fuerza::kUnario, minimo);
    return;
  }
  switch (e.nodo) {
    case Nodo::Literal:
      Literal(e);
      break;
    case Nodo::Verdadero:
      Abre(fuerza::kUnario, minimo);
      t_ += "-1";
      Cierra(fuerza::kUnario, minimo);
      break;
    case Nodo::Falso:
      t_ += '0';
      break;
    case Nodo::Nulo:
      t_ += "NULL";
      break;
    case Nodo::Columna:
      Columna(e);
      break;
    case Nodo::Unario:
      Unario(e, minimo);
      break;
    case Nodo::Binario:
      if (e.op == Op::Concat)
        Concatenar(e.hijos, e.hijos.size());
      else
        Aritmetica(e, minimo);
      break;
    case Nodo::Llamada:
      Llamada(e);
      break;
    case Nodo::Subconsulta:
      t_ += '(';
      EscribirConsulta(*e.consulta, {});
      t_ += ')';
      break;
    default:
      break;  // a star, which Count writes itself
  }
}

void Escritor::Condicion(const Expr& e, int minimo) {
  const Nivel nivel(*this);
  switch (e.nodo) {
    case Nodo::Entre:
      Entre(e, minimo);
      return;
    case Nodo::EnLista:
      EnLista(e, minimo);
      return;
    case Nodo::EnConsulta:
      EnConsulta(e, minimo);
      return;
    case Nodo::Como:
      Como(e, minimo);
      return;
    case Nodo::Cuantificada:
      Cuantificada(e);
      return;
    case Nodo::Existe:
      t_ += "EXISTS (";
      EscribirConsulta(*e.consulta, {});
      t_ += ')';
      return;
    default:
      break;
  }
  if (!EsCondicion(e)) {
    Valor(e, minimo);
  } else if (e.nodo == Nodo::EsNulo || e.nodo == Nodo::Llamada) {
    Abre(fuerza::kIgual, minimo);
    Valor(*e.hijos[0], fuerza::kIgual);
    t_ += e.negado ? " IS NOT NULL" : " IS NULL";
    Cierra(fuerza::kIgual, minimo);
  } else if (e.nodo == Nodo::Unario) {
    Abre(fuerza::kNot, minimo);
    t_ += "NOT ";
    Condicion(*e.hijos[0], fuerza::kNot);
    Cierra(fuerza::kNot, minimo);
  } else if (e.op < Op::No) {
    Logica(e, minimo);
  } else {
    Comparar(e.op, *e.hijos[0], *e.hijos[1], minimo);
  }
}

// A long chain is written as a balanced tree: SQLite counts the depth of a chain as its length.
void Escritor::Cadena(const Expr& e, std::size_t desde, std::size_t hasta, int minimo) {
  const int f = e.op == Op::And ? fuerza::kAnd : fuerza::kOr;
  const std::string_view op = e.op == Op::And ? " AND " : " OR ";
  if (hasta - desde == 1) {
    Condicion(*e.hijos[desde], minimo);
    return;
  }
  Abre(f, minimo);
  if (hasta - desde <= kCadenaLlana) {
    for (std::size_t i = desde; i < hasta; ++i) {
      if (i > desde) t_ += op;
      Condicion(*e.hijos[i], f + 1);
    }
  } else {
    const std::size_t mitad = desde + (hasta - desde) / 2;
    Cadena(e, desde, mitad, f + 1);
    t_ += op;
    Cadena(e, mitad, hasta, f + 1);
  }
  Cierra(f, minimo);
}

void Escritor::Logica(const Expr& e, int minimo) {
  if (e.op == Op::And || e.op == Op::Or) {
    Cadena(e, 0, e.hijos.size(), minimo);
    return;
  }
  const bool imp = e.op == Op::Imp;
  const int f = imp ? fuerza::kOr : fuerza::kIgual;
  Abre(f, minimo);
  t_ += "(NOT ";
  Condicion(*e.hijos[0], fuerza::kNot);
  t_ += imp ? ") OR " : e.op == Op::Xor ? ") <> (NOT " : ") = (NOT ";
  Condicion(*e.hijos[1], imp ? fuerza::kAnd : fuerza::kNot);
  if (!imp) t_ += ')';
  Cierra(f, minimo);
}

void Escritor::Numero(const Expr& e, int minimo) {
  if (EsCantidad(e.tipo.tipo) || e.tipo.nulo) {
    Valor(e, minimo);
    return;
  }
  t_ += "jet_num(";
  Valor(e);
  t_ += ')';
}

void Escritor::Unario(const Expr& e, int minimo) {
  const Expr& x = *e.hijos[0];
  if (e.op == Op::Mas) {
    Valor(x, minimo);
    return;
  }
  Abre(fuerza::kUnario, minimo);
  t_ += '-';
  Numero(x, fuerza::kAtomo);  // "--" would start a comment
  Cierra(fuerza::kUnario, minimo);
}

void Escritor::Ayudante(std::string_view nombre, const Expr& e) {
  t_.append(nombre).append("(");
  Valor(*e.hijos[0]);
  t_ += ", ";
  Valor(*e.hijos[1]);
  t_ += ')';
}

void Escritor::Aritmetica(const Expr& e, int minimo) {
  switch (e.op) {
    case Op::Div:
      Ayudante("jet_div", e);
      return;
    case Op::DivEntera:
      Ayudante("jet_idiv", e);
      return;
    case Op::Mod:
      Ayudante("jet_mod", e);
      return;
    case Op::Potencia:
      Ayudante("jet_pow", e);
      return;
    default:
      break;
  }
  const Expr &a = *e.hijos[0], &b = *e.hijos[1];
  if (e.op == Op::Suma && (PuedeSerTexto(a.tipo) || PuedeSerTexto(b.tipo))) {
    t_ += "jet_add(";
    Etiquetas(e.hijos, 0, 2);
    t_ += ", ";
    Valor(a);
    t_ += ", ";
    Valor(b);
    t_ += ')';
    return;
  }
  const int f = e.op == Op::Por ? fuerza::kPor : fuerza::kSuma;
  const bool nulo =
      a.tipo.nulo || b.tipo.nulo;  // then nothing else matters, not even a text that is no number
  Abre(f, minimo);
  nulo ? Valor(a, f) : Numero(a, f);
  t_ += e.op == Op::Por ? " * " : e.op == Op::Suma ? " + " : " - ";
  nulo ? Valor(b, f + 1) : Numero(b, f + 1);
  Cierra(f, minimo);
}

void Escritor::Etiquetas(const std::vector<ExprPtr>& partes, std::size_t desde, std::size_t hasta) {
  t_ += '\'';
  for (std::size_t i = desde; i < hasta; ++i) t_ += LetraDeTipo(partes[i]->tipo.tipo);
  t_ += '\'';
}

void Escritor::Concatenar(const std::vector<ExprPtr>& partes, std::size_t hasta) {
  t_ += "jet_concat(";
  std::size_t desde = 0;
  if (hasta > kArgumentosMaximos) {
    desde = hasta - kArgumentosMaximos + 1;
    t_ += "'T";
    for (std::size_t i = desde; i < hasta; ++i) t_ += LetraDeTipo(partes[i]->tipo.tipo);
    t_ += "', ";
    Concatenar(partes, desde);
  } else {
    Etiquetas(partes, 0, hasta);
  }
  for (std::size_t i = desde; i < hasta; ++i) {
    t_ += ", ";
    Valor(*partes[i]);
  }
  t_ += ')';
}

void Escritor::Texto(const Expr& e) {
  if (e.tipo.tipo == base::Tipo::Texto || e.tipo.nulo) {
    Valor(e);
    return;
  }
  t_.append("jet_concat('").append(1, LetraDeTipo(e.tipo.tipo)).append("', ");
  Valor(e);
  t_ += ')';
}

}  // namespace jetsql
