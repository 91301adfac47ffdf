#include "app/carpeta_demo.h"

#include "base/error.h"
#include "base/file.h"
#include "engine_mdb/mdb_connection.h"
#include "engine_sqlite/sqlite_connection.h"

namespace app {

namespace {

std::unique_ptr<db::Connection> BaseNueva(const std::string& ruta, demo::Motor motor,
                                          const ports::Clock& reloj) {
  if (motor == demo::Motor::Mdb) {
    engine_mdb::Options opciones;
    opciones.clock = &reloj;
    return engine_mdb::Create(ruta, opciones);
  }
  engine_sqlite::Options opciones;
  opciones.create = true;
  opciones.clock = &reloj;
  return engine_sqlite::Open(ruta, opciones);
}

}  // namespace

CarpetaDemo CrearCarpetaDemo(const std::string& carpeta, base::Date mes, const ports::Clock& reloj,
                             demo::Motor motor) {
  if (!base::CreateFolder(carpeta)) throw base::Error("No se puede crear la carpeta '" + carpeta + "'");
  // ConfBase.cfg would name another base from then on.
  for (const demo::Motor uno : {demo::Motor::Mdb, demo::Motor::Sqlite}) {
    const std::string vieja = base::JoinPath(carpeta, demo::NombreDeBase(uno));
    if (base::FileExists(vieja)) throw base::Error("La base '" + vieja + "' ya existe: no se la reemplaza");
  }
  const std::string ruta = base::JoinPath(carpeta, demo::NombreDeBase(motor));
  const auto conexion = BaseNueva(ruta, motor, reloj);
  demo::LlenarBase(*conexion, mes);
  conexion->Close();
  for (const demo::ArchivoDemo& archivo : demo::ArchivosDemo(mes, motor)) {
    const std::string destino = base::JoinPath(carpeta, archivo.nombre);
    if (!base::WriteWholeFile(destino, archivo.bytes))
      throw base::Error("No se puede escribir '" + destino + "'");
  }
  return {base::JoinPath(carpeta, "ConfBase.cfg"), base::JoinPath(carpeta, "horas.txt"),
          base::JoinPath(carpeta, "ImportDeMarcas.ini")};
}

}  // namespace app
