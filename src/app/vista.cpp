#include "app/vista.h"

#include <cmath>
#include <utility>

namespace app {
namespace {

constexpr std::int32_t kFondoOtras = 0xD0D0FF, kTextoOtras = 0x10103C;  // light red, dark text
constexpr std::int32_t kBlanco = 0xFFFFFF, kNegro = 0x000000;

double Lineal(std::int32_t canal) {
  const double c = canal / 255.0;
  return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

}  // namespace

int CampoDeColumna(std::string_view columna) {
  static constexpr std::pair<std::string_view, int> kCampos[] = {{"Id", importfile::kClave},
                                                                 {"Nombre", importfile::kNombre},
                                                                 {"Apellido", importfile::kApellido},
                                                                 {"Horas", importfile::kCantidad},
                                                                 {"Valor", importfile::kValor},
                                                                 {"Tipo", importfile::kTipo},
                                                                 {"NomConcVinc", importfile::kVinculado},
                                                                 {"A_Realizar", importfile::kHorasMes},
                                                                 {"DatoExtra", importfile::kDatoExtra},
                                                                 {"CC", importfile::kCC}};
  for (const auto& [nombre, campo] : kCampos)
    if (nombre == columna) return campo;
  return -1;
}

int RelacionDeEstilo(const relations::CodeRelations& relaciones, const importfile::ImportRow& fila) {
  if (!fila.resultado.empty() && fila.resultado != "OK") return -1;
  return relaciones.PosEnVecConc(fila.campo[importfile::kTipo]);
}

EstiloDeFila EstiloDeRelacion(const relations::CodeRelations& relaciones, int relacion) {
  if (relacion < 0) return {"Otras", kFondoOtras, kTextoOtras};
  const auto i = static_cast<std::size_t>(relacion);
  const std::int32_t fondo = relaciones.Color(i) & 0xFFFFFF;
  return {"_" + relaciones.Campo(relations::kCodigo, i), fondo, TextoSobre(fondo)};
}

// Equal contrast to black and to white lies at a relative luminance of 0.179.
std::int32_t TextoSobre(std::int32_t fondo) {
  const double luminancia = 0.2126 * Lineal(fondo & 0xFF) + 0.7152 * Lineal((fondo >> 8) & 0xFF) +
                            0.0722 * Lineal((fondo >> 16) & 0xFF);
  return luminancia > 0.179 ? kNegro : kBlanco;
}

Cuentas Contar(const Estado& estado) {
  Cuentas c;
  c.lineas = estado.lineas;
  c.en_grilla = estado.filas.size();
  for (const auto& linea : estado.aparte) ++(linea.mal_formada ? c.mal_formadas : c.filtradas);
  for (const auto& fila : estado.filas) {
    if (fila.resultado.empty()) continue;
    ++(fila.resultado == "OK" ? c.importadas : c.rechazadas);
  }
  return c;
}

std::string NombreDeTotal(const Estado& estado, const liquidation::TotalConcepto& total) {
  const int entrada = estado.conceptos.Buscar(std::to_string(total.concepto));
  return entrada < 0 ? total.nombre : estado.conceptos.tabla.Campo(1, static_cast<std::size_t>(entrada));
}

}  // namespace app
