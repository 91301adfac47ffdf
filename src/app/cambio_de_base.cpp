#include "app/cambio_de_base.h"

#include "base/text.h"

namespace app {

CambioDeBase::CambioDeBase(Contexto& contexto, const Partes& partes)
    : c_(contexto), e_(contexto.estado), p_(partes) {}

bool CambioDeBase::Elegir() {
  if (p_.tareas.EnCurso()) return false;
  return Abrir(c_.puertos.picker.PickFile("Seleccionar la base a ingresar las Horas",
                                          "Bases de Access (*.mdb)|*.mdb", e_.referencia));
}

bool CambioDeBase::Abrir(const std::string& referencia) {
  if (p_.tareas.EnCurso() || base::TrimView(referencia).empty()) return false;
  p_.cierre.Guardar(false);
  const std::string motivo = p_.lecturas.CambiarBase(referencia);
  if (!motivo.empty()) {
    std::string aviso = "Error al abrir la base ubicada en " + referencia;
    aviso.append(base::kCrLf).append(motivo);
    if (p_.base.Sesion().Abierta()) aviso.append(base::kCrLf).append("Sigue abierta " + e_.referencia);
    c_.Avisar(std::move(aviso));
    c_.Cambio();
    return false;
  }
  VaciarGrilla();
  e_.LblEmpresa = "Empresa: " + e_.referencia;
  p_.base.ConLaBase([&] { p_.lecturas.LevantarRelaciones(); });
  if (!e_.txtRuta.text.empty() && e_.fallo_de_base.empty()) p_.lineas.CargarDatos();
  c_.Cambio();
  return true;
}

void CambioDeBase::VaciarGrilla() {
  e_.filas.clear();
  e_.aparte.clear();
  e_.lineas = 0;
  e_.archivo = {};
  e_.procedencia = {};
  e_.importacion = {};
  e_.grilla_a_medias = false;
  ++e_.revision.filas;
}

}  // namespace app
