#include <algorithm>
#include <array>

#include "app/programa.h"
#include "base/csv.h"
#include "base/format.h"
#include "base/number.h"
#include "base/text.h"
#include "cli/consola.h"
#include "cli/salida.h"
#include "cli/verbos.h"
#include "corridas/anular.h"

namespace cli {
namespace {

using Fila = std::array<std::string, 12>;

std::string Numero(double n) { return base::NumberText(base::Round(n, 6)); }

Fila FilaDe(const corridas::Resumen& r) {
  return {std::to_string(r.numero),
          r.momento,
          r.usuario_sistema + (r.id_Usuario != 0 ? " (" + std::to_string(r.id_Usuario) + ")" : ""),
          base::FormatDate(r.mes, "yyyy-MM"),
          r.liquidacion,
          r.archivo,
          std::to_string(r.leidas),
          std::to_string(r.importadas),
          std::to_string(r.rechazadas + r.mal_formadas),
          Numero(r.horas),
          std::to_string(r.insertadas) + "+" + std::to_string(r.cambiadas) + "+" + std::to_string(r.borradas),
          app::Historial::EstadoDe(r)};
}

void EscribirTabla(std::ostream& out, const std::vector<Fila>& filas) {
  std::array<std::size_t, std::tuple_size_v<Fila>> ancho{};
  for (const Fila& fila : filas)
    for (std::size_t i = 0; i < fila.size(); ++i) ancho[i] = std::max(ancho[i], base::Length(fila[i]));
  for (const Fila& fila : filas) {
    std::string texto;
    for (std::size_t i = 0; i < fila.size(); ++i)
      texto += informe::EnUnaLinea(fila[i]) + std::string(ancho[i] - base::Length(fila[i]) + 2, ' ');
    texto.erase(texto.find_last_not_of(' ') + 1);
    out << texto << '\n';
  }
}

// A program over the base alone.
class Sobre {
 public:
  Sobre(const std::string& base, const std::string& carpeta, const ports::Clock& reloj, Flujos f)
      : consola_(f.err), programa_({consola_, consola_, reloj, nullptr}, Arranque(carpeta)) {
    abierta_ = programa_.Abrir(base);
    if (!abierta_)
      f.err << (programa_.Ver().motivo_base.empty() ? programa_.Ver().fallo_de_base
                                                    : programa_.Ver().motivo_base)
            << '\n';
  }
  bool Abierta() const { return abierta_; }
  app::Programa& Programa() { return programa_; }

 private:
  static app::Arranque Arranque(const std::string& carpeta) {
    app::Arranque a;
    a.carpeta = carpeta;
    return a;
  }
  Consola consola_;
  app::Programa programa_;
  bool abierta_ = false;
};

}  // namespace

int Historial(const OpcionesHistorial& o, const ports::Clock& reloj, Flujos f) {
  Sobre sobre(o.base, o.carpeta, reloj, f);
  if (!sobre.Abierta()) return kSinBase;
  const app::Historial::Lista lista = sobre.Programa().Historial().Listar();
  if (!lista.motivo.empty()) {
    f.err << lista.motivo << '\n';
    return kEntradaSalida;
  }
  std::vector<Fila> filas{{"Corrida", "Fecha", "Usuario", "Mes", "Liquidación", "Archivo", "Leídas",
                           "Importadas", "Rechazadas", "Horas", "Filas", "Estado"}};
  for (const corridas::Resumen& r : lista.corridas) filas.push_back(FilaDe(r));
  if (o.salida == Formato::Csv) {
    for (const Fila& fila : filas)
      for (std::size_t i = 0; i < fila.size(); ++i)
        f.out << base::CsvCell(fila[i], ';') << (i + 1 < fila.size() ? ';' : '\n');
  } else if (lista.corridas.empty()) {
    f.out << "En esta base no se hizo ninguna importación.\n";
  } else {
    EscribirTabla(f.out, filas);
  }
  return Terminar(f, kTodo);
}

int Deshacer(const OpcionesDeshacer& o, const ports::Clock& reloj, Flujos f) {
  Sobre sobre(o.base, o.carpeta, reloj, f);
  if (!sobre.Abierta()) return kSinBase;
  const app::Historial::Deshecha d = sobre.Programa().Historial().Deshacer(o.corrida);
  if (!d.motivo.empty()) {
    f.err << d.motivo << '\n';
    return kNada;
  }
  const corridas::Anulada& a = d.anulacion.anulada;
  const corridas::Resumen& r = d.anulacion.corrida;
  f.out << (d.anulacion.numero != 0 ? "Se deshizo" : "No se deshizo nada de") << " la corrida " << r.numero
        << " (" << corridas::MomentoParaLeer(r.momento) << ", '" << informe::EnUnaLinea(r.archivo)
        << "', mes " << base::FormatDate(r.mes, "MM/yyyy") << "): " << a.deshechas
        << (a.deshechas == 1 ? " fila queda" : " filas quedan") << " como antes";
  if (a.conservadas.empty()) {
    f.out << ".\n";
  } else {
    f.out << ", " << a.conservadas.size()
          << (a.conservadas.size() == 1 ? " se conserva:\n" : " se conservan:\n");
    for (const corridas::FilaConservada& fila : a.conservadas)
      f.out << "  " << informe::EnUnaLinea(app::Historial::TextoDe(fila)) << '\n';
  }
  if (a.recalculada)
    f.out << "El mes cambió después de esa importación: se recalcularon sus días, montos y detalles.\n";
  for (const std::string& falla : a.actualizaciones_fallidas) f.err << "Aviso: " << falla << '\n';
  if (!d.anulacion.aviso.empty()) f.err << "Aviso: " << d.anulacion.aviso << '\n';
  const bool del_todo = a.conservadas.empty() && a.actualizaciones_fallidas.empty();
  return Terminar(f, del_todo ? kTodo : kAlgunaNo, ". Lo deshecho está hecho.");
}

}  // namespace cli
