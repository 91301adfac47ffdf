// Number masks.
#include <algorithm>
#include <cmath>

#include "base/format_internal.h"
#include "base/number.h"
#include "base/number_internal.h"
#include "base/text_internal.h"

namespace base::internal {
namespace {

enum class Clase { Literal, Cero, Numeral, Punto, Porcentaje, Exponente };

struct Ficha {
  Clase clase;
  std::string literal;
};

// One section of a mask, with what its signs say together.
struct Seccion {
  std::vector<Ficha> fichas;
  int enteros = 0;          // places before the decimal sign
  int fijos = 0;            // of them, from the first "0" on
  int decimales = 0;        // places behind it
  int decimales_fijos = 0;  // of them, up to the last "0"
  int escala = 0;           // power of ten that the number is multiplied by
  bool miles = false;
  bool con_exponente = false;
  bool signo_exponente = false;  // "E+": a plus is printed too
  char letra_exponente = 'E';
  int cifras_exponente = 0;
};

class Analizador {
 public:
  explicit Analizador(std::string_view mascara) : mascara_(mascara) {}

  Seccion Analizar() {
    for (std::size_t i = 0; i < mascara_.size();) {
      std::string literal;
      if (TomarLiteral(mascara_, i, literal)) {
        Agregar(Clase::Literal, std::move(literal));
      } else if (!Exponente(i)) {
        Signo(i);
      }
    }
    if (!en_fraccion_) s_.escala -= 3 * comas_;
    return std::move(s_);
  }

 private:
  void Agregar(Clase clase, std::string literal = {}) { s_.fichas.push_back({clase, std::move(literal)}); }

  // "E+00", "e-0" …: once, behind a digit place.
  bool Exponente(std::size_t& i) {
    if (s_.con_exponente || s_.enteros + s_.decimales == 0 || MinAscii(mascara_[i]) != 'e') return false;
    if (i + 1 >= mascara_.size() || (mascara_[i + 1] != '+' && mascara_[i + 1] != '-')) return false;
    s_.con_exponente = true;
    s_.letra_exponente = mascara_[i];
    s_.signo_exponente = mascara_[i + 1] == '+';
    for (i += 2; i < mascara_.size() && (mascara_[i] == '0' || mascara_[i] == '#'); ++i)
      if (mascara_[i] == '0') ++s_.cifras_exponente;
    Agregar(Clase::Exponente);
    return true;
  }

  void Lugar(bool cero) {
    Agregar(cero ? Clase::Cero : Clase::Numeral);
    if (en_fraccion_) {
      ++s_.decimales;
      if (cero) s_.decimales_fijos = s_.decimales;
      return;
    }
    if (comas_ > 0) s_.miles = true;
    comas_ = 0;
    ++s_.enteros;
    if (cero || s_.fijos > 0) ++s_.fijos;
  }

  void Signo(std::size_t& i) {
    const char c = mascara_[i];
    if (c == '0' || c == '#') {
      Lugar(c == '0');
    } else if (c == '.' && !en_fraccion_) {
      s_.escala -= 3 * comas_;  // thousands signs right before it scale by 1000 each
      en_fraccion_ = true;
      Agregar(Clase::Punto);
    } else if (c == ',') {
      if (!en_fraccion_ && s_.enteros > 0) ++comas_;
    } else if (c == '%') {
      s_.escala += 2;
      Agregar(Clase::Porcentaje);
    } else {
      const std::size_t largo = LargoCaracter(mascara_, i);
      Agregar(Clase::Literal, std::string(mascara_.substr(i, largo)));
      i += largo;
      return;
    }
    ++i;
  }

