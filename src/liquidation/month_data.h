// The data of the month as the run knows them: what was in the open liquidations before, and what the run
// wrote.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace liquidation {

// One datum. Quantities are singles, as the program computes with them; identifiers are whole numbers,
// because a single cannot tell contract 16777217 from 16777216.
struct DatoDelMes {
  std::int64_t id_Concepto = 0;
  float valor =
      0;  // the coefficient for data of kind 2, otherwise the quantity, as loaded; later what was written
  std::int64_t id_Contrato = 0;
  std::int64_t id_Pago = -1;
  std::int64_t idAgrupa = 0;
  float Coeficiente = 0;
};

class MonthDataTable {
 public:
  MonthDataTable() { Reiniciar(); }
  // One row whose concept and value are -1, so that it never matches.
  void Reiniciar();
  // From "concept*value*contract*payment*grouping*coefficient"; missing parts are 0, numbers by the
  // operator's rule.
  DatoDelMes& Agregar(std::string_view registro);
  DatoDelMes& Agregar(const DatoDelMes& dato);
  // First row of that concept and contract (and grouping), or null. The pointer lives until the next Agregar.
  DatoDelMes* Buscar(std::int64_t concepto, std::int64_t contrato);
  DatoDelMes* Buscar(std::int64_t concepto, std::int64_t contrato, std::int64_t agrupa);
  const std::vector<DatoDelMes>& Filas() const { return filas_; }

 private:
  struct Clave {
    std::int64_t concepto, contrato, agrupa;
    bool operator==(const Clave&) const = default;
  };
  struct Picar {
    std::size_t operator()(const Clave& k) const;
  };
  std::vector<DatoDelMes> filas_;
  std::unordered_map<Clave, std::size_t, Picar> por_par_;  // agrupa 0 in the key
  std::unordered_map<Clave, std::size_t, Picar> por_terna_;
};

}  // namespace liquidation
