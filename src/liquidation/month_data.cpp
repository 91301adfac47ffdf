#include "liquidation/month_data.h"

#include <array>
#include <cmath>

#include "base/dialect_number.h"
#include "base/text.h"

namespace liquidation {
namespace {

std::int64_t Identificador(double numero) {
  return std::abs(numero) < 9e18 ? static_cast<std::int64_t>(std::llround(numero)) : 0;
}

}  // namespace

std::size_t MonthDataTable::Picar::operator()(const Clave& k) const {
  std::uint64_t h = static_cast<std::uint64_t>(k.contrato) * 0x9E3779B97F4A7C15ULL;
  h ^= static_cast<std::uint64_t>(k.concepto) + 0x7F4A7C15U + (h << 6) + (h >> 2);
  h ^= static_cast<std::uint64_t>(k.agrupa) * 0xC2B2AE3D27D4EB4FULL + (h << 6) + (h >> 2);
  return static_cast<std::size_t>(h ^ (h >> 29));
}

void MonthDataTable::Reiniciar() {
  filas_.assign(1, DatoDelMes{-1, -1.0F, 0, 0, 0, 0.0F});
  por_par_.clear();
  por_terna_.clear();
}

DatoDelMes& MonthDataTable::Agregar(std::string_view registro) {
  std::vector<std::string_view> partes;
  base::SplitVistas(registro, "*", partes);
  std::array<double, 6> n{};
  for (std::size_t i = 0; i < n.size() && i < partes.size(); ++i)
    n[i] = base::DialectNumber(partes[i]).value_or(0);
  return Agregar(DatoDelMes{Identificador(n[0]), static_cast<float>(n[1]), Identificador(n[2]),
                            Identificador(n[3]), Identificador(n[4]), static_cast<float>(n[5])});
}

DatoDelMes& MonthDataTable::Agregar(const DatoDelMes& dato) {
  const std::size_t fila = filas_.size();
  filas_.push_back(dato);
  por_par_.try_emplace(Clave{dato.id_Concepto, dato.id_Contrato, 0}, fila);
  por_terna_.try_emplace(Clave{dato.id_Concepto, dato.id_Contrato, dato.idAgrupa}, fila);
  return filas_.back();
}

DatoDelMes* MonthDataTable::Buscar(std::int64_t concepto, std::int64_t contrato) {
  const auto it = por_par_.find(Clave{concepto, contrato, 0});
  return it == por_par_.end() ? nullptr : &filas_[it->second];
}

DatoDelMes* MonthDataTable::Buscar(std::int64_t concepto, std::int64_t contrato, std::int64_t agrupa) {
  const auto it = por_terna_.find(Clave{concepto, contrato, agrupa});
  return it == por_terna_.end() ? nullptr : &filas_[it->second];
}

}  // namespace liquidation
