#include <algorithm>

#include "base/error.h"
#include "base/text.h"
#include "jetsql/crosstab_internal.h"
#include "jetsql/parser.h"
#include "jetsql/resolver_internal.h"
#include "jetsql/types_internal.h"

namespace jetsql {
namespace {

ExprPtr ColumnaResuelta(const Fuente& f, std::size_t i) {
  auto e = std::make_shared<Expr>(Nodo::Columna);
  e->calificador = f.alias.empty() ? f.nombre : f.alias;
  e->nombre = f.columnas[i].nombre;
  e->fuente = &f;
  e->columna = static_cast<int>(i);
  e->tipo = f.columnas[i].tipo;
  e->resuelto = true;
  return e;
}

bool EsPosicion(const Expr& e) { return e.nodo == Nodo::Literal && e.literal.tipo() == base::Tipo::Entero; }

void Usadas(const Expr& e, std::vector<const Fuente*>& usadas) {
  if (e.fuente != nullptr && std::find(usadas.begin(), usadas.end(), e.fuente) == usadas.end())
    usadas.push_back(e.fuente);
  for (const auto& h : e.hijos) Usadas(*h, usadas);
}

}  // namespace

void Resolutor::Resolver(Consulta& c, const Ambito* padre) {
  if (c.cruce) ExpandirCruce(c, locale_, fijos_);
  for (auto& parte : c.partes) {
    ResolverParte(parte, padre);
    if (parte.lista.size() != c.partes[0].lista.size())
      throw base::Error("Las consultas de la unión no tienen el mismo número de columnas");
  }
  ResolverOrden(c, padre);
  CalcularSalida(c);
}

void Resolutor::ResolverParte(Seleccion& s, const Ambito* padre) {
  Hojas(s.de, s.fuentes);
  ResolverFuentes(s.fuentes, padre);
  const Ambito sin_alias{padre, s.fuentes, nullptr};
  for (const auto& rama : s.de) Condiciones(*rama, padre);
  if (s.donde) Resolver(s.donde, {sin_alias});
  Expandir(s);
  bool agregado = false;
  const Ambito ambito{padre, s.fuentes, &s.lista};
  for (auto& item : s.lista) {
    item.resolviendo = true;
    Resolver(item.expr, {ambito, Agregados::Permitidos, &agregado});
    item.resolviendo = false;
  }
  for (auto& g : s.grupo) Resolver(g, {sin_alias});
  if (s.teniendo) Resolver(s.teniendo, {sin_alias, Agregados::Permitidos, &agregado});
  s.agregada = agregado || !s.grupo.empty() || s.teniendo != nullptr;
  if (s.agregada) {
    for (auto& item : s.lista) ComprobarGrupo(s, item.expr, false);
    if (s.teniendo) ComprobarGrupo(s, s.teniendo, false);
  }
  NombrarSalida(s);
  ElegirDistintas(s);
}

void Resolutor::Expandir(Seleccion& s) const {
  std::vector<ItemLista> lista;
  for (auto& item : s.lista) {
    if (item.expr) {
      lista.push_back(std::move(item));
      continue;
    }
    std::vector<const Fuente*> de;
    for (const Fuente* f : s.fuentes) {
      const bool es = item.calificador.empty() ||
                      base::IgualSinCaso(f->alias.empty() ? f->nombre : f->alias, item.calificador);
      if (es) de.push_back(f);
    }
    for (const Fuente* f : s.fuentes)  // a base table that is read under another name
      if (de.empty() && std::any_of(f->lee.begin(), f->lee.end(), [&](const std::string& t) {
            return base::IgualSinCaso(t, item.calificador);
          }))
        de.push_back(f);
    if (de.empty())
      throw base::Error(item.calificador.empty()
                            ? "'*' necesita una cláusula FROM"
                            : "No se encuentra la tabla o consulta '" + item.calificador + "'");
    for (const Fuente* f : de)
      for (std::size_t i = 0; i < f->columnas.size(); ++i) {
        ItemLista columna;
        columna.expr = ColumnaResuelta(*f, i);
        lista.push_back(std::move(columna));
      }
  }
  s.lista = std::move(lista);
}

void Resolutor::NombrarSalida(Seleccion& s) const {
  std::vector<std::string> usados;
  usados.reserve(s.lista.size());
  for (std::size_t i = 0; i < s.lista.size(); ++i) {
    ItemLista& item = s.lista[i];
    if (!item.alias.empty())
      item.nombre = item.alias;
    else if (item.expr->nodo == Nodo::Columna)
      item.nombre = item.expr->fuente->columnas[static_cast<std::size_t>(item.expr->columna)].nombre;
    else
      item.nombre = "Expr" + std::to_string(1000 + i);
    std::string sql = item.nombre;
    for (int n = 2; std::find(usados.begin(), usados.end(), base::Minusculas(sql)) != usados.end(); ++n)
      sql = item.nombre + "_" + std::to_string(n);
    usados.push_back(base::Minusculas(sql));
    item.nombre_sql = std::move(sql);
  }
}

// DISTINCTROW leaves one row for each different set of rows of the tables that the list names, when it does
// not name them all. A derived table has no rows of its own to tell apart: then nothing is left out.
void Resolutor::ElegirDistintas(Seleccion& s) const {
  if (s.distincion != Distincion::DistinctRow || s.agregada || s.fuentes.size() < 2) return;
  std::vector<const Fuente*> usadas;
  for (const auto& item : s.lista) Usadas(*item.expr, usadas);
  if (usadas.empty() || usadas.size() == s.fuentes.size()) return;
  for (Fuente* f : s.fuentes) {
    if (std::find(usadas.begin(), usadas.end(), f) == usadas.end()) continue;
    if (f->tabla == nullptr) {
      s.distintas.clear();
      return;
    }
    s.distintas.push_back(f);
  }
}

// Every part of an expression of an aggregated query is a group's expression, inside an aggregate, or made of
// such. A part that is a group's expression becomes that very tree, so that SQLite sees the same text.
void Resolutor::ComprobarGrupo(Seleccion& s, ExprPtr& e, bool dentro_de_agregado) {
  if (dentro_de_agregado) return;
  for (const auto& g : s.grupo) {
    if (g == e) return;
    if (!Casan(*g, *e)) continue;
    e = g;
    return;
  }
  if (e->nodo == Nodo::Columna) {
    if (std::find(s.fuentes.begin(), s.fuentes.end(), e->fuente) == s.fuentes.end())
      return;  // of an outer query
    throw base::Error("La columna '" + e->nombre +
                      "' no está en GROUP BY ni dentro de una función de agregado");
  }
  const bool agregado = e->nodo == Nodo::Llamada && EsAgregado(e->especial);
  for (auto& h : e->hijos) ComprobarGrupo(s, h, agregado);
}

// Whether it names a table of an outer query.
bool Resolutor::NombraAfuera(const Expr& e, const Seleccion& s) {
  if (e.fuente != nullptr && std::find(s.fuentes.begin(), s.fuentes.end(), e.fuente) == s.fuentes.end())
    return true;
  return std::any_of(e.hijos.begin(), e.hijos.end(), [&](const ExprPtr& h) { return NombraAfuera(*h, s); });
}

void Resolutor::ResolverOrden(Consulta& c, const Ambito* padre) {
  if (c.partes.size() > 1) {
    OrdenDeUnion(c);
    return;
  }
  Seleccion& s = c.partes[0];
  bool agregado = false;
  const Ambito ambito{padre, s.fuentes, &s.lista};
  for (auto& o : c.orden) {
    if (EsPosicion(*o.expr)) {
      const std::int64_t n = *o.expr->literal.Si<std::int64_t>();
      if (n < 1 || n > static_cast<std::int64_t>(s.lista.size()))
        throw base::Error("ORDER BY " + std::to_string(n) + ": no hay una columna en esa posición");
      if (o.expr->indice >= 0) fijos_.push_back(o.expr->indice);
      o.posicion = static_cast<int>(n - 1);
      o.expr = s.lista[static_cast<std::size_t>(n - 1)].expr;
      continue;
    }
    Resolver(o.expr, {ambito, Agregados::Permitidos, &agregado});
    if (agregado && !s.agregada) throw base::Error("ORDER BY tiene una función de agregado y la consulta no");
    if (s.agregada) ComprobarGrupo(s, o.expr, false);
    c.orden_por_fuera = c.orden_por_fuera || NombraAfuera(*o.expr, s);
  }
  if (s.distincion == Distincion::Distinct) OrdenDeDistintas(c);
}

// A union is ordered by the names, or the positions, of its first query.
void Resolutor::OrdenDeUnion(Consulta& c) {
  const auto& lista = c.partes[0].lista;
  for (auto& o : c.orden) {
    if (EsPosicion(*o.expr)) {
      const std::int64_t n = *o.expr->literal.Si<std::int64_t>();
      if (n >= 1 && n <= static_cast<std::int64_t>(lista.size())) o.posicion = static_cast<int>(n - 1);
      if (o.expr->indice >= 0) fijos_.push_back(o.expr->indice);
    } else if (o.expr->nodo == Nodo::Columna) {
      for (std::size_t i = 0; i < lista.size() && o.posicion < 0; ++i)
        if (base::IgualSinCaso(lista[i].nombre, o.expr->nombre)) o.posicion = static_cast<int>(i);
    }
    if (o.posicion < 0)
      throw base::Error("ORDER BY " + Imprimir(*o.expr) +
                        ": una unión se ordena por las columnas de su primera consulta");
    o.expr = lista[static_cast<std::size_t>(o.posicion)].expr;
  }
}

void Resolutor::OrdenDeDistintas(Consulta& c) {
  const auto& lista = c.partes[0].lista;
  for (auto& o : c.orden) {
    for (std::size_t i = 0; i < lista.size() && o.posicion < 0; ++i)
      if (lista[i].expr == o.expr || Casan(*lista[i].expr, *o.expr)) o.posicion = static_cast<int>(i);
    if (o.posicion < 0)
      throw base::Error("ORDER BY tiene una expresión que no está en la lista de SELECT DISTINCT");
  }
}

void Resolutor::CalcularSalida(Consulta& c) const {
  const auto& lista = c.partes[0].lista;
  for (std::size_t i = 0; i < lista.size(); ++i) {
    ColumnaFuente col;
    col.nombre = lista[i].nombre;
    col.nombre_sql = lista[i].nombre_sql;
    if (col.nombre_sql != col.nombre || std::any_of(lista.begin(), lista.end(), [&](const ItemLista& otro) {
          return &otro != &lista[i] && base::IgualSinCaso(otro.nombre, col.nombre);
        })) {
      const Expr& e = *lista[i].expr;
      if (lista[i].alias.empty() && e.nodo == Nodo::Columna)
        col.nombre_largo = (e.fuente->alias.empty() ? e.fuente->nombre : e.fuente->alias) + "." + col.nombre;
    }
    col.tipo = {base::Tipo::Nulo, true};
    for (const auto& parte : c.partes) col.tipo = Comun(col.tipo, parte.lista[i].expr->tipo);
    col.cotejada = PuedeSerTexto(col.tipo);
    c.salida.push_back(std::move(col));
  }
}

bool Resolutor::Iguales(const Expr& a, const Expr& b, std::vector<int>& literales) const {
  if (a.nodo != b.nodo || a.negado != b.negado || a.hijos.size() != b.hijos.size()) return false;
  if (a.consulta || b.consulta) return false;
  switch (a.nodo) {
    case Nodo::Literal:
      if (!(a.literal == b.literal)) return false;
      if (a.indice >= 0) literales.push_back(a.indice);
      if (b.indice >= 0) literales.push_back(b.indice);
      break;
    case Nodo::Columna:
      if (a.fuente != b.fuente || a.columna != b.columna) return false;
      break;
    case Nodo::Llamada:
      if (a.funcion != b.funcion || a.especial != b.especial || a.distinto != b.distinto || a.filtro ||
          b.filtro)
        return false;
      break;
    case Nodo::Unario:
    case Nodo::Binario:
      if (a.op != b.op) return false;
      break;
    default:
      break;
  }
  for (std::size_t i = 0; i < a.hijos.size(); ++i)
    if (!Iguales(*a.hijos[i], *b.hijos[i], literales)) return false;
  return true;
}

bool Resolutor::Casan(const Expr& a, const Expr& b) {
  std::vector<int> literales;
  if (!Iguales(a, b, literales)) return false;
  fijos_.insert(fijos_.end(), literales.begin(), literales.end());
  return true;
}

}  // namespace jetsql
