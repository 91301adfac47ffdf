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
  h ^= static_cast<std::uint64_t>(k.encabezado) * 0x165667B19E3779F9ULL + (h << 6) + (h >> 2);
  return static_cast<std::size_t>(h ^ (h >> 29));
}

MonthDataTable::Clave MonthDataTable::ClaveDe(const DatoDelMes& dato) {
  return {dato.id_Concepto, dato.id_Contrato, dato.idAgrupa, dato.id_Encabezado};
}

void MonthDataTable::Reiniciar() {
  filas_.assign(1, DatoDelMes{.id_Concepto = -1, .valor = -1.0F});
  por_clave_.clear();
  Marcar();
}

DatoDelMes& MonthDataTable::Agregar(std::string_view registro) {
  std::vector<std::string_view> partes;
  base::SplitViews(registro, "*", partes);
  std::array<double, 6> n{};
  for (std::size_t i = 0; i < n.size() && i < partes.size(); ++i)
    n[i] = base::DialectNumber(partes[i]).value_or(0);
  return Agregar(DatoDelMes{Identificador(n[0]), static_cast<float>(n[1]), Identificador(n[2]),
                            Identificador(n[3]), Identificador(n[4]), static_cast<float>(n[5])});
}

DatoDelMes& MonthDataTable::Agregar(const DatoDelMes& dato) {
  filas_.push_back(dato);
  por_clave_.try_emplace(ClaveDe(dato), filas_.size() - 1);
  return filas_.back();
}

void MonthDataTable::Cambiar(DatoDelMes& dato, float valor, float Coeficiente) {
  antes_.emplace_back(static_cast<std::size_t>(&dato - filas_.data()), dato);
  dato.valor = valor;
  dato.Coeficiente = Coeficiente;
}

DatoDelMes* MonthDataTable::Buscar(std::int64_t concepto, std::int64_t contrato, std::int64_t agrupa,
                                   std::int64_t encabezado) {
  const auto it = por_clave_.find(Clave{concepto, contrato, agrupa, encabezado});
  return it == por_clave_.end() ? nullptr : &filas_[it->second];
}

DatoDelMes* MonthDataTable::BuscarDeTabla(std::int64_t concepto, std::int64_t contrato) {
  return Buscar(concepto, contrato, 0, kSinEncabezado);
}

bool MonthDataTable::Precargado(std::int64_t concepto, std::int64_t contrato, std::int64_t agrupa) const {
  return por_clave_.contains(Clave{concepto, contrato, agrupa, kEncabezadoSinDecir});
}

void MonthDataTable::Marcar() {
  marca_ = filas_.size();
  antes_.clear();
}

void MonthDataTable::Deshacer() {
  for (; !antes_.empty(); antes_.pop_back()) filas_[antes_.back().first] = antes_.back().second;
  for (; filas_.size() > marca_; filas_.pop_back()) {
    const auto it = por_clave_.find(ClaveDe(filas_.back()));
    if (it != por_clave_.end() && it->second == filas_.size() - 1) por_clave_.erase(it);
  }
}

}  // namespace liquidation
