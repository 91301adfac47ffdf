// Static types of expressions.
#pragma once

#include <string_view>

#include "jetsql/ast.h"

namespace jetsql {

constexpr bool EsNumerico(base::Tipo t) {
  return t == base::Tipo::Booleano || t == base::Tipo::Entero || t == base::Tipo::Simple ||
         t == base::Tipo::Numero || t == base::Tipo::Moneda;
}
// Held as a number, so that SQLite's own arithmetic and comparison serve.
constexpr bool EsCantidad(base::Tipo t) { return EsNumerico(t) || t == base::Tipo::Fecha; }

// Whether a value may turn out to be a text.
constexpr bool PuedeSerTexto(TipoExpr t) {
  return !t.nulo && (t.tipo == base::Tipo::Texto || t.tipo == base::Tipo::Nulo);
}

// The type of a column that holds values of both. A text and a date or boolean give a text, and the writer
// turns those values into their texts; a text and a number stay what each is, and the type is not known.
TipoExpr Comun(TipoExpr a, TipoExpr b);
// As a number: a boolean is an integer, a text a number.
TipoExpr ComoNumero(TipoExpr t);

TipoExpr TipoDeBinario(Op op, const Expr& e);
TipoExpr TipoDeAgregado(Especial e, TipoExpr argumento);

Especial BuscarEspecial(std::string_view nombre);

}  // namespace jetsql
