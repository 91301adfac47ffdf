// A value on its way into a column: as Access converts it when it stores it.
#include "jetsql/types_internal.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {
namespace {

using base::Tipo;

// The function that makes a value of another type one of the column's; empty when it can stand as it is.
std::string_view Conversion(Tipo of, Tipo into) {
  switch (into) {
    case Tipo::Booleano:
      return "jet_to_bool";
    case Tipo::Entero:
      return of == Tipo::Booleano ? "" : "jet_to_int";
    case Tipo::Simple:
      return "jet_to_single";
    case Tipo::Numero:
      return EsCantidad(of) ? "" : "jet_to_number";
    case Tipo::Moneda:
      return of == Tipo::Entero || of == Tipo::Booleano ? "" : "jet_to_currency";
    case Tipo::Fecha:
      return EsCantidad(of) ? "" : "jet_to_date";
    default:
      return "";
  }
}

// The same for a value of the column's own type: a computed single or currency is a double until it is
// stored.
std::string_view Rounding(const Expr& e, Tipo into) {
  if (e.tipo.tipo != into || e.nodo == Nodo::Columna) return "";
  if (into == Tipo::Simple) return "jet_to_single";
  return into == Tipo::Moneda ? "jet_to_currency" : "";
}

}  // namespace

void ChangeWriter::Asignado(const Expr& e, Tipo destino) {
  const Tipo t = e.tipo.tipo;
  const bool as_it_is = e.tipo.nulo || destino == Tipo::Nulo || t == destino;
  if (!as_it_is && destino == Tipo::Booleano && EsCantidad(t)) {
    t_ += "-(";
    d_.expr.Valor(e, fuerza::kIgual);
    t_ += " <> 0)";
    return;
  }
  if (!as_it_is && destino == Tipo::Texto) {
    d_.expr.Texto(e);
    return;
  }
  const std::string_view function = as_it_is ? Rounding(e, destino) : Conversion(t, destino);
  if (function.empty()) {
    d_.expr.Valor(e);
    return;
  }
  t_.append(function).append("(");
  d_.expr.Valor(e);
  t_ += ')';
}

}  // namespace jetsql
