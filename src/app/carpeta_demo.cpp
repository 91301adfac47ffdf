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
    engine_mdb::Opciones opciones;
    opciones.reloj = &reloj;
    return engine_mdb::Crear(ruta, opciones);
  }
  engine_sqlite::Opciones opciones;
  opciones.crear = true;
  opciones.reloj = &reloj;
  return engine_sqlite::Abrir(ruta, opciones);
}

}  // namespace

CarpetaDemo CrearCarpetaDemo(const std::string& carpeta, base::Fecha mes, const ports::Clock& reloj,
                             demo::Motor motor) {
  if (!base::CrearCarpeta(carpeta)) throw base::Error("No se puede crear la carpeta '" + carpeta + "'");
  // ConfBase.cfg would name another base from then on.
  for (const demo::Motor uno : {demo::Motor::Mdb, demo::Motor::Sqlite}) {
    const std::string vieja = base::UnirRuta(carpeta, demo::NombreDeBase(uno));
    if (base::ExisteArchivo(vieja))
      throw base::Error("La base '" + vieja + "' ya existe: no se la reemplaza");
  }
  const std::string ruta = base::UnirRuta(carpeta, demo::NombreDeBase(motor));
  const auto conexion = BaseNueva(ruta, motor, reloj);
  demo::LlenarBase(*conexion, mes);
  conexion->Cerrar();
  for (const demo::ArchivoDemo& archivo : demo::ArchivosDemo(mes, motor)) {
    const std::string destino = base::UnirRuta(carpeta, archivo.nombre);
    if (!base::EscribirArchivo(destino, archivo.bytes))
      throw base::Error("No se puede escribir '" + destino + "'");
  }
  return {base::UnirRuta(carpeta, "ConfBase.cfg"), base::UnirRuta(carpeta, "horas.txt"),
          base::UnirRuta(carpeta, "ImportDeMarcas.ini")};
}

}  // namespace app
