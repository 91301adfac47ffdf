// The embedded engine: one SQLite file behind the dialect.
//
// Saved queries live in a table of the file, MSysConsultas, as their dialect text; the translator reads them
// from there. Columns keep the types of the dialect in their declarations (see jetsql/runtime.h).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/locale.h"
#include "base/sort_order.h"
#include "db/connection.h"
#include "ports/clock.h"

namespace engine_sqlite {

struct Opciones {
  bool crear = false;  // make the file when there is none (":memory:" needs no flag)
  bool solo_lectura = false;
  bool comodines_dao = false;                       // LIKE with * ? # as saved queries of the DAO kind have
  base::Orden orden = base::Orden::EspanolModerno;  // of a new file; one that exists keeps its own
  const ports::Clock* reloj = nullptr;              // what Date() and Now() ask; the system's clock when null
  const base::Locale* locale = nullptr;  // of the texts that the dialect makes and reads; espanol() when null
  int espera_ms = 5000;                  // how long to wait for another program that is writing
};

// Opens the file (path in UTF-8, or ":memory:"). Throws db::Error with a readable reason. The clock and the
// locale must outlive the connection.
std::unique_ptr<db::Connection> Abrir(std::string_view ruta, const Opciones& opciones = {});

// What a connection has done, for tests and benchmarks.
struct Contadores {
  std::int64_t ejecuciones = 0;       // statements run
  std::int64_t traducciones = 0;      // texts that went through the translator
  std::int64_t preparaciones = 0;     // SQLite statements compiled
  std::int64_t textos_iguales = 0;    // texts known by heart
  std::int64_t formas_conocidas = 0;  // texts of a known shape
};
// Null for a connection of another engine.
const Contadores* ContadoresDe(const db::Connection& conexion);

}  // namespace engine_sqlite
