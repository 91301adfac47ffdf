// The failures of SQLite in the operator's words.
#include <array>
#include <cstddef>

#include "engine_sqlite/mirror.h"
#include "engine_sqlite/sqlite_internal.h"

namespace engine_sqlite {
namespace {

// The text after `prefijo` when `mensaje` starts with it, else nothing.
bool Tras(std::string_view mensaje, std::string_view prefijo, std::string_view& resto) {
  if (mensaje.substr(0, prefijo.size()) != prefijo) return false;
  resto = mensaje.substr(prefijo.size());
  return true;
}

// "tabla.columna" of a constraint's message.
void PartirNombre(std::string_view nombre, std::string& tabla, std::string& columna) {
  const std::size_t punto = nombre.find('.');
  if (punto == std::string_view::npos) {
    columna = nombre;
    return;
  }
  tabla = nombre.substr(0, punto);
  columna = nombre.substr(punto + 1);
}

// "T.a, T.b" as the table and "a, b"; "index 'i'" leaves both empty.
void PartirLista(std::string_view lista, std::string& tabla, std::string& columnas) {
  if (lista.substr(0, 6) == "index ") return;
  while (!lista.empty()) {
    const std::size_t coma = lista.find(", ");
    std::string columna;
    PartirNombre(lista.substr(0, coma), tabla, columna);
    if (!columnas.empty()) columnas += ", ";
    columnas += columna;
    lista = coma == std::string_view::npos ? std::string_view() : lista.substr(coma + 2);
  }
}

// The conditions that a CREATE TABLE of the dialect gives its columns, by the name in the message. A mirror
// gives its own conditions their whole text as name (see mirror.h).
bool DeColumna(std::string_view nombre, std::string& texto) {
  if (std::string_view propio; Tras(nombre, kTextoPropio, propio)) {
    texto = propio;
    return true;
  }
  struct Regla {
    std::string_view prefijo, antes, despues;
  };
  constexpr std::array kReglas = {
      Regla{"jet_largo.", "El texto es demasiado largo para el campo ", "."},
      Regla{"jet_rango.", "El número no cabe en el campo ", "."},
      Regla{"jet_nulo.", "El campo ", " pertenece a un índice que no admite valores vacíos."},
  };
  for (const Regla& r : kReglas) {
    std::string_view columna;
    if (!Tras(nombre, r.prefijo, columna)) continue;
    texto = r.antes;
    texto += columna;
    texto += r.despues;
    return true;
  }
  return false;
}

std::string DeRestriccion(int codigo, std::string_view mensaje) {
  std::string_view resto;
  std::string tabla, columnas, texto;
  if (DeColumna(mensaje, texto)) return texto;
  if (Tras(mensaje, "UNIQUE constraint failed: ", resto)) {
    PartirLista(resto, tabla, columnas);
    texto = "Ya existe un registro con el mismo valor";
    if (!columnas.empty()) texto += " en " + columnas;
    if (!tabla.empty()) texto += " de la tabla " + tabla;
    return texto + ".";
  }
  if (Tras(mensaje, "NOT NULL constraint failed: ", resto)) {
    PartirNombre(resto, tabla, columnas);
    return "El campo " + columnas + " de la tabla " + tabla + " es obligatorio: no puede quedar vacío.";
  }
  if (Tras(mensaje, "CHECK constraint failed: ", resto)) {
    if (DeColumna(resto, texto)) return texto;
    return "El valor no es válido para el campo: no cabe en él o no cumple su condición (" +
           std::string(resto) + ").";
  }
  if (codigo == SQLITE_CONSTRAINT_FOREIGNKEY)
    return "El registro depende de otra tabla: falta el registro relacionado o hay registros que lo usan.";
  if (codigo == SQLITE_CONSTRAINT_DATATYPE || Tras(mensaje, "cannot store ", resto))
    return "El tipo del valor no es el del campo.";
  return "El cambio no cumple una condición de la tabla (" + std::string(mensaje) + ").";
}

struct Frase {
  std::string_view ingles;  // how SQLite's text starts
  std::string_view antes;   // the Spanish text before the name that follows
  std::string_view despues;
};

constexpr std::array kFrases = {
    Frase{"no such table: ", "No existe la tabla ", "."},
    Frase{"no such column: ", "No existe el campo ", "."},
    Frase{"no such index: ", "No existe el índice ", "."},
    Frase{"no such view: ", "No existe la consulta ", "."},
    Frase{"no such function: ", "No existe la función ", "."},
    Frase{"ambiguous column name: ", "El campo ", " está en más de una tabla: indique de cuál."},
    Frase{"duplicate column name: ", "La tabla ya tiene el campo ", "."},
    Frase{"misuse of aggregate: ", "No se puede usar la función de totales ", " ahí."},
    Frase{"too many terms in compound SELECT", "La sentencia une demasiadas consultas", "."},
    Frase{"too many columns", "La sentencia tiene demasiados campos", "."},
    Frase{"variable number must be ", "La sentencia tiene demasiados valores", "."},
    Frase{"too many SQL variables", "La sentencia tiene demasiados valores", "."},
    Frase{"too many arguments on function ", "Demasiados argumentos en la función ", "."},
    Frase{"Expression tree is too large", "La sentencia es demasiado larga o anidada", "."},
    Frase{"parser stack overflow", "La sentencia es demasiado larga o anidada", "."},
    Frase{"at most ", "La sentencia usa demasiadas tablas", "."},
    Frase{"object name reserved for internal use: ", "El nombre ", " está reservado."},
    Frase{"integer overflow", "Desbordamiento", "."},
    Frase{"cannot start a transaction within a transaction", "Ya hay una transacción abierta", "."},
};

// An index of table t is t.i in the file.
std::string_view NombreDeIndice(std::string_view nombre) {
  const std::size_t punto = nombre.rfind('.');
  return punto == std::string_view::npos ? nombre : nombre.substr(punto + 1);
}

// "table X already exists" and the like have the name in the middle.
bool NombreYaExiste(std::string_view mensaje, std::string& texto) {
  constexpr std::string_view kFinal = " already exists";
  if (mensaje.size() <= kFinal.size() || mensaje.substr(mensaje.size() - kFinal.size()) != kFinal)
    return false;
  const std::string_view cabeza = mensaje.substr(0, mensaje.size() - kFinal.size());
  std::string_view nombre;
  if (Tras(cabeza, "table ", nombre)) {
    texto = "La tabla " + std::string(nombre) + " ya existe.";
  } else if (Tras(cabeza, "index ", nombre)) {
    texto = "El índice " + std::string(NombreDeIndice(nombre)) + " ya existe.";
  } else {
    return false;
  }
  return true;
}

std::string DeSentencia(std::string_view mensaje) {
  std::string texto;
  if (DeColumna(mensaje, texto)) return texto;
  if (NombreYaExiste(mensaje, texto)) return texto;
  for (const Frase& f : kFrases) {
    std::string_view resto;
    if (!Tras(mensaje, f.ingles, resto)) continue;
    texto = f.antes;
    if (f.antes.back() == ' ') texto += f.ingles == "no such index: " ? NombreDeIndice(resto) : resto;
    texto += f.despues;
    return texto;
  }
  return "La base no pudo ejecutar la sentencia (" + std::string(mensaje) + ").";
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

std::string DescripcionDe(int codigo, std::string_view mensaje) {
  switch (codigo & 0xFF) {
    case SQLITE_CONSTRAINT:
      return DeRestriccion(codigo, mensaje);
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
      return DeSentencia(mensaje);
  }
}

}  // namespace engine_sqlite
