#include "jetsql/types_internal.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {
namespace {

using base::Tipo;

std::string_view TextoDeOp(Op op) {
  switch (op) {
    case Op::Igual:
      return " = ";
    case Op::Distinto:
      return " <> ";
    case Op::Menor:
      return " < ";
    case Op::Mayor:
      return " > ";
    case Op::MenorIgual:
      return " <= ";
    default:
      return " >= ";
  }
}

bool EsTexto(const Expr& e) { return e.tipo.tipo == Tipo::Texto; }

}  // namespace

// Whether SQLite compares it by JET without being told. Only columns carry a collation.
bool ComparisonWriter::Cotejada(const Expr& e) {
  return e.nodo == Nodo::Columna && e.fuente->columnas[static_cast<std::size_t>(e.columna)].cotejada;
}

// A value that is compared, grouped or ordered as it stands.
void ComparisonWriter::Cotejado(const Expr& e, int minimo) {
  if (!PuedeSerTexto(e.tipo) || Cotejada(e)) {
    d_.expr.Valor(e, minimo);
    return;
  }
  d_.Abre(fuerza::kCollate, minimo);
  d_.expr.Valor(e, fuerza::kCollate);
  t_ += " COLLATE JET";
  d_.Cierra(fuerza::kCollate, minimo);
}

// One side of a comparison. A text beside a quantity is read as one; only a text column stays a text, so that
// a code like '07' can be compared with any code.
void ComparisonWriter::Lado(const Expr& e, const Expr& otro, bool cotejar, int minimo) {
  const bool columna = e.nodo == Nodo::Columna;
  if (EsTexto(e) && otro.tipo.tipo == Tipo::Fecha) {
    t_ += "jet_to_date(";
    d_.expr.Valor(e);
    t_ += ')';
  } else if (EsTexto(e) && EsNumerico(otro.tipo.tipo) && !columna) {
    t_ += "jet_num(";
    d_.expr.Valor(e);
    t_ += ')';
  } else if (EsNumerico(e.tipo.tipo) && EsTexto(otro) && otro.nodo == Nodo::Columna && !columna) {
    d_.expr.Texto(e);
  } else if (e.tipo.tipo == Tipo::Numero && otro.tipo.tipo == Tipo::Simple) {
    t_ += "jet_as_single(";  // a double beside a single has the precision of the single
    d_.expr.Valor(e);
    t_ += ')';
  } else if (cotejar) {
    Cotejado(e, minimo);
  } else {
    d_.expr.Valor(e, minimo);
  }
}

void ComparisonWriter::Comparar(Op op, const Expr& a, const Expr& b, int minimo) {
  const int f = op == Op::Igual || op == Op::Distinto ? fuerza::kIgual : fuerza::kMenor;
  d_.Abre(f, minimo);
  // SQLite takes the collation of the left side, else of the right one; a column has one even when it is not
  // JET.
  const bool textos = PuedeSerTexto(a.tipo) && PuedeSerTexto(b.tipo);
  const bool cotejar = textos && (a.nodo == Nodo::Columna || !Cotejada(b));
  Lado(a, b, cotejar, f);
  t_ += TextoDeOp(op);
  Lado(b, a, false, f + 1);
  d_.Cierra(f, minimo);
}

// Null in a list never matches and never makes the answer Null.
void ComparisonWriter::EnLista(const Expr& e, int minimo) {
  const Expr& x = *e.hijos[0];
  d_.Abre(fuerza::kIgual, minimo);
  Cotejado(x, fuerza::kIgual);
  t_ += e.negado ? " NOT IN (" : " IN (";
  bool coma = false;
  for (std::size_t i = 1; i < e.hijos.size(); ++i) {
    const Expr& item = *e.hijos[i];
    if (item.tipo.nulo) continue;
    if (coma) t_ += ", ";
    coma = true;
    if (EsTexto(x) && EsNumerico(item.tipo.tipo))
      d_.expr.Texto(item);
    else
      Lado(item, x, false, 0);
  }
  t_ += ')';
  d_.Cierra(fuerza::kIgual, minimo);
}

void ComparisonWriter::EnConsulta(const Expr& e, int minimo) {
  d_.Abre(fuerza::kIgual, minimo);
  Cotejado(*e.hijos[0], fuerza::kIgual);
  t_ += e.negado ? " NOT IN (" : " IN (";
  d_.query.EscribirConsulta(*e.consulta, {});
  t_ += ')';
  d_.Cierra(fuerza::kIgual, minimo);
}

// The bounds may come in either order.
void ComparisonWriter::Entre(const Expr& e, int minimo) {
  const Expr &x = *e.hijos[0], &a = *e.hijos[1], &b = *e.hijos[2];
  const auto extremo = [&](std::string_view funcion) {
    t_ += funcion;
    Lado(a, x, true, 0);
    t_ += ", ";
    Lado(b, x, false, 0);
    t_ += ')';
  };
  d_.Abre(fuerza::kIgual, minimo);
  Cotejado(x, fuerza::kIgual);
  t_ += e.negado ? " NOT BETWEEN " : " BETWEEN ";
  extremo("min(");
  t_ += " AND ";
  extremo("max(");
  d_.Cierra(fuerza::kIgual, minimo);
}

void ComparisonWriter::Como(const Expr& e, int minimo) {
  const int f = e.negado ? fuerza::kNot : fuerza::kAtomo;
  d_.Abre(f, minimo);
  if (e.negado) t_ += "NOT ";
  t_ += "jet_like(";
  const auto lado = [&](const Expr& x) {
    if (EsCantidad(x.tipo.tipo))
      d_.expr.Texto(x);
    else
      d_.expr.Valor(x);
  };
  lado(*e.hijos[0]);
  t_ += ", ";
  lado(*e.hijos[1]);
  t_ += d_.options.comodines_dao ? ", 1)" : ", 0)";
  d_.Cierra(f, minimo);
}

// ALL is the least of the answers and ANY the greatest, Null where a Null among them leaves it open.
void ComparisonWriter::Cuantificada(const Expr& e) {
  Fuente fuente;
  fuente.alias_sql = "jet_q";
  fuente.columnas = e.consulta->salida;
  Expr valor(Nodo::Columna);
  valor.fuente = &fuente;
  valor.columna = 0;
  valor.tipo = fuente.columnas[0].tipo;
  const auto respuesta = [&] { Comparar(e.op, *e.hijos[0], valor, 0); };
  t_ += "(SELECT CASE WHEN count(*) = 0 THEN ";
  t_ += e.todos ? "1 WHEN min(" : "0 WHEN max(";
  respuesta();
  t_ += e.todos ? ") = 0 THEN 0 WHEN count(" : ") = 1 THEN 1 WHEN count(";
  respuesta();
  t_ += e.todos ? ") < count(*) THEN NULL ELSE 1 END FROM (" : ") < count(*) THEN NULL ELSE 0 END FROM (";
  ModoLista modo;
  modo.nombres = modo.cotejar = true;
  d_.query.EscribirConsulta(*e.consulta, modo);
  t_ += ") AS \"jet_q\")";
}

}  // namespace jetsql
