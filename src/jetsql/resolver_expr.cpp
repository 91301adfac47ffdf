#include "base/error.h"
#include "base/text.h"
#include "jetsql/domain_internal.h"
#include "jetsql/resolver_internal.h"
#include "jetsql/types_internal.h"

namespace jetsql {
namespace {

void Argumentos(const Expr& e, std::size_t minimo, std::size_t maximo) {
  if (e.hijos.size() < minimo || e.hijos.size() > maximo)
    throw base::Error("La función '" + e.nombre + "' tiene un número de argumentos incorrecto");
}

constexpr std::size_t kCualquiera = 1000;

}  // namespace

void Resolutor::Resolver(ExprPtr& e, const Contexto& c) {
  if (e->resuelto) return;  // an item of the list that was reached by its alias
  if (e->nodo == Nodo::Columna) {
    ResolverColumna(e, c);
    return;
  }
  if (e->nodo == Nodo::Llamada) {
    ResolverLlamada(*e, c);
    return;
  }
  for (auto& h : e->hijos) Resolver(h, c);
  e->resuelto = true;
  switch (e->nodo) {
    case Nodo::Literal:
      e->tipo = {e->literal.tipo(), false};
      break;
    case Nodo::Nulo:
      e->tipo = {base::Tipo::Nulo, true};
      break;
    case Nodo::Unario:
      e->tipo = e->op == Op::No    ? TipoExpr{base::Tipo::Booleano, false}
                : e->op == Op::Mas ? e->hijos[0]->tipo
                                   : ComoNumero(e->hijos[0]->tipo);
      break;
    case Nodo::Binario:
      e->tipo = TipoDeBinario(e->op, *e);
      break;
    case Nodo::Subconsulta:
      ResolverSubconsulta(*e, c, true);
      e->tipo = e->consulta->salida[0].tipo;
      break;
    case Nodo::Existe:
      ResolverSubconsulta(*e, c, false);
      e->tipo = {base::Tipo::Booleano, false};
      break;
    case Nodo::EnConsulta:
    case Nodo::Cuantificada:
      ResolverSubconsulta(*e, c, true);
      e->tipo = {base::Tipo::Booleano, false};
      break;
    case Nodo::Estrella:
      throw base::Error("'*' solo puede estar en Count(*)");
    default:
      e->tipo = {base::Tipo::Booleano, false};
  }
}

void Resolutor::ResolverSuelta(ExprPtr& e) {
  const Ambito ninguno;
  Resolver(e, {ninguno});
}

void Resolutor::ResolverSubconsulta(Expr& e, const Contexto& c, bool una_columna) {
  Resolver(*e.consulta, &c.ambito);
  if (una_columna && e.consulta->salida.size() != 1)
    throw base::Error("La subconsulta debe devolver una sola columna");
}

// The alias of a list item stands for the item where no table has a column of that name; inside the item
// itself the name can only be an outer query's.
bool Resolutor::PorAlias(ExprPtr& e, const Contexto& c) {
  if (c.ambito.lista == nullptr || !e->calificador.empty()) return false;
  for (auto& item : *c.ambito.lista) {
    if (item.resolviendo || item.alias.empty() || !base::IgualSinCaso(item.alias, e->nombre)) continue;
    item.resolviendo = true;
    Resolver(item.expr, c);
    item.resolviendo = false;
    e = item.expr;
    return true;
  }
  return false;
}

void Resolutor::ResolverColumna(ExprPtr& e, const Contexto& c) {
  Hallada h = EnFuentes(c.ambito.fuentes, *e);
  if (h.fuente == nullptr && PorAlias(e, c)) return;
  if (h.fuente == nullptr) h = Buscar(c.ambito, *e);
  e->resuelto = true;
  if (h.fuente != nullptr) {
    const ColumnaFuente& columna = h.fuente->columnas[static_cast<std::size_t>(h.columna)];
    e->fuente = h.fuente;
    e->columna = h.columna;
    e->tipo = columna.tipo;
    return;
  }
  const std::string nombre = e->calificador.empty() ? e->nombre : e->calificador + "." + e->nombre;
  if (e->calificador.empty()) {
    if (base::IgualSinCaso(nombre, "YES") || base::IgualSinCaso(nombre, "NO")) {
      e->nodo = base::IgualSinCaso(nombre, "YES") ? Nodo::Verdadero : Nodo::Falso;
      e->tipo = {base::Tipo::Booleano, false};
      return;
    }
    // Date and Now stand without brackets, too.
    const Funcion* f = BuscarFuncion(nombre);
    if (f != nullptr && f->maximo == 0) {
      e->nodo = Nodo::Llamada;
      e->resuelto = false;
      ResolverLlamada(*e, c);
      return;
    }
  }
  if (e->parametro) throw base::Error("Falta el valor del parámetro '" + nombre + "'");
  throw base::Error("No se encuentra la columna '" + nombre + "'");
}

void Resolutor::ResolverLlamada(Expr& e, const Contexto& c) {
  e.resuelto = true;
  e.especial = BuscarEspecial(e.nombre);
  Contexto dentro = c;
  if (EsAgregado(e.especial)) {
    if (c.agregados != Agregados::Permitidos)
      throw base::Error("La función de agregado '" + e.nombre + "' no puede estar aquí");
    *c.hay_agregado = true;
    dentro.agregados = Agregados::Dentro;
    if (e.filtro) Resolver(e.filtro, dentro);
    Argumentos(e, 1, 1);
    if (e.especial == Especial::Count && e.hijos[0]->nodo == Nodo::Estrella) {
      e.tipo = {base::Tipo::Entero, false};
      return;
    }
  }
  if (e.distinto && !EsAgregado(e.especial))
    throw base::Error("DISTINCT solo puede estar en una función de agregado, y no en '" + e.nombre + "'");
  for (auto& h : e.hijos) Resolver(h, dentro);
  if (e.especial != Especial::Ninguna) {
    ResolverEspecial(e);
    return;
  }
  if (EsDeDominio(e.nombre)) {
    Argumentos(e, 2, 3);
    AbrirDominio(e, fijos_);
    Resolver(*e.consulta, nullptr);
    if (e.consulta->salida.size() != 1) throw base::Error(e.nombre + " debe dar un solo valor");
    e.tipo = e.consulta->salida[0].tipo;
    return;
  }
  e.funcion = BuscarFuncion(e.nombre);
  if (e.funcion == nullptr) throw base::Error("No se encuentra la función '" + e.nombre + "'");
  Argumentos(e, static_cast<std::size_t>(e.funcion->minimo),
             e.funcion->maximo < 0 ? kCualquiera : static_cast<std::size_t>(e.funcion->maximo));
  if (!e.funcion->determinista) determinista_ = false;
  switch (e.funcion->regla) {
    case ReglaTipo::Fijo:
      e.tipo = {e.funcion->tipo, false};
      break;
    case ReglaTipo::DelPrimero:
      e.tipo = e.hijos.empty() ? TipoExpr{} : ComoNumero(e.hijos[0]->tipo);
      break;
    case ReglaTipo::Comun:
      e.tipo = {base::Tipo::Nulo, true};
      for (const auto& h : e.hijos) e.tipo = Comun(e.tipo, h->tipo);
      break;
  }
}

void Resolutor::ResolverEspecial(Expr& e) {
  TipoExpr t{base::Tipo::Nulo, true};
  switch (e.especial) {
    case Especial::IIf:
      Argumentos(e, 2, 3);
      for (std::size_t i = 1; i < e.hijos.size(); ++i) t = Comun(t, e.hijos[i]->tipo);
      break;
    case Especial::Switch:
      Argumentos(e, 2, kCualquiera);
      if (e.hijos.size() % 2 != 0) Argumentos(e, kCualquiera, kCualquiera);
      for (std::size_t i = 1; i < e.hijos.size(); i += 2) t = Comun(t, e.hijos[i]->tipo);
      break;
    case Especial::Choose:
      Argumentos(e, 2, kCualquiera);
      for (std::size_t i = 1; i < e.hijos.size(); ++i) t = Comun(t, e.hijos[i]->tipo);
      break;
    case Especial::EsNulo:
      Argumentos(e, 1, 1);
      t = {base::Tipo::Booleano, false};
      break;
    default:
      t = TipoDeAgregado(e.especial, e.hijos[0]->tipo);
  }
  e.tipo = t;
}

}  // namespace jetsql
