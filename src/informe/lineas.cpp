#include "informe/lineas.h"

#include <algorithm>

namespace informe {

std::string_view TextoDe(EstadoDeLinea estado) {
  switch (estado) {
    case EstadoDeLinea::Importada:
      return "importada";
    case EstadoDeLinea::Rechazada:
      return "rechazada";
    case EstadoDeLinea::Filtrada:
      return "filtrada";
    default:
      return "mal_formada";
  }
}

std::vector<Linea> LineasDe(const std::vector<importfile::ImportRow>& filas,
                            const std::vector<importfile::LineaAparte>& aparte) {
  std::vector<Linea> lineas;
  lineas.reserve(filas.size() + aparte.size());
  for (const importfile::ImportRow& fila : filas)
    lineas.push_back({fila.linea,
                      fila.resultado == "OK" ? EstadoDeLinea::Importada : EstadoDeLinea::Rechazada,
                      fila.resultado, &fila.campo, &fila});
  for (const importfile::LineaAparte& linea : aparte) {
    if (linea.mal_formada)
      lineas.push_back({linea.linea, EstadoDeLinea::MalFormada,
                        "Formato incorrecto en la linea " + std::to_string(linea.linea), &linea.campo});
    else
      lineas.push_back({linea.linea, EstadoDeLinea::Filtrada, "Descartada por el filtro", &linea.campo});
  }
  std::sort(lineas.begin(), lineas.end(), [](const Linea& a, const Linea& b) { return a.numero < b.numero; });
  return lineas;
}

Cuentas Contar(const std::vector<Linea>& lineas) {
  Cuentas c;
  c.leidas = lineas.size();
  for (const Linea& l : lineas) {
    switch (l.estado) {
      case EstadoDeLinea::Importada:
        ++c.importadas;
        break;
      case EstadoDeLinea::Rechazada:
        ++c.rechazadas;
        break;
      case EstadoDeLinea::Filtrada:
        ++c.filtradas;
        break;
      case EstadoDeLinea::MalFormada:
        ++c.mal_formadas;
        break;
    }
  }
  return c;
}

std::string EnUnaLinea(std::string_view texto) {
  std::string limpio(texto);
  for (char& c : limpio)
    if (static_cast<unsigned char>(c) < 0x20) c = ' ';
  return limpio;
}

}  // namespace informe
