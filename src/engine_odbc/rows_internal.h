// The rows of a result, typed by the columns that the driver describes.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "db/recordset.h"
#include "engine_odbc/bounded_internal.h"
#include "engine_odbc/odbc_internal.h"

namespace engine_odbc {

// How the cells of a column are asked for, and what becomes of them. Whole numbers and decimals travel as
// text, which every driver gives and which loses nothing; the binary forms of 64 bits are unknown to some.
enum class Lectura : std::uint8_t {
  Texto,
  Guid,
  Binario,
  Entero,
  Booleano,
  Simple,
  Doble,
  Decimal,
  Moneda,
  Momento,  // date and time
  Dia,
  Hora
};

// By the SQL type; `nombre_de_tipo` is the driver's own name for it, `precision_fija` its word that the
// column is money.
Lectura LecturaDe(SQLSMALLINT tipo_sql, std::string_view nombre_de_tipo, bool precision_fija);
base::Tipo TipoDe(Lectura lectura);

// The value that the text of a number, a boolean or a currency stands for; a text that is none stays a text.
base::Valor ValorDeCifras(std::string_view texto, Lectura lectura);
// Throws db::Error for what is no date of the calendar.
base::Fecha FechaDeMomento(const SQL_TIMESTAMP_STRUCT& momento, std::string_view columna);

class Lector {
 public:
  // `cursor` has a result open; it must outlive the reader. Throws db::Error.
  explicit Lector(SQLHANDLE cursor);

  const std::shared_ptr<const db::Columnas>& Columnas() const { return columnas_; }
  // All rows that are left, cell by cell. Throws db::Error.
  std::vector<base::Valor> Filas(StatementLimits* limits = nullptr);

 private:
  void Describir(SQLUSMALLINT i, db::Columnas& columnas);
  base::Valor Celda(SQLUSMALLINT i);
  base::Valor CeldaDeTexto(SQLUSMALLINT i);
  base::Valor CeldaDeBytes(SQLUSMALLINT i);
  base::Valor CeldaDeCifras(SQLUSMALLINT i);
  base::Valor CeldaDeFecha(SQLUSMALLINT i);
  base::Valor CeldaDoble(SQLUSMALLINT i);
  // One value of a fixed size; false when it is Null. `dados`: the bytes that the driver says it gave.
  bool Fijo(SQLUSMALLINT i, SQLSMALLINT tipo_c, SQLPOINTER destino, std::size_t bytes,
            SQLLEN* dados = nullptr);
  // One call for a piece into pieza_, `ancho` bytes a unit; the bytes that came. False after the last piece.
  struct Pieza {
    std::size_t bytes = 0;
    bool nulo = false, ultima = true;
  };
  Pieza LeerPieza(SQLUSMALLINT i, SQLSMALLINT tipo_c, std::size_t ancho);
  [[noreturn]] void Lanzar() const;

  SQLHANDLE cursor_;
  std::vector<Lectura> lecturas_;
  std::shared_ptr<const db::Columnas> columnas_;
  std::vector<SQLWCHAR> pieza_;
};

}  // namespace engine_odbc
