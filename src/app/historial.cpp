#include "app/historial.h"

#include "base/sha256.h"
#include "corridas/decidir.h"

namespace app {

Historial::Historial(Contexto& contexto, const Partes& partes)
    : c_(contexto), e_(contexto.estado), p_(partes) {}

// Only a transaction of our own keeps others from being in the middle of the run that is decided. A base that
// gives none (it may only be read, or another program writes) leaves what is pending as it is.
std::vector<corridas::Resumen> Historial::Leer() {
  const corridas::LugarDelRegistro lugar = p_.base.LugarDelRegistro();
  std::vector<corridas::Resumen> corridas = corridas::LeerRegistro(lugar);
  bool pendiente = false;
  for (const corridas::Resumen& r : corridas)
    pendiente = pendiente || r.estado == corridas::EstadoCorrida::Pendiente;
  if (!pendiente) return corridas;
  db::Connection& conexion = *p_.base.Sesion().conexion;
  const bool ajena = conexion.InTransaction();
  if (!ajena && !base::AnyErrorNoted("historial", nullptr, [&] { conexion.BeginTrans(); })) return corridas;
  base::AnyErrorNoted("historial", &c_.errores,
                      [&] { corridas = corridas::DecidirPendientes(p_.base.Sesion(), lugar, nullptr); });
  if (!ajena) base::AnyErrorNoted("historial", &c_.errores, [&] { conexion.RollbackTrans(); });
  return corridas;
}

Historial::Lista Historial::Listar() {
  Lista lista;
  if (!p_.base.Sesion().Abierta()) {
    lista.motivo = "La Base no está Abierta";
    return lista;
  }
  try {
    for (corridas::Resumen& r : Leer())
      if (r.idEmpresa == p_.base.Sesion().idEmpresa) lista.corridas.push_back(std::move(r));
  } catch (const base::Error& e) {
    lista.motivo = e.Description();
  }
  return lista;
}

Historial::Deshecha Historial::Deshacer(std::optional<std::uint32_t> numero) {
  Deshecha d;
  if (p_.tareas.EnCurso()) {
    d.motivo = "Hay una carga o una importación en curso";
    return d;
  }
  if (!p_.base.Sesion().Abierta()) {
    d.motivo = "La Base no está Abierta";
    return d;
  }
  p_.tareas.Empezar(Tarea::Importacion);
  try {
    d.anulacion =
        corridas::Anular(p_.base.Sesion(), p_.base.LugarDelRegistro(), numero, p_.base.CorridaNueva());
  } catch (const base::Error& e) {
    d.motivo = e.Description();
  }
  p_.tareas.Terminado();
  p_.base.VerSoloLectura();
  if (d.anulacion.numero != 0) p_.tareas.Pedir(kTablas);
  return d;
}

std::vector<corridas::ImportadaAntes> Historial::YaImportado(std::string& motivo) {
  motivo.clear();
  if (!p_.base.Sesion().Abierta() || e_.filas.empty()) return {};
  try {
    const std::vector<corridas::Resumen> corridas = Leer();
    if (corridas.empty()) return {};
    return corridas::BuscarRepetidas(p_.base.LugarDelRegistro(), corridas, p_.base.Sesion().idEmpresa, e_.mes,
                                     base::Sha256(e_.archivo.Bytes()), corridas::LineasDe(e_.filas, false));
  } catch (const base::Error& e) {
    motivo = "No se puede saber si este archivo ya se importó: " + e.Description();
    return {};
  }
}

std::string Historial::EstadoDe(const corridas::Resumen& r) {
  if (r.anulada_por != 0)
    return std::string(r.conservadas > 0 ? "deshecha en parte" : "deshecha") + " por la " +
           std::to_string(r.anulada_por);
  switch (r.estado) {
    case corridas::EstadoCorrida::Pendiente:
      return "pendiente: no se pudo ver en la base si llegó a hacerse";
    case corridas::EstadoCorrida::Hecha:
      return r.clase == corridas::Clase::Anulacion ? "deshizo la " + std::to_string(r.anula) : "hecha";
    case corridas::EstadoCorrida::NoHecha:
      return "no llegó a hacerse";
    case corridas::EstadoCorrida::Indecisa:
      break;
  }
  return "no se sabe si llegó a hacerse: las filas cambiaron después";
}

std::string Historial::TextoDe(const corridas::FilaConservada& f) {
  std::string texto = f.tabla + ", " + f.clave;
  if (f.id_Contrato != 0) texto += ", contrato " + std::to_string(f.id_Contrato);
  if (f.concepto != 0)
    texto += f.concepto >= 1000 && f.tabla == "DatosUsuTablas"
                 ? ", tabla de usuario " + std::to_string(f.concepto - 1000)
                 : ", concepto " + std::to_string(f.concepto);
  return texto + ": " + f.motivo;
}

}  // namespace app
