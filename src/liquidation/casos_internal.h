// What the warnings before an import are made of: cases, each with its lines, and the first of them by name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace liquidation {

inline constexpr std::size_t kALaVista = 5;  // cases of a text, and lines of a case, that are named

// "1, 2, 3, 4, 5 y 17 más", "1 y 2".
std::string Enumerar(const std::vector<std::string>& primeros, std::size_t cuantos, std::string_view entre);

// "concepto 7", "tabla de usuario 5".
std::string NombreDeConcepto(std::int32_t concepto);

// What one case is called, and the lines that make it.
struct Caso {
  std::string nombre;
  std::vector<std::string> primeras;
  std::size_t lineas = 0, ultima = 0;

  void Sumar(std::size_t linea);
  std::string Lineas() const;  // "línea 3", "7 líneas: 1, 2, 3, 4, 5 y 2 más"
};

struct ClaveDeCaso {
  std::int32_t contrato = 0, concepto = 0, agrupa = 0;
  bool operator==(const ClaveDeCaso&) const = default;
};

// Cases by key, in the order in which they were first met.
class Casos {
 public:
  Caso& De(const ClaveDeCaso& clave) {
    const auto [it, nuevo] = lugar_.try_emplace(clave, casos_.size());
    if (nuevo) casos_.emplace_back();
    return casos_[it->second];
  }
  // Those of at least `minimo` lines, each as `decir` puts it; "" when there is none.
  template <typename Decir>
  std::string Texto(std::size_t minimo, Decir&& decir) const {
    std::vector<std::string> primeros;
    std::size_t cuantos = 0;
    for (const Caso& caso : casos_) {
      if (caso.lineas < minimo) continue;
      if (++cuantos <= kALaVista) primeros.push_back(decir(caso));
    }
    return Enumerar(primeros, cuantos, "; ");
  }

 private:
  struct Picar {
    std::size_t operator()(const ClaveDeCaso& k) const;
  };
  std::unordered_map<ClaveDeCaso, std::size_t, Picar> lugar_;
  std::vector<Caso> casos_;
};

}  // namespace liquidation
