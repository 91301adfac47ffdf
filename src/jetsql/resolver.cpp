#include "jetsql/resolver_internal.h"

#include <algorithm>

#include "base/error.h"
#include "base/text.h"
#include "jetsql/crosstab_internal.h"
#include "jetsql/parser.h"
#include "jetsql/types_internal.h"

namespace jetsql {
namespace {

constexpr std::size_t kConsultasAnidadas = 30;

std::string NombreCompleto(const Expr& e) {
  return e.calificador.empty() ? e.nombre : e.calificador + "." + e.nombre;
}

std::string_view Calificador(const Fuente& f) { return f.alias.empty() ? f.nombre : f.alias; }

int ColumnaDe(const Fuente& f, std::string_view nombre) {
  for (std::size_t i = 0; i < f.columnas.size(); ++i)
    if (base::IgualSinCaso(f.columnas[i].nombre, nombre)) return static_cast<int>(i);
  for (std::size_t i = 0; i < f.columnas.size(); ++i)
    if (base::IgualSinCaso(f.columnas[i].nombre_largo, nombre)) return static_cast<int>(i);
  return -1;
}

}  // namespace

void Resolutor::Hojas(const Rama& rama, std::vector<Fuente*>& fuentes) const {
  if (rama.hoja) {
    fuentes.push_back(rama.hoja.get());
    return;
  }
  Hojas(*rama.izquierda, fuentes);
  Hojas(*rama.derecha, fuentes);
}

void Resolutor::Hojas(const std::vector<RamaPtr>& de, std::vector<Fuente*>& fuentes) const {
  for (const auto& rama : de) Hojas(*rama, fuentes);
}

// SQLite would find the nearest table of an alias; with aliases that are unique in the statement there is
// only one, ours.
std::string Resolutor::AliasUnico(std::string_view nombre) {
  const std::string raiz(nombre);
  for (int n = 1;; ++n) {
    std::string alias = n == 1 ? raiz : raiz + "_" + std::to_string(n);
    const std::string clave = base::Minusculas(alias);
    if (std::find(alias_sql_.begin(), alias_sql_.end(), clave) != alias_sql_.end()) continue;
    alias_sql_.push_back(clave);
    return alias;
  }
}

const TablaInfo& Resolutor::TablaDe(std::string_view nombre) const {
  if (const TablaInfo* t = catalogo_.Tabla(nombre)) return *t;
  if (catalogo_.Consulta(nombre) != nullptr)
    throw base::Error("'" + std::string(nombre) + "' es una consulta; la operación necesita una tabla");
  throw base::Error("No se encuentra la tabla o consulta '" + std::string(nombre) + "'");
}

void Resolutor::ResolverFuentes(const std::vector<Fuente*>& fuentes, const Ambito* padre) {
  for (Fuente* f : fuentes) {
    ResolverFuente(*f, padre);
    const std::string_view alias = Calificador(*f);
    for (const Fuente* otra : fuentes) {
      if (otra == f) break;
      if (!alias.empty() && base::IgualSinCaso(Calificador(*otra), alias))
        throw base::Error("La tabla '" + std::string(alias) + "' está repetida en la cláusula FROM");
    }
  }
}

void Resolutor::ResolverFuente(Fuente& f, const Ambito* padre) {
  if (f.nombre.empty()) {
    Resolver(*f.consulta, padre);
  } else if ((f.tabla = catalogo_.Tabla(f.nombre)) != nullptr) {
    for (const auto& c : f.tabla->columnas)
      f.columnas.push_back({c.nombre, {}, c.nombre, {c.tipo, false}, c.tipo == base::Tipo::Texto});
    f.lee.push_back(f.tabla->nombre);
  } else if (const std::string* texto = catalogo_.Consulta(f.nombre)) {
    AbrirConsulta(f, *texto);
  } else {
    throw base::Error("No se encuentra la tabla o consulta '" + f.nombre + "'");
  }
  if (f.consulta) {
    f.columnas = f.consulta->salida;
    for (const auto& parte : f.consulta->partes)
      for (const Fuente* g : parte.fuentes) f.lee.insert(f.lee.end(), g->lee.begin(), g->lee.end());
  }
  std::string_view alias = Calificador(f);
  if (alias.empty()) alias = "jet_d";
  if (f.alias.empty() && f.tabla != nullptr) alias = f.tabla->nombre;
  f.alias_sql = AliasUnico(alias);
}

void Resolutor::AbrirConsulta(Fuente& f, const std::string& texto) {
  for (const auto& abierta : abiertas_)
    if (base::IgualSinCaso(abierta, f.nombre))
      throw base::Error("La consulta '" + f.nombre + "' se contiene a sí misma");
  if (abiertas_.size() >= kConsultasAnidadas)
    throw base::Error("La consulta '" + f.nombre + "' está anidada a demasiada profundidad");
  Sentencia s;
  try {
    s = Analizar(texto, Literales::EnTexto);
  } catch (const ErrorSintaxis& e) {
    throw base::Error("En la consulta '" + f.nombre + "': " + e.Descripcion());
  }
  auto* consulta = std::get_if<ConsultaPtr>(&s);
  if (consulta == nullptr) throw base::Error("La consulta '" + f.nombre + "' no devuelve filas");
  f.consulta = std::move(*consulta);
  AbrirCruce(f);
  abiertas_.push_back(f.nombre);
  Resolver(*f.consulta, nullptr);
  abiertas_.pop_back();
}

void Resolutor::AbrirCruce(const Fuente& f) const {
  if (!f.consulta->cruce || f.consulta->cruce->con_lista) return;
  if (cruzadas_ != nullptr)
    for (const auto& c : *cruzadas_)
      if (base::IgualSinCaso(c.consulta, f.nombre)) {
        DarValores(*f.consulta, c.valores);
        return;
      }
  throw FaltanColumnas(f.nombre);
}

// The condition of a join sees the tables that it joins, not those beside them.
void Resolutor::Condiciones(Rama& rama, const Ambito* padre) {
  if (rama.hoja) return;
  Condiciones(*rama.izquierda, padre);
  Condiciones(*rama.derecha, padre);
  Ambito ambito{padre, {}, nullptr};
  Hojas(rama, ambito.fuentes);
  Resolver(rama.condicion, {ambito});
}

Resolutor::Hallada Resolutor::EnFuentes(const std::vector<Fuente*>& fuentes, const Expr& e) const {
  Hallada hallada;
  for (const Fuente* f : fuentes) {
    if (!e.calificador.empty() && !base::IgualSinCaso(Calificador(*f), e.calificador)) continue;
    const int i = ColumnaDe(*f, e.nombre);
    if (i < 0) {
      if (e.calificador.empty()) continue;
      throw base::Error("No se encuentra la columna '" + NombreCompleto(e) + "'");
    }
    if (hallada.fuente != nullptr)
      throw base::Error("La columna '" + e.nombre + "' está en más de una tabla de la cláusula FROM");
    hallada = {f, i};
  }
  return hallada;
}

// A qualifier that names no table in scope: the statements written for Access name the base table that a
// derived table, or a table under an alias, reads.
Resolutor::Hallada Resolutor::PorTablaLeida(const Ambito& ambito, const Expr& e) const {
  for (const Ambito* a = &ambito; a != nullptr; a = a->padre) {
    for (const Fuente* f : a->fuentes) {
      const bool lee = std::any_of(f->lee.begin(), f->lee.end(), [&](const std::string& t) {
        return base::IgualSinCaso(t, e.calificador);
      });
      if (!lee) continue;
      const int i = ColumnaDe(*f, e.nombre);
      if (i >= 0) return {f, i};
    }
  }
  return {};
}

Resolutor::Hallada Resolutor::Buscar(const Ambito& ambito, const Expr& e) const {
  for (const Ambito* a = &ambito; a != nullptr; a = a->padre) {
    const Hallada h = EnFuentes(a->fuentes, e);
    if (h.fuente != nullptr) return h;
  }
  return e.calificador.empty() ? Hallada{} : PorTablaLeida(ambito, e);
}

}  // namespace jetsql
