#include "jetsql/types_internal.h"

#include "base/text.h"
#include "jetsql/functions.h"
#include "jetsql/runtime.h"

namespace jetsql {
namespace {

using base::Tipo;

constexpr TipoExpr kDesconocido{Tipo::Nulo, false};
constexpr TipoExpr kNulo{Tipo::Nulo, true};

bool Desconocido(TipoExpr t) { return t.tipo == Tipo::Nulo && !t.nulo; }

Tipo NumericoComun(Tipo a, Tipo b) {
  if (a == b) return a;
  if (a > b) std::swap(a, b);  // Booleano, Entero, Simple, Numero, Moneda
  if (a == Tipo::Booleano) return b;
  if (a == Tipo::Entero && b == Tipo::Moneda) return Tipo::Moneda;
  return Tipo::Numero;
}

TipoExpr Aritmetico(Op op, TipoExpr a, TipoExpr b) {
  if (a.nulo || b.nulo) return kNulo;
  if (op == Op::Suma && a.tipo == Tipo::Texto && b.tipo == Tipo::Texto) return {Tipo::Texto, false};
  if (Desconocido(a) || Desconocido(b)) return kDesconocido;
  const bool fecha_a = a.tipo == Tipo::Fecha, fecha_b = b.tipo == Tipo::Fecha;
  if (op == Op::Suma && (fecha_a || fecha_b)) return {Tipo::Fecha, false};
  if (op == Op::Resta && fecha_a) return {fecha_b ? Tipo::Numero : Tipo::Fecha, false};
  const TipoExpr na = ComoNumero(a), nb = ComoNumero(b);
  return {NumericoComun(na.tipo, nb.tipo), false};
}

}  // namespace

TipoExpr Comun(TipoExpr a, TipoExpr b) {
  if (a.nulo) return b;
  if (b.nulo) return a;
  if (a.tipo == b.tipo) return a;
  if (a.tipo == Tipo::Nulo || b.tipo == Tipo::Nulo) return kDesconocido;
  if (a.tipo == Tipo::Texto || b.tipo == Tipo::Texto) {
    const Tipo otro = a.tipo == Tipo::Texto ? b.tipo : a.tipo;
    return otro == Tipo::Fecha || otro == Tipo::Booleano ? TipoExpr{Tipo::Texto, false} : kDesconocido;
  }
  if (a.tipo == Tipo::Fecha || b.tipo == Tipo::Fecha) return {Tipo::Fecha, false};
  return {NumericoComun(a.tipo, b.tipo), false};
}

TipoExpr ComoNumero(TipoExpr t) {
  switch (t.tipo) {
    case Tipo::Booleano:
      return {Tipo::Entero, t.nulo};
    case Tipo::Texto:
    case Tipo::Fecha:
      return {Tipo::Numero, t.nulo};
    default:
      return t;
  }
}

TipoExpr TipoDeBinario(Op op, const Expr& e) {
  const TipoExpr a = e.hijos[0]->tipo, b = e.hijos[1]->tipo;
  switch (op) {
    case Op::Concat: {
      bool nulo = true;
      for (const auto& h : e.hijos) nulo = nulo && h->tipo.nulo;
      return nulo ? kNulo : TipoExpr{Tipo::Texto, false};
    }
    case Op::Suma:
    case Op::Resta:
    case Op::Por:
      return Aritmetico(op, a, b);
    case Op::Div:
    case Op::Potencia:
      return a.nulo || b.nulo ? kNulo : TipoExpr{Tipo::Numero, false};
    case Op::Mod:
    case Op::DivEntera:
      return a.nulo || b.nulo ? kNulo : TipoExpr{Tipo::Entero, false};
    default:
      return {Tipo::Booleano, false};
  }
}

TipoExpr TipoDeAgregado(Especial e, TipoExpr argumento) {
  switch (e) {
    case Especial::Count:
      return {Tipo::Entero, false};
    case Especial::Sum: {
      TipoExpr t = ComoNumero(argumento);
      if (t.tipo == Tipo::Simple) t.tipo = Tipo::Numero;
      return t;
    }
    case Especial::Avg:
      return {argumento.tipo == Tipo::Moneda ? Tipo::Moneda : Tipo::Numero, false};
    case Especial::Min:
    case Especial::Max:
    case Especial::First:
    case Especial::Last:
      return argumento;
    default:
      return {Tipo::Numero, false};
  }
}

Especial BuscarEspecial(std::string_view nombre) {
  struct Par {
    std::string_view nombre;
    Especial especial;
  };
  static constexpr Par kPares[] = {
      {"IIF", Especial::IIf},       {"SWITCH", Especial::Switch}, {"CHOOSE", Especial::Choose},
      {"ISNULL", Especial::EsNulo}, {"COUNT", Especial::Count},   {"SUM", Especial::Sum},
      {"AVG", Especial::Avg},       {"MIN", Especial::Min},       {"MAX", Especial::Max},
      {"FIRST", Especial::First},   {"LAST", Especial::Last},     {"STDEV", Especial::StDev},
      {"STDEVP", Especial::StDevP}, {"VAR", Especial::Var},       {"VARP", Especial::VarP}};
  for (const auto& p : kPares)
    if (base::IgualSinCaso(p.nombre, nombre)) return p.especial;
  return Especial::Ninguna;
}

bool ConoceFuncion(std::string_view nombre) {
  return BuscarFuncion(nombre) != nullptr || BuscarEspecial(nombre) != Especial::Ninguna;
}

base::Tipo TipoDeDeclaracion(std::string_view declaracion) {
  const std::string d = base::Mayusculas(declaracion);
  const auto empieza = [&](std::string_view p) { return base::EmpiezaCon(d, p); };
  if (empieza("YESNO")) return Tipo::Booleano;
  if (empieza("DATETIME")) return Tipo::Fecha;
  if (empieza("CURRENCY")) return Tipo::Moneda;
  if (empieza("SINGLE")) return Tipo::Simple;
  if (empieza("BINARY")) return Tipo::Nulo;
  // What follows also reads tables that another program made.
  const auto tiene = [&](std::string_view p) { return base::Contiene(d, p); };
  if (tiene("INT")) return Tipo::Entero;
  if (tiene("CHAR") || tiene("CLOB") || tiene("TEXT")) return Tipo::Texto;
  if (tiene("REAL") || tiene("FLOA") || tiene("DOUB") || tiene("NUMERIC") || tiene("DECIMAL"))
    return Tipo::Numero;
  return Tipo::Nulo;
}

}  // namespace jetsql
