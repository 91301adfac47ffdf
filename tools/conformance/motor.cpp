#include "conformance/motor.h"

#include <filesystem>
#include <random>
#include <stdexcept>

#include "engine_sqlite/sqlite_connection.h"
#ifdef IDM_MOTOR_MDB
#include "engine_mdb/mdb_connection.h"
#endif
#ifdef IDM_MOTOR_ODBC
#include "engine_odbc/odbc_connection.h"
#endif

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

#ifdef IDM_MOTOR_MDB

// A folder for the files of one run, gone with it.
class Carpeta {
 public:
  Carpeta() {
    std::random_device azar;
    ruta_ = std::filesystem::temp_directory_path() / ("idm_conformance_" + std::to_string(azar()));
    std::filesystem::create_directory(ruta_);
  }
  ~Carpeta() {
    std::error_code sin_importancia;
    std::filesystem::remove_all(ruta_, sin_importancia);
  }
  Carpeta(const Carpeta&) = delete;
  Carpeta& operator=(const Carpeta&) = delete;
  std::string Nueva() {  // in UTF-8
    const auto ruta = (ruta_ / ("base" + std::to_string(++cuantas_) + ".mdb")).u8string();
    return {ruta.begin(), ruta.end()};
  }

 private:
  std::filesystem::path ruta_;
  int cuantas_ = 0;
};

std::unique_ptr<db::Connection> CrearMdb(const std::string& ruta, const Ajustes& ajustes) {
  engine_mdb::Opciones opciones;
  opciones.reloj = ajustes.reloj;
  opciones.locale = ajustes.locale;
  opciones.comodines_dao = ajustes.comodines_dao;
  return engine_mdb::Crear(ruta, opciones, base::LanguageOf(ajustes.orden));
}

class MotorMdb final : public Motor {
 public:
  std::unique_ptr<db::Connection> BaseNueva(const Ajustes& ajustes) override {
    return CrearMdb(carpeta_.Nueva(), ajustes);
  }

 private:
  Carpeta carpeta_;
};

#ifdef IDM_MOTOR_ODBC
// Files of our own making, opened by the Access driver, whose locale and clock are the machine's.
class MotorOdbc final : public Motor {
 public:
  MotorOdbc() {
    if (!engine_odbc::HayDriverDeAccess())
      throw std::runtime_error(
          "the engine 'odbc' needs a driver for Access files, and none is installed here");
  }
  std::unique_ptr<db::Connection> BaseNueva(const Ajustes& ajustes) override {
    const std::string ruta = carpeta_.Nueva();
    CrearMdb(ruta, ajustes)->Cerrar();
    return engine_odbc::Abrir(engine_odbc::CadenaParaArchivo(ruta));
  }

 private:
  Carpeta carpeta_;
};
#endif
#endif

}  // namespace

std::unique_ptr<Motor> MotorPorNombre(std::string_view nombre) {
  if (nombre == "sqlite") return std::make_unique<MotorSqlite>();
#ifdef IDM_MOTOR_MDB
  if (nombre == "mdb") return std::make_unique<MotorMdb>();
#endif
#ifdef IDM_MOTOR_ODBC
  if (nombre == "odbc") return std::make_unique<MotorOdbc>();
#endif
  if (nombre == "mdb" || nombre == "odbc")
    throw std::runtime_error("the engine '" + std::string(nombre) + "' is not built into this program");
  throw std::invalid_argument("no engine is called '" + std::string(nombre) + "'");
}

}  // namespace conformance
