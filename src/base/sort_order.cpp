#include "base/sort_order.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/sort_table_internal.h"
#include "base/text.h"

namespace base {
namespace {

constexpr std::uint8_t kSeparador = 0x01;
constexpr std::uint8_t kSinAcento = 0x02;
constexpr std::size_t kUnidadesDeIndice = 255;
constexpr std::size_t kLugaresMaximos = 0x1FFE;  // what the 15 bits of a special's place can hold

// One item of the first level: a character, or a digraph of the traditional order.
struct Elemento {
  Peso peso{};
  char32_t ajeno = 0;  // not 0: a character without weight, to be written by its code point
};

const Peso* PesoConocido(char32_t c) {
  if (c < kPesosLatin1.size()) return &kPesosLatin1[c];
  const auto it = std::lower_bound(kPesosOtros.begin(), kPesosOtros.end(), c,
                                   [](const PesoDe& p, char32_t x) { return p.punto < x; });
  return it != kPesosOtros.end() && it->punto == c ? &it->peso : nullptr;
}

char32_t Capital(char32_t c) {
  if (c < 0x80 || (c >= 0xD800 && c < 0xE000)) return c;
  const std::u32string puntos = base::APuntos(base::Mayusculas(base::DePuntos(std::u32string_view(&c, 1))));
  return puntos.size() == 1 ? puntos[0] : c;
}

bool EsLetra(std::string_view s, std::size_t i, char minuscula) {
  return i < s.size() && (s[i] == minuscula || s[i] == minuscula - 0x20);
}

// Reads the next item of `s`. False at the end.
bool Siguiente(std::string_view s, std::size_t& i, Orden orden, Elemento& e) {
  if (i >= s.size()) return false;
  e.ajeno = 0;
  if (orden == Orden::EspanolTradicional) {
    const bool ch = EsLetra(s, i, 'c') && EsLetra(s, i + 1, 'h');
    if (ch || (EsLetra(s, i, 'l') && EsLetra(s, i + 1, 'l'))) {
      e.peso = {static_cast<std::uint8_t>(ch ? 0x4E : 0x5F), 0x04, 0, 0, 1};
      i += 2;
      return true;
    }
  }
  const char32_t c = SiguientePunto(s, i);
  if (orden != Orden::General && (c == 0xF1 || c == 0xD1)) {
    e.peso = {0x63, 0x04, 0, 0, 1};
  } else if (const Peso* p = PesoConocido(c)) {
    e.peso = *p;
  } else {
    e.ajeno = Capital(c);
    e.peso = {0xF0, 0, 0, 0, 1};
  }
  return true;
}

// The four-byte form of a code point: every byte is 80 or more, after all weights and never a separator.
std::array<std::uint8_t, 4> BytesDeAjeno(char32_t c) {
  return {static_cast<std::uint8_t>(0xF0 | (c >> 18)), static_cast<std::uint8_t>(0x80 | ((c >> 12) & 0x3F)),
          static_cast<std::uint8_t>(0x80 | ((c >> 6) & 0x3F)), static_cast<std::uint8_t>(0x80 | (c & 0x3F))};
}

std::string_view SinBlancosFinales(std::string_view s) {
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  return s;
}

void AgregarEspecial(std::string& especiales, std::size_t lugares, std::uint8_t codigo) {
  const std::size_t n = std::min(lugares, kLugaresMaximos);
  const std::size_t v = 0x8000 | (7 + 4 * n);
  especiales += static_cast<char>(v >> 8);
  especiales += static_cast<char>(v & 0xFF);
  if (n ==
      kLugaresMaximos) {  // beyond what an index entry can hold: the place itself, so that keys still differ
    for (int k = 24; k >= 0; k -= 8) especiales += static_cast<char>((lugares >> k) & 0xFF);
  }
  especiales += '\x06';
  especiales += static_cast<char>(codigo);
}

// Weights of ASCII characters as one number, in key order; 0 where a text needs the long way.
constexpr std::array<std::uint16_t, 128> PesosLlanos() {
  std::array<std::uint16_t, 128> t{};
  for (std::size_t c = 0; c < t.size(); ++c) {
    const Peso& p = kPesosLatin1[c];
    t[c] = static_cast<std::uint16_t>(p.inicial << 8 | p.siguiente);
  }
  return t;
}
constexpr auto kLlanos = PesosLlanos();

std::uint16_t PesoLlano(char c, Orden orden) {
  const auto b = static_cast<unsigned char>(c);
  if (b >= 0x80) return 0;
  if (orden == Orden::EspanolTradicional && (b == 'c' || b == 'C' || b == 'l' || b == 'L')) return 0;
  return kLlanos[b];
}

constexpr bool Iguales(const Peso& a, const Peso& b) {
  return a.inicial == b.inicial && a.siguiente == b.siguiente && a.acento == b.acento &&
         a.especial == b.especial;
}

// For each Latin-1 character the first one of the same weight.
constexpr std::array<std::uint8_t, 256> Plegados() {
  std::array<std::uint8_t, 256> t{};
  for (std::size_t c = 0; c < t.size(); ++c) {
    std::size_t k = 0;
    while (!Iguales(kPesosLatin1[k], kPesosLatin1[c])) ++k;
    t[c] = static_cast<std::uint8_t>(k);
  }
  return t;
}
constexpr auto kPlegados = Plegados();

int Signo(int v) { return v < 0 ? -1 : (v > 0 ? 1 : 0); }

// The bytes of the first level, one by one.
class Primarios {
 public:
  Primarios(std::string_view texto, Orden orden) : texto_(texto), orden_(orden) {}
  int Proximo() {  // -1 at the end
    while (k_ == n_) {
      Elemento e;
      if (!Siguiente(texto_, i_, orden_, e)) return -1;
      k_ = 0;
      n_ = 0;
      if (e.ajeno != 0) {
        bytes_ = BytesDeAjeno(e.ajeno);
        n_ = 4;
      } else if (e.peso.inicial != 0) {
        bytes_ = {e.peso.inicial, e.peso.siguiente, 0, 0};
        n_ = e.peso.siguiente != 0 ? 2 : 1;
      }
    }
    return bytes_[k_++];
  }

