// What an engine gives the suite: a new base of its own, to be filled by the cases. Each engine's program has
// one file that defines Crear.
#pragma once

#include <memory>

#include "base/locale.h"
#include "base/sort_order.h"
#include "db/connection.h"
#include "ports/clock.h"

namespace pruebas {

struct Deseos {
  const ports::Clock* reloj = nullptr;
  const base::Locale* locale = nullptr;
  base::Orden orden = base::Orden::EspanolModerno;
  bool comodines_dao = false;
};

class BaseDePrueba {
 public:
  virtual ~BaseDePrueba() = default;
  virtual db::Connection& Conexion() = 0;
  // Closes it, and opens it again with what it holds.
  virtual void Reabrir() = 0;
};

std::unique_ptr<BaseDePrueba> Crear(const Deseos& deseos);

}  // namespace pruebas
