// The ODBC engine over a driver that speaks the dialect: the driver of the tests, with the embedded engine
// behind it. What the engine puts around a driver's words is taken off, so that the cases compare those.
#include "engine.h"
#include "engine_odbc/embedded_motor.h"
#include "engine_odbc/odbc_connection.h"
#include "support/temp_folder.h"

namespace pruebas {
namespace {

// The driver asks for its database by a name alone.
const Deseos* deseos_de_la_base = nullptr;

class SinFrase final : public db::Connection {
 public:
  explicit SinFrase(std::unique_ptr<db::Connection> base) : base_(std::move(base)) {}

  bool Abierta() const override { return base_->Abierta(); }
  void Cerrar() override { base_->Cerrar(); }
  db::Recordset Ejecutar(std::string_view sql) override {
    return Probar([&] { return base_->Ejecutar(sql); });
  }
  db::Recordset Consultar(std::string_view sql) override {
    return Probar([&] { return base_->Consultar(sql); });
  }
  std::int64_t FilasAfectadas() const override { return base_->FilasAfectadas(); }
  void BeginTrans() override { base_->BeginTrans(); }
  void CommitTrans() override { base_->CommitTrans(); }
  void RollbackTrans() override { base_->RollbackTrans(); }
  bool EnTransaccion() const override { return base_->EnTransaccion(); }
  void SetSavepoint() override { base_->SetSavepoint(); }
  void RollbackToSavepoint() override { base_->RollbackToSavepoint(); }
  void ReleaseSavepoint() override { base_->ReleaseSavepoint(); }

 private:
  template <typename Paso>
  static db::Recordset Probar(Paso&& paso) {
    constexpr std::string_view kFrase = "La base no pudo ejecutar la sentencia: ";
    try {
      return paso();
    } catch (const db::Error& e) {
      if (e.Descripcion().rfind(kFrase, 0) != 0) throw;
      std::string texto = e.Descripcion().substr(kFrase.size());
      int numero = 0;  // in front, in brackets
      if (const std::size_t fin = texto.find("] "); texto[0] == '[' && fin != std::string::npos) {
        numero = std::stoi(texto.substr(1));
        texto = texto.substr(fin + 2);
      }
      throw db::Error(texto, numero);
    }
  }

  std::unique_ptr<db::Connection> base_;
};

class BaseOdbc final : public BaseDePrueba {
 public:
  explicit BaseOdbc(const Deseos& deseos) : deseos_(deseos) { Reabrir(); }
  db::Connection& Conexion() override { return *conexion_; }
  void Reabrir() override {
    conexion_.reset();
    deseos_de_la_base = &deseos_;
    conexion_ = std::make_unique<SinFrase>(
        engine_odbc::Abrir("Driver=" IDM_ODBC_PRUEBA ";Motor=" + carpeta_.Ruta("base.sqlite")));
  }

 private:
  support::CarpetaTemporal carpeta_;
  Deseos deseos_;
  std::unique_ptr<db::Connection> conexion_;
};

}  // namespace

std::unique_ptr<BaseDePrueba> Crear(const Deseos& deseos) { return std::make_unique<BaseOdbc>(deseos); }

}  // namespace pruebas

extern "C" falso::Motor* CrearMotorDePrueba(const char16_t* nombre) {
  const pruebas::Deseos& d = *pruebas::deseos_de_la_base;
  engine_sqlite::Opciones opciones;
  opciones.crear = true;
  opciones.reloj = d.reloj;
  opciones.locale = d.locale;
  opciones.orden = d.orden;
  opciones.comodines_dao = d.comodines_dao;
  return new falso::MotorEmbebido(base::DeUtf16(nombre), opciones);
}
