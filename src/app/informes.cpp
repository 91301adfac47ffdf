#include "app/informes.h"

#include "base/file.h"
#include "informe/rechazadas.h"
#include "settings/config_file.h"

namespace app {

std::string Informes::MotivoParaNoEscribir(const std::vector<std::string>& salidas,
                                           const std::vector<std::string>& ademas) const {
  std::vector<std::string> tomadas = {e_.archivo_base, e_.referencia, e_.txtRuta.text};
  if (!c_.arranque.carpeta.empty()) tomadas.push_back(settings::RutaDeAjustes(c_.arranque.carpeta));
  tomadas.insert(tomadas.end(), ademas.begin(), ademas.end());
  for (const std::string& salida : salidas) {
    if (salida.empty()) continue;
    for (const std::string& tomada : tomadas)
      if (!tomada.empty() && base::SameFile(salida, tomada))
        return "No se puede escribir en '" + salida + "': reemplazaría un archivo que se está usando";
    tomadas.push_back(salida);
  }
  return {};
}

std::string Informes::Guardar(const std::string& ruta, const std::string& bytes) const {
  if (base::WritePrivateFile(ruta, bytes, e_.archivo_base)) return {};
  return "No se puede escribir el archivo '" + ruta + "'";
}

// The reasons first: lines without theirs would be half of the answer.
Escritura Informes::GuardarRechazadas(const std::string& ruta) const {
  const informe::Rechazadas r = informe::ReunirRechazadas(e_.archivo, Lineas());
  Escritura escrita;
  escrita.lineas = r.cuantas;
  escrita.motivo = Guardar(RutaDeMotivos(ruta), r.motivos);
  if (escrita.motivo.empty()) escrita.motivo = Guardar(ruta, r.bytes);
  if (escrita.motivo.empty() && !r.se_leen_igual)
    escrita.aviso = "Leídas solas, las líneas de '" + ruta +
                    "' se tomarían por UTF-8 y sus letras acentuadas serían otras: agregue una línea con una "
                    "palabra acentuada, o guárdelo como UTF-8";
  return escrita;
}

}  // namespace app
