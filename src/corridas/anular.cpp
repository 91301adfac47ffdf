#include "corridas/anular.h"

#include "corridas/decidir.h"
#include "db/connection.h"

namespace corridas {
namespace {

std::string Numero(const Resumen& r) { return "La corrida " + std::to_string(r.numero); }

const Resumen& Elegir(const std::vector<Resumen>& corridas, std::int64_t idEmpresa,
                      std::optional<std::uint32_t> numero) {
  const Resumen* elegida = nullptr;
  for (const Resumen& r : corridas) {
    if (numero ? r.numero == *numero
               : r.idEmpresa == idEmpresa && r.clase == Clase::Importacion &&
                     r.estado == EstadoCorrida::Hecha && r.anulada_por == 0)
      elegida = &r;
  }
  if (elegida == nullptr)
    throw base::Error(numero
                          ? "No hay una corrida " + std::to_string(*numero) + " en el historial de esta base"
                          : "No hay ninguna corrida para deshacer en el historial de esta base");
  const Resumen& r = *elegida;
  if (r.idEmpresa != idEmpresa) throw base::Error(Numero(r) + " es de otra empresa");
  if (r.clase == Clase::Anulacion)
    throw base::Error(Numero(r) + " deshizo otra: para rehacerla importe de nuevo el archivo");
  if (r.estado == EstadoCorrida::NoHecha)
    throw base::Error(Numero(r) + " no llegó a hacerse: no hay qué deshacer");
  if (r.anulada_por != 0)
    throw base::Error(Numero(r) + " ya se deshizo, en la corrida " + std::to_string(r.anulada_por));
  return r;
}

Anulacion Deshacer(const sesion::DbSession& sesion, const LugarDelRegistro& lugar,
                   std::optional<std::uint32_t> numero, Resumen datos) {
  if (!lugar.disco->Exists(lugar.ruta))
    throw base::Error("No hay ninguna corrida para deshacer en el historial de esta base");
  Apunte apunte(lugar, false);
  const std::vector<Resumen> corridas = DecidirPendientes(sesion, lugar, &apunte);
  Anulacion a;
  a.corrida = Elegir(corridas, sesion.idEmpresa, numero);
  const Foto antes = Foto::Tomar(sesion, a.corrida.mes);
  a.anulada = DeshacerFilas(sesion, apunte.Leer(a.corrida.numero));
  if (a.anulada.deshechas == 0 && !a.anulada.conservadas.empty()) {
    sesion.conexion->RollbackTrans();
    return a;
  }
  const Foto despues = Foto::Tomar(sesion, a.corrida.mes);
  datos.clase = Clase::Anulacion;
  datos.anula = a.corrida.numero;
  datos.idEmpresa = sesion.idEmpresa;
  datos.mes = a.corrida.mes;
  datos.liquidacion = a.corrida.liquidacion;
  datos.archivo = a.corrida.archivo;
  datos.conservadas = a.anulada.conservadas.size();
  datos.antes = antes.Huella();
  datos.despues = despues.Huella();
  Corrida propia{std::move(datos), {}, Diferencia(antes, despues)};
  Contar(propia.cambios, propia.resumen);
  a.numero = apunte.Anotar(std::move(propia));
  sesion.conexion
      ->CommitTrans();  // one that fails leaves a pending record, and the base is asked the next time
  base::ErrorSink errores;
  if (!base::AnyErrorNoted("registro de corridas", &errores,
                           [&] { apunte.Marcar(a.numero, EstadoCorrida::Hecha); }))
    a.aviso = errores.back().description;
  return a;
}

}  // namespace

Anulacion Anular(const sesion::DbSession& sesion, const LugarDelRegistro& lugar,
                 std::optional<std::uint32_t> numero, Resumen datos) {
  db::Connection& conexion = *sesion.conexion;
  if (!conexion.InTransaction()) conexion.BeginTrans();
  try {
    return Deshacer(sesion, lugar, numero, std::move(datos));
  } catch (const std::exception&) {
    if (conexion.InTransaction()) base::AnyErrorNoted("Deshacer", nullptr, [&] { conexion.RollbackTrans(); });
    throw;
  }
}

}  // namespace corridas
