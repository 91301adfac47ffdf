#include "engine_sqlite/statement_cache_internal.h"

#include <cstdint>

namespace engine_sqlite {
namespace {

bool MismosFijos(const Preparada& p, const std::vector<base::Valor>& literales) {
  const std::vector<int>& fijos = p.traduccion.fijos;
  for (std::size_t k = 0; k < fijos.size(); ++k)
    if (literales.at(static_cast<std::size_t>(fijos[k])) != p.valores_fijos[k]) return false;
  return true;
}

}  // namespace

std::shared_ptr<Preparada> CacheDeFormas::Buscar(const jetsql::Forma& forma) {
  const auto it = por_clave_.find(forma.clave);
  if (it == por_clave_.end()) return nullptr;
  entradas_.splice(entradas_.begin(), entradas_, it->second);
  for (const auto& variante : it->second->variantes)
    if (MismosFijos(*variante, forma.literales)) return variante;
  return nullptr;
}

void CacheDeFormas::Guardar(const jetsql::Forma& forma, std::shared_ptr<Preparada> preparada) {
  const auto it = por_clave_.find(forma.clave);
  if (it != por_clave_.end()) {
    auto& variantes = it->second->variantes;
    if (variantes.size() == kVariantes) variantes.erase(variantes.begin());
    variantes.push_back(std::move(preparada));
    return;
  }
  if (entradas_.size() == kFormas) {
    por_clave_.erase(entradas_.back().clave);
    entradas_.pop_back();
  }
  entradas_.push_front({forma.clave, {}});
  entradas_.front().variantes.push_back(std::move(preparada));
  por_clave_.emplace(entradas_.front().clave, entradas_.begin());
}

void CacheDeFormas::Vaciar() {
  por_clave_.clear();
  entradas_.clear();
}

CacheDeMoldes::Grupo& CacheDeMoldes::GrupoDe(std::string_view sql) {
  constexpr std::size_t kComienzo = 32;
  std::uint64_t huella = 14695981039346656037U;
  for (std::size_t i = 0; i < sql.size() && i < kComienzo; ++i) {
    const char c = sql[i];
    if ((c >= '0' && c <= '9') || c == '\'' || c == '"' || c == '#') break;
    huella = (huella ^ static_cast<unsigned char>(c)) * 1099511628211U;
  }
  return grupos_[(huella >> 32) % kGrupos];
}

CacheDeMoldes::Hallado CacheDeMoldes::Buscar(std::string_view sql) {
  using Hallazgo = jetsql::Molde::Hallazgo;
  if (sql.size() > kTextoMasLargo) return {};
  for (Ranura& ranura : GrupoDe(sql).ranuras) {
    const Hallazgo hallazgo = ranura.molde.Reconocer(sql);
    if (hallazgo == Hallazgo::Otra) continue;
    if (!MismosFijos(*ranura.preparada, ranura.molde.Literales())) return {};
    return {&ranura, hallazgo == Hallazgo::Igual};
  }
  return {};
}

void CacheDeMoldes::Guardar(std::string_view sql, const jetsql::Forma& forma,
                            const std::shared_ptr<Preparada>& preparada) {
  if (sql.size() > kTextoMasLargo) return;
  Grupo& grupo = GrupoDe(sql);
  Ranura& ranura = grupo.ranuras[grupo.siguiente];
  grupo.siguiente = (grupo.siguiente + 1) % kPorGrupo;
  ranura.molde.Tomar(sql, forma);
  ranura.preparada = preparada;
}

void CacheDeMoldes::Vaciar() {
  for (Grupo& grupo : grupos_) grupo = {};
}

}  // namespace engine_sqlite
