// The statements of the user tables, as built from their fixed texts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/date.h"

namespace formula::sql {

std::string CargarTablas(std::int32_t idEmpresa, std::int32_t id_Tabla);  // -1: all tables
std::string Serie(std::int32_t idEmpresa, std::int32_t id_Tabla, std::string_view codigo);
// The value in force just before the date.
std::string BorrarAnterior(std::int32_t idEmpresa, std::int32_t id_Tabla, std::string_view codigo,
                           base::Date fecha);
std::string BorrarSerie(std::int32_t idEmpresa, std::int32_t id_Tabla, std::string_view codigo);
// Day 0 is stored as Null.
std::string InsertarValor(std::int32_t idEmpresa, std::string_view id, std::string_view id_Tabla,
                          std::string_view codigo, std::string_view valor, base::Date fecha);

}  // namespace formula::sql