  std::string_view mascara_;
  Seccion s_;
  bool en_fraccion_ = false;
  int comas_ = 0;  // since the last place: thousands when a place follows, a scale otherwise
};

// The digits that a section prints.
struct Cifras {
  std::string enteros, fraccion;
  int exponente = 0;
};

Cifras Repartir(Decimal& d, const Seccion& s) {
  Cifras c;
  d.exponente += d.EsCero() ? 0 : s.escala;
  if (s.con_exponente && !d.EsCero()) {
    c.exponente = d.exponente - s.enteros;
    d.exponente = s.enteros;
    RedondearDecimal(d, s.decimales, Medio::Afuera);
    if (d.exponente > s.enteros) {  // 9.99 became 10.0
      ++c.exponente;
      --d.exponente;
    }
  } else {
    RedondearDecimal(d, s.decimales, Medio::Afuera);
  }
  const auto n = static_cast<int>(d.digitos.size());
  const int enteros = std::max(d.exponente, 0);
  c.enteros = d.digitos.substr(0, static_cast<std::size_t>(std::min(enteros, n)));
  c.enteros.append(static_cast<std::size_t>(enteros) - c.enteros.size(), '0');
  if (d.exponente < 0) c.fraccion.assign(static_cast<std::size_t>(-d.exponente), '0');
  if (n > enteros) c.fraccion += d.digitos.substr(static_cast<std::size_t>(enteros));
  if (static_cast<int>(c.enteros.size()) < s.fijos)
    c.enteros.insert(0, static_cast<std::size_t>(s.fijos) - c.enteros.size(), '0');
  if (static_cast<int>(c.fraccion.size()) < s.decimales_fijos)
    c.fraccion.append(static_cast<std::size_t>(s.decimales_fijos) - c.fraccion.size(), '0');
  return c;
}

class EscritorNumero {
 public:
  EscritorNumero(const Seccion& seccion, const Cifras& cifras, const Locale& locale)
      : s_(seccion), c_(cifras), locale_(locale), faltan_(seccion.enteros) {}

  std::string Escribir() {
    for (const auto& ficha : s_.fichas) {
      switch (ficha.clase) {
        case Clase::Literal:
          salida_ += ficha.literal;
          break;
        case Clase::Cero:
        case Clase::Numeral:
          Lugar();
          break;
        case Clase::Punto:
          Enteros(c_.enteros.size());  // a mask without places in front drops nothing
          salida_ += locale_.decimal;
          en_fraccion_ = true;
          break;
        case Clase::Porcentaje:
          salida_ += '%';
          break;
        case Clase::Exponente:
          Exponente();
          break;
      }
    }
    return std::move(salida_);
  }

 private:
  void Lugar() {
    if (en_fraccion_) {
      if (k_ < c_.fraccion.size()) salida_ += c_.fraccion[k_++];
      return;
    }
    // Digits in excess of the places all stand at the first one.
    --faltan_;
    const auto quedan = static_cast<std::size_t>(faltan_);
    if (c_.enteros.size() > quedan) Enteros(c_.enteros.size() - quedan);
  }

  // Prints integer digits up to the `hasta`-th.
  void Enteros(std::size_t hasta) {
    for (; i_ < hasta; ++i_) {
      salida_ += c_.enteros[i_];
      const std::size_t detras = c_.enteros.size() - i_ - 1;
      if (s_.miles && detras > 0 && detras % 3 == 0) salida_ += locale_.miles;
    }
  }

  void Exponente() {
    salida_ += s_.letra_exponente;
    if (c_.exponente < 0) {
      salida_ += '-';
    } else if (s_.signo_exponente) {
      salida_ += '+';
    }
    const std::string cifras = std::to_string(std::abs(c_.exponente));
    const auto minimo = static_cast<std::size_t>(s_.cifras_exponente);
    if (cifras.size() < minimo) salida_.append(minimo - cifras.size(), '0');
    salida_ += cifras;
  }

  const Seccion& s_;
  const Cifras& c_;
  const Locale& locale_;
  std::string salida_;
  int faltan_;
  std::size_t i_ = 0, k_ = 0;
  bool en_fraccion_ = false;
};

}  // namespace

std::string FormatearNumero(double numero, std::string_view mascara, const Locale& locale) {
  if (!std::isfinite(numero)) return TextoDeNumero(numero, locale);
  const auto secciones = Secciones(mascara);
  // An empty section prints as the first one does.
  const bool negativa = numero < 0 && secciones.size() > 1 && !secciones[1].empty();
  const bool cero = numero == 0 && secciones.size() > 2 && !secciones[2].empty();
  const Seccion seccion = Analizador(negativa ? secciones[1] : cero ? secciones[2] : secciones[0]).Analizar();
  Decimal d = DeDoble(numero);
  const bool signo = d.negativo && !negativa;
  const Cifras cifras = Repartir(d, seccion);
  // What rounds to zero loses its sign.
  std::string texto(signo && !d.EsCero() ? 1 : 0, '-');
  return texto += EscritorNumero(seccion, cifras, locale).Escribir();
}

}  // namespace base::internal
