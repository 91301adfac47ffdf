// What the routines of the writer share among themselves.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "liquidation/agregar_datos_a_liq.h"

namespace liquidation {

// The first error of the steps that were skipped; it becomes the line's result.
class ErrorPendiente {
 public:
  template <typename Paso>
  bool Intentar(Paso&& paso) {
    try {
      paso();
      return true;
    } catch (const base::Error& e) {
      if (descripcion_.empty()) descripcion_ = e.Descripcion().empty() ? "Error" : e.Descripcion();
      return false;
    }
  }
  const std::string& Descripcion() const { return descripcion_; }

 private:
  std::string descripcion_;
};

// The identifier after the largest one. Throws base::Error 6 when it passes 32 bits.
std::int32_t IdentificadorNuevo(const Corrida& corrida, std::string_view tabla, std::string_view campo);

struct DatoALiquidar {
  std::int32_t concepto = 0;
  std::int32_t contrato = 0;
  std::int32_t encabezado = 0;
  std::int32_t agrupa = 0;
};

// Inserts, replaces or sums the datum. Returns the description of the first statement that failed, or "".
std::string EscribirDato(Corrida& corrida, const DatoALiquidar& dato, float& cantidad, float& coeficiente,
                         const importfile::ImportRow& fila);

// Writes into the user table `concepto` - 1000.
std::string EscribirTablaUsuario(Corrida& corrida, std::int32_t concepto, std::int32_t contrato,
                                 float& cantidad, float coeficiente);

}  // namespace liquidation
