#include "cli/salida.h"

#include <algorithm>

#include "app/vista.h"
#include "base/csv.h"
#include "base/number.h"
#include "base/text.h"
#include "cli/codigos.h"
#include "informe/informe.h"

namespace cli {

void EscribirCsv(std::ostream& out, const std::vector<informe::Linea>& lineas) {
  out << "linea;estado;id;nombre;apellido;horas;valor;tipo;vinculado;cc;resultado\n";
  for (const informe::Linea& l : lineas) {
    out << l.numero << ';' << informe::TextoDe(l.estado);
    for (const int campo :
         {importfile::kClave, importfile::kNombre, importfile::kApellido, importfile::kCantidad,
          importfile::kValor, importfile::kTipo, importfile::kVinculado, importfile::kCC})
      out << ';' << base::CsvCell((*l.campo)[static_cast<std::size_t>(campo)], ';');
    out << ';' << base::CsvCell(l.resultado, ';') << '\n';
  }
}

void EscribirCuadro(std::ostream& out, const std::vector<std::vector<std::string>>& filas,
                    const std::vector<std::size_t>& a_la_derecha) {
  std::vector<std::size_t> ancho(filas.empty() ? 0 : filas.front().size());
  for (const auto& fila : filas)
    for (std::size_t i = 0; i < fila.size(); ++i) ancho[i] = std::max(ancho[i], base::Length(fila[i]));
  for (const auto& fila : filas) {
    std::string texto;
    for (std::size_t i = 0; i < fila.size(); ++i) {
      const std::string relleno(ancho[i] - base::Length(fila[i]), ' ');
      const bool derecha = std::find(a_la_derecha.begin(), a_la_derecha.end(), i) != a_la_derecha.end();
      texto += (derecha ? relleno + fila[i] : fila[i] + relleno) + "  ";
    }
    texto.erase(texto.find_last_not_of(' ') + 1);
    out << texto << '\n';
  }
}

void EscribirTabla(std::ostream& out, const std::vector<informe::Linea>& lineas) {
  std::vector<std::vector<std::string>> filas{
      {"Línea", "Id", "Nombre", "Apellido", "Horas", "Tipo", "Vinculado Con", "C. Costo", "Resultado"}};
  filas.reserve(lineas.size() + 1);
  for (const informe::Linea& l : lineas) {
    const auto campo = [&](int i) { return informe::EnUnaLinea((*l.campo)[static_cast<std::size_t>(i)]); };
    filas.push_back({std::to_string(l.numero), campo(importfile::kClave), campo(importfile::kNombre),
                     campo(importfile::kApellido), campo(importfile::kCantidad), campo(importfile::kTipo),
                     campo(importfile::kVinculado), campo(importfile::kCC),
                     informe::EnUnaLinea(l.resultado)});
  }
  EscribirCuadro(out, filas, {0, 4});
}

void EscribirTotales(std::ostream& out, const informe::Cuentas& c, const app::Estado& estado) {
  out << "Leídas: " << c.leidas << " = importadas: " << c.importadas << " + rechazadas: " << c.rechazadas
      << " + filtradas: " << c.filtradas << " + mal formadas: " << c.mal_formadas << '\n';
  if (estado.importacion.totales.empty()) return;
  out << "Cantidades por concepto:\n";
  for (const auto& t : estado.importacion.totales)
    out << "  " << t.concepto << " " << app::NombreDeTotal(estado, t) << ": "
        << base::NumberText(base::Round(t.cantidad, 6)) << " (" << t.lineas
        << (t.lineas == 1 ? " línea" : " líneas") << ")\n";
}

void EscribirCambios(std::ostream& out, const std::vector<corridas::CambioDeCantidad>& cambios) {
  if (cambios.empty()) {
    out << "Ninguna cantidad cambia.\n";
    return;
  }
  std::vector<std::vector<std::string>> filas{
      {"Contrato", "Persona", "Concepto", "C. Costo", "Encabezado", "Antes", "Después", "Diferencia"}};
  const auto lado = [](const std::optional<double>& v) { return v ? informe::TextoDeNumero(*v) : "-"; };
  for (const auto& c : cambios)
    filas.push_back({std::to_string(c.id_Contrato),
                     informe::EnUnaLinea(base::Trim(c.nombre + " " + c.apellido)),
                     informe::EnUnaLinea(std::to_string(c.concepto) + " " + c.nombre_concepto),
                     std::to_string(c.idAgrupa), c.tabla_usuario ? "" : std::to_string(c.id_Encabezado),
                     lado(c.antes), lado(c.despues), informe::TextoDeNumero(c.Diferencia())});
  EscribirCuadro(out, filas, {0, 3, 4, 5, 6, 7});
}

int Terminar(Flujos f, int codigo, std::string_view ademas) {
  f.out.flush();
  if (f.out.good()) return codigo;
  f.err << "No se pudo escribir el resultado" << ademas << '\n';
  return kEntradaSalida;
}

}  // namespace cli
