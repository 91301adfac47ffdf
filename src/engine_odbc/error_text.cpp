// The failures of a driver in the operator's words.
#include <algorithm>
#include <array>
#include <cstdint>

#include "base/text.h"
#include "engine_odbc/odbc_internal.h"

namespace engine_odbc {
namespace {

constexpr std::string_view kFuente = "ODBC";
constexpr std::string_view kConnection = "08";  // the states of a lost connection

struct Frase {
  std::string_view estado;  // how the state begins
  std::string_view texto;
  int numero = 0;  // of the dialect's runtime error
};

// The first that fits. The states of ODBC 2 (S0002) are still what some drivers give.
constexpr std::array kFrases = {
    Frase{"07002", "La sentencia nombra un campo que no existe, o le faltan valores"},
    Frase{"08001", "No se pudo conectar con la base"},
    Frase{"08004", "La base rechazó la conexión"},
    Frase{"08", "Se perdió la conexión con la base"},
    Frase{"22001", "Un texto es demasiado largo para su campo"},
    Frase{"22003", "Un número no cabe en su campo", 6},
    Frase{"22007", "Un valor no es una fecha que la base entienda"},
    Frase{"22008", "Un valor no es una fecha que la base entienda"},
    Frase{"22012", "División por cero", 11},
    Frase{"22018", "El tipo de un valor no es el de su campo", 13},
    Frase{"22005", "El tipo de un valor no es el de su campo", 13},
    Frase{"07006", "El tipo de un valor no es el de su campo", 13},
    Frase{"22", "Un valor no es válido para la sentencia"},
    Frase{"23",
          "El cambio no cumple una condición de la tabla (un valor repetido, obligatorio o relacionado)"},
    Frase{"25006", "La base es de solo lectura: no se puede modificar"},
    Frase{"28", "La base no acepta el usuario o la contraseña"},
    Frase{"40", "Otro programa está usando los mismos datos y la transacción no pudo seguir"},
    Frase{"42S01", "Ya existe una tabla o consulta con ese nombre"},
    Frase{"S0001", "Ya existe una tabla o consulta con ese nombre"},
    Frase{"42S02", "No existe la tabla o consulta que la sentencia nombra"},
    Frase{"S0002", "No existe la tabla o consulta que la sentencia nombra"},
    Frase{"42S11", "Ya existe un índice con ese nombre"},
    Frase{"S0011", "Ya existe un índice con ese nombre"},
    Frase{"42S12", "No existe el índice que la sentencia nombra"},
    Frase{"S0012", "No existe el índice que la sentencia nombra"},
    Frase{"42S21", "La tabla ya tiene un campo con ese nombre"},
    Frase{"S0021", "La tabla ya tiene un campo con ese nombre"},
    Frase{"42S22", "No existe un campo que la sentencia nombra"},
    Frase{"S0022", "No existe un campo que la sentencia nombra"},
    Frase{"42", "La base no entiende la sentencia, o no la permite"},
    Frase{"37", "La base no entiende la sentencia, o no la permite"},
    Frase{"HYT", "La base no respondió a tiempo"},
    Frase{"S1T00", "La base no respondió a tiempo"},
    Frase{"HYC00", "El driver ODBC no admite lo que se le pide"},
    Frase{"S1C00", "El driver ODBC no admite lo que se le pide"},
    Frase{"HY001", "No hay memoria suficiente"},
    Frase{"S1001", "No hay memoria suficiente"},
    Frase{"IM001", "El driver ODBC no admite lo que se le pide"},
    Frase{"IM002", "No existe ese origen de datos ODBC, o no dice qué driver usar"},
    Frase{"IM003", "No se pudo cargar el driver ODBC"},
    Frase{"01000", "No se pudo cargar el driver ODBC"},  // unixODBC, when the library does not open
};

// States of the storage: the connection and its times, memory, transactions that could not go on, what the
// server calls its resources, its files and itself, and a base that turns out to be read-only in the middle
// of a transaction.
constexpr std::array<std::string_view, 14> kStorageStates = {
    "08", "25", "40", "53", "55", "57", "58", "F0", "XX", "HYT", "S1T", "HY001", "S1001", "HY013"};
constexpr std::array<std::string_view, 2> kTimeouts = {"HYT", "S1T"};
// States that say nothing in particular.
constexpr std::array<std::string_view, 2> kUnclearStates = {"HY000", "S1000"};
// The Access driver gives nearly all that is not of SQL itself a state that says nothing, with the number of
// its engine below zero: memory, bytes that are not what was written, the disk, access to the file, writes
// and locks of others, a damaged file, a full disk, a file that is not there.
constexpr std::array<std::int32_t, 13> kStorageNatives = {-1011, -1018, -1019, -1022, -1032, -1101, -1102,
                                                          -1206, -1302, -1304, -1808, -1811, -1907};

template <typename List>
bool Begins(const std::string& state, const List& list) {
  return std::any_of(list.begin(), list.end(), [&](auto s) { return base::EmpiezaCon(state, s); });
}

base::ErrorKind KindOf(const Diagnostico& d, base::ErrorKind if_unclear) {
  if (Begins(d.estado, kStorageStates)) return base::ErrorKind::Storage;
  if (!Begins(d.estado, kUnclearStates)) return base::ErrorKind::Statement;
  const bool told =
      std::find(kStorageNatives.begin(), kStorageNatives.end(), d.native) != kStorageNatives.end();
  return told ? base::ErrorKind::Storage : if_unclear;
}

}  // namespace

OdbcError ErrorDe(const std::vector<Diagnostico>& diagnosticos, std::string_view si_nada,
                  base::ErrorKind if_unclear) {
  std::string texto(si_nada);
  int numero = 0;
  if (!diagnosticos.empty()) {
    for (const Frase& f : kFrases) {
      if (!base::EmpiezaCon(diagnosticos[0].estado, f.estado)) continue;
      texto = f.texto;
      numero = f.numero;
      break;
    }
  }
  bool primero = true;
  for (const Diagnostico& d : diagnosticos) {
    if (d.texto.empty()) continue;
    texto += primero ? ": " : " / ";
    texto += d.texto;
    primero = false;
  }
  if (primero) texto += '.';
  std::string fuente(kFuente);
  if (!diagnosticos.empty()) fuente += " " + diagnosticos[0].estado;
  base::ErrorKind kind = diagnosticos.empty() ? if_unclear : base::ErrorKind::Statement;
  for (const Diagnostico& d : diagnosticos)  // what follows the first one may be its cause
    if (KindOf(d, if_unclear) == base::ErrorKind::Storage) kind = base::ErrorKind::Storage;
  OdbcError::Cause cause = OdbcError::Cause::Other;
  if (!diagnosticos.empty() && base::EmpiezaCon(diagnosticos[0].estado, kConnection))
    cause = OdbcError::Cause::Lost;
  else if (!diagnosticos.empty() && Begins(diagnosticos[0].estado, kTimeouts))
    cause = OdbcError::Cause::TimedOut;
  return {std::move(texto), numero, std::move(fuente), kind, cause};
}

OdbcError FaultOf(const std::vector<Diagnostico>& diagnosticos, std::string_view si_nada) {
  const OdbcError e = ErrorDe(diagnosticos, si_nada);
  return {e.Descripcion(), e.Numero(), e.Fuente(), base::ErrorKind::Storage, e.Why()};
}

}  // namespace engine_odbc
