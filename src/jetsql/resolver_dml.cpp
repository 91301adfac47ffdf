#include "base/error.h"
#include "base/text.h"
#include "jetsql/resolver_internal.h"

namespace jetsql {
namespace {

int ColumnaDeTabla(const TablaInfo& t, std::string_view nombre) {
  for (std::size_t i = 0; i < t.columnas.size(); ++i)
    if (base::IgualSinCaso(t.columnas[i].nombre, nombre)) return static_cast<int>(i);
  return -1;
}

[[noreturn]] void NoActualizable() {
  throw base::Error("La operación debe usar una consulta actualizable", 3073);
}

bool TieneSubconsulta(const Expr& e) {
  if (e.consulta) return true;
  for (const auto& h : e.hijos)
    if (TieneSubconsulta(*h)) return true;
  return false;
}

}  // namespace

void Resolutor::Resolver(Insercion& s) {
  s.info = &TablaDe(s.tabla);
  const auto agrega = [&](std::string_view nombre) {
    const int i = ColumnaDeTabla(*s.info, nombre);
    if (i < 0)
      throw base::Error("La tabla '" + s.info->nombre + "' no tiene la columna '" + std::string(nombre) +
                        "'");
    for (const int otra : s.destinos)
      if (otra == i) throw base::Error("La columna '" + std::string(nombre) + "' está repetida");
    s.destinos.push_back(i);
  };
  for (const auto& c : s.columnas) agrega(c);
  if (s.consulta) {
    Resolver(*s.consulta, nullptr);
    if (s.columnas.empty())  // each value goes to the column of its name
      for (const auto& c : s.consulta->salida) agrega(c.nombre);
  } else {
    if (s.columnas.empty())
      for (const auto& c : s.info->columnas) agrega(c.nombre);
    const Ambito ninguno;
    for (auto& v : s.valores) Resolver(v, {ninguno});
  }
  const std::size_t cuantos = s.consulta ? s.consulta->salida.size() : s.valores.size();
  if (cuantos != s.destinos.size())
    throw base::Error("El número de valores no coincide con el número de columnas de destino");
}

void Resolutor::Resolver(Actualizacion& s) {
  Hojas(s.de, s.fuentes);
  ResolverFuentes(s.fuentes, nullptr);
  const Ambito ambito{nullptr, s.fuentes, nullptr};
  for (const auto& rama : s.de) Condiciones(*rama, nullptr);
  for (auto& cambio : s.cambios) {
    Resolver(cambio.columna, {ambito});
    if (cambio.columna->fuente == nullptr || cambio.columna->fuente->tabla == nullptr) NoActualizable();
    if (TieneSubconsulta(*cambio.valor)) NoActualizable();
    Resolver(cambio.valor, {ambito});
  }
  for (std::size_t i = 0; i < s.cambios.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      if (s.cambios[i].columna->fuente == s.cambios[j].columna->fuente &&
          s.cambios[i].columna->columna == s.cambios[j].columna->columna)
        throw base::Error("La columna '" + s.cambios[i].columna->nombre + "' está repetida");
  if (s.donde) Resolver(s.donde, {ambito});
}

void Resolutor::Resolver(Borrado& s) {
  Hojas(s.de, s.fuentes);
  ResolverFuentes(s.fuentes, nullptr);
  const Ambito ambito{nullptr, s.fuentes, nullptr};
  for (const auto& rama : s.de) Condiciones(*rama, nullptr);
  if (s.donde) Resolver(s.donde, {ambito});
  if (s.objetivo.empty()) {
    if (s.fuentes.size() > 1)
      throw base::Error("DELETE debe decir de qué tabla se borran las filas (tabla.*)");
    s.fuente = s.fuentes[0];
  } else {
    for (const Fuente* f : s.fuentes)
      if (base::IgualSinCaso(f->alias.empty() ? f->nombre : f->alias, s.objetivo)) s.fuente = f;
    for (const Fuente* f : s.fuentes)  // a table that is read under another name
      if (s.fuente == nullptr && f->tabla != nullptr && base::IgualSinCaso(f->nombre, s.objetivo))
        s.fuente = f;
    if (s.fuente == nullptr) throw base::Error("No se encuentra la tabla o consulta '" + s.objetivo + "'");
  }
  if (s.fuente->tabla == nullptr) NoActualizable();
}

}  // namespace jetsql
