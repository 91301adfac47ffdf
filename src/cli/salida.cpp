#include "cli/salida.h"

#include <algorithm>
#include <array>

#include "app/vista.h"
#include "base/number.h"
#include "base/text.h"
#include "cli/codigos.h"

namespace cli {

std::string CeldaCsv(std::string_view texto, char separador) {
  if (texto.find_first_of(std::string("\"\r\n") + separador) == std::string_view::npos)
    return std::string(texto);
  return "\"" + base::Replace(texto, "\"", "\"\"") + "\"";
}

void EscribirCsv(std::ostream& out, const std::vector<informe::Linea>& lineas) {
  out << "linea;estado;id;nombre;apellido;horas;valor;tipo;vinculado;cc;resultado\n";
  for (const informe::Linea& l : lineas) {
    out << l.numero << ';' << informe::TextoDe(l.estado);
    for (const int campo :
         {importfile::kClave, importfile::kNombre, importfile::kApellido, importfile::kCantidad,
          importfile::kValor, importfile::kTipo, importfile::kVinculado, importfile::kCC})
      out << ';' << CeldaCsv((*l.campo)[static_cast<std::size_t>(campo)], ';');
    out << ';' << CeldaCsv(l.resultado, ';') << '\n';
  }
}

void EscribirTabla(std::ostream& out, const std::vector<informe::Linea>& lineas) {
  using Fila = std::array<std::string, 9>;
  std::vector<Fila> filas{
      {"Línea", "Id", "Nombre", "Apellido", "Horas", "Tipo", "Vinculado Con", "C. Costo", "Resultado"}};
  for (const informe::Linea& l : lineas) {
    const auto campo = [&](int i) { return informe::EnUnaLinea((*l.campo)[static_cast<std::size_t>(i)]); };
    filas.push_back({std::to_string(l.numero), campo(importfile::kClave), campo(importfile::kNombre),
                     campo(importfile::kApellido), campo(importfile::kCantidad), campo(importfile::kTipo),
                     campo(importfile::kVinculado), campo(importfile::kCC),
                     informe::EnUnaLinea(l.resultado)});
  }
  std::array<std::size_t, 9> ancho{};
  for (const Fila& fila : filas)
    for (std::size_t i = 0; i < fila.size(); ++i) ancho[i] = std::max(ancho[i], base::Length(fila[i]));
  for (const Fila& fila : filas) {
    std::string texto;
    for (std::size_t i = 0; i < fila.size(); ++i) {
      const std::string relleno(ancho[i] - base::Length(fila[i]), ' ');
      const bool a_la_derecha = i == 0 || i == 4;  // numbers
      texto += (a_la_derecha ? relleno + fila[i] : fila[i] + relleno) + "  ";
    }
    texto.erase(texto.find_last_not_of(' ') + 1);
    out << texto << '\n';
  }
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

int Terminar(Flujos f, int codigo, std::string_view ademas) {
  f.out.flush();
  if (f.out.good()) return codigo;
  f.err << "No se pudo escribir el resultado" << ademas << '\n';
  return kEntradaSalida;
}

}  // namespace cli
