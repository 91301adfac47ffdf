// The queries over what an import may write in a month, and the names beside it.
#pragma once

#include <cstdint>
#include <string>

#include "base/date.h"

namespace corridas::sql {

// All columns of the rows that a run of the month may insert, change or delete.
std::string Encabezados(std::int32_t idEmpresa, base::Date mes);
// Of every company: the update of the details asks for none.
std::string Datos(base::Date mes);
std::string Pagos(base::Date mes);
// Those of the month, and those that a datum of the month pays, which go where it goes.
std::string PagosDeta(base::Date mes);
std::string TablasUsuario(std::int32_t idEmpresa);

// id_Encabezado, id_Contrato, id_TipoLiq of the month's headers.
std::string EncabezadosDelMes(std::int32_t idEmpresa, base::Date mes);
// id_Contrato, id_Persona, Nombre_1, Apellido_1.
std::string Personas(std::int32_t idEmpresa);
// id_Concepto, Nombre, TipoDato, TipoCuota.
std::string Conceptos();
// id, NombreCampo.
std::string Tablas(std::int32_t idEmpresa);

}  // namespace corridas::sql
