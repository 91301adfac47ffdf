#include "base/like.h"

#include <string>

#include "base/error.h"
#include "base/text.h"

namespace base {
namespace {

[[noreturn]] void PatronIncorrecto() {
  constexpr int kPatronIncorrecto = 93;
  throw Error(DescripcionDeError(kPatronIncorrecto), kPatronIncorrecto);
}

bool EntreExtremos(char32_t c, char32_t desde, char32_t hasta, Igualdad igualdad, Orden orden) {
  if (igualdad == Igualdad::Exacta) {
    if (desde > hasta) PatronIncorrecto();
    return desde <= c && c <= hasta;
  }
  const auto texto = [](char32_t p) { return DePuntos(std::u32string_view(&p, 1)); };
  const std::string medio = texto(c), bajo = texto(desde), alto = texto(hasta);
  if (CompararTexto(bajo, alto, orden) > 0) PatronIncorrecto();
  return CompararTexto(bajo, medio, orden) <= 0 && CompararTexto(medio, alto, orden) <= 0;
}

// One step of a pattern: what a single character of the text must be, or any run of them.
struct Paso {
  enum class Que { Fin, Serie, Uno, Cifra, Literal, Lista } que = Que::Fin;
  char32_t literal = 0;         // folded
  std::string_view lista = {};  // inside the brackets, without the negation
  bool negada = false;
};

class Patron {
 public:
  Patron(std::string_view texto, Comodines comodines, Igualdad igualdad, Orden orden)
      : texto_(texto), dao_(comodines == Comodines::Dao), igualdad_(igualdad), orden_(orden) {}

  // The step at byte `i`, which moves past it.
  Paso Leer(std::size_t& i) const {
    Paso paso;
    while (texto_.substr(i, 2) == "[]") i += 2;  // stands for no character at all
    if (i >= texto_.size()) return paso;
    const char c = texto_[i];
    if (c == (dao_ ? '*' : '%')) {
      ++i;
      paso.que = Paso::Que::Serie;
    } else if (c == (dao_ ? '?' : '_')) {
      ++i;
      paso.que = Paso::Que::Uno;
    } else if (dao_ && c == '#') {
      ++i;
      paso.que = Paso::Que::Cifra;
    } else if (c == '[') {
      LeerLista(i, paso);
    } else {
      paso.que = Paso::Que::Literal;
      paso.literal = Plegado(SiguientePunto(texto_, i));
    }
    return paso;
  }

  bool Acepta(const Paso& paso, char32_t c) const {
    switch (paso.que) {
      case Paso::Que::Uno:
        return true;
      case Paso::Que::Cifra:
        return c >= '0' && c <= '9';
      case Paso::Que::Literal:
        return Plegado(c) == paso.literal;
      case Paso::Que::Lista:
        return EnLista(paso.lista, c) != paso.negada;
      default:
        return false;
    }
  }

 private:
  void LeerLista(std::size_t& i, Paso& paso) const {
    const std::size_t cierre = texto_.find(']', i + 1);
    if (cierre == std::string_view::npos) PatronIncorrecto();
    std::string_view dentro = texto_.substr(i + 1, cierre - i - 1);
    i = cierre + 1;
    if (dentro.size() > 1 && (dentro[0] == '!' || (!dao_ && dentro[0] == '^'))) {
      paso.negada = true;
      dentro.remove_prefix(1);
    }
    paso.que = Paso::Que::Lista;
    paso.lista = dentro;
  }

  bool EnLista(std::string_view lista, char32_t c) const {
    bool hallado = false;
    for (std::size_t k = 0; k < lista.size();) {
      const char32_t desde = SiguientePunto(lista, k);
      if (k + 1 < lista.size() && lista[k] == '-') {
        ++k;
        const char32_t hasta = SiguientePunto(lista, k);
        hallado = EntreExtremos(c, desde, hasta, igualdad_, orden_) || hallado;
      } else {
        hallado = hallado || Plegado(desde) == Plegado(c);
      }
    }
    return hallado;
  }

  char32_t Plegado(char32_t c) const { return igualdad_ == Igualdad::Pesos ? Plegar(c) : c; }

  std::string_view texto_;
  bool dao_;
  Igualdad igualdad_;
  Orden orden_;
};

}  // namespace

// Without recursion: on a mismatch only the last run of any characters is tried one longer.
bool Parecido(std::string_view texto, std::string_view patron, Comodines comodines, Igualdad igualdad,
              Orden orden) {
  const Patron p(patron, comodines, igualdad, orden);
  std::size_t i = 0, j = 0;
  bool hay_serie = false;
  std::size_t serie_texto = 0, serie_patron = 0;
  for (;;) {
    std::size_t sigue = j;
    const Paso paso = p.Leer(sigue);
    if (paso.que == Paso::Que::Serie) {
      hay_serie = true;
      serie_texto = i;
      serie_patron = j = sigue;
      continue;
    }
    if (i >= texto.size() && paso.que == Paso::Que::Fin) return true;
    if (i < texto.size() && paso.que != Paso::Que::Fin) {
      std::size_t avance = i;
      if (p.Acepta(paso, SiguientePunto(texto, avance))) {
        i = avance;
        j = sigue;
        continue;
      }
    }
    if (!hay_serie || serie_texto >= texto.size()) return false;
    SiguientePunto(texto, serie_texto);
    i = serie_texto;
    j = serie_patron;
  }
}

}  // namespace base
