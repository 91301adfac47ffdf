#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/disk_file.h"
#include "base/encoding.h"
#include "base/file.h"
#include "base/text.h"
#include "settings/config_file.h"

namespace settings {
namespace {

// By calls that say what fails.
std::string LeerConMotivo(std::string_view ruta) {
  const auto archivo = base::SystemDisk().Open(ruta, base::FileMode::Read);
  std::string bytes;
  std::vector<std::uint8_t> tramo(std::size_t{1} << 16);
  for (;;) {
    const std::size_t leidos = archivo->Read(bytes.size(), tramo);
    bytes.append(tramo.begin(), tramo.begin() + static_cast<std::ptrdiff_t>(leidos));
    if (leidos < tramo.size()) break;
  }
  return bytes;
}

}  // namespace

std::string ConCrLf(std::string_view texto) {
  std::string salida;
  salida.reserve(texto.size());
  for (std::size_t i = 0; i < texto.size(); ++i) {
    if (texto[i] != '\r' && texto[i] != '\n') {
      salida += texto[i];
      continue;
    }
    if (texto[i] == '\r' && i + 1 < texto.size() && texto[i + 1] == '\n') ++i;
    salida += base::kCrLf;
  }
  return salida;
}

Ajustes LeerAjustes(std::string_view ruta) {
  Ajustes ajustes;
  try {
    ajustes.texto = ConCrLf(base::FromCp1252(LeerConMotivo(ruta)));
    ajustes.estado = EstadoAjustes::Leido;
  } catch (const base::DiskError& e) {
    if (e.Fault() != base::DiskFault::NotFound) {
      ajustes.estado = EstadoAjustes::Ilegible;
      ajustes.motivo = e.Description() + " (" + std::string(ruta) + ")";
    }
  }
  return ajustes;
}

bool GuardarAjustes(std::string_view ruta, std::string_view texto) {
  // A folder that may be written in lets a file be replaced that may not be read.
  if (LeerAjustes(ruta).estado == EstadoAjustes::Ilegible) return false;
  return base::WriteWholeFile(ruta, base::ToCp1252(ConCrLf(texto)));
}

}  // namespace settings
