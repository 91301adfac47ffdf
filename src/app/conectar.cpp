#include "app/conector.h"
#include "app/programa.h"

namespace app {
void Programa::Conectar(std::string& referencia) {
  if (sesion_.Abierta()) sesion_.conexion->Cerrar();
  Conexion nueva = AbrirReferencia(referencia, puertos_.reloj);
  sesion_.conexion = std::move(nueva.conexion);
  sesion_.id_Usuario = nueva.id_Usuario;
  e_.motivo_base = std::move(nueva.motivo);
  if (!sesion_.Abierta()) return;
  if (arranque_.una_transaccion && !Comenzar()) return;
  ConLaBase([&] { LeerTablas(kEmpresa | kTipos | kTablas); });
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

// Without the company every statement of an import would run on company 0, which is nobody's: an empty table
// and a field that is no value of its kind are read no better than a missing table.
void Programa::LeerEmpresa() {
  sesion_.TipoConstruccion = false;
  sesion_.LiqAgrup = false;
  e_.motivo_empresa.clear();
  const auto paso = [&](const char* donde, const std::function<void()>& leer) {
    return base::ErrorIgnorado(donde, &errores_, [&] {
      try {
        leer();
      } catch (const base::Error& e) {
        if (e_.motivo_empresa.empty()) e_.motivo_empresa = e.Descripcion();
        throw;
      }
    });
  };
  db::Recordset rs;
  const bool hay = paso("Conectar: empresa", [&] {
    rs = sesion_.conexion->Ejecutar("Select TipoConstruccion, LiqAgrup, idEmpresa From Empresa");
    if (rs.Vacio()) throw db::Error("La tabla Empresa no tiene ninguna fila.");
  });
  if (!hay) return;
  // Several companies: always the first row of this unordered query. One field that cannot be read does not
  // take the others along.
  paso("Conectar: TipoConstruccion", [&] { sesion_.TipoConstruccion = rs.En(0, 0).Booleano(); });
  paso("Conectar: LiqAgrup", [&] { sesion_.LiqAgrup = rs.En(1, 0).Booleano(); });
  paso("Conectar: idEmpresa", [&] { sesion_.idEmpresa = rs.En(2, 0).Entero(); });
}

}  // namespace app
