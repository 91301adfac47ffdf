#include "corridas/repetidas.h"

#include <algorithm>
#include <unordered_map>

#include "base/number.h"

namespace corridas {
namespace {

constexpr std::string_view kCuentaHoras = "3";  // the data kind of a quantity

// What names the datum, as the file cut it; persons' names and concepts may change meanwhile.
constexpr importfile::CampoFila kCampos[] = {importfile::kClave, importfile::kCantidad,  importfile::kTipo,
                                             importfile::kValor, importfile::kDatoExtra, importfile::kCC};

LineaImportada LineaDe(const importfile::ImportRow& fila) {
  std::string texto;
  for (const importfile::CampoFila campo : kCampos) CodificarTexto(fila.campo[campo], texto);
  LineaImportada linea;
  linea.huella = HuellaDeTexto(texto);
  if (fila.campo[importfile::kTipoDato] == kCuentaHoras)
    linea.horas = base::NumberFromText(fila.campo[importfile::kCantidad]).value_or(0);
  return linea;
}

std::string Plural(std::uint64_t n, const char* uno, const char* varios) {
  return std::to_string(n) + " " + (n == 1 ? uno : varios);
}

}  // namespace

std::vector<LineaImportada> LineasDe(const std::vector<importfile::ImportRow>& filas, bool solo_importadas) {
  std::vector<LineaImportada> lineas;
  for (const importfile::ImportRow& fila : filas)
    if (!solo_importadas || fila.resultado == "OK") lineas.push_back(LineaDe(fila));
  return lineas;
}

std::vector<ImportadaAntes> BuscarRepetidas(const LugarDelRegistro& lugar,
                                            const std::vector<Resumen>& corridas, std::int64_t idEmpresa,
                                            base::Date mes, std::string_view huella_archivo,
                                            const std::vector<LineaImportada>& lineas) {
  std::vector<ImportadaAntes> repetidas;
  for (const Resumen& r : corridas) {
    const bool en_pie = r.estado != EstadoCorrida::NoHecha && (r.anulada_por == 0 || r.conservadas > 0);
    if (r.clase != Clase::Importacion || r.idEmpresa != idEmpresa || r.mes != mes || r.importadas == 0 ||
        !en_pie)
      continue;
    ImportadaAntes repetida{r, r.huella_archivo == huella_archivo, 0, 0};
    std::unordered_map<std::uint64_t, std::uint64_t> antes;
    for (const LineaImportada& linea : LeerCorrida(lugar, r.numero).lineas) ++antes[linea.huella];
    for (const LineaImportada& linea : lineas) {
      const auto it = antes.find(linea.huella);
      if (it == antes.end() || it->second == 0) continue;
      --it->second;
      ++repetida.lineas;
      repetida.horas += linea.horas;
    }
    const std::uint64_t menor = std::min<std::uint64_t>(lineas.size(), r.importadas);
    if (repetida.archivo_igual || (repetida.lineas > 0 && repetida.lineas * 2 >= menor))
      repetidas.push_back(std::move(repetida));
  }
  return repetidas;
}

std::string TextoDe(const ImportadaAntes& r) {
  const std::string horas = " (" + base::NumberText(base::Round(r.horas, 6)) + " horas)";
  const std::string cuando = "el " + MomentoParaLeer(r.corrida.momento) + " en este mes, en la corrida " +
                             std::to_string(r.corrida.numero);
  if (r.archivo_igual)
    return "Este archivo ya se importó " + cuando + ", de '" + r.corrida.archivo +
           "': " + Plural(r.corrida.importadas, "línea", "líneas") + " (" +
           base::NumberText(base::Round(r.corrida.horas, 6)) + " horas).";
  return Plural(r.lineas, "línea de este archivo ya se importó ",
                "líneas de este archivo ya se importaron ") +
         cuando + ", de '" + r.corrida.archivo + "'" + horas + ".";
}

}  // namespace corridas
