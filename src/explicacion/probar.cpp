#include "explicacion/probar.h"

#include <algorithm>
#include <map>
#include <utility>

#include "base/text.h"

namespace explicacion {
namespace {

// Keeps the boxes of the line under way, each once.
class Cajas final : public ports::Prompts {
 public:
  bool Show(const ports::Notice& aviso) override {
    std::string texto = base::Replace(aviso.text, base::kCrLf, ": ");
    if (std::find(textos.begin(), textos.end(), texto) == textos.end()) textos.push_back(std::move(texto));
    return false;
  }
  bool Confirm(const std::string&) override { return false; }
  std::vector<std::string> textos;
};

}  // namespace

Prueba Probar(importfile::EntradaCarga entrada, std::size_t cuantas) {
  Prueba p;
  Cajas cajas;
  formula::Evaluador evaluador;
  if (entrada.evaluador != nullptr) evaluador = *entrada.evaluador;
  evaluador.prompts = &cajas;
  entrada.evaluador = &evaluador;
  entrada.prompts = nullptr;
  entrada.solo_linea = 0;
  std::map<std::string, std::size_t> lugar;
  entrada.al_cargar = [&](const importfile::PasosDeLinea& pasos) {
    for (const std::string& texto : std::exchange(cajas.textos, {})) {
      const auto [it, nuevo] = lugar.try_emplace(texto, p.errores.size());
      if (nuevo) p.errores.push_back({texto, 0, {}});
      ErrorDePrueba& error = p.errores[it->second];
      ++error.lineas;
      if (error.primeras.size() < cuantas) error.primeras.push_back(pasos.linea);
    }
    if (pasos.mal_formada) return;
    ++p.probadas;
    p.pasan += pasos.pasa ? 1 : 0;
    p.sin_valor += pasos.formula.sin_valor || pasos.filtro.sin_valor ? 1 : 0;
    if (p.primeras.size() < cuantas)
      p.primeras.push_back({pasos.linea, pasos.campo[importfile::kCantidad],
                            pasos.con_formula ? pasos.formula.expresion : pasos.filtro.expresion,
                            pasos.cantidad, pasos.pasa});
  };
  const importfile::Carga carga = importfile::CargarDatos(entrada);
  p.fin = carga.fin;
  p.lineas = carga.lineas;
  std::stable_sort(p.errores.begin(), p.errores.end(),
                   [](const auto& a, const auto& b) { return a.lineas > b.lineas; });
  return p;
}

}  // namespace explicacion
