#include <cstdint>

#include "formula/evaluador/line_formula_internal.h"

namespace formula {
namespace {

struct Comodin {
  std::string_view nombre;  // in lower case
  std::size_t campo;
  bool igual;  // the "=" that ends the name stays
};

// The order is behaviour: a value put in by one step is text to the next ones.
constexpr std::array<Comodin, 17> kComodines = {{{"tipo", 4, false},
                                                 {"horas", 3, false},
                                                 {"valor", 3, false},
                                                 {"datoaimp", 3, false},
                                                 {"nombre", 1, false},
                                                 {"apellido", 2, false},
                                                 {"datoextra", 8, false},
                                                 {"monto", 14, false},
                                                 {"tdato", 9, false},
                                                 {"toper", 10, false},
                                                 {"tcuota", 11, false},
                                                 {"id_", 0, false},
                                                 {"id=", 0, true},
                                                 {"trem=", 6, true},
                                                 {"cc=", 12, true},
                                                 {"vinculado=", 13, true},
                                                 {"obr=", 12, true}}};

constexpr char Minuscula(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Which characters a text has, whatever their case; a few share a bit. Most steps find that the text lacks
// one of theirs, and do not search.
constexpr std::uint32_t Letras(std::string_view texto) {
  std::uint32_t letras = 0;
  for (const char c : texto) letras |= std::uint32_t{1} << (static_cast<unsigned char>(c) & 31U);
  return letras;
}

std::size_t BuscarNombre(std::string_view texto, std::string_view nombre, std::size_t desde) {
  for (std::size_t i = desde; i + nombre.size() <= texto.size(); ++i) {
    std::size_t k = 0;
    while (k < nombre.size() && Minuscula(texto[i + k]) == nombre[k]) ++k;
    if (k == nombre.size()) return i;
  }
  return std::string_view::npos;
}

// False when the text would pass the limit: values that hold wildcards may multiply with each step.
bool Reemplazar(std::string& texto, const Comodin& comodin, std::string_view valor) {
  std::size_t p = BuscarNombre(texto, comodin.nombre, 0);
  if (p == std::string::npos) return true;
  std::string nuevo;
  std::size_t desde = 0;
  for (; p != std::string::npos; p = BuscarNombre(texto, comodin.nombre, desde)) {
    nuevo.append(texto, desde, p - desde);
    if (comodin.igual) nuevo += '=';
    nuevo += valor;
    desde = p + comodin.nombre.size();
    if (nuevo.size() > kLargoMaximo) return false;
  }
  nuevo.append(texto, desde);
  texto = std::move(nuevo);
  return texto.size() <= kLargoMaximo;
}

}  // namespace

std::optional<std::string> SinComodines(std::string_view formula, const CamposDeLinea& linea,
                                        PasosDeFormula* pasos) {
  std::string texto(formula);
  std::uint32_t letras = Letras(texto);
  for (const Comodin& comodin : kComodines) {
    const std::uint32_t suyas = Letras(comodin.nombre);
    if ((letras & suyas) != suyas) continue;
    const std::string& valor = linea[comodin.campo];
    const bool esta = pasos != nullptr && BuscarNombre(texto, comodin.nombre, 0) != std::string::npos;
    if (!Reemplazar(texto, comodin, valor)) return std::nullopt;
    if (esta) pasos->sustituciones.push_back({std::string(comodin.nombre), valor, texto});
    letras |= Letras(valor);  // a letter too many costs a search, no more
  }
  return texto;
}

std::string ReemplazaComodines(std::string_view formula, const CamposDeLinea& linea, PasosDeFormula* pasos) {
  return SinComodines(formula, linea, pasos).value_or(std::string());
}

}  // namespace formula
