// Texts to dates. A text is cut into at most one time of day and a run of date numbers with at most one month
// name; the numbers are then tried in the orders that they may stand in, the locale's first.
#include <vector>

#include "base/date.h"
#include "base/date_internal.h"
#include "base/dialect_number.h"
#include "base/text.h"
#include "base/text_internal.h"

namespace base {
namespace {

using internal::EsDigito;

struct Numero {
  int valor = 0;
  int cifras = 0;
};

struct Piezas {
  std::vector<Numero> numeros;  // of the date, in their order
  int mes = 0;                  // by its name
  bool hay_hora = false;
  long long segundo = 0;
};

enum class Franja { Ninguna, Am, Pm };

// The languages a month may be written in.
struct Palabras {
  const Locale* principal;
  const Locale* otro;  // may be null
};

class Lector {
 public:
  Lector(std::string_view texto, Palabras palabras) : resto_(texto), palabras_(palabras) {}

  bool Leer(Piezas& piezas) {
    SaltarBlancos();
    if (resto_.empty()) return false;
    while (!resto_.empty()) {
      const bool habia_hora = piezas.hay_hora;
      const bool leido = EsDigito(resto_[0]) ? LeerNumeroUHora(piezas) : LeerPalabra(piezas);
      if (!leido) return false;
      const bool es_hora = piezas.hay_hora != habia_hora;
      if (!es_hora && fecha_cerrada_) return false;
      const char antes = separador_;
      separador_ = LeerSeparador();
      // Only a blank or a comma parts a time from a date.
      if (es_hora && (EsSignoDeFecha(antes) || EsSignoDeFecha(separador_))) return false;
    }
    return separador_ == ' ';
  }

 private:
  void SaltarBlancos() {
    while (!resto_.empty() && (resto_[0] == ' ' || (resto_[0] >= '\t' && resto_[0] <= '\r')))
      resto_.remove_prefix(1);
  }

  static bool EsSignoDeFecha(char c) { return c == '/' || c == '-'; }

  // Blanks and at most one sign among them: that sign, or ' '.
  char LeerSeparador() {
    SaltarBlancos();
    if (resto_.empty() || (!EsSignoDeFecha(resto_[0]) && resto_[0] != ',')) return ' ';
    const char signo = resto_[0];
    resto_.remove_prefix(1);
    SaltarBlancos();
    return signo;
  }

  bool LeerNumero(Numero& n) {
    n = {};
    for (; !resto_.empty() && EsDigito(resto_[0]); resto_.remove_prefix(1)) {
      if (++n.cifras > 5) return false;
      n.valor = n.valor * 10 + (resto_[0] - '0');
    }
    return n.cifras > 0;
  }

  bool ConsumirFranja(Franja& franja) {
    const struct {
      std::string_view texto;
      Franja franja;
    } kFormas[] = {{"a. m.", Franja::Am}, {"p. m.", Franja::Pm}, {"a.m.", Franja::Am}, {"p.m.", Franja::Pm},
                   {"am", Franja::Am},    {"pm", Franja::Pm},    {"a", Franja::Am},    {"p", Franja::Pm}};
    for (const auto& f : kFormas) {
      if (!EmpiezaCon(resto_, f.texto, Comparar::SinCaso)) continue;
      const std::string_view detras = resto_.substr(f.texto.size());
      if (!detras.empty() && EsLetra(detras[0])) continue;
      resto_ = detras;
      franja = f.franja;
      return true;
    }
    return false;
  }

  static bool EsLetra(char c) {
    const char m = internal::MinAscii(c);
    return (m >= 'a' && m <= 'z') || static_cast<unsigned char>(c) >= 0x80;
  }

  // am/pm right after a time or a single number; it says nothing once the hour is above 12.
  static int HoraConFranja(int hora, Franja franja) {
    if (franja == Franja::Pm && hora < 12) return hora + 12;
    return franja == Franja::Am && hora == 12 ? 0 : hora;
  }

  bool LeerNumeroUHora(Piezas& piezas) {
    Numero n;
    if (!LeerNumero(n)) return false;
    Numero partes[3] = {n, {}, {}};
    int cuantas = 1;
    for (; !resto_.empty() && (resto_[0] == ':' || resto_[0] == '.'); ++cuantas) {
      resto_.remove_prefix(1);
      if (cuantas == 3 || !LeerNumero(partes[cuantas])) return false;
    }
    const std::string_view antes = resto_;
    SaltarBlancos();
    Franja franja = Franja::Ninguna;
    if (!ConsumirFranja(franja)) resto_ = antes;
    if (cuantas == 1 && franja == Franja::Ninguna) {
      piezas.numeros.push_back(n);
      return true;
    }
    const int hora = HoraConFranja(n.valor, franja);
    if (piezas.hay_hora || n.valor > 23 || partes[1].valor > 59 || partes[2].valor > 59) return false;
    // A time stands before or behind the date, never inside it.
    fecha_cerrada_ = !piezas.numeros.empty() || piezas.mes != 0;
    piezas.hay_hora = true;
    piezas.segundo = hora * 3600LL + partes[1].valor * 60LL + partes[2].valor;
    return true;
  }

