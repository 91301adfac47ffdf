#include "app/vista_de_lineas.h"

#include <algorithm>
#include <utility>

#include "app/vista.h"
#include "formula/vectores/vector_utils.h"

namespace app {
namespace {

// The letters from U+00C0 on, two bytes each in UTF-8: what they are without their marks; 0 for none.
constexpr char kSinMarca[] = "aaaaaa\0ceeeeiiii\0nooooo\0\0uuuuy\0\0aaaaaa\0ceeeeiiii\0nooooo\0\0uuuuy\0y";
constexpr unsigned char kPrimero = 0xC3;

void Plegar(std::string_view texto, std::string& plegado) {
  plegado.clear();
  for (std::size_t i = 0; i < texto.size(); ++i) {
    const char c = texto[i];
    if (static_cast<unsigned char>(c) == kPrimero && i + 1 < texto.size()) {
      const auto cual = static_cast<std::size_t>(static_cast<unsigned char>(texto[i + 1]) & 0x3FU);
      if (const char letra = kSinMarca[cual]; letra != '\0') {
        plegado += letra;
        ++i;
        continue;
      }
    }
    plegado += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
}

bool EsCantidad(int campo) {
  return campo == importfile::kCantidad || campo == importfile::kValor || campo == importfile::kHorasMes;
}

// Finds a text in the columns of a row that show. Quantities are found with either decimal sign.
class Buscador {
 public:
  Buscador(const Estado& estado, std::string_view texto) : texto_(app::Plegar(texto)), con_punto_(texto_) {
    std::replace(con_punto_.begin(), con_punto_.end(), ',', '.');
    for (const GridColumn& columna : estado.GridAImportar.columnas)
      if (columna.visible) campos_.push_back(CampoDeColumna(columna.nombre));
  }
  bool Esta(const importfile::ImportRow& fila) {
    return texto_.empty() ||
           std::any_of(campos_.begin(), campos_.end(), [&](int c) { return Esta(fila, c); });
  }

 private:
  bool Esta(const importfile::ImportRow& fila, int campo) {
    const std::string& valor = campo < 0 ? fila.resultado : fila.campo[static_cast<std::size_t>(campo)];
    if (valor.size() < texto_.size()) return false;  // folding makes no text longer
    Plegar(valor, plegado_);
    if (plegado_.find(texto_) != std::string::npos) return true;
    if (!EsCantidad(campo)) return false;
    std::replace(plegado_.begin(), plegado_.end(), ',', '.');
    return plegado_.find(con_punto_) != std::string::npos;
  }

  std::string texto_, con_punto_, plegado_;
  std::vector<int> campos_;
};

bool Entra(const Estado& estado, const importfile::ImportRow& fila, Cuales cuales) {
  switch (cuales) {
    case Cuales::Importadas:
      return fila.resultado == "OK";
    case Cuales::Rechazadas:
      return !fila.resultado.empty() && fila.resultado != "OK";
    case Cuales::SinContrato:
      return FaltasDe(estado, fila).contrato;
    case Cuales::SinRelacion:
      return FaltasDe(estado, fila).relacion;
    case Cuales::Todas:
      break;
  }
  return true;
}

// In the order of the value of each. Sorted backwards and turned round, equals keep their order in a
// descending order too.
void Ordenar(std::vector<std::uint32_t>& filas, std::vector<std::string_view> valores, bool descendente,
             base::Date hoy) {
  if (descendente) {
    std::reverse(filas.begin(), filas.end());
    std::reverse(valores.begin(), valores.end());
  }
  std::vector<std::uint32_t> ordenadas;
  ordenadas.reserve(filas.size());
  for (const std::size_t i : formula::OrdenDeColumna(valores, hoy)) ordenadas.push_back(filas[i]);
  if (descendente) std::reverse(ordenadas.begin(), ordenadas.end());
  filas = std::move(ordenadas);
}

}  // namespace

std::string Plegar(std::string_view texto) {
  std::string plegado;
  Plegar(texto, plegado);
  return plegado;
}

std::vector<std::uint32_t> FilasDe(const Estado& estado, const VistaDeLineas& vista, base::Date hoy) {
  std::vector<std::uint32_t> filas;
  Buscador buscador(estado, vista.texto);
  for (std::size_t i = 0; i < estado.filas.size(); ++i)
    if (Entra(estado, estado.filas[i], vista.cuales) && buscador.Esta(estado.filas[i]))
      filas.push_back(static_cast<std::uint32_t>(i));
  if (!vista.por_resultado && !vista.descendente) return filas;
  std::vector<std::string_view> valores;
  valores.reserve(filas.size());
  for (const std::uint32_t i : filas)
    valores.emplace_back(vista.por_resultado
                             ? estado.filas[i].resultado
                             : estado.filas[i].campo[static_cast<std::size_t>(estado.columna_orden)]);
  Ordenar(filas, std::move(valores), vista.descendente, hoy);
  return filas;
}

Faltas FaltasDe(const Estado& estado, const importfile::ImportRow& fila) {
  Faltas faltas;
  if (!estado.motivo_base.empty() || !estado.personas.motivo_fallo.empty() || estado.relaciones.carga_fallida)
    return faltas;  // nothing is known of anybody
  faltas.contrato = estado.personas.Buscar(fila.campo[importfile::kClave], estado.opciones.Configura) < 0;
  faltas.relacion = estado.relaciones.PosEnVecConc(fila.campo[importfile::kTipo]) < 0;
  return faltas;
}

CuentaDeFaltas ContarFaltas(const Estado& estado) {
  CuentaDeFaltas cuenta;
  for (const auto& fila : estado.filas) {
    const Faltas faltas = FaltasDe(estado, fila);
    cuenta.contrato += faltas.contrato ? 1 : 0;
    cuenta.relacion += faltas.relacion ? 1 : 0;
  }
  return cuenta;
}

}  // namespace app
