// The connection component: from a reference to an open connection.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "db/connection.h"
#include "ports/clock.h"

namespace app {

struct Conexion {
  std::unique_ptr<db::Connection> conexion;  // null when it could not be opened
  std::int32_t id_Usuario = 0;               // of ConfBase.cfg
  std::string motivo;                        // why it is null, in Spanish
  std::string archivo;                       // of the base; "" when it is no file that is known of
  std::string origen;                        // of one that is none: what it was opened by
};

// The reference is a path. A file with an SQLite header opens with the embedded engine, an Access file with
// the Access driver of ODBC where there is one, else with the engine of Access files. ConfBase.cfg is a text
// of the settings format; its lines may end in LF alone:
//   Motor       "sqlite", "mdb" or "odbc"; when absent the file's header decides
//   Base        a path, relative to its own folder; for odbc also a connection string (a text with a "=") or
//               the name of a data source
//   Driver      for odbc with a file: the driver's name, when it is not the Access driver
//   Contraseña  of the database; also "Contrasena"
//   Usuario     the id_Usuario written into headers
// Never throws for what a user can cause.
Conexion AbrirReferencia(const std::string& referencia, const ports::Clock& reloj);
// The same base as a copy in memory: all can be written, and nothing of it reaches the file, which is only
// read. None for what is no file of ours to read (a driver's).
Conexion AbrirCopia(const std::string& referencia, const ports::Clock& reloj);

// Why an open base can only be read for now, in Spanish; "" when it can be written, as far as is known, or is
// null.
std::string MotivoSoloLectura(const db::Connection* conexion);

}  // namespace app
