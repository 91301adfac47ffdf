// What a run changed in the quantities of the month, for persons to read.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "corridas/cambios.h"

namespace corridas {

// One contract, concept and cost centre in one liquidation. The quantity is what the importer writes there:
// the coefficient of what is an amount or an instalment, otherwise the quantity; several data of one concept
// are added up. None: nothing stood there. A change of amounts alone is no change of a quantity; a datum that
// was written anew with what stood there is here with both alike.
struct CambioDeCantidad {
  std::int64_t id_Contrato = 0, id_Persona = 0;
  std::string nombre, apellido;  // of the person; "" when the base does not say
  std::int64_t concepto = 0;     // a user table: its number plus 1000
  std::string nombre_concepto;
  std::int64_t idAgrupa = 0;       // cost centre
  std::int64_t id_Encabezado = 0;  // 0: a user table
  std::int64_t id_TipoLiq = 0;
  bool tabla_usuario = false;  // then the value that is dated at the month
  std::optional<double> antes, despues;
  double Diferencia() const { return despues.value_or(0) - antes.value_or(0); }
};

// By contract, concept, cost centre and header; `despues` is the later of the two that `cambios` tells apart.
// Reads the names from the base, so it belongs inside the run's transaction: the headers that a run made are
// gone after its rollback. Throws db::Error.
std::vector<CambioDeCantidad> CambiosDeCantidad(const Cambios& cambios, const Foto& despues,
                                                const sesion::DbSession& sesion, base::Date mes);

}  // namespace corridas
