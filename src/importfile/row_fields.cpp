#include <cmath>

#include "base/number.h"
#include "base/text.h"
#include "importfile/importfile_internal.h"

namespace importfile {
namespace {

std::string_view SinCeros(std::string_view cifras) {
  const std::size_t primera = cifras.find_first_not_of('0');
  return primera == std::string_view::npos ? std::string_view() : cifras.substr(primera);
}

// The text of its number when it has one other than 0: "000123" is 123, "ABC" stays.
std::string NumeroOTexto(std::string_view clave) {
  if (auto sencillo = TextoDeDecimal(clave))
    return *sencillo == "0" ? std::string(clave) : *std::move(sencillo);
  const double numero = base::NumericValue(clave);
  return base::Trim(numero != 0 && std::isfinite(numero) ? base::SqlNumber(numero) : clave);
}

}  // namespace

std::optional<std::string> TextoDeDecimal(std::string_view texto) {
  constexpr std::size_t kCifras = 15;  // a double gives back so many as they were
  const std::size_t fin = texto.find_first_not_of("0123456789");
  const std::string_view entera = texto.substr(0, fin);
  std::string_view fraccion;
  if (fin != std::string_view::npos) {
    if (texto[fin] != '.') return std::nullopt;
    fraccion = texto.substr(fin + 1);
    if (fraccion.empty() || fraccion.find_first_not_of("0123456789") != std::string_view::npos)
      return std::nullopt;
  }
  if (entera.empty() || entera.size() + fraccion.size() > kCifras) return std::nullopt;
  fraccion = fraccion.substr(0, fraccion.find_last_not_of('0') + 1);
  std::string salida(SinCeros(entera));
  if (salida.empty()) salida.push_back('0');
  if (!fraccion.empty()) salida.append(1, '.').append(fraccion);
  return salida;
}

bool ValeCero(std::string_view texto) {
  if (const auto sencillo = TextoDeDecimal(texto)) return *sencillo == "0";
  return base::NumericValue(texto) == 0;
}

bool FormulaEnUso(std::string_view formula) {
  const std::string_view recortada = base::TrimView(formula);
  if (recortada.empty()) return false;
  const bool continua = recortada.front() == '+';  // "+1" adds one; the plain number multiplies by it
  return continua || base::NumberFromText(recortada) != 1.0;
}

std::string TextoDelValor(std::string_view texto) {
  if (auto sencillo = TextoDeDecimal(texto)) return *std::move(sencillo);
  const double numero = base::NumericValue(texto);
  return std::isfinite(numero) ? base::PlainNumber(numero) : base::Trim(texto);
}

std::string NormalizarClave(std::string_view clave) {
  const std::size_t primero = clave.find('_');
  if (primero == std::string_view::npos || !base::IsNumber(clave.substr(0, primero)))
    return NumeroOTexto(clave);
  // "0012_A" is person 12 with a suffix of its own, which is not touched.
  return TextoDelValor(clave) + std::string(clave.substr(clave.rfind('_')));
}

CantidadDeFila NormalizarCantidad(std::string_view cantidad) {
  const auto numero = base::NumberFromText(cantidad);
  std::string texto(cantidad);
  if (texto.find(',') != std::string::npos) {
    // With both signs the points part the thousands; of what is no number nothing may be lost.
    if (numero) std::erase(texto, '.');
    for (char& c : texto)
      if (c == ',') c = '.';
  }
  if (!numero) return {std::move(texto), !base::IsBlank(cantidad)};
  if (auto sencillo = TextoDeDecimal(texto)) return {*sencillo == "0" ? texto : *std::move(sencillo)};
  return {*numero != 0 ? base::PlainNumber(*numero) : texto};
}

std::string NormalizarTipo(std::string_view tipo, bool numerico) {
  const std::string_view recortado = base::TrimView(tipo);
  return numerico ? TextoDelValor(recortado) : std::string(recortado);
}

void LlenarDeLaLinea(std::span<const std::string_view> piezas, const settings::Settings& opciones,
                     ImportRow& fila) {
  formula::CamposDeLinea& campo = fila.campo;
  campo[kClave] = NormalizarClave(piezas[0]);
  CantidadDeFila cantidad = NormalizarCantidad(piezas[2]);
  campo[kCantidad] = std::move(cantidad.texto);
  fila.cantidad_no_numerica = cantidad.no_numerica;
  campo[kTipo] = NormalizarTipo(piezas[1], opciones.CodTipoNumerico);
  if (piezas.size() > 3) campo[kDatoExtra] = piezas[3];
  if (piezas.size() > 4) campo[kValor] = piezas[4];
  if (opciones.CCEnDE) campo[kCC] = TextoDelValor(campo[kDatoExtra]);
}

}  // namespace importfile
