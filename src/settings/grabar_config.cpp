#include <optional>

#include "base/file.h"
#include "base/text.h"
#include "settings/config_file.h"
#include "settings/config_file_internal.h"

namespace settings {
namespace {

void AgregarSaltoSalvoSi(std::string& texto, bool ya_esta) {
  if (!ya_esta) texto += base::kCrLf;
}

// None when the key has an opening tag that is never closed: what to remove is then unknown.
std::optional<std::string> Reescribir(std::string_view texto_dado, std::string_view clave,
                                      std::string_view valor_dado) {
  const std::string texto = ConCrLf(texto_dado), valor = ConCrLf(valor_dado);
  const auto [apertura, cierre] = EtiquetasDe(clave);
  std::string nuevo;
  const std::size_t desde = base::Find(texto, apertura, 0, base::Compare::IgnoringCase);
  if (desde == std::string_view::npos) {
    nuevo = texto;
    nuevo += base::kCrLf;
  } else {
    const std::size_t hasta = base::Find(texto, cierre, desde, base::Compare::IgnoringCase);
    if (hasta == std::string_view::npos) return std::nullopt;
    const std::string entrada = texto.substr(desde, hasta + cierre.size() - desde);
    // Every entry that reads the same goes, not only the first.
    nuevo = base::Replace(texto, entrada, "", base::Compare::IgnoringCase);
    AgregarSaltoSalvoSi(nuevo, base::EndsWith(nuevo, base::kCrLf));
  }
  nuevo += apertura;
  AgregarSaltoSalvoSi(nuevo, base::StartsWith(valor, base::kCrLf));
  nuevo += valor;
  AgregarSaltoSalvoSi(nuevo, base::EndsWith(valor, base::kCrLf));
  nuevo += cierre;
  if (base::StartsWith(nuevo, base::kCrLf)) nuevo.erase(0, base::kCrLf.size());
  return nuevo;
}

}  // namespace

std::string TextoConValor(std::string_view texto, std::string_view clave, std::string_view valor) {
  auto nuevo = Reescribir(texto, clave, valor);
  return nuevo ? *std::move(nuevo) : std::string(texto);
}

bool GrabarConfig(std::string_view ruta, std::string_view clave, std::string_view valor) {
  base::CreateIfMissing(ruta);
  const Ajustes ajustes = LeerAjustes(ruta);
  if (ajustes.estado != EstadoAjustes::Leido) return false;
  const auto nuevo = Reescribir(ajustes.texto, clave, valor);
  return nuevo && GuardarAjustes(ruta, *nuevo);
}

}  // namespace settings
