#include <algorithm>
#include <cmath>

#include "base/format.h"
#include "base/number.h"
#include "base/text.h"
#include "informe/informe.h"

namespace informe {
namespace {

constexpr const char* kEstilo = R"(
:root{color-scheme:light dark;--fondo:#fff;--texto:#1b1b1b;--suave:#5a5a5a;--raya:#c9c9c9;--cabeza:#eef1f4;--barra:#2f6f9f;--mal:#fbe3e3}
@media (prefers-color-scheme:dark){:root{--fondo:#17191c;--texto:#ececec;--suave:#b3b3b3;--raya:#474b50;--cabeza:#24282d;--barra:#6fb0de;--mal:#4a2326}}
body{background:var(--fondo);color:var(--texto);font:14px/1.4 "Segoe UI","DejaVu Sans",sans-serif;margin:2em}
h1{font-size:1.4em;margin:0 0 .2em}h2{font-size:1.1em;margin:1.6em 0 .4em}p{margin:.2em 0;color:var(--suave)}
table{border-collapse:collapse;width:100%}th,td{border-bottom:1px solid var(--raya);padding:.2em .5em;text-align:left;vertical-align:top}
th{background:var(--cabeza)}.n{text-align:right;white-space:nowrap}.mal td{background:var(--mal)}
.barra{display:block;height:.8em;min-width:1px;background:var(--barra)}.ancho{width:30%}tfoot td{font-weight:bold}
@media print{:root{--fondo:#fff;--texto:#000;--suave:#333;--raya:#999;--cabeza:#fff;--barra:#555;--mal:#fff}
body{margin:0;font-size:9pt}thead{display:table-header-group}tr{break-inside:avoid}h2{break-after:avoid}
.barra{print-color-adjust:exact;-webkit-print-color-adjust:exact}}
)";

std::string Escapado(std::string_view texto) {
  std::string salida;
  for (const char c : EnUnaLinea(texto)) {
    switch (c) {
      case '&':
        salida += "&amp;";
        break;
      case '<':
        salida += "&lt;";
        break;
      case '>':
        salida += "&gt;";
        break;
      case '"':
        salida += "&quot;";
        break;
      case '\'':
        salida += "&#39;";
        break;
      default:
        salida += c;
    }
  }
  return salida;
}

std::string Celda(std::string_view texto) { return "<td>" + Escapado(texto) + "</td>"; }
std::string CeldaNumero(std::string_view texto) { return "<td class=\"n\">" + Escapado(texto) + "</td>"; }
std::string CeldaNumero(std::optional<double> numero) {
  return CeldaNumero(numero ? TextoDeNumero(*numero) : std::string());
}
std::string CeldaEntero(std::int64_t numero) {
  return CeldaNumero(numero == 0 ? std::string() : std::to_string(numero));
}

std::string Cabeza(std::initializer_list<std::string_view> titulos) {
  std::string texto = "<table>\n<thead><tr>";
  for (const std::string_view titulo : titulos) texto += "<th>" + std::string(titulo) + "</th>";
  return texto + "</tr></thead>\n<tbody>\n";
}

// Of the largest one; a bar is as long as its quantity, whatever its sign.
std::string Barra(double cantidad, double mayor) {
  const double parte = mayor > 0 ? 100 * std::abs(cantidad) / mayor : 0;
  return "<td class=\"ancho\"><span class=\"barra\" style=\"width:" +
         base::PlainNumber(base::Round(parte, 1)) + "%\"></span></td>";
}

std::string Totales(const DatosInforme& datos) {
  const auto filas = TotalesDe(datos);
  double mayor = 0, del_archivo = 0;
  std::size_t lineas = 0;
  for (const FilaDeTotales& t : filas) mayor = std::max(mayor, std::abs(t.importada.value_or(0)));
  std::string texto =
      "<h2>Totales por concepto</h2>\n" +
      Cabeza({"Concepto", "Nombre", "Líneas", "Cantidad del archivo", "Cantidad importada", ""});
  for (const FilaDeTotales& t : filas) {
    texto += "<tr>" + CeldaEntero(t.concepto) + Celda(t.nombre) + CeldaNumero(std::to_string(t.lineas)) +
             CeldaNumero(t.del_archivo) + CeldaNumero(t.importada) +
             (t.importada ? Barra(*t.importada, mayor) : "<td></td>") + "</tr>\n";
    lineas += t.lineas;
    del_archivo += t.del_archivo;
  }
  return texto + "</tbody>\n<tfoot><tr><td></td><td>Total del archivo</td>" +
         CeldaNumero(std::to_string(lineas)) + CeldaNumero(del_archivo) +
         "<td></td><td></td></tr></tfoot></table>\n";
}

std::string Cambios(const DatosInforme& datos) {
  std::string texto =
      "<h2>Antes y después</h2>\n" + Cabeza({"Contrato", "Persona", "Concepto", "Nombre", "C. Costo",
                                             "Encabezado", "Antes", "Después", "Diferencia"});
  for (const auto& c : datos.cambios)
    texto += "<tr>" + CeldaEntero(c.id_Contrato) + Celda(base::Trim(c.nombre + " " + c.apellido)) +
             CeldaEntero(c.concepto) + Celda(c.nombre_concepto) + CeldaEntero(c.idAgrupa) +
             CeldaEntero(c.id_Encabezado) + CeldaNumero(c.antes) + CeldaNumero(c.despues) +
             CeldaNumero(c.Diferencia()) + "</tr>\n";
  return texto + "</tbody></table>\n";
}

std::string Lineas(const DatosInforme& datos) {
  std::string texto =
      "<h2>Líneas</h2>\n" + Cabeza({"Línea", "Id", "Persona", "Tipo", "Cantidad", "Contrato", "Concepto",
                                    "Encabezado", "Antes", "Después", "Resultado"});
  const CambiosPorLinea cambios(datos.cambios);
  for (const Linea& l : datos.lineas) {
    const importfile::DestinoDeLinea d = l.fila != nullptr ? l.fila->destino : importfile::DestinoDeLinea{};
    const corridas::CambioDeCantidad* cambio = cambios.De(l);
    const auto campo = [&](int i) -> const std::string& { return (*l.campo)[static_cast<std::size_t>(i)]; };
    const std::string concepto = d.concepto == 0
                                     ? std::string()
                                     : std::to_string(d.concepto) + " " + NombreDeConcepto(datos, d.concepto);
    const std::string encabezado =
        d.encabezado == 0 ? std::string()
                          : std::to_string(d.encabezado) + (d.encabezado_nuevo ? " (nuevo)" : "");
    texto += (l.SinImportar() ? "<tr class=\"mal\">" : "<tr>") + CeldaNumero(std::to_string(l.numero)) +
             Celda(campo(importfile::kClave)) +
             Celda(base::Trim(campo(importfile::kNombre) + " " + campo(importfile::kApellido))) +
             Celda(campo(importfile::kTipo)) + CeldaNumero(CantidadDe(campo(importfile::kCantidad))) +
             CeldaEntero(d.contrato) + Celda(concepto) + Celda(encabezado) +
             CeldaNumero(cambio != nullptr ? cambio->antes : std::nullopt) +
             CeldaNumero(cambio != nullptr ? cambio->despues : std::nullopt) + Celda(l.resultado) + "</tr>\n";
  }
  return texto + "</tbody></table>\n";
}

}  // namespace

std::string InformeHtml(const DatosInforme& datos) {
  const Cuentas c = Contar(datos.lineas);
  const std::string titulo =
      std::string(datos.simulado ? "Simulación de la importación de " : "Importación de ") + datos.archivo +
      " en " + base::FormatDate(datos.mes, "MM/yyyy");
  std::string texto =
      "<!DOCTYPE html>\n<html lang=\"es\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width\">\n<title>" +
      Escapado(titulo) + "</title>\n<style>" + kEstilo + "</style>\n</head>\n<body>\n<h1>" +
      Escapado(titulo) + "</h1>\n<p>Liquidación: " + Escapado(datos.liquidacion) +
      "</p>\n<p>Leídas: " + std::to_string(c.leidas) + " = importadas: " + std::to_string(c.importadas) +
      " + rechazadas: " + std::to_string(c.rechazadas) + " + filtradas: " + std::to_string(c.filtradas) +
      " + mal formadas: " + std::to_string(c.mal_formadas) + "</p>\n";
  if (!datos.error.empty()) texto += "<p>No se escribió nada: " + Escapado(datos.error) + "</p>\n";
  if (datos.simulado) texto += "<p>Es una simulación: no se escribió nada en la base.</p>\n";
  return texto + Totales(datos) + Cambios(datos) + Lineas(datos) + "</body>\n</html>\n";
}

}  // namespace informe
