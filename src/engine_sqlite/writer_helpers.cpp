// The helpers that the SQLite text of a translated statement calls: see jetsql/runtime.h for what each must
// do.
#include <cmath>
#include <limits>

#include "base/like.h"
#include "engine_sqlite/conversion_internal.h"

namespace engine_sqlite {
namespace {

void Concatenar(Llamada& l) {
  bool alguno = false;
  std::string salida;
  for (int i = 0; i < l.Cantidad(); ++i) {
    if (l.EsNulo(i)) continue;
    alguno = true;
    l.AgregarTexto(i, salida);
  }
  alguno ? l.DarTexto(salida) : l.Nulo();
}

void Sumar(Llamada& l) {
  if (l.AlgunNulo()) return l.Nulo();
  if (l.EsTexto(0) && l.EsTexto(1)) {
    std::string salida(l.Texto(0));
    salida += l.Texto(1);
    return l.DarTexto(salida);
  }
  const Llamada::Cifra a = l.Numerico(0), b = l.Numerico(1);
  std::int64_t suma = 0;
  if (a.entera && b.entera && !__builtin_add_overflow(a.entero, b.entero, &suma)) return l.DarEntero(suma);
  l.DarNumero(l.Numero(0) + l.Numero(1));
}

void ComoNumero(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  if (!l.EsTexto(0)) return l.DarArgumento(0);
  l.DarCifra(l.Numerico(0));
}

void Dividir(Llamada& l) {
  if (l.AlgunNulo()) return l.Nulo();
  const double a = l.Numero(0), b = l.Numero(1);
  if (b == 0) LanzarNumero(kDivisionPorCero);
  l.DarNumero(a / b);
}

// Both operands of \ and Mod, rounded to Long; the divisor is not 0.
void Redondeados(const Llamada& l, std::int64_t& a, std::int64_t& b) {
  a = l.Entero32(0);
  b = l.Entero32(1);
  if (b == 0) LanzarNumero(kDivisionPorCero);
}

void DividirEntero(Llamada& l) {
  if (l.AlgunNulo()) return l.Nulo();
  std::int64_t a = 0, b = 0;
  Redondeados(l, a, b);
  if (a / b > std::numeric_limits<std::int32_t>::max()) LanzarNumero(kDesbordamiento);
  l.DarEntero(a / b);
}

void Resto(Llamada& l) {
  if (l.AlgunNulo()) return l.Nulo();
  std::int64_t a = 0, b = 0;
  Redondeados(l, a, b);
  l.DarEntero(a % b);
}

void Potencia(Llamada& l) {
  if (l.AlgunNulo()) return l.Nulo();
  const double a = l.Numero(0), b = l.Numero(1);
  if (a == 0 && b < 0) LanzarNumero(kLlamadaIncorrecta);
  const double r = std::pow(a, b);
  if (std::isnan(r)) LanzarNumero(kLlamadaIncorrecta);
  l.DarNumero(r);
}

void Parecido(Llamada& l) {
  if (l.EsNulo(0) || l.EsNulo(1)) return l.Nulo();
  const auto comodines = l.Entero(2) != 0 ? base::Comodines::Dao : base::Comodines::Ado;
  const std::string_view texto = l.Texto(0), patron = l.Texto(1);
  l.DarEntero(base::Parecido(texto, patron, comodines, base::Igualdad::Pesos, l.Alrededor().orden) ? 1 : 0);
}

void AEntero(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarEntero(l.Entero(0));
}

constexpr Registro kAyudas[] = {
    {"jet_concat", -1, true, true, Concatenar},    {"jet_add", 3, true, true, Sumar},
    {"jet_num", 1, false, true, ComoNumero},       {"jet_div", 2, false, true, Dividir},
    {"jet_idiv", 2, false, true, DividirEntero},   {"jet_mod", 2, false, true, Resto},
    {"jet_pow", 2, false, true, Potencia},         {"jet_like", 3, false, true, Parecido},
    {"jet_to_int", 1, false, true, AEntero},       {"jet_to_single", 1, false, true, ASimple},
    {"jet_as_single", 1, false, true, ComoSimple}, {"jet_to_currency", 1, false, true, AMoneda},
    {"jet_to_number", 1, false, true, ANumero},    {"jet_to_date", 1, false, true, AFecha},
    {"jet_to_bool", 1, false, true, ABooleano},
};

}  // namespace

std::span<const Registro> AyudasDelTraductor() { return kAyudas; }

}  // namespace engine_sqlite
