#include "engine.h"
#include "engine_sqlite/sqlite_connection.h"
#include "support/temp_folder.h"

namespace pruebas {
namespace {

class BaseSqlite final : public BaseDePrueba {
 public:
  explicit BaseSqlite(const Deseos& deseos) {
    opciones_.crear = true;
    opciones_.reloj = deseos.reloj;
    opciones_.locale = deseos.locale;
    opciones_.orden = deseos.orden;
    opciones_.comodines_dao = deseos.comodines_dao;
    conexion_ = engine_sqlite::Abrir(carpeta_.Ruta("base.sqlite"), opciones_);
  }
  db::Connection& Conexion() override { return *conexion_; }
  void Reabrir() override {
    conexion_.reset();
    conexion_ = engine_sqlite::Abrir(carpeta_.Ruta("base.sqlite"), opciones_);
  }

 private:
  support::CarpetaTemporal carpeta_;
  engine_sqlite::Opciones opciones_;
  std::unique_ptr<db::Connection> conexion_;
};

}  // namespace

std::unique_ptr<BaseDePrueba> Crear(const Deseos& deseos) { return std::make_unique<BaseSqlite>(deseos); }

}  // namespace pruebas
