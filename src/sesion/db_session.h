// The one database connection of the program and the company that every statement names.
#pragma once

#include <cstdint>
#include <memory>

#include "db/connection.h"
#include "ports/clock.h"

namespace sesion {

struct DbSession {
  std::unique_ptr<db::Connection> conexion;  // null until Conectar
  std::int32_t idEmpresa = 0;
  bool TipoConstruccion = false;        // a construction company
  bool LiqAgrup = false;                // the company liquidates grouped by cost centre
  std::int32_t id_Usuario = 0;          // written into the headers that the program creates
  const ports::Clock* reloj = nullptr;  // never null once the program has started

  bool Abierta() const { return conexion != nullptr && conexion->IsOpen(); }
};

}  // namespace sesion
