#include "base/file.h"
#include "base/text.h"
#include "settings/config_file.h"
#include "settings/config_file_internal.h"

namespace settings {
namespace {

// One line break of each side, no more: a value may hold blank lines of its own.
std::string SinSaltosDeBorde(std::string_view valor) {
  if (base::EndsWith(valor, base::kCrLf)) valor.remove_suffix(base::kCrLf.size());
  if (base::StartsWith(valor, base::kCrLf)) valor.remove_prefix(base::kCrLf.size());
  return std::string(valor);
}

}  // namespace

std::string ValorDeTexto(std::string_view texto_dado, std::string_view clave) {
  const std::string entero = ConCrLf(texto_dado);
  const std::string_view texto = entero;
  if (base::TrimView(clave) == "*") return SinSaltosDeBorde(texto);
  const auto [apertura, cierre] = EtiquetasDe(clave);
  const std::size_t etiqueta = base::Find(texto, apertura, 0, base::Compare::IgnoringCase);
  if (etiqueta == std::string_view::npos) return {};
  const std::size_t desde = etiqueta + apertura.size();
  const std::size_t hasta = base::Find(texto, cierre, desde, base::Compare::IgnoringCase);
  if (hasta == std::string_view::npos) return SinSaltosDeBorde(texto);
  return SinSaltosDeBorde(texto.substr(desde, hasta - desde));
}

std::string LeerConfig(std::string_view ruta, std::string_view clave) {
  base::CreateIfMissing(ruta);
  return ValorDeTexto(LeerAjustes(ruta).texto, clave);
}

std::string RutaDeAjustes(std::string_view carpeta) { return base::JoinPath(carpeta, "ImportDeMarcas.ini"); }

}  // namespace settings
