#include "app/conector.h"
#include "app/programa.h"
#include "base/text.h"

namespace app {
namespace {

// Only a base of the payroll system has the company row.
bool NombraBaseDeLaEmpresa(std::string_view referencia) {
  for (const char* nombre : {"Personal.mdb", "Proyec.mdb", "ConfBase.cfg"})
    if (base::Contiene(referencia, nombre, base::Comparar::SinCaso)) return true;
  return false;
}

}  // namespace

void Programa::Conectar(std::string& referencia) {
  if (sesion_.Abierta()) sesion_.conexion->Cerrar();
  Conexion nueva = AbrirReferencia(referencia, puertos_.reloj);
  sesion_.conexion = std::move(nueva.conexion);
  sesion_.id_Usuario = nueva.id_Usuario;
  e_.motivo_base = std::move(nueva.motivo);
  if (!sesion_.Abierta()) return;
  if (arranque_.una_transaccion && !Comenzar()) return;
  if (!NombraBaseDeLaEmpresa(referencia)) return;
  LeerEmpresa();
  CargarTiposLiquidacion();
  base::ErrorIgnorado("Conectar: tablas de usuario", &errores_,
                      [&] { e_.tablas.CargarTablasUsuario(sesion_, -1); });
}

// Without its transaction the start-up itself would be written for good: the base then counts as not opened.
bool Programa::Comenzar() {
  try {
    sesion_.conexion->BeginTrans();
    return true;
  } catch (const base::Error& e) {
    e_.motivo_base = e.Descripcion();
    sesion_.conexion.reset();
    return false;
  }
}

void Programa::LeerEmpresa() {
  sesion_.TipoConstruccion = false;
  sesion_.LiqAgrup = false;
  db::Recordset rs;
  base::ErrorIgnorado("Conectar: empresa", &errores_, [&] {
    rs = sesion_.conexion->Ejecutar("Select TipoConstruccion, LiqAgrup, idEmpresa From Empresa");
  });
  if (rs.Vacio()) return;
  // Several companies: always the first row of this unordered query. One field that cannot be read does not
  // take the others along.
  base::ErrorIgnorado("Conectar: TipoConstruccion", &errores_,
                      [&] { sesion_.TipoConstruccion = rs.En(0, 0).Booleano(); });
  base::ErrorIgnorado("Conectar: LiqAgrup", &errores_, [&] { sesion_.LiqAgrup = rs.En(1, 0).Booleano(); });
  base::ErrorIgnorado("Conectar: idEmpresa", &errores_, [&] { sesion_.idEmpresa = rs.En(2, 0).Entero(); });
}

}  // namespace app
