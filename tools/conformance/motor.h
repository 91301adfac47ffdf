// The engines that the tables are run on, each as a maker of fresh bases.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/locale.h"
#include "base/sort_order.h"
#include "db/connection.h"
#include "ports/clock.h"

namespace conformance {

struct Ajustes {
  const base::Locale* locale = nullptr;
  const ports::Clock* reloj = nullptr;
  bool comodines_dao = false;
  base::Orden orden = base::Orden::General;
};

class Motor {
 public:
  virtual ~Motor() = default;
  // An empty base of its own; its file, if it has one, goes when the motor does.
  virtual std::unique_ptr<db::Connection> BaseNueva(const Ajustes& ajustes) = 0;
};

// By name: sqlite, mdb, odbc. Throws std::invalid_argument for another name, std::runtime_error for one that
// was not built into this program or cannot make a base here.
std::unique_ptr<Motor> MotorPorNombre(std::string_view nombre);

}  // namespace conformance
