#include "base/disk_file.h"

#include <chrono>
#include <thread>

#include "base/file.h"

namespace base {
namespace {

std::string Texto(std::string_view accion, std::string_view ruta, FallaDisco falla, std::string_view motivo) {
  std::string texto = std::string(accion) + " " + NombreDe(ruta) + ": ";
  switch (falla) {
    case FallaDisco::NoExiste:
      return texto + "no existe";
    case FallaDisco::YaExiste:
      return texto + "ya existe";
    case FallaDisco::SinPermiso:
      return texto + "no hay permiso";
    case FallaDisco::SoloLectura:
      return texto + "el disco es de solo lectura";
    case FallaDisco::EnUso:
      return texto + "otro programa lo tiene en uso";
    case FallaDisco::DiscoLleno:
      return texto + "el disco está lleno";
    case FallaDisco::NoAdmitido:
      return texto + "el disco no lo admite";
    case FallaDisco::Otra:
      break;
  }
  return texto + "falló el disco (" + std::string(motivo) + ")";
}

}  // namespace

ErrorDeDisco::ErrorDeDisco(std::string_view accion, std::string_view ruta, FallaDisco falla,
                           std::string_view motivo)
    : StorageFault(Texto(accion, ruta, falla, motivo)), falla_(falla) {}

bool DiscoDelSistema::Existe(std::string_view ruta) { return ExisteArchivo(ruta); }

void DiscoDelSistema::Esperar(int milisegundos) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milisegundos));
}

}  // namespace base
