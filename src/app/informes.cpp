#include "app/informes.h"

#include "app/vista.h"
#include "base/file.h"
#include "base/text.h"
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

bool Informes::EsInforme(const std::string& ruta) {
  const std::string chica = base::LowerCase(ruta);
  return base::EndsWith(chica, ".csv") || base::EndsWith(chica, ".html") || base::EndsWith(chica, ".htm");
}

informe::DatosInforme Informes::DatosDelInforme() const {
  informe::DatosInforme datos;
  datos.archivo = base::NameOf(e_.txtRuta.text);
  datos.mes = e_.mes;
  if (const formula::ItemLista* tipo = e_.tipos.cmbLiquidaciones.Elegido()) datos.liquidacion = tipo->texto;
  datos.simulado = e_.simulada;
  datos.error = e_.importacion.error;
  datos.lineas = Lineas();
  datos.cambios = e_.cantidades;
  datos.totales = e_.importacion.totales;
  for (const auto& total : datos.totales) datos.nombres[total.concepto] = NombreDeTotal(e_, total);
  return datos;
}

Escritura Informes::GuardarInforme(const std::string& ruta) const {
  Escritura escrita;
  if (!EsInforme(ruta)) {
    escrita.motivo = "El informe '" + ruta + "' tiene que terminar en .csv o .html";
    return escrita;
  }
  const informe::DatosInforme datos = DatosDelInforme();
  escrita.lineas = datos.lineas.size();
  const bool tabla = base::EndsWith(base::LowerCase(ruta), ".csv");
  escrita.motivo = Guardar(ruta, tabla ? informe::InformeCsv(datos) : informe::InformeHtml(datos));
  return escrita;
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
