#include "app/carpeta_demo.h"

#include "base/error.h"
#include "base/file.h"
#include "demo/demo_base.h"
#include "engine_sqlite/sqlite_connection.h"

namespace app {

CarpetaDemo CrearCarpetaDemo(const std::string& carpeta, base::Fecha mes, const ports::Clock& reloj) {
  if (!base::CrearCarpeta(carpeta)) throw base::Error("No se puede crear la carpeta '" + carpeta + "'");
  const std::string ruta = base::UnirRuta(carpeta, demo::kNombreBase);
  if (base::ExisteArchivo(ruta)) throw base::Error("La base '" + ruta + "' ya existe: no se la reemplaza");
  engine_sqlite::Opciones opciones;
  opciones.crear = true;
  opciones.reloj = &reloj;
  const auto conexion = engine_sqlite::Abrir(ruta, opciones);
  demo::LlenarBase(*conexion, mes);
  conexion->Cerrar();
  for (const demo::ArchivoDemo& archivo : demo::ArchivosDemo(mes)) {
    const std::string destino = base::UnirRuta(carpeta, archivo.nombre);
    if (!base::EscribirArchivo(destino, archivo.bytes))
      throw base::Error("No se puede escribir '" + destino + "'");
  }
  return {base::UnirRuta(carpeta, "ConfBase.cfg"), base::UnirRuta(carpeta, "horas.txt"),
          base::UnirRuta(carpeta, "ImportDeMarcas.ini")};
}

}  // namespace app
