#include "conformance/comparar.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "base/text.h"

namespace conformance {
namespace {

using base::Tipo;
using base::Valor;

constexpr double kDoble = 1e-14, kSimple = 1e-6;

bool Cerca(double a, double b, double tolerancia) {
  return a == b || std::abs(a - b) <= tolerancia * std::max(std::abs(a), std::abs(b));
}

// Half a unit of the last digit that a number is written with; 0 when it has few.
double MediaUnidad(const std::string& escrito) {
  constexpr int kMuchos = 12;
  int cifras = 0, decimales = 0, exponente = 0;
  bool fraccion = false;
  for (std::size_t i = 0; i < escrito.size(); ++i) {
    const char c = escrito[i];
    if (c == '.') fraccion = true;
    if (c == 'e' || c == 'E') {
      exponente = std::atoi(escrito.c_str() + i + 1);
      break;
    }
    if (c < '0' || c > '9') continue;
    if (cifras > 0 || c != '0') ++cifras;
    if (fraccion) ++decimales;
  }
  return fraccion && cifras >= kMuchos ? 0.5 * std::pow(10.0, exponente - decimales) : 0;
}

bool MismoNumero(const Json& espera, double dio) {
  return Cerca(dio, espera.numero, kDoble) || std::abs(dio - espera.numero) <= MediaUnidad(espera.texto);
}

}  // namespace

bool Igual(const Json& espera, const Valor& dio, bool sin_caso) {
  if (const Json* alguno = espera.Miembro("$anyOf"))
    return std::any_of(alguno->lista.begin(), alguno->lista.end(),
                       [&](const Json& j) { return Igual(j, dio, sin_caso); });
  if (const Json* clase = espera.Miembro("$variant")) {
    if (clase->texto == "NULL") return dio.EsNulo();
    const Json* v = espera.Miembro("v");
    return v != nullptr && Igual(*v, dio, sin_caso);
  }
  if (espera.EsNulo()) return dio.EsNulo();
  if (dio.EsNulo()) return false;
  if (espera.EsTexto()) {
    const auto* texto = dio.Si<std::string>();
    return texto != nullptr && (sin_caso ? base::IgualSinCaso(*texto, espera.texto) : *texto == espera.texto);
  }
  if (dio.tipo() == Tipo::Texto) return false;
  const double numero = dio.Numero();
  if (espera.clase == Json::Clase::Booleano) return numero == (espera.booleano ? -1 : 0);
  constexpr double kMedioSegundo = 0.5 / 86400;
  if (const Json* f = espera.Miembro("$date"))
    return dio.tipo() == Tipo::Fecha && std::abs(numero - SerieDe(f->texto)) < kMedioSegundo;
  if (const Json* s = espera.Miembro("$single")) return Cerca(numero, s->numero, kSimple);
  if (const Json* c = espera.Miembro("$currency"))
    return std::abs(numero - c->numero) < 0.00005 && dio.tipo() != Tipo::Fecha;
  if (!espera.EsNumero() || dio.tipo() == Tipo::Fecha) return false;
  return dio.tipo() == Tipo::Simple ? Cerca(numero, espera.numero, kSimple) : MismoNumero(espera, numero);
}

bool Igual(const Json& espera, const std::vector<std::string>& dio) {
  if (const Json* alguno = espera.Miembro("$anyOf"))
    return std::any_of(alguno->lista.begin(), alguno->lista.end(),
                       [&](const Json& j) { return Igual(j, dio); });
  return espera.EsLista() &&
         std::equal(espera.lista.begin(), espera.lista.end(), dio.begin(), dio.end(),
                    [](const Json& j, const std::string& t) { return j.EsTexto() && j.texto == t; });
}

bool EsperaError(const Json& espera, int numero) {
  if (const Json* alguno = espera.Miembro("$anyOf"))
    return std::any_of(alguno->lista.begin(), alguno->lista.end(),
                       [&](const Json& j) { return EsperaError(j, numero); });
  const Json* error = espera.Miembro("$error");
  return error != nullptr && static_cast<int>(error->numero) == numero;
}

bool MismasFilas(const Json& espera, const db::Recordset& filas, bool ordenadas, bool sin_caso) {
  if (!espera.EsLista() || espera.lista.size() != filas.Cantidad()) return false;
  const auto igual = [&](const Json& fila, std::size_t f) {
    if (fila.lista.size() != filas.Campos().size()) return false;
    for (std::size_t c = 0; c < fila.lista.size(); ++c)
      if (!Igual(fila.lista[c], filas.En(c, f), sin_caso)) return false;
    return true;
  };
  std::vector<bool> usada(filas.Cantidad());
  for (std::size_t i = 0; i < espera.lista.size(); ++i) {
    std::size_t f = ordenadas ? i : 0;
    while (f < usada.size() && (usada[f] || !igual(espera.lista[i], f))) f = ordenadas ? usada.size() : f + 1;
    if (f >= usada.size()) return false;
    usada[f] = true;
  }
  return true;
}

std::string Mostrar(const Valor& valor) {
  if (valor.EsNulo()) return "null";
  if (valor.tipo() == Tipo::Texto) return '"' + valor.TextoCsv() + '"';
  return valor.TextoCsv();
}

std::string Mostrar(const db::Recordset& filas) {
  std::string texto = "[";
  for (std::size_t f = 0; f < filas.Cantidad(); ++f) {
    texto += f > 0 ? ", [" : "[";
    for (std::size_t c = 0; c < filas.Campos().size(); ++c)
      texto += (c > 0 ? ", " : "") + Mostrar(filas.En(c, f));
    texto += ']';
  }
  return texto + ']';
}

std::string Mostrar(const base::Error& error) {
  return "error " + (error.Numero() != 0 ? std::to_string(error.Numero()) + ": " : "") + error.Descripcion();
}

}  // namespace conformance
