// The statements of the import, each built by concatenation in a fixed order. Dates come as serials and are
// spliced as #MM/dd/yyyy#; numbers as their "." texts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"

namespace liquidation::sql {

std::string Literal(base::Date fecha);  // #MM/dd/yyyy#

// The month's data of the given concepts ("7,2") in open liquidations, one "*"-joined text a row.
std::string Precarga(std::int32_t idEmpresa, base::Date mes, std::string_view conceptos);
// The month's open headers with every person key, or one of them.
std::string EncabezadosAbiertos(std::int32_t idEmpresa, base::Date mes, std::string_view filtro_tipo,
                                std::optional<std::int32_t> id_Encabezado = std::nullopt);
// id_Contrato and FECFIN of the contracts that end from the one day on and before the other.
std::string ContratosQueTerminan(std::int32_t idEmpresa, base::Date desde, base::Date antes_de);
// id_Contrato, id_Concepto, MesDeLiq and the sums of Cantidad and Coeficiente of the months from `desde` to
// `hasta`, the earliest first, for the given concepts ("7,2").
std::string CantidadesDeMeses(std::int32_t idEmpresa, base::Date desde, base::Date hasta,
                              std::string_view conceptos);
// The liquidation types that apply to a contract in the month and are not finished, the lowest first.
struct CondicionesDeTipo {
  std::string TypeFilter;         // over TiposLiquidacion
  std::string TypeCondition;      // over [Consulta]; may be empty
  std::string CalendarCondition;  // over [Consulta]; may be empty
};
// For many contracts: the conditions, which may be long, are put in once.
class ConsultaDeTipos {
 public:
  ConsultaDeTipos(std::int32_t idEmpresa, base::Date mes, const CondicionesDeTipo& condiciones);
  std::string De(std::int32_t contrato) const;

 private:
  std::vector<std::string> tramos_;  // the contract stands between them
};
// An open header of the contract, type and month, whatever its person's keys say.
std::string EncabezadoDeContrato(std::int32_t idEmpresa, base::Date mes, std::int32_t contrato,
                                 std::int32_t tipo);
std::string InsertarEncabezado(std::int32_t idEmpresa, std::int32_t id, base::Date mes, std::int32_t contrato,
                               std::int32_t tipo, std::int32_t usuario);

struct ClaveDato {
  std::int32_t idEmpresa, encabezado, concepto, agrupa;
};
std::string BuscarDato(const ClaveDato& clave);
// What stands in a datum: Cantidad and Coeficiente.
std::string LeerDato(std::int32_t idEmpresa, std::int32_t id_Dato);
std::string BorrarDato(const ClaveDato& clave);
// `par` is the text of Cantidad,Coeficiente.
std::string InsertarDato(std::int32_t id_Dato, const ClaveDato& clave, std::string_view par);
std::string ActualizarDato(std::int32_t idEmpresa, std::int32_t id_Dato, std::string_view campo,
                           std::string_view cantidad);
std::string ActualizarDatoYCoeficiente(std::int32_t idEmpresa, std::int32_t id_Dato,
                                       std::string_view cantidad, std::string_view coeficiente);

struct Cuota {
  std::int32_t idEmpresa, id_Pago, contrato, concepto, id_Dato;
  std::string cantidad, nombre;
};
std::string InsertarPago(const Cuota& cuota, base::Date mes);
std::string InsertarPagoDeta(const Cuota& cuota, base::Date mes);
std::string ActualizarPago(const Cuota& cuota);
std::string ActualizarPagoDeta(const Cuota& cuota);

// The three bulk updates that end an import.
std::string ActualizarDias(std::int32_t idEmpresa, base::Date mes);
std::string ActualizarMontos(std::int32_t idEmpresa, base::Date mes);
std::string ActualizarDetalle(base::Date mes);

}  // namespace liquidation::sql
