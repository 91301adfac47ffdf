// User tables: series of dated values a code, each valid from its date on.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "formula/vectores/vector.h"
#include "sesion/db_session.h"

namespace formula {

// One loaded row of the values query.
struct ValorDeTabla {
  std::int32_t id = 0;
  std::int32_t id_Tabla = 0;
  std::string Codigo;
  std::string Valor;
  base::Date Fecha;  // NULL is day 0
  int Tipo = 0;      // of the table
};

// The values as the last load found them. Look-ups by table and code are indexed.
class TablasUsuario {
 public:
  // id_Tabla -1: all tables of the company; another: the values of that table are then all there is. Throws
  // base::Error with the source and description of a missing or closed connection; a failing statement leaves
  // the cache empty and throws db::Error.
  void CargarTablasUsuario(const sesion::DbSession& sesion, std::int32_t id_Tabla);
  // The values of one code, by date; fields id, id_Tabla, Codigo, Valor, Fecha (as dd/MM/yyyy). Not an array
  // when none.
  Vector Serie(std::int32_t id_Tabla, std::string_view codigo) const;
  bool TieneValores(std::int32_t id_Tabla, std::string_view codigo) const;
  // The table's Tipo, 0 when it is not known.
  int Tipo(std::int32_t id_Tabla) const;
  std::size_t Cantidad() const { return valores_.size(); }
  void Vaciar();

 private:
  struct Rango {
    std::vector<ValorDeTabla>::const_iterator primero, fin;
  };
  Rango Buscar(std::int32_t id_Tabla, std::string_view codigo) const;

  std::vector<ValorDeTabla> valores_;  // by table, code, date
};

// Index of the last record dated on or before `fecha`; 0 when all are later; -1 when there is no record.
int PosicionFecha(const Vector& serie, base::Date fecha, std::size_t campo_fecha, base::Date hoy);

// Writes a value for a code, valid from `fecha`; a value of the same date is replaced. An empty value removes
// the one in force just before the date, unless sin_borrado. With `sumado` the value is a number that comes
// with 200 added: the value less 200 is stored, and no other text is taken. `registros`, when given, receives
// how many the series then has. Throws db::Error when a statement fails.
void GuardarValorTablaUsuario(const sesion::DbSession& sesion, std::int32_t id_Tabla, std::string_view codigo,
                              std::string_view valor, base::Date fecha, bool sumado = false,
                              bool sin_borrado = false, int* registros = nullptr);

// Writes 0 for a code, valid from `fecha`, unless some value is dated on that day, whatever its hour: a value
// that somebody entered is never lost to the end of another. Returns whether it wrote. Throws db::Error.
bool CerrarValorTablaUsuario(const sesion::DbSession& sesion, std::int32_t id_Tabla, std::string_view codigo,
                             base::Date fecha);

}  // namespace formula
