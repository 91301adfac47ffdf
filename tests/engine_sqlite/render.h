// Rows and errors as the texts that cases compare.
#pragma once

#include <string>

#include "db/connection.h"

namespace support {

// Numbers with ".", booleans -1 and 0, dates AAAA-MM-DD[ hh:mm:ss], NULL, (empty); control characters
// escaped.
std::string Celda(const base::Valor& valor);
// One line a row, cells joined with "|", sorted as lines when asked.
std::string Filas(const db::Recordset& filas, bool ordenar = false);
// "nombre:tipo|…" of the columns.
std::string Cabecera(const db::Recordset& filas);
// The description, with its number in front when it has one: "[13] …".
std::string TextoDeError(const base::Error& error);

}  // namespace support
