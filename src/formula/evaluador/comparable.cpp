#include "base/number.h"
#include "base/text.h"
#include "formula/evaluador/evaluator_internal.h"

namespace formula {

std::optional<double> Numero(const Evaluador& ev, std::string_view texto) {
  return base::NumberFromText(texto, ev.locale);
}

std::string TextoDeNumero(const Evaluador& ev, double numero) {
  return base::PlainNumber(numero, ev.locale.decimal);
}

bool EsLiteralFecha(std::string_view texto) {
  return texto.size() >= 2 && texto.front() == '#' && texto.back() == '#';
}

std::string_view SinAlmohadillas(std::string_view texto) {
  return EsLiteralFecha(texto) ? texto.substr(1, texto.size() - 2) : texto;
}

base::Date Hoy(const Evaluador& ev) {
  if (ev.reloj != nullptr) return ev.reloj->Today();
  if (ev.sesion != nullptr && ev.sesion->reloj != nullptr) return ev.sesion->reloj->Today();
  return {};
}

std::optional<base::Date> Fecha(const Evaluador& ev, std::string_view texto) {
  const base::Date hoy = Hoy(ev);
  if (!base::IsDate(texto, hoy, ev.locale)) return std::nullopt;
  return base::DateFromText(texto, hoy, ev.locale);
}

Comparable Clasificar(const Evaluador& ev, std::string texto) {
  Comparable c;
  if (const auto numero = Numero(ev, texto)) {
    c.clase = Comparable::Clase::Numero;
    c.valor = *numero;
  } else if (const auto fecha = Fecha(ev, texto)) {
    c.clase = Comparable::Clase::Fecha;
    c.valor = fecha->serial;
  }
  c.texto = std::move(texto);
  return c;
}

int Comparar(const Comparable& a, const Comparable& b) {
  if (a.clase == b.clase && a.clase != Comparable::Clase::Texto)
    return a.valor < b.valor ? -1 : (a.valor > b.valor ? 1 : 0);
  return a.texto.compare(b.texto);
}

std::string TextoDeLado(Evaluador& ev, std::string_view texto) {
  const std::string_view lado = base::TrimView(texto);
  return EsNumero(ev, lado) ? std::string(lado) : base::UpperCase(Evaluar(ev, lado));
}

Comparable EvaluarLado(Evaluador& ev, std::string_view texto) {
  return Clasificar(ev, TextoDeLado(ev, texto));
}

}  // namespace formula
