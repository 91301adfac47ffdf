#include "corridas/decidir.h"

namespace corridas {
namespace {

bool Esta(const std::vector<Fila>& halladas, const std::optional<Fila>& fila) {
  if (!fila) return halladas.empty();
  for (const Fila& f : halladas)
    if (f == *fila) return true;
  return false;
}

}  // namespace

EstadoCorrida Decidir(const Corrida& c, const Foto& ahora) {
  if (ahora.Huella() == c.resumen.despues) return EstadoCorrida::Hecha;
  if (ahora.Huella() == c.resumen.antes) return EstadoCorrida::NoHecha;
  std::size_t como_antes = 0, como_despues = 0;
  for (std::size_t i = 0; i < c.cambios.tablas.size() && i < kCuantasTablas; ++i) {
    const CambiosDeTabla& t = c.cambios.tablas[i];
    const auto tabla = static_cast<Tabla>(i);
    if (t.columnas != ahora.Columnas(tabla)) continue;  // the table was made anew; it tells nothing
    for (const CambioDeFila& f : t.filas) {
      const std::vector<Fila> halladas = ahora.ConClaveDe(tabla, f.Cualquiera());
      if (Esta(halladas, f.despues)) ++como_despues;
      if (Esta(halladas, f.antes)) ++como_antes;
    }
  }
  if (como_despues > 0 && como_antes == 0) return EstadoCorrida::Hecha;
  if (como_antes > 0 && como_despues == 0) return EstadoCorrida::NoHecha;
  return EstadoCorrida::Indecisa;
}

std::vector<Resumen> DecidirPendientes(const sesion::DbSession& sesion, const LugarDelRegistro& lugar,
                                       Apunte* apunte) {
  std::vector<Resumen> corridas = apunte != nullptr ? apunte->Corridas() : LeerRegistro(lugar);
  bool alguna = false;
  for (Resumen& r : corridas) {
    if (r.estado != EstadoCorrida::Pendiente || r.idEmpresa != sesion.idEmpresa) continue;
    const Corrida corrida = apunte != nullptr ? apunte->Leer(r.numero) : LeerCorrida(lugar, r.numero);
    r.estado = Decidir(corrida, Foto::Tomar(sesion, r.mes));
    if (apunte != nullptr) apunte->Marcar(r.numero, r.estado);
    alguna = true;
  }
  if (alguna) VerAnulaciones(corridas);
  return corridas;
}

}  // namespace corridas