 private:
  std::string_view texto_;
  Orden orden_;
  std::size_t i_ = 0;
  std::array<std::uint8_t, 4> bytes_{};
  std::size_t k_ = 0, n_ = 0;
};

int CompararLargo(std::string_view a, std::string_view b, Orden orden) {
  Primarios pa(a, orden), pb(b, orden);
  for (;;) {
    const int x = pa.Proximo();
    const int y = pb.Proximo();
    if (x != y) return x < y ? -1 : 1;
    if (x < 0) break;
  }
  return Signo(ClaveDeOrden(a, orden).compare(ClaveDeOrden(b, orden)));
}

}  // namespace

char32_t SiguientePunto(std::string_view s, std::size_t& i) {
  const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
  const unsigned char b = byte(i++);
  if (b < 0x80) return b;
  const int mas = b >= 0xF0 && b < 0xF5 ? 3 : (b >= 0xE0 && b < 0xF0 ? 2 : (b >= 0xC2 && b < 0xE0 ? 1 : 0));
  constexpr std::array<char32_t, 4> kMinimos = {0, 0x80, 0x800, 0x10000};
  if (mas == 0 || i + mas > s.size()) return 0xDC00 + b;
  char32_t c = b & (0x3F >> mas);
  for (int k = 0; k < mas; ++k) {
    const unsigned char m = byte(i + k);
    if ((m & 0xC0) != 0x80) return 0xDC00 + b;
    c = (c << 6) | (m & 0x3F);
  }
  if (c < kMinimos[mas] || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) return 0xDC00 + b;
  i += mas;
  return c;
}

std::string ClaveDeOrden(std::string_view utf8, Orden orden) {
  const std::string_view texto = SinBlancosFinales(utf8);
  std::string clave, acentos, especiales;
  clave.reserve(texto.size() + 8);
  std::size_t lugares = 0;
  Elemento e;
  for (std::size_t i = 0; Siguiente(texto, i, orden, e);) {
    if (e.peso.especial != 0) AgregarEspecial(especiales, lugares, e.peso.especial);
    if (e.peso.inicial == 0) continue;
    if (e.ajeno != 0) {
      for (const std::uint8_t b : BytesDeAjeno(e.ajeno)) clave += static_cast<char>(b);
    } else {
      clave += static_cast<char>(e.peso.inicial);
      if (e.peso.siguiente != 0) clave += static_cast<char>(e.peso.siguiente);
    }
    lugares += e.peso.lugares;
    if (e.peso.acento > kSinAcento) {
      acentos.resize(lugares - 1, kSinAcento);
      acentos += static_cast<char>(e.peso.acento);
    }
  }
  clave += static_cast<char>(kSeparador);
  clave += acentos;
  if (!especiales.empty()) {
    clave.append(3, static_cast<char>(kSeparador));
    clave += especiales;
  }
  clave += '\0';
  return clave;
}

std::string ClaveDeIndice(std::string_view utf8, Orden orden) {
  std::size_t i = 0;
  for (std::size_t unidades = 0; i < utf8.size();) {
    std::size_t j = i;
    unidades += SiguientePunto(utf8, j) > 0xFFFF ? 2 : 1;
    if (unidades > kUnidadesDeIndice) break;
    i = j;
  }
  return ClaveDeOrden(utf8.substr(0, i), orden);
}

bool TienePesos(std::string_view utf8) {
  for (std::size_t i = 0; i < utf8.size();)
    if (PesoConocido(SiguientePunto(utf8, i)) == nullptr) return false;
  return true;
}

int CompararTexto(std::string_view a, std::string_view b, Orden orden) {
  a = SinBlancosFinales(a);
  b = SinBlancosFinales(b);
  const std::size_t n = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < n; ++i) {
    const std::uint16_t x = PesoLlano(a[i], orden);
    const std::uint16_t y = PesoLlano(b[i], orden);
    if (x == 0 || y == 0) return a == b ? 0 : CompararLargo(a, b, orden);
    if (x != y) return x < y ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  // The longer one is greater when it goes on with something that has inline bytes.
  const char siguiente = a.size() > n ? a[n] : b[n];
  if (PesoLlano(siguiente, orden) == 0) return CompararLargo(a, b, orden);
  return a.size() > n ? 1 : -1;
}

char32_t Plegar(char32_t c) {
  if (c < kPlegados.size()) return kPlegados[c];
  const Peso* p = PesoConocido(c);
  if (p == nullptr) return Capital(c);
  for (char32_t k = 0; k < kPesosLatin1.size(); ++k)
    if (Iguales(*p, kPesosLatin1[k])) return k;
  for (const PesoDe& otro : kPesosOtros)
    if (Iguales(*p, otro.peso)) return otro.punto;
  return c;
}

std::uint16_t LanguageOf(Orden order) {
  switch (order) {
    case Orden::General:
      return 1033;
    case Orden::EspanolTradicional:
      return 1034;
    case Orden::EspanolModerno:
      break;
  }
  return 3082;
}

std::optional<Orden> OrderOfLanguage(std::int64_t language) {
  for (const Orden order : {Orden::General, Orden::EspanolModerno, Orden::EspanolTradicional})
    if (LanguageOf(order) == language) return order;
  return std::nullopt;
}

}  // namespace base
