#include "liquidation/casos_internal.h"

namespace liquidation {

std::string Enumerar(const std::vector<std::string>& primeros, std::size_t cuantos, std::string_view entre) {
  std::string texto;
  for (std::size_t i = 0; i < primeros.size(); ++i) {
    const bool ultimo = i + 1 == cuantos;
    if (i > 0) texto += ultimo ? " y " : entre;
    texto += primeros[i];
  }
  if (cuantos > primeros.size()) texto += " y " + std::to_string(cuantos - primeros.size()) + " más";
  return texto;
}

std::string NombreDeConcepto(std::int32_t concepto) {
  return concepto >= 1000 ? "tabla de usuario " + std::to_string(concepto - 1000)
                          : "concepto " + std::to_string(concepto);
}

void Caso::Sumar(std::size_t linea) {
  if (primeras.size() < kALaVista) primeras.push_back(std::to_string(linea));
  ++lineas;
  ultima = linea;
}

std::string Caso::Lineas() const {
  return (lineas == 1 ? "línea " : std::to_string(lineas) + " líneas: ") + Enumerar(primeras, lineas, ", ");
}

std::size_t Casos::Picar::operator()(const ClaveDeCaso& k) const {
  std::uint64_t h = static_cast<std::uint32_t>(k.contrato) * 0x9E3779B97F4A7C15ULL;
  h ^= static_cast<std::uint32_t>(k.concepto) * 0xC2B2AE3D27D4EB4FULL + (h << 6) + (h >> 2);
  h ^= static_cast<std::uint32_t>(k.agrupa) + (h << 6) + (h >> 2);
  return static_cast<std::size_t>(h ^ (h >> 29));
}

}  // namespace liquidation
