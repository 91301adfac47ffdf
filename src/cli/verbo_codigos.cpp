#include "base/csv.h"
#include "base/number.h"
#include "cli/salida.h"
#include "cli/verbos.h"

namespace cli {
namespace {

int Mostrar(const std::vector<informe::CodigoSinRelacion>& codigos, Formato salida, Flujos f) {
  std::vector<std::vector<std::string>> filas{
      {"Código", "Líneas", "Horas", "Primera", "Concepto", "Nombre", "Por"}};
  for (const auto& c : codigos)
    filas.push_back({informe::EnUnaLinea(c.codigo), std::to_string(c.lineas),
                     base::NumberText(base::Round(c.horas, 6)), std::to_string(c.primera),
                     c.propuesta.id_concepto, informe::EnUnaLinea(c.propuesta.nombre),
                     std::string(informe::TextoDe(c.propuesta.por))});
  if (salida == Formato::Csv) {
    f.out << "codigo;lineas;horas;primera;concepto;nombre;por\n";
    for (std::size_t i = 1; i < filas.size(); ++i) {
      for (std::size_t k = 0; k < filas[i].size(); ++k) {
        const bool texto = k == 0 || k == 5;  // from outside
        f.out << (k > 0 ? ";" : "")
              << base::CsvCell(texto ? base::SpreadsheetText(filas[i][k]) : filas[i][k], ';');
      }
      f.out << '\n';
    }
  } else if (codigos.empty()) {
    f.out << "Todos los códigos del archivo tienen relación.\n";
  } else {
    EscribirCuadro(f.out, filas, {1, 2, 3, 4});
  }
  return Terminar(f, codigos.empty() ? kTodo : kAlgunaNo);
}

}  // namespace

int Codigos(const OpcionesImportar& o, const std::string& carpeta, const ports::Clock& reloj, Flujos f) {
  return ConArchivoCargado(o, carpeta, reloj, f, [&](app::Programa& programa) {
    return Mostrar(programa.Relaciones().CodigosSinRelacion(), o.salida, f);
  });
}

}  // namespace cli
