// The failures of a driver in the operator's words.
#include <algorithm>
#include <array>
#include <cstdint>

#include "base/text.h"
#include "engine_odbc/odbc_internal.h"

namespace engine_odbc {
namespace {

constexpr std::string_view kSource = "ODBC";
constexpr std::string_view kConnection = "08";  // the states of a lost connection

struct Phrase {
  std::string_view state;  // how the state begins
  std::string_view text;
  int number = 0;  // of the dialect's runtime error
};

// The first that fits. The states of ODBC 2 (S0002) are still what some drivers give.
constexpr std::array kPhrases = {
    Phrase{"07002", "La sentencia nombra un campo que no existe, o le faltan valores"},
    Phrase{"08001", "No se pudo conectar con la base"},
    Phrase{"08004", "La base rechazó la conexión"},
    Phrase{"08", "Se perdió la conexión con la base"},
    Phrase{"22001", "Un texto es demasiado largo para su campo"},
    Phrase{"22003", "Un número no cabe en su campo", 6},
    Phrase{"22007", "Un valor no es una fecha que la base entienda"},
    Phrase{"22008", "Un valor no es una fecha que la base entienda"},
    Phrase{"22012", "División por cero", 11},
    Phrase{"22018", "El tipo de un valor no es el de su campo", 13},
    Phrase{"22005", "El tipo de un valor no es el de su campo", 13},
    Phrase{"07006", "El tipo de un valor no es el de su campo", 13},
    Phrase{"22", "Un valor no es válido para la sentencia"},
    Phrase{"23",
           "El cambio no cumple una condición de la tabla (un valor repetido, obligatorio o relacionado)"},
    Phrase{"25006", "La base es de solo lectura: no se puede modificar"},
    Phrase{"28", "La base no acepta el usuario o la contraseña"},
    Phrase{"40", "Otro programa está usando los mismos datos y la transacción no pudo seguir"},
    Phrase{"42S01", "Ya existe una tabla o consulta con ese nombre"},
    Phrase{"S0001", "Ya existe una tabla o consulta con ese nombre"},
    Phrase{"42S02", "No existe la tabla o consulta que la sentencia nombra"},
    Phrase{"S0002", "No existe la tabla o consulta que la sentencia nombra"},
    Phrase{"42S11", "Ya existe un índice con ese nombre"},
    Phrase{"S0011", "Ya existe un índice con ese nombre"},
    Phrase{"42S12", "No existe el índice que la sentencia nombra"},
    Phrase{"S0012", "No existe el índice que la sentencia nombra"},
    Phrase{"42S21", "La tabla ya tiene un campo con ese nombre"},
    Phrase{"S0021", "La tabla ya tiene un campo con ese nombre"},
    Phrase{"42S22", "No existe un campo que la sentencia nombra"},
    Phrase{"S0022", "No existe un campo que la sentencia nombra"},
    Phrase{"42", "La base no entiende la sentencia, o no la permite"},
    Phrase{"37", "La base no entiende la sentencia, o no la permite"},
    Phrase{"HYT", "La base no respondió a tiempo"},
    Phrase{"S1T00", "La base no respondió a tiempo"},
    Phrase{"HYC00", "El driver ODBC no admite lo que se le pide"},
    Phrase{"S1C00", "El driver ODBC no admite lo que se le pide"},
    Phrase{"HY001", "No hay memoria suficiente"},
    Phrase{"S1001", "No hay memoria suficiente"},
    Phrase{"IM001", "El driver ODBC no admite lo que se le pide"},
    Phrase{"IM002", "No existe ese origen de datos ODBC, o no dice qué driver usar"},
    Phrase{"IM003", "No se pudo cargar el driver ODBC"},
    Phrase{"01000", "No se pudo cargar el driver ODBC"},  // unixODBC, when the library does not open
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
  return std::any_of(list.begin(), list.end(), [&](auto s) { return base::StartsWith(state, s); });
}

base::ErrorKind KindOf(const Diagnostic& d, base::ErrorKind if_unclear) {
  if (Begins(d.state, kStorageStates)) return base::ErrorKind::Storage;
  if (!Begins(d.state, kUnclearStates)) return base::ErrorKind::Statement;
  const bool told =
      std::find(kStorageNatives.begin(), kStorageNatives.end(), d.native) != kStorageNatives.end();
  return told ? base::ErrorKind::Storage : if_unclear;
}

}  // namespace

OdbcError ErrorOf(const std::vector<Diagnostic>& diagnostics, std::string_view if_nothing,
                  base::ErrorKind if_unclear) {
  std::string text(if_nothing);
  int number = 0;
  if (!diagnostics.empty()) {
    for (const Phrase& f : kPhrases) {
      if (!base::StartsWith(diagnostics[0].state, f.state)) continue;
      text = f.text;
      number = f.number;
      break;
    }
  }
  bool first = true;
  for (const Diagnostic& d : diagnostics) {
    if (d.text.empty()) continue;
    text += first ? ": " : " / ";
    text += d.text;
    first = false;
  }
  if (first) text += '.';
  std::string source(kSource);
  if (!diagnostics.empty()) source += " " + diagnostics[0].state;
  base::ErrorKind kind = diagnostics.empty() ? if_unclear : base::ErrorKind::Statement;
  for (const Diagnostic& d : diagnostics)  // what follows the first one may be its cause
    if (KindOf(d, if_unclear) == base::ErrorKind::Storage) kind = base::ErrorKind::Storage;
  OdbcError::Cause cause = OdbcError::Cause::Other;
  if (!diagnostics.empty() && base::StartsWith(diagnostics[0].state, kConnection))
    cause = OdbcError::Cause::Lost;
  else if (!diagnostics.empty() && Begins(diagnostics[0].state, kTimeouts))
    cause = OdbcError::Cause::TimedOut;
  return {std::move(text), number, std::move(source), kind, cause};
}

OdbcError FaultOf(const std::vector<Diagnostic>& diagnostics, std::string_view if_nothing) {
  const OdbcError e = ErrorOf(diagnostics, if_nothing);
  return {e.Description(), e.Number(), e.Source(), base::ErrorKind::Storage, e.Why()};
}

}  // namespace engine_odbc
