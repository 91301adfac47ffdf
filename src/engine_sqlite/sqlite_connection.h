// The embedded engine: one SQLite file behind the dialect.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "db/connection.h"
#include "jetsql/sort_order.h"
#include "ports/clock.h"

namespace engine_sqlite {

struct Opciones {
  bool crear = false;  // make the file when there is none (":memory:" needs no flag)
  bool solo_lectura = false;
  bool comodines_dao = false;  // LIKE with * ? # as saved queries of the DAO kind have
  jetsql::Orden orden = jetsql::Orden::EspanolModerno;
  const ports::Clock* reloj = nullptr;  // what Date() and Now() ask; the system's clock when null
};

// Opens the file (path in UTF-8, or ":memory:"). Throws db::Error with a readable reason.
std::unique_ptr<db::Connection> Abrir(std::string_view ruta, const Opciones& opciones = {});

}  // namespace engine_sqlite
