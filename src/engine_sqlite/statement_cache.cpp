#include "engine_sqlite/statement_cache_internal.h"

#include <functional>

namespace engine_sqlite {
namespace {

bool MismosFijos(const Preparada& p, const std::vector<base::Valor>& literales) {
  const std::vector<int>& fijos = p.traduccion.fijos;
  for (std::size_t k = 0; k < fijos.size(); ++k)
    if (literales.at(static_cast<std::size_t>(fijos[k])) != p.valores_fijos[k]) return false;
  return true;
}

std::size_t Huella(std::string_view sql) { return std::hash<std::string_view>()(sql); }

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

const CacheDeTextos::Ranura* CacheDeTextos::Buscar(std::string_view sql) {
  const std::size_t huella = Huella(sql);
  const Ranura& r = ranuras_[huella % kRanuras];
  return r.huella == huella && r.preparada != nullptr && r.texto == sql ? &r : nullptr;
}

void CacheDeTextos::Guardar(std::string_view sql, const std::shared_ptr<Preparada>& preparada,
                            const std::vector<base::Valor>& literales) {
  if (sql.size() > kTextoMasLargo) return;
  const std::size_t huella = Huella(sql);
  Ranura& r = ranuras_[huella % kRanuras];
  if (r.huella != huella) {
    r.huella = huella;
    r.preparada = nullptr;
    return;
  }
  r.texto = sql;
  r.preparada = preparada;
  r.literales = literales;
}

void CacheDeTextos::Vaciar() {
  for (Ranura& r : ranuras_) r = {};
}

}  // namespace engine_sqlite
