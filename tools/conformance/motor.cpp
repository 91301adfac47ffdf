#include "conformance/motor.h"

#include <stdexcept>

#include "engine_sqlite/sqlite_connection.h"

namespace conformance {
namespace {

class MotorSqlite final : public Motor {
 public:
  std::unique_ptr<db::Connection> BaseNueva(const Ajustes& ajustes) override {
    engine_sqlite::Opciones opciones;
    opciones.reloj = ajustes.reloj;
    opciones.locale = ajustes.locale;
    opciones.comodines_dao = ajustes.comodines_dao;
    opciones.orden = ajustes.orden;
    return engine_sqlite::Abrir(":memory:", opciones);
  }
};

}  // namespace

std::unique_ptr<Motor> MotorPorNombre(std::string_view nombre) {
  if (nombre == "sqlite") return std::make_unique<MotorSqlite>();
  if (nombre == "mdb" || nombre == "odbc")
    throw std::runtime_error("the engine '" + std::string(nombre) + "' is not built into this program");
  throw std::invalid_argument("no engine is called '" + std::string(nombre) + "'");
}

}  // namespace conformance
