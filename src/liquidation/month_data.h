// The data of the month as the run knows them: what was in the open liquidations before, and what the run
// wrote.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace liquidation {

// A row carries the header that its datum stands in. The preload does not say which: its rows only tell that
// something was entered. What goes to a user table stands in no header. Neither number is one of 32 bits.
inline constexpr std::int64_t kEncabezadoSinDecir = INT64_MIN;
inline constexpr std::int64_t kSinEncabezado = INT64_MIN + 1;

// One datum. Quantities are singles, as the program computes with them; identifiers are whole numbers,
// because a single cannot tell contract 16777217 from 16777216.
struct DatoDelMes {
  std::int64_t id_Concepto = 0;
  float valor = 0;  // the coefficient for data that fill it alone, otherwise the quantity
  std::int64_t id_Contrato = 0;
  std::int64_t id_Pago = -1;
  std::int64_t idAgrupa = 0;
  float Coeficiente = 0;
  std::int64_t id_Encabezado = kEncabezadoSinDecir;
};

class MonthDataTable {
 public:
  MonthDataTable() { Reiniciar(); }
  // One row whose concept and value are -1, so that it never matches.
  void Reiniciar();
  // Of the preload, from "concept*value*contract*payment*grouping*coefficient"; missing parts are 0, numbers
  // by the operator's rule.
  DatoDelMes& Agregar(std::string_view registro);
  DatoDelMes& Agregar(const DatoDelMes& dato);
  // What the row's datum holds now. `dato` is a row of this table.
  void Cambiar(DatoDelMes& dato, float valor, float Coeficiente);
  // First row of that concept, contract, grouping and header, or null. The pointer lives until the next
  // Agregar.
  DatoDelMes* Buscar(std::int64_t concepto, std::int64_t contrato, std::int64_t agrupa,
                     std::int64_t encabezado);
  // First row of a user table (its number plus 1000) and contract, or null.
  DatoDelMes* BuscarDeTabla(std::int64_t concepto, std::int64_t contrato);
  // Whether the month held something of the three before the run, in whatever header.
  bool Precargado(std::int64_t concepto, std::int64_t contrato, std::int64_t agrupa) const;
  const std::vector<DatoDelMes>& Filas() const { return filas_; }

  // What was added and changed since the last Marcar goes back. Costs what the changes did.
  void Marcar();
  void Deshacer();

 private:
  struct Clave {
    std::int64_t concepto, contrato, agrupa, encabezado;
    bool operator==(const Clave&) const = default;
  };
  struct Picar {
    std::size_t operator()(const Clave& k) const;
  };
  static Clave ClaveDe(const DatoDelMes& dato);

  std::vector<DatoDelMes> filas_;
  std::unordered_map<Clave, std::size_t, Picar> por_clave_;
  std::size_t marca_ = 0;                                  // rows when it was set
  std::vector<std::pair<std::size_t, DatoDelMes>> antes_;  // changed since: the row as it was
};

}  // namespace liquidation
