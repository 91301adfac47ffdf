#include "app/conector_internal.h"
#include "base/file.h"
#include "engine_odbc/odbc_connection.h"

namespace app {

Conexion AbrirOdbc(const OrigenOdbc& origen) {
  Conexion c;
  try {
    const bool es_archivo = base::FileExists(origen.en_disco);
    (es_archivo ? c.archivo : c.origen) = es_archivo ? origen.en_disco : origen.base;
    c.conexion = engine_odbc::Open(
        es_archivo ? engine_odbc::ConnectionStringForFile(origen.en_disco, origen.contrasena, origen.driver)
                   : engine_odbc::ConnectionStringOf(origen.base, origen.contrasena));
  } catch (const base::Error& e) {
    c.motivo = e.Description();
  }
  return c;
}

}  // namespace app
