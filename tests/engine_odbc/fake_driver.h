// An ODBC driver for tests, which does what a driver may do and real ones seldom show: the connection string
// and the statements say what.
//
// Connection string: Txn=0 (no transactions), Catalogo=T:a,b/U:c (its tables and columns; "roto": fails),
// Savepoints=si (understands SAVEPOINT idm_marca and its kin: answers as to CAMBIA 0), Commit=falla,
// Rollback=falla, Total=no (never tells the length of what is left), Clave=x (PWD must be it), Motor=x
// (statements go to the database that the program's own CrearMotorDePrueba makes of x).
//
// Statements of a connection without Motor, words parted by blanks:
//   FILAS name:type[:driver's name for the type] …   then a line a row, cells parted by "|"; NULL is Null,
//                                             ~n is a text of n characters 0123… before the rest, \0 a NUL
//   CAMBIA n                                  n rows changed
//   NADA                                      a change that found no row (SQL_NO_DATA)
//   AVISA …                                   the statement after it, with a warning
//   FALLA state text; state text …            these records; "HY000/-1022 text" with the driver's own number
//   PIERDE / MUERE                            the connection goes: by its state / by the attribute alone
//   PIERDE_LEYENDO                            a row, and then the connection goes
//   MARCAS                                    the first two letters of each statement about savepoints
//   CUENTAS                                   autocommit, commits and rollbacks so far
//   SELECT 'TARDA'                            never ends: one row all the same, or HYT00 when it is given a
//   time anything else                             one row: the text that came
#pragma once

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace falso {

using Ancho = std::u16string;

struct Registro {
  std::string estado;
  Ancho texto;
  SQLINTEGER native = 0;
};

struct Objeto {  // what every handle is
  std::vector<Registro> registros;
};

struct Ambiente : Objeto {};

struct Cursor;

// A database behind the driver.
class Motor {
 public:
  virtual ~Motor() = default;
  // Fills columns and rows, or the rows changed; false with a record of what went wrong.
  virtual bool Correr(Cursor& c, const Ancho& sql) = 0;
  virtual bool Empezar() = 0;
  virtual bool Terminar(bool confirmar) = 0;
};

struct Enlace : Objeto {
  bool con_transacciones = true, commit_falla = false, rollback_falla = false, con_total = true;
  bool savepoints = false;
  std::string marks;  // the first letters of each that came
  bool muerto = false, autocommit = true, catalogo_roto = false;
  int confirmadas = 0, deshechas = 0;
  std::vector<std::pair<Ancho, std::vector<Ancho>>> catalogo;
  std::unique_ptr<Motor> motor;
  bool en_transaccion = false;  // of the database behind
};

struct Columna {
  Ancho nombre, nombre_de_tipo;
  SQLSMALLINT tipo = SQL_WVARCHAR;
};

struct Celda {
  bool nula = false;
  Ancho texto;
};

struct Cursor : Objeto {
  Enlace* enlace = nullptr;
  std::vector<Columna> columnas;
  std::vector<std::vector<Celda>> filas;
  std::size_t fila = 0;  // of the last SQLFetch, from 1
  SQLUSMALLINT leyendo = 0;
  std::size_t leido = 0;  // bytes of the cell that is being read
  SQLLEN cambiadas = -1;
  bool pierde_al_final = false;
  SQLULEN timeout = 0;
};

// As the driver manager wants a text back: what fits, a NUL, and the whole length in characters.
void Dar(const Ancho& texto, SQLWCHAR* destino, SQLSMALLINT caben, SQLSMALLINT* largo);
Ancho DeAscii(const std::string& texto);
// `largo` characters, or up to the NUL for SQL_NTS.
Ancho Leer(const SQLWCHAR* texto, SQLINTEGER largo);

SQLRETURN Fallar(Objeto* objeto, const std::string& estado, const std::string& texto);
SQLRETURN Perder(Cursor& c);

// What the connection string asks for; false when its password is not the right one.
bool Configurar(Enlace& e, const Ancho& cadena);
SQLRETURN Correr(Cursor& c, const Ancho& texto);
void Vaciar(Cursor& c);
SQLRETURN DarCelda(Cursor& c, const Celda& celda, SQLSMALLINT tipo_c, SQLPOINTER destino, SQLLEN caben,
                   SQLLEN* largo);

}  // namespace falso

// Of a test program that has a database to offer; linked with its symbols exported.
extern "C" falso::Motor* CrearMotorDePrueba(const char16_t* nombre);
