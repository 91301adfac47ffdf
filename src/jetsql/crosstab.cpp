#include "jetsql/crosstab_internal.h"

#include "base/error.h"
#include "base/number.h"
#include "base/text.h"
#include "jetsql/types_internal.h"

namespace jetsql {
namespace {

ExprPtr Clonar(const Expr& e) {
  if (e.consulta) throw base::Error("TRANSFORM y PIVOT no admiten una subconsulta");
  auto c = std::make_shared<Expr>(e.nodo);
  c->op = e.op;
  c->negado = e.negado;
  c->distinto = e.distinto;
  c->parametro = e.parametro;
  c->altura = e.altura;
  c->literal = e.literal;
  c->indice = e.indice;
  c->calificador = e.calificador;
  c->nombre = e.nombre;
  for (const auto& h : e.hijos) c->hijos.push_back(Clonar(*h));
  return c;
}

// A value of the rows as a tree that is written into the text.
ExprPtr DeValor(const base::Valor& v) {
  if (v.EsNulo()) return std::make_shared<Expr>(Nodo::Nulo);
  if (const auto* b = v.Si<bool>()) return std::make_shared<Expr>(*b ? Nodo::Verdadero : Nodo::Falso);
  auto e = std::make_shared<Expr>(Nodo::Literal);
  if (const auto* s = v.Si<float>())
    e->literal = base::DobleDeSimple(*s);
  else
    e->literal = v.tipo() == base::Tipo::Moneda ? base::Valor(v.Numero()) : v;
  return e;
}

ExprPtr EsColumna(const Cruce& cruce, const ExprPtr& columna) {
  auto e = std::make_shared<Expr>(columna->nodo == Nodo::Nulo ? Nodo::EsNulo : Nodo::Binario);
  e->op = Op::Igual;
  e->hijos.push_back(Clonar(*cruce.pivote));
  if (e->nodo == Nodo::Binario) e->hijos.push_back(columna);
  return e;
}

bool Filtrar(Expr& e, const Cruce& cruce, const ExprPtr& columna) {
  bool alguno = false;
  if (e.nodo == Nodo::Llamada && EsAgregado(BuscarEspecial(e.nombre))) {
    e.filtro = EsColumna(cruce, columna);
    return true;
  }
  for (const auto& h : e.hijos) alguno = Filtrar(*h, cruce, columna) || alguno;
  return alguno;
}

// "<>" stands for Null; a point would part the name of a table from that of a column.
std::string NombreDe(const Expr& columna, const base::Locale& locale) {
  switch (columna.nodo) {
    case Nodo::Nulo:
      return "<>";
    case Nodo::Verdadero:
      return "-1";
    case Nodo::Falso:
      return "0";
    case Nodo::Unario:
      if (columna.op == Op::Menos && columna.hijos[0]->nodo == Nodo::Literal)
        return "-" + columna.hijos[0]->literal.Texto(locale);
      break;
    case Nodo::Literal: {
      const std::string texto = base::Reemplazar(columna.literal.Texto(locale), ".", "_");
      return texto.empty() ? "_" : texto;
    }
    default:
      break;
  }
  throw base::Error("Las columnas de PIVOT … IN deben ser valores");
}

}  // namespace

void PedirValores(Consulta& c) {
  Seleccion& s = c.partes[0];
  if (!s.destino.empty() || s.tope) throw base::Error("TRANSFORM no admite INTO ni TOP");
  ItemLista item;
  item.expr = c.cruce->pivote;
  s.lista.clear();
  s.lista.push_back(std::move(item));
  s.grupo.clear();
  s.teniendo = nullptr;
  s.distincion = Distincion::Distinct;
  c.orden.clear();
  c.orden.push_back({Clonar(*c.cruce->pivote)});
  c.cruce = nullptr;
}

void DarValores(Consulta& c, const std::vector<base::Valor>& valores) {
  c.cruce->con_lista = true;
  for (const auto& v : valores) c.cruce->lista.push_back(DeValor(v));
}

void ExpandirCruce(Consulta& c, const base::Locale& locale, std::vector<int>& fijos) {
  const Cruce& cruce = *c.cruce;
  if (!cruce.con_lista)
    throw base::Error(
        "Una consulta de referencias cruzadas sin columnas fijas (PIVOT … IN) no se puede usar "
        "dentro de otra");
  Seleccion& s = c.partes[0];
  if (!s.destino.empty() || s.tope) throw base::Error("TRANSFORM no admite INTO ni TOP");
  constexpr std::size_t kColumnas = 255;
  if (s.lista.size() + cruce.lista.size() > kColumnas)
    throw base::Error("La consulta de referencias cruzadas tiene demasiadas columnas (" +
                      std::to_string(cruce.lista.size()) + ")");
  for (const auto& columna : cruce.lista) {
    ItemLista item;
    item.expr = Clonar(*cruce.valor);
    if (!Filtrar(*item.expr, cruce, columna))
      throw base::Error("TRANSFORM necesita una función de agregado, como Sum o Count");
    item.alias = NombreDe(*columna, locale);
    const Expr& literal = columna->nodo == Nodo::Unario ? *columna->hijos[0] : *columna;
    if (literal.indice >= 0) fijos.push_back(literal.indice);
    s.lista.push_back(std::move(item));
  }
  c.cruce = nullptr;
}

}  // namespace jetsql
