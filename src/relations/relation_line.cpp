#include <algorithm>
#include <optional>

#include "base/text.h"
#include "relations/relation_line_internal.h"
#include "settings/config_file.h"

namespace relations {
namespace {

using Piezas = std::vector<std::string_view>;

constexpr std::string_view kEstrella = "XR3";  // as a seventh field: this line hides what its fields hold
constexpr std::string_view kSinCambio = "^";

// What would cut or change a line, and what stands for it in a line that says so. "XR" comes first, so that
// what the others put in is not hidden again; all forms are "XR" and one digit.
struct Forma {
  std::string_view texto, oculto;
};
constexpr Forma kFormas[] = {{"XR", "XR0"}, {"*", kEstrella}, {"\r", "XR4"},
                             {"\n", "XR5"}, {"[", "XR6"},     {kSinCambio, "XR7"}};

std::string Ocultar(std::string texto) {
  for (const Forma& forma : kFormas) texto = base::Replace(texto, forma.texto, forma.oculto);
  return texto;
}

std::string Mostrar(std::string_view texto) {
  std::string salida;
  while (!texto.empty()) {
    const auto* forma = std::find_if(std::begin(kFormas), std::end(kFormas),
                                     [&](const Forma& f) { return base::StartsWith(texto, f.oculto); });
    const bool hallada = forma != std::end(kFormas);
    salida += hallada ? forma->texto : texto.substr(0, 1);
    texto.remove_prefix(hallada ? forma->oculto.size() : 1);
  }
  return salida;
}

// A tag of the settings file inside a value would be found as one.
bool PideOcultarse(std::string_view campo) {
  return campo == kSinCambio || campo.find_first_of("*\r\n") != std::string_view::npos ||
         settings::NombraUnaClave(campo);
}

bool EsEntero(std::string_view pieza) {
  if (base::StartsWith(pieza, "-")) pieza.remove_prefix(1);
  return !pieza.empty() && pieza.find_first_not_of("0123456789") == std::string_view::npos;
}

bool EsLista(std::string_view codigos) {
  return codigos.empty() || (codigos.front() == ',' && codigos.back() == ',');
}

// The text from one piece to before another, with its stars.
std::string_view Tramo(const Piezas& piezas, std::size_t desde, std::size_t hasta) {
  const char* inicio = piezas[desde].data();
  return {inicio, static_cast<std::size_t>(piezas[hasta - 1].data() + piezas[hasta - 1].size() - inicio)};
}

std::string SinMarca(std::string_view campo) {
  return campo == kSinCambio ? std::string() : std::string(campo);
}

// code * colour * list * concept * name * cost centre, the first place for each that fits. None for a line of
// fewer fields or one that hides something, whose last piece is no number.
std::optional<Relacion> CortarPorAnclas(const Piezas& piezas) {
  const std::size_t ultima = piezas.size() - 1;
  if (!piezas[ultima].empty() && !EsEntero(piezas[ultima])) return std::nullopt;
  for (std::size_t color = 1; color + 4 <= ultima; ++color) {
    if (!EsEntero(piezas[color])) continue;
    for (std::size_t concepto = color + 2; concepto + 2 <= ultima; ++concepto) {
      const std::string_view codigos = Tramo(piezas, color + 1, concepto);
      if (!EsEntero(piezas[concepto]) || !EsLista(codigos)) continue;
      return Relacion{SinMarca(Tramo(piezas, 0, color)),
                      std::string(piezas[color]),
                      std::string(codigos),
                      std::string(piezas[concepto]),
                      SinMarca(Tramo(piezas, concepto + 1, ultima)),
                      std::string(piezas[ultima])};
    }
  }
  return std::nullopt;
}

}  // namespace

Relacion RelacionDeLinea(std::string_view linea) {
  Piezas piezas;
  base::SplitViews(linea, "*", piezas);
  const bool con_ocultos = piezas.size() == kCamposRelacion + 1 && piezas.back() == kEstrella;
  if (auto relacion = CortarPorAnclas(piezas)) return *std::move(relacion);
  piezas.resize(kCamposRelacion);
  Relacion relacion;
  std::transform(piezas.begin(), piezas.end(), relacion.begin(), con_ocultos ? Mostrar : SinMarca);
  return relacion;
}

std::string LineaDeRelacion(const std::vector<std::string>& campos) {
  const bool ocultar = std::any_of(campos.begin(), campos.end(), PideOcultarse);
  std::string linea;
  for (std::size_t i = 0; i < campos.size(); ++i) {
    if (i > 0) linea += '*';
    linea += ocultar ? Ocultar(campos[i]) : campos[i];
  }
  return ocultar ? linea.append("*").append(kEstrella) : linea;
}

}  // namespace relations