  bool LeerPalabra(Piezas& piezas) {
    std::size_t largo = 0;
    while (largo < resto_.size() && EsLetra(resto_[largo])) ++largo;
    if (largo == 0 || piezas.mes != 0) return false;
    const std::string_view palabra = resto_.substr(0, largo);
    piezas.mes = MesDe(palabra, *palabras_.principal);
    if (piezas.mes == 0 && palabras_.otro != nullptr) piezas.mes = MesDe(palabra, *palabras_.otro);
    resto_.remove_prefix(largo);
    return piezas.mes != 0;
  }

  static int MesDe(std::string_view palabra, const Locale& locale) {
    for (std::size_t m = 0; m < 12; ++m)
      if (IgualSinCaso(palabra, locale.meses[m]) || IgualSinCaso(palabra, locale.meses_cortos[m]))
        return static_cast<int>(m) + 1;
    return IgualSinCaso(palabra, "sept") ? 9 : 0;
  }

  std::string_view resto_;
  Palabras palabras_;
  char separador_ = ' ';        // what was read last between two pieces
  bool fecha_cerrada_ = false;  // a time followed the date: no more of the date may come
};

// A number above 31 or written with four digits can only be a year.
bool SoloAnio(const Numero& n) { return n.valor > 31 || n.cifras > 3; }

std::optional<long long> Dia(int anio, const Numero& mes, const Numero& dia) {
  if (SoloAnio(mes) || SoloAnio(dia) || mes.valor < 1 || mes.valor > 12) return std::nullopt;
  if (anio < 100 || anio > 9999) return std::nullopt;
  if (dia.valor < 1 || dia.valor > internal::DiasDelMes(anio, mes.valor)) return std::nullopt;
  return internal::DiaDe(anio, mes.valor, dia.valor);
}

std::optional<long long> Dia(const Numero& anio, const Numero& mes, const Numero& dia) {
  return Dia(internal::AnioCompleto(anio.valor), mes, dia);
}

constexpr Numero kPrimero{1, 1};

std::optional<long long> DeDosNumeros(const Numero& a, const Numero& b, int anio_actual, OrdenFecha orden) {
  const bool dia_primero = orden == OrdenFecha::DiaMesAnio;
  if (const auto d = dia_primero ? Dia(anio_actual, b, a) : Dia(anio_actual, a, b)) return d;
  if (const auto d = dia_primero ? Dia(anio_actual, a, b) : Dia(anio_actual, b, a)) return d;
  // Month and year, whichever of the two can be the month.
  if (const auto d = Dia(b, a, kPrimero)) return d;
  return Dia(a, b, kPrimero);
}

std::optional<long long> DeTresNumeros(const Numero& a, const Numero& b, const Numero& c, OrdenFecha orden) {
  const auto dma = [&] { return Dia(c, b, a); };
  const auto mda = [&] { return Dia(c, a, b); };
  const bool dia_primero = orden == OrdenFecha::DiaMesAnio;
  if (const auto d = dia_primero ? dma() : mda()) return d;
  if (const auto d = Dia(a, b, c)) return d;  // year, month, day
  if (const auto d = Dia(a, c, b)) return d;  // year, day, month
  if (const auto d = dia_primero ? mda() : dma()) return d;
  return Dia(b, a, c);  // month, year, day
}

std::optional<long long> DiaDePiezas(const Piezas& p, int anio_actual, OrdenFecha orden) {
  const auto& n = p.numeros;
  if (p.mes != 0) {
    const Numero mes{p.mes, 1};
    if (n.size() == 1) {
      if (const auto d = Dia(anio_actual, mes, n[0])) return d;
      return Dia(n[0], mes, kPrimero);
    }
    if (n.size() != 2) return std::nullopt;
    if (const auto d = Dia(n[1], mes, n[0])) return d;
    return Dia(n[0], mes, n[1]);
  }
  if (n.size() == 2) return DeDosNumeros(n[0], n[1], anio_actual, orden);
  if (n.size() == 3) return DeTresNumeros(n[0], n[1], n[2], orden);
  return std::nullopt;
}

std::optional<Fecha> Leer(std::string_view texto, Fecha hoy, OrdenFecha orden, Palabras palabras) {
  Piezas piezas;
  if (!Lector(texto, palabras).Leer(piezas)) return std::nullopt;
  long long dia = 0;
  if (!piezas.numeros.empty() || piezas.mes != 0) {
    const auto leido = DiaDePiezas(piezas, Partes(hoy).anio, orden);
    if (!leido) return std::nullopt;
    dia = *leido;
  }
  return internal::Unir(dia,
                        static_cast<double>(piezas.segundo) / static_cast<double>(internal::kSegundosDia));
}

}  // namespace

std::optional<Fecha> FechaDeTexto(std::string_view texto, Fecha hoy, const Locale& locale) {
  if (const auto fecha = Leer(texto, hoy, locale.orden, {&locale, nullptr})) return fecha;
  const auto serie = DialectNumber(texto, locale);
  if (!serie || *serie <= static_cast<double>(internal::kDiaMinimo) - 1 ||
      *serie >= static_cast<double>(internal::kDiaMaximo) + 1)
    return std::nullopt;
  return Fecha{*serie};
}

bool EsFecha(std::string_view texto, Fecha hoy, const Locale& locale) {
  return Leer(texto, hoy, locale.orden, {&locale, nullptr}).has_value();
}

std::optional<Fecha> FechaDeLiteral(std::string_view texto, Fecha hoy) {
  return Leer(texto, hoy, OrdenFecha::MesDiaAnio, {&Locale::ingles(), &Locale::espanol()});
}

}  // namespace base
