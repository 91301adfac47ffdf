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
};

// The reference is a path. A file with an SQLite header opens with the embedded engine; ConfBase.cfg is a
// text of the settings format with the keys Motor ("sqlite"), Base (a path, relative to its own folder) and
// optionally Usuario; its lines may end in LF alone. Never throws for what a user can cause.
Conexion AbrirReferencia(const std::string& referencia, const ports::Clock& reloj);

}  // namespace app
