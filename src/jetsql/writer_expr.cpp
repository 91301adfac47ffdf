#include "base/error.h"
#include "jetsql/runtime.h"
#include "jetsql/types_internal.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {
namespace {

constexpr int kNivelMaximo = 800;
constexpr std::size_t kLargoMaximo = 8u << 20;
constexpr std::size_t kArgumentosMaximos = 100;  // SQLite's functions take 127
constexpr std::size_t kCadenaLlana = 60;

// Aliases inside a list share trees, so that a short text can be a long expression.
class Nivel {
 public:
  explicit Nivel(SqlDraft& draft) : draft_(draft) {
    if (++draft_.depth > kNivelMaximo || draft_.text.size() > kLargoMaximo)
      throw base::Error("La sentencia es demasiado compleja");
  }
  ~Nivel() { --draft_.depth; }
  Nivel(const Nivel&) = delete;
  Nivel& operator=(const Nivel&) = delete;

 private:
  SqlDraft& draft_;
};

// What SQLite itself answers with 1, 0 or NULL.
bool EsCondicion(const Expr& e) {
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

}  // namespace

void ExpressionWriter::Columna(const Expr& e) {
  d_.Nombre(e.fuente->alias_sql);
  t_ += '.';
  d_.Nombre(e.fuente->columnas[static_cast<std::size_t>(e.columna)].nombre_sql);
}

void ExpressionWriter::Valor(const Expr& e, int minimo) {
  const Nivel nivel(d_);
  if (EsCondicion(e)) {  // True is -1
    d_.Abre(fuerza::kUnario, minimo);
    t_ += "-(";
    Condicion(e);
    t_ += ')';
    d_.Cierra(fuerza::kUnario, minimo);
    return;
  }
  switch (e.nodo) {
    case Nodo::Literal:
      d_.Literal(e);
      break;
    case Nodo::Verdadero:
      d_.Abre(fuerza::kUnario, minimo);
      t_ += "-1";
      d_.Cierra(fuerza::kUnario, minimo);
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
      d_.call.Llamada(e);
      break;
    case Nodo::Subconsulta:
      t_ += '(';
      d_.query.EscribirConsulta(*e.consulta, {});
      t_ += ')';
      break;
    default:
      break;  // a star, which Count writes itself
  }
}

void ExpressionWriter::Condicion(const Expr& e, int minimo) {
  const Nivel nivel(d_);
  switch (e.nodo) {
    case Nodo::Entre:
      d_.compare.Entre(e, minimo);
      return;
    case Nodo::EnLista:
      d_.compare.EnLista(e, minimo);
      return;
    case Nodo::EnConsulta:
      d_.compare.EnConsulta(e, minimo);
      return;
    case Nodo::Como:
      d_.compare.Como(e, minimo);
      return;
    case Nodo::Cuantificada:
      d_.compare.Cuantificada(e);
      return;
    case Nodo::Existe:
      t_ += "EXISTS (";
      d_.query.EscribirConsulta(*e.consulta, {});
      t_ += ')';
      return;
    default:
      break;
  }
  if (!EsCondicion(e)) {
    Valor(e, minimo);
  } else if (e.nodo == Nodo::EsNulo || e.nodo == Nodo::Llamada) {
    d_.Abre(fuerza::kIgual, minimo);
    Valor(*e.hijos[0], fuerza::kIgual);
    t_ += e.negado ? " IS NOT NULL" : " IS NULL";
    d_.Cierra(fuerza::kIgual, minimo);
  } else if (e.nodo == Nodo::Unario) {
    d_.Abre(fuerza::kNot, minimo);
    t_ += "NOT ";
    Condicion(*e.hijos[0], fuerza::kNot);
    d_.Cierra(fuerza::kNot, minimo);
  } else if (e.op < Op::No) {
    Logica(e, minimo);
  } else {
    d_.compare.Comparar(e.op, *e.hijos[0], *e.hijos[1], minimo);
  }
}

// A long chain is written as a balanced tree: SQLite counts the depth of a chain as its length.
void ExpressionWriter::Cadena(const Expr& e, std::size_t desde, std::size_t hasta, int minimo) {
  const int f = e.op == Op::And ? fuerza::kAnd : fuerza::kOr;
  const std::string_view op = e.op == Op::And ? " AND " : " OR ";
  if (hasta - desde == 1) {
    Condicion(*e.hijos[desde], minimo);
    return;
  }
  d_.Abre(f, minimo);
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
  d_.Cierra(f, minimo);
}

void ExpressionWriter::Logica(const Expr& e, int minimo) {
  if (e.op == Op::And || e.op == Op::Or) {
    Cadena(e, 0, e.hijos.size(), minimo);
    return;
  }
  const bool imp = e.op == Op::Imp;
  const int f = imp ? fuerza::kOr : fuerza::kIgual;
  d_.Abre(f, minimo);
  t_ += "(NOT ";
  Condicion(*e.hijos[0], fuerza::kNot);
  t_ += imp ? ") OR " : e.op == Op::Xor ? ") <> (NOT " : ") = (NOT ";
  Condicion(*e.hijos[1], imp ? fuerza::kAnd : fuerza::kNot);
  if (!imp) t_ += ')';
  d_.Cierra(f, minimo);
}

void ExpressionWriter::Numero(const Expr& e, int minimo) {
  if (EsCantidad(e.tipo.tipo) || e.tipo.nulo) {
    Valor(e, minimo);
    return;
  }
  t_ += "jet_num(";
  Valor(e);
  t_ += ')';
}

void ExpressionWriter::Unario(const Expr& e, int minimo) {
  const Expr& x = *e.hijos[0];
  if (e.op == Op::Mas) {
    Valor(x, minimo);
    return;
  }
  d_.Abre(fuerza::kUnario, minimo);
  t_ += '-';
  Numero(x, fuerza::kAtomo);  // "--" would start a comment
  d_.Cierra(fuerza::kUnario, minimo);
}

void ExpressionWriter::Ayudante(std::string_view nombre, const Expr& e) {
  t_.append(nombre).append("(");
  Valor(*e.hijos[0]);
  t_ += ", ";
  Valor(*e.hijos[1]);
  t_ += ')';
}

void ExpressionWriter::Aritmetica(const Expr& e, int minimo) {
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
  d_.Abre(f, minimo);
  nulo ? Valor(a, f) : Numero(a, f);
  t_ += e.op == Op::Por ? " * " : e.op == Op::Suma ? " + " : " - ";
  nulo ? Valor(b, f + 1) : Numero(b, f + 1);
  d_.Cierra(f, minimo);
}

void ExpressionWriter::Etiquetas(const std::vector<ExprPtr>& partes, std::size_t desde, std::size_t hasta) {
  t_ += '\'';
  for (std::size_t i = desde; i < hasta; ++i) t_ += LetraDeTipo(partes[i]->tipo.tipo);
  t_ += '\'';
}

void ExpressionWriter::Concatenar(const std::vector<ExprPtr>& partes, std::size_t hasta) {
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

void ExpressionWriter::Texto(const Expr& e) {
  if (e.tipo.tipo == base::Tipo::Texto || e.tipo.nulo) {
    Valor(e);
    return;
  }
  t_.append("jet_concat('").append(1, LetraDeTipo(e.tipo.tipo)).append("', ");
  Valor(e);
  t_ += ')';
}

}  // namespace jetsql
