// The statements of the reference data, to the byte: blanks are part of a text, because it is the key of the
// engines' statement cache and what a driver's trace shows.
#pragma once

#include <cstdint>
#include <string>

#include "base/date.h"

namespace refdata::sql {

// Stores the month as the parameter PARFECHA, "#MM/dd/yyyy#", so that it reads back as a date literal.
std::string GuardarMes(std::int32_t idEmpresa, base::Date mes);
// The contracts begun by `hasta` and in force, or ended on or after `desde`.
std::string Contratos(std::int32_t idEmpresa, base::Date desde, base::Date hasta);

// Concepts and user tables; the column Datos is the "*"-joined entry.
std::string Conceptos(std::int32_t idEmpresa, bool solo_datos_de_reloj, bool con_cuotas);

std::string TiposActivos(std::int32_t idEmpresa);   // that are not per-employee, with their conditions
std::string Calendario(std::int32_t idEmpresa);     // of the last 48 months, unconditioned entries first
std::string GruposDeTipos(std::int32_t idEmpresa);  // value, ParaEmp, text
std::string CentrosDeCosto();                       // of every company

}  // namespace refdata::sql
