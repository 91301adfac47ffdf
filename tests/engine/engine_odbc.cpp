// The ODBC engine over Debian's SQLite driver: the plumbing, and what the two dialects have in common.
#include "engine.h"
#include "engine_odbc/odbc_connection.h"
#include "support/temp_folder.h"

namespace pruebas {
namespace {

class BaseOdbc final : public BaseDePrueba {
 public:
  BaseOdbc() { Reabrir(); }
  db::Connection& Conexion() override { return *conexion_; }
  void Reabrir() override {
    conexion_.reset();
    conexion_ = engine_odbc::Abrir("Driver=" IDM_ODBC_SQLITE ";Database=" + carpeta_.Ruta("base.sqlite"));
  }

 private:
  support::CarpetaTemporal carpeta_;
  std::unique_ptr<db::Connection> conexion_;
};

}  // namespace

// The driver has its own clock, locale and order.
std::unique_ptr<BaseDePrueba> Crear(const Deseos&) { return std::make_unique<BaseOdbc>(); }

}  // namespace pruebas
