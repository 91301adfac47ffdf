// Upper and lower case of the alphabets that a payroll base may hold.
#include <cstring>
#include <string>

#include "base/text.h"
#include "base/text_internal.h"

namespace base {
namespace internal {
namespace {

// Blocks where capital and small letters alternate; `mayuscula_par` tells which of them is even.
struct Alternos {
  char32_t desde, hasta;
  bool mayuscula_par;
};
constexpr Alternos kAlternos[] = {
    {0x100, 0x12F, true}, {0x132, 0x137, true},  {0x139, 0x148, false},
    {0x14A, 0x177, true}, {0x179, 0x17E, false}, {0x460, 0x481, true},
    {0x48A, 0x4BF, true}, {0x4C1, 0x4CE, false}, {0x4D0, 0x52F, true},
};

// Runs of capitals whose small letters lie at a fixed distance.
struct Corridos {
  char32_t desde, hasta;  // of the capitals
  int distancia;
};
constexpr Corridos kCorridos[] = {
    {0xC0, 0xD6, 32},   {0xD8, 0xDE, 32},   {0x178, 0x178, -121}, {0x386, 0x386, 38},
    {0x388, 0x38A, 37}, {0x38C, 0x38C, 64}, {0x38E, 0x38F, 63},   {0x391, 0x3A1, 32},
    {0x3A3, 0x3AB, 32}, {0x400, 0x40F, 80}, {0x410, 0x42F, 32},   {0x4C0, 0x4C0, 15},
};

char32_t Mover(char32_t punto, int distancia) {
  return static_cast<char32_t>(static_cast<int>(punto) + distancia);
}

}  // namespace

char32_t PuntoMayuscula(char32_t punto) {
  if (punto < 0x80) return punto >= 'a' && punto <= 'z' ? punto - 32 : punto;
  for (const auto& a : kAlternos)
    if (punto >= a.desde && punto <= a.hasta)
      return ((punto & 1U) == 0) == a.mayuscula_par ? punto : punto - 1;
  for (const auto& c : kCorridos)
    if (punto >= Mover(c.desde, c.distancia) && punto <= Mover(c.hasta, c.distancia))
      return Mover(punto, -c.distancia);
  return punto;
}

char32_t PuntoMinuscula(char32_t punto) {
  if (punto < 0x80) return punto >= 'A' && punto <= 'Z' ? punto + 32 : punto;
  for (const auto& a : kAlternos)
    if (punto >= a.desde && punto <= a.hasta)
      return ((punto & 1U) == 0) == a.mayuscula_par ? punto + 1 : punto;
  for (const auto& c : kCorridos)
    if (punto >= c.desde && punto <= c.hasta) return Mover(punto, c.distancia);
  return punto;
}

bool EsAscii(std::string_view texto) {
  std::size_t i = 0;
  for (; i + 8 <= texto.size(); i += 8) {
    std::uint64_t ocho;
    std::memcpy(&ocho, texto.data() + i, 8);
    if ((ocho & 0x8080808080808080ULL) != 0) return false;
  }
  for (; i < texto.size(); ++i)
    if (static_cast<unsigned char>(texto[i]) >= 0x80) return false;
  return true;
}

}  // namespace internal

namespace {

// A letter with a partner takes two bytes at most, and so does its partner: the text is changed in place.
template <char32_t (*Cambiar)(char32_t), char (*CambiarAscii)(char)>
std::string Convertir(std::string_view texto) {
  std::string salida(texto);
  for (std::size_t i = 0; i < salida.size();) {
    const auto byte = static_cast<unsigned char>(salida[i]);
    if (byte < 0x80) {
      salida[i] = CambiarAscii(salida[i]);
      ++i;
      continue;
    }
    const std::size_t largo = internal::LargoCaracter(texto, i);
    if (largo == 2) {
      const char32_t punto = Cambiar(internal::PuntoEn(texto, i, 2));
      salida[i] = static_cast<char>(0xC0 | (punto >> 6));
      salida[i + 1] = static_cast<char>(0x80 | (punto & 0x3F));
    }
    i += largo;
  }
  return salida;
}

}  // namespace

std::string Mayusculas(std::string_view texto) {
  return Convertir<internal::PuntoMayuscula, internal::MayAscii>(texto);
}

std::string Minusculas(std::string_view texto) {
  return Convertir<internal::PuntoMinuscula, internal::MinAscii>(texto);
}

bool IgualSinCaso(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size();) {
    const bool ascii = (static_cast<unsigned char>(a[i]) | static_cast<unsigned char>(b[i])) < 0x80;
    if (ascii || a[i] == b[i]) {
      if (internal::MinAscii(a[i]) != internal::MinAscii(b[i])) return false;
      ++i;
      continue;
    }
    // A second byte differs under an equal first one: take both characters from their start.
    while (i > 0 && (static_cast<unsigned char>(a[i]) & 0xC0) == 0x80) --i;
    return Minusculas(a.substr(i)) == Minusculas(b.substr(i));
  }
  return true;
}

}  // namespace base
