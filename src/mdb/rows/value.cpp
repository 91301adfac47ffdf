#include "mdb/rows/value.h"

#include <algorithm>
#include <charconv>

namespace mdb {
namespace {

constexpr std::string_view kHex = "0123456789ABCDEF";
constexpr std::size_t kMasDigitos = 28;

int DigitoHex(char c) {
  if (c >= 'a' && c <= 'f') c = static_cast<char>(c - 32);
  const auto pos = kHex.find(c);
  return pos == std::string_view::npos ? -1 : static_cast<int>(pos);
}

// Dashes of the printed form stand before these bytes.
bool GuionAntes(std::size_t byte) { return byte == 4 || byte == 6 || byte == 8 || byte == 10; }

// magnitude = magnitude * by + plus, and what runs over; magnitude /= by, and what is left.
std::uint32_t Multiplicar(std::array<std::uint32_t, 4>& m, std::uint32_t por, std::uint32_t mas) {
  std::uint64_t lleva = mas;
  for (std::size_t i = 4; i-- > 0;) {
    lleva += std::uint64_t{m[i]} * por;
    m[i] = static_cast<std::uint32_t>(lleva);
    lleva >>= 32;
  }
  return static_cast<std::uint32_t>(lleva);
}
std::uint32_t Dividir(std::array<std::uint32_t, 4>& m, std::uint32_t por) {
  std::uint64_t resto = 0;
  for (auto& palabra : m) {
    resto = resto << 32 | palabra;
    palabra = static_cast<std::uint32_t>(resto / por);
    resto %= por;
  }
  return static_cast<std::uint32_t>(resto);
}

[[noreturn]] void NoEsNumero(std::string_view texto) {
  throw base::Error("\"" + std::string(texto) + "\" no es un número", 13);
}

// A decimal text taken apart: digits, and how many of them stand before the point (may be below 0).
struct Partido {
  bool negativo = false;
  std::string digitos;
  int antes = 0;
};

int LeerExponente(std::string_view texto, std::string_view exponente) {
  if (!exponente.empty() && exponente[0] == '+') exponente.remove_prefix(1);
  int n = 0;
  const auto [fin, error] = std::from_chars(exponente.data(), exponente.data() + exponente.size(), n);
  if (error != std::errc() || fin != exponente.data() + exponente.size() || n > 1000 || n < -1000)
    NoEsNumero(texto);
  return n;
}

Partido Partir(std::string_view texto) {
  Partido p;
  std::string_view resto = texto;
  if (!resto.empty() && (resto[0] == '-' || resto[0] == '+')) {
    p.negativo = resto[0] == '-';
    resto.remove_prefix(1);
  }
  bool punto = false;
  std::size_t i = 0;
  for (; i < resto.size(); ++i) {
    if (resto[i] == '.' && !punto) {
      punto = true;
    } else if (resto[i] >= '0' && resto[i] <= '9') {
      p.digitos += resto[i];
      if (!punto) ++p.antes;
    } else {
      break;
    }
  }
  if (p.digitos.empty()) NoEsNumero(texto);
  if (i < resto.size()) {
    if (resto[i] != 'e' && resto[i] != 'E') NoEsNumero(texto);
    p.antes += LeerExponente(texto, resto.substr(i + 1));
  }
  return p;
}

// Whether the digits from `quedan` on round the ones before it up: more than a half, or a half behind an odd
// digit.
bool SubeAlRedondear(const std::string& digitos, std::ptrdiff_t quedan) {
  if (quedan < 0) return false;
  const auto n = static_cast<std::size_t>(quedan);
  if (n >= digitos.size() || digitos[n] < '5') return false;
  if (digitos[n] > '5' || digitos.find_first_not_of('0', n + 1) != std::string::npos) return true;
  return n > 0 && (digitos[n - 1] - '0') % 2 == 1;
}

}  // namespace

std::string Guid::Texto() const {
  std::string texto = "{";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (GuionAntes(i)) texto += '-';
    texto += kHex[bytes[i] >> 4];
    texto += kHex[bytes[i] & 15];
  }
  return texto + "}";
}

Guid GuidDeTexto(std::string_view texto) {
  const auto falla = [&] { throw base::Error("\"" + std::string(texto) + "\" no es un GUID", 13); };
  std::string_view s = texto;
  if (s.size() == 38 && s.front() == '{' && s.back() == '}') s = s.substr(1, 36);
  if (s.size() != 36) falla();
  Guid g;
  std::size_t p = 0;
  for (std::size_t i = 0; i < 16; ++i) {
    if (GuionAntes(i) && s[p++] != '-') falla();
    const int alto = DigitoHex(s[p]), bajo = DigitoHex(s[p + 1]);
    if (alto < 0 || bajo < 0) falla();
    g.bytes[i] = static_cast<std::uint8_t>(alto << 4 | bajo);
    p += 2;
  }
  return g;
}

std::string Decimal::Texto() const {
  auto m = magnitud;
  const auto es_cero = [&] { return std::all_of(m.begin(), m.end(), [](auto w) { return w == 0; }); };
  const bool cero = es_cero();
  std::string texto;  // last digit first
  while (!es_cero()) texto += static_cast<char>('0' + Dividir(m, 10));
  if (texto.size() <= escala) texto.append(escala + 1U - texto.size(), '0');
  if (escala > 0) texto.insert(escala, 1, '.');
  if (negativo && !cero) texto += '-';
  std::reverse(texto.begin(), texto.end());
  return texto;
}

double Decimal::Numero() const {
  const std::string texto = Texto();
  double n = 0;
  std::from_chars(texto.data(), texto.data() + texto.size(), n);
  return n;
}

Decimal DecimalDeTexto(std::string_view texto, std::uint8_t escala) {
  Partido p = Partir(texto);
  const std::ptrdiff_t quedan = std::ptrdiff_t{p.antes} + escala;  // digits of the magnitude
  const bool sube = SubeAlRedondear(p.digitos, quedan);
  std::string enteros;
  if (quedan > 0) {
    enteros = p.digitos.substr(0, static_cast<std::size_t>(quedan));
    const auto significativo = enteros.find_first_not_of('0');
    if (significativo == std::string::npos) {
      enteros.clear();
    } else {
      enteros.append(static_cast<std::size_t>(quedan) - enteros.size(), '0');
      enteros.erase(0, significativo);
    }
  }
  Decimal d;
  d.escala = escala;
  const auto no_cabe = [&] {
    throw base::Error("El número " + std::string(texto) + " no cabe en una columna decimal", 6);
  };
  if (enteros.size() > kMasDigitos) no_cabe();
  for (const char c : enteros) Multiplicar(d.magnitud, 10, static_cast<std::uint32_t>(c - '0'));
  if (sube) {
    Multiplicar(d.magnitud, 1, 1);
    if (enteros.size() == kMasDigitos && enteros.find_first_not_of('9') == std::string::npos) no_cabe();
  }
  const bool cero = std::all_of(d.magnitud.begin(), d.magnitud.end(), [](auto w) { return w == 0; });
  d.negativo = p.negativo && !cero;
  return d;
}

}  // namespace mdb
