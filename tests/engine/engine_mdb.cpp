#include "engine.h"
#include "engine_mdb/mdb_connection.h"
#include "support/temp_folder.h"

namespace pruebas {
namespace {

std::uint16_t LcidDe(base::Orden orden) {
  if (orden == base::Orden::General) return 1033;
  return orden == base::Orden::EspanolTradicional ? 1034 : 3082;
}

class BaseMdb final : public BaseDePrueba {
 public:
  explicit BaseMdb(const Deseos& deseos) {
    opciones_.reloj = deseos.reloj;
    opciones_.locale = deseos.locale;
    opciones_.comodines_dao = deseos.comodines_dao;
    conexion_ = engine_mdb::Crear(carpeta_.Ruta("base.mdb"), opciones_, LcidDe(deseos.orden));
  }
  db::Connection& Conexion() override { return *conexion_; }
  void Reabrir() override {
    conexion_.reset();
    conexion_ = engine_mdb::Abrir(carpeta_.Ruta("base.mdb"), opciones_);
  }

 private:
  support::CarpetaTemporal carpeta_;
  engine_mdb::Opciones opciones_;
  std::unique_ptr<db::Connection> conexion_;
};

}  // namespace

std::unique_ptr<BaseDePrueba> Crear(const Deseos& deseos) { return std::make_unique<BaseMdb>(deseos); }

}  // namespace pruebas
