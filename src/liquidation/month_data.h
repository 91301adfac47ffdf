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

// Found by concept, contract and grouping, as they were loaded. Those three do not tell the liquidation: when
// a month has several open ones of a contract, a datum's own row is the one that the run wrote for it.
class MonthDataTable {
 public:
  MonthDataTable() { Reiniciar(); }
  // One row whose concept and value are -1, so that it never matches.
  void Reiniciar();
  // A loaded row, from "concept*value*contract*payment*grouping*coefficient"; missing parts are 0, numbers by
  // the operator's rule.
  DatoDelMes& Agregar(std::string_view registro);
  // A row that the run wrote: of that id_Dato, or of a user table (0).
  DatoDelMes& Agregar(const DatoDelMes& dato, std::int32_t id_Dato = 0);
  // From now on the row is the one of that id_Dato, and no longer found as a loaded one.
  void Asignar(const DatoDelMes& fila, std::int32_t id_Dato);
  // First row of that concept and contract, or null. Pointers live until the next Agregar.
  DatoDelMes* Buscar(std::int64_t concepto, std::int64_t contrato);
  // The first loaded row of that concept, contract and grouping, or null; and how many there are.
  DatoDelMes* Buscar(std::int64_t concepto, std::int64_t contrato, std::int64_t agrupa);
  std::size_t Cargadas(std::int64_t concepto, std::int64_t contrato, std::int64_t agrupa) const;
  // The row that the run wrote for that datum, or null.
  DatoDelMes* DeDato(std::int32_t id_Dato);
  const std::vector<DatoDelMes>& Filas() const { return filas_; }

 private:
  struct Clave {
    std::int64_t concepto, contrato, agrupa;
    bool operator==(const Clave&) const = default;
  };
  struct Picar {
    std::size_t operator()(const Clave& k) const;
  };
  struct Grupo {
    std::size_t primera = 0, cantidad = 0;
  };
  std::vector<DatoDelMes> filas_;
  std::unordered_map<Clave, std::size_t, Picar> por_par_;  // agrupa 0 in the key
  std::unordered_map<Clave, Grupo, Picar> cargadas_;
  std::unordered_map<std::int32_t, std::size_t> por_dato_;
};

}  // namespace liquidation
