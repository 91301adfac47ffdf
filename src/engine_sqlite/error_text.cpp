// The failures of SQLite in the operator's words.
#include <array>
#include <cstddef>

#include "engine_sqlite/mirror.h"
#include "engine_sqlite/sqlite_internal.h"

namespace engine_sqlite {
namespace {

// The text after `prefix` when `message` starts with it, else nothing.
bool After(std::string_view message, std::string_view prefix, std::string_view& rest) {
  if (message.substr(0, prefix.size()) != prefix) return false;
  rest = message.substr(prefix.size());
  return true;
}

// "table.column" of a constraint's message.
void SplitName(std::string_view name, std::string& table, std::string& column) {
  const std::size_t point = name.find('.');
  if (point == std::string_view::npos) {
    column = name;
    return;
  }
  table = name.substr(0, point);
  column = name.substr(point + 1);
}

// "T.a, T.b" as the table and "a, b"; "index 'i'" leaves both empty.
void SplitList(std::string_view list, std::string& table, std::string& columns) {
  if (list.substr(0, 6) == "index ") return;
  while (!list.empty()) {
    const std::size_t comma = list.find(", ");
    std::string column;
    SplitName(list.substr(0, comma), table, column);
    if (!columns.empty()) columns += ", ";
    columns += column;
    list = comma == std::string_view::npos ? std::string_view() : list.substr(comma + 2);
  }
}

// The conditions that a CREATE TABLE of the dialect gives its columns, by the name in the message. A mirror
// gives its own conditions their whole text as name (see mirror.h).
bool ColumnMessage(std::string_view name, std::string& text) {
  if (std::string_view own; After(name, kOwnText, own)) {
    text = own;
    return true;
  }
  struct Rule {
    std::string_view prefix, before, after;
  };
  constexpr std::array kRules = {
      Rule{"jet_largo.", "El texto es demasiado largo para el campo ", "."},
      Rule{"jet_rango.", "El número no cabe en el campo ", "."},
      Rule{"jet_nulo.", "El campo ", " pertenece a un índice que no admite valores vacíos."},
  };
  for (const Rule& r : kRules) {
    std::string_view column;
    if (!After(name, r.prefix, column)) continue;
    text = r.before;
    text += column;
    text += r.after;
    return true;
  }
  return false;
}

std::string ConstraintMessage(int code, std::string_view message) {
  std::string_view rest;
  std::string table, columns, text;
  if (ColumnMessage(message, text)) return text;
  if (After(message, "UNIQUE constraint failed: ", rest)) {
    SplitList(rest, table, columns);
    text = "Ya existe un registro con el mismo valor";
    if (!columns.empty()) text += " en " + columns;
    if (!table.empty()) text += " de la tabla " + table;
    return text + ".";
  }
  if (After(message, "NOT NULL constraint failed: ", rest)) {
    SplitName(rest, table, columns);
    return "El campo " + columns + " de la tabla " + table + " es obligatorio: no puede quedar vacío.";
  }
  if (After(message, "CHECK constraint failed: ", rest)) {
    if (ColumnMessage(rest, text)) return text;
    return "El valor no es válido para el campo: no cabe en él o no cumple su condición (" +
           std::string(rest) + ").";
  }
  if (code == SQLITE_CONSTRAINT_FOREIGNKEY)
    return "El registro depende de otra tabla: falta el registro relacionado o hay registros que lo usan.";
  if (code == SQLITE_CONSTRAINT_DATATYPE || After(message, "cannot store ", rest))
    return "El tipo del valor no es el del campo.";
  return "El cambio no cumple una condición de la tabla (" + std::string(message) + ").";
}

struct Phrase {
  std::string_view english;  // how SQLite's text starts
  std::string_view before;   // the Spanish text before the name that follows
  std::string_view after;
};

constexpr std::array kPhrases = {
    Phrase{"no such table: ", "No existe la tabla ", "."},
    Phrase{"no such column: ", "No existe el campo ", "."},
    Phrase{"no such index: ", "No existe el índice ", "."},
    Phrase{"no such view: ", "No existe la consulta ", "."},
    Phrase{"no such function: ", "No existe la función ", "."},
    Phrase{"ambiguous column name: ", "El campo ", " está en más de una tabla: indique de cuál."},
    Phrase{"duplicate column name: ", "La tabla ya tiene el campo ", "."},
    Phrase{"misuse of aggregate: ", "No se puede usar la función de totales ", " ahí."},
    Phrase{"too many terms in compound SELECT", "La sentencia une demasiadas consultas", "."},
    Phrase{"too many columns", "La sentencia tiene demasiados campos", "."},
    Phrase{"variable number must be ", "La sentencia tiene demasiados valores", "."},
    Phrase{"too many SQL variables", "La sentencia tiene demasiados valores", "."},
    Phrase{"too many arguments on function ", "Demasiados argumentos en la función ", "."},
    Phrase{"Expression tree is too large", "La sentencia es demasiado larga o anidada", "."},
    Phrase{"parser stack overflow", "La sentencia es demasiado larga o anidada", "."},
    Phrase{"at most ", "La sentencia usa demasiadas tablas", "."},
    Phrase{"object name reserved for internal use: ", "El nombre ", " está reservado."},
    Phrase{"integer overflow", "Desbordamiento", "."},
    Phrase{"cannot start a transaction within a transaction", "Ya hay una transacción abierta", "."},
};

// An index of table t is t.i in the file.
std::string_view IndexName(std::string_view name) {
  const std::size_t point = name.rfind('.');
  return point == std::string_view::npos ? name : name.substr(point + 1);
}

// "table X already exists" and the like have the name in the middle.
bool AlreadyExistsMessage(std::string_view message, std::string& text) {
  constexpr std::string_view kFinal = " already exists";
  if (message.size() <= kFinal.size() || message.substr(message.size() - kFinal.size()) != kFinal)
    return false;
  const std::string_view head = message.substr(0, message.size() - kFinal.size());
  std::string_view name;
  if (After(head, "table ", name)) {
    text = "La tabla " + std::string(name) + " ya existe.";
  } else if (After(head, "index ", name)) {
    text = "El índice " + std::string(IndexName(name)) + " ya existe.";
  } else {
    return false;
  }
  return true;
}

std::string StatementMessage(std::string_view message) {
  std::string text;
  if (ColumnMessage(message, text)) return text;
  if (AlreadyExistsMessage(message, text)) return text;
  for (const Phrase& f : kPhrases) {
    std::string_view rest;
    if (!After(message, f.english, rest)) continue;
    text = f.before;
    if (f.before.back() == ' ') text += f.english == "no such index: " ? IndexName(rest) : rest;
    text += f.after;
    return text;
  }
  return "La base no pudo ejecutar la sentencia (" + std::string(message) + ").";
}

}  // namespace

// What SQL itself refuses is the statement's failure, an interrupted one too. All that SQLite says of the
// file, of its locks and of the memory is a fault, and so is what it says of itself: after any of them
// nobody knows what the next statement works on.
base::ErrorKind KindOf(int extended_code, bool in_transaction) {
  switch (extended_code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:  // of the locks of the write-ahead log
    case SQLITE_SCHEMA:    // changed by another program again and again
    case SQLITE_NOMEM:
    case SQLITE_IOERR:
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
    case SQLITE_FULL:
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_NOLFS:
    case SQLITE_ABORT:  // a rollback went on under the statement
    case SQLITE_INTERNAL:
    case SQLITE_MISUSE:
      return base::ErrorKind::Storage;
    case SQLITE_READONLY:
      // A base that was opened for reading refuses what writes, and nothing is lost. One that began a
      // transaction, or was moved or damaged beside its log, is another matter.
      return in_transaction || extended_code != SQLITE_READONLY ? base::ErrorKind::Storage
                                                                : base::ErrorKind::Statement;
    default:
      return base::ErrorKind::Statement;
  }
}

std::string DescriptionOf(int code, std::string_view message) {
  switch (code & 0xFF) {
    case SQLITE_CONSTRAINT:
      return ConstraintMessage(code, message);
    case SQLITE_MISMATCH:
      return "El tipo del valor no es el del campo.";
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return "La base está ocupada: otro programa la está usando. Inténtelo de nuevo en un momento.";
    case SQLITE_READONLY:
      return "La base es de solo lectura: no se puede modificar.";
    case SQLITE_FULL:
      return "No queda espacio en el disco para guardar los cambios en la base.";
    case SQLITE_CORRUPT:
      return "El archivo de la base está dañado.";
    case SQLITE_NOTADB:
      return "El archivo no es una base de datos que este programa pueda leer.";
    case SQLITE_CANTOPEN:
      return "No se puede abrir el archivo de la base.";
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return "No hay permiso para usar el archivo de la base.";
    case SQLITE_IOERR:
      return "Error al leer o escribir el archivo de la base.";
    case SQLITE_NOMEM:
      return "No hay memoria suficiente.";
    case SQLITE_TOOBIG:
      return "La sentencia o uno de sus valores es demasiado grande.";
    case SQLITE_INTERRUPT:
      return "La sentencia fue interrumpida.";
    default:
      return StatementMessage(message);
  }
}

}  // namespace engine_sqlite
