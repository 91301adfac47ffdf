#include "engine_odbc/qualifiers_internal.h"

#include <algorithm>

#include "base/error.h"
#include "base/text.h"

namespace engine_odbc {
namespace {

using jetsql::Fuente;
using jetsql::Rama;
using jetsql::RamaPtr;
using jetsql::Seleccion;

std::string_view NombreEnAmbito(const Fuente& f) { return f.alias.empty() ? f.nombre : f.alias; }

void Hojas(const Rama& rama, std::vector<Fuente*>& fuentes) {
  if (rama.hoja) {
    fuentes.push_back(rama.hoja.get());
    return;
  }
  Hojas(*rama.izquierda, fuentes);
  Hojas(*rama.derecha, fuentes);
}

std::vector<Fuente*> Hojas(const std::vector<RamaPtr>& de) {
  std::vector<Fuente*> fuentes;
  for (const RamaPtr& rama : de) Hojas(*rama, fuentes);
  return fuentes;
}

// Whether the base table is read by the source, at any depth.
bool Lee(const Fuente& f, std::string_view tabla) {
  if (!f.consulta) return base::IgualSinCaso(f.nombre, tabla);
  return std::any_of(f.consulta->partes.begin(), f.consulta->partes.end(), [&](const Seleccion& s) {
    const std::vector<Fuente*> fuentes = Hojas(s.de);
    return std::any_of(fuentes.begin(), fuentes.end(), [&](const Fuente* g) { return Lee(*g, tabla); });
  });
}

}  // namespace

bool Calificadores::Resolver(jetsql::Sentencia& sentencia) {
  cambiada_ = false;
  if (auto* c = std::get_if<jetsql::ConsultaPtr>(&sentencia)) {
    Ver(**c, nullptr);
  } else if (auto* i = std::get_if<jetsql::Insercion>(&sentencia)) {
    if (i->consulta) Ver(*i->consulta, nullptr);
  } else if (auto* a = std::get_if<jetsql::Actualizacion>(&sentencia)) {
    Ver(*a);
  } else if (auto* b = std::get_if<jetsql::Borrado>(&sentencia)) {
    Ver(*b);
  }
  return cambiada_;
}

void Calificadores::Ver(jetsql::Consulta& c, const Ambito* padre) {
  for (Seleccion& s : c.partes) Ver(s, padre);
  if (c.partes.size() != 1) return;  // the order of a union names columns of the result
  const Ambito ambito{padre, Hojas(c.partes[0].de)};
  for (const jetsql::ItemOrden& o : c.orden) Ver(o.expr, ambito);
  if (c.cruce == nullptr) return;
  Ver(c.cruce->valor, ambito);
  Ver(c.cruce->pivote, ambito);
}

void Calificadores::Ver(Seleccion& s, const Ambito* padre) {
  const Ambito ambito{padre, Hojas(s.de)};
  Derivadas(ambito);
  for (const RamaPtr& rama : s.de) Condiciones(*rama, padre);
  for (jetsql::ItemLista& item : s.lista) {
    if (item.expr)
      Ver(item.expr, ambito);
    else if (!item.calificador.empty())
      Poner(item.calificador, {}, ambito);
  }
  Ver(s.donde, ambito);
  for (const jetsql::ExprPtr& g : s.grupo) Ver(g, ambito);
  Ver(s.teniendo, ambito);
}

void Calificadores::Ver(jetsql::Actualizacion& s) {
  const Ambito ambito{nullptr, Hojas(s.de)};
  Derivadas(ambito);
  for (const RamaPtr& rama : s.de) Condiciones(*rama, nullptr);
  for (const jetsql::Asignacion& a : s.cambios) {
    Ver(a.columna, ambito);
    Ver(a.valor, ambito);
  }
  Ver(s.donde, ambito);
}

void Calificadores::Ver(jetsql::Borrado& s) {
  const Ambito ambito{nullptr, Hojas(s.de)};
  Derivadas(ambito);
  for (const RamaPtr& rama : s.de) Condiciones(*rama, nullptr);
  if (!s.objetivo.empty()) Poner(s.objetivo, {}, ambito);
  Ver(s.donde, ambito);
}

void Calificadores::Derivadas(const Ambito& ambito) {
  for (Fuente* f : ambito.fuentes)
    if (f->consulta) Ver(*f->consulta, ambito.padre);
}

// The condition of a join sees the tables that it joins, not those beside them.
void Calificadores::Condiciones(Rama& rama, const Ambito* padre) {
  if (rama.hoja) return;
  Condiciones(*rama.izquierda, padre);
  Condiciones(*rama.derecha, padre);
  Ambito ambito{padre, {}};
  Hojas(rama, ambito.fuentes);
  Ver(rama.condicion, ambito);
}

void Calificadores::Ver(const jetsql::ExprPtr& e, const Ambito& ambito) {
  if (e == nullptr) return;
  if (e->nodo == jetsql::Nodo::Columna && !e->calificador.empty()) Poner(e->calificador, e->nombre, ambito);
  for (const jetsql::ExprPtr& hijo : e->hijos) Ver(hijo, ambito);
  if (e->consulta) Ver(*e->consulta, &ambito);
  Ver(e->filtro, ambito);
}

// `nombre` is the column; empty for all of them.
void Calificadores::Poner(std::string& calificador, const std::string& nombre, const Ambito& ambito) {
  for (const Ambito* a = &ambito; a != nullptr; a = a->padre)
    for (const Fuente* f : a->fuentes)
      if (base::IgualSinCaso(NombreEnAmbito(*f), calificador)) return;
  for (const Ambito* a = &ambito; a != nullptr; a = a->padre)
    for (Fuente* f : a->fuentes) {
      if (!Lee(*f, calificador) || !(nombre.empty() || TieneColumna(*f, nombre))) continue;
      calificador = AliasDe(*f, sin_nombre_);
      cambiada_ = true;
      return;
    }
}

const std::string& Calificadores::AliasDe(Fuente& f, int& sin_nombre) {
  if (f.alias.empty()) f.alias = "jet_d" + std::to_string(++sin_nombre);  // a derived table without a name
  return f.alias;
}

bool Calificadores::TieneColumna(const Fuente& f, std::string_view nombre) const {
  if (!f.consulta) {
    const jetsql::TablaInfo* tabla = nullptr;
    base::ErrorIgnorado("ODBC: catálogo", nullptr, [&] { tabla = catalogo_.Tabla(f.nombre); });
    return tabla == nullptr || tabla->columnas.empty() ||
           std::any_of(tabla->columnas.begin(), tabla->columnas.end(),
                       [&](const jetsql::ColumnaTabla& c) { return base::IgualSinCaso(c.nombre, nombre); });
  }
  const Seleccion& s = f.consulta->partes.front();  // a union takes its names from the first part
  const std::vector<Fuente*> fuentes = Hojas(s.de);
  return std::any_of(s.lista.begin(), s.lista.end(), [&](const jetsql::ItemLista& item) {
    if (!item.alias.empty()) return base::IgualSinCaso(item.alias, nombre);
    if (item.expr)
      return item.expr->nodo == jetsql::Nodo::Columna && base::IgualSinCaso(item.expr->nombre, nombre);
    return std::any_of(fuentes.begin(), fuentes.end(), [&](const Fuente* g) {
      const bool cuenta =
          item.calificador.empty() || base::IgualSinCaso(NombreEnAmbito(*g), item.calificador);
      return cuenta && TieneColumna(*g, nombre);
    });
  });
}

}  // namespace engine_odbc
