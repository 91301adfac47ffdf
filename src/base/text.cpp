#include "base/text.h"

#include <algorithm>

#include "base/text_internal.h"

namespace base {
namespace internal {

std::size_t LargoCaracter(std::string_view texto, std::size_t i) {
  const auto byte = [&](std::size_t k) -> unsigned {
    return i + k < texto.size() ? static_cast<unsigned char>(texto[i + k]) : 0U;
  };
  const auto sigue = [&](std::size_t k) { return (byte(k) & 0xC0U) == 0x80U; };
  const unsigned b = byte(0);
  if (b < 0xC2) return 1;
  if (b < 0xE0) return sigue(1) ? 2 : 1;
  if (b < 0xF0) {
    if (!sigue(1) || !sigue(2)) return 1;
    if (b == 0xE0 && byte(1) < 0xA0) return 1;   // overlong
    if (b == 0xED && byte(1) >= 0xA0) return 1;  // surrogate
    return 3;
  }
  if (b > 0xF4 || !sigue(1) || !sigue(2) || !sigue(3)) return 1;
  if ((b == 0xF0 && byte(1) < 0x90) || (b == 0xF4 && byte(1) >= 0x90)) return 1;
  return 4;
}

char32_t PuntoEn(std::string_view texto, std::size_t i, std::size_t largo) {
  const auto b = [&](std::size_t k) {
    return static_cast<char32_t>(static_cast<unsigned char>(texto[i + k]));
  };
  switch (largo) {
    case 2:
      return (b(0) & 0x1F) << 6 | (b(1) & 0x3F);
    case 3:
      return (b(0) & 0x0F) << 12 | (b(1) & 0x3F) << 6 | (b(2) & 0x3F);
    case 4:
      return (b(0) & 0x07) << 18 | (b(1) & 0x3F) << 12 | (b(2) & 0x3F) << 6 | (b(3) & 0x3F);
    default:
      return b(0) < 0x80 ? b(0) : 0xDC00 + b(0);
  }
}

}  // namespace internal

namespace {

// Byte offset of the character after `cantidad` characters counted from byte `desde`, at most the end.
std::size_t Avanzar(std::string_view texto, std::size_t desde, std::size_t cantidad) {
  std::size_t i = desde;
  for (; cantidad > 0 && i < texto.size(); --cantidad)
    i += static_cast<unsigned char>(texto[i]) < 0x80 ? 1 : internal::LargoCaracter(texto, i);
  return i;
}

bool IgualAsciiSinCaso(const char* a, const char* b, std::size_t largo) {
  for (std::size_t i = 0; i < largo; ++i)
    if (internal::MinAscii(a[i]) != internal::MinAscii(b[i])) return false;
  return true;
}

}  // namespace

std::string_view TrimVista(std::string_view texto) {
  while (!texto.empty() && texto.front() == ' ') texto.remove_prefix(1);
  while (!texto.empty() && texto.back() == ' ') texto.remove_suffix(1);
  return texto;
}

std::string Trim(std::string_view texto) { return std::string(TrimVista(texto)); }

std::size_t Longitud(std::string_view texto) {
  if (internal::EsAscii(texto)) return texto.size();
  std::size_t n = 0;
  for (std::size_t i = 0; i < texto.size(); ++n) i += internal::LargoCaracter(texto, i);
  return n;
}

std::string Mid(std::string_view texto, std::ptrdiff_t desde, std::ptrdiff_t cantidad) {
  const std::size_t inicio = desde <= 1 ? 0 : Avanzar(texto, 0, static_cast<std::size_t>(desde - 1));
  if (cantidad < 0) return std::string(texto.substr(inicio));
  const std::size_t fin = Avanzar(texto, inicio, static_cast<std::size_t>(cantidad));
  return std::string(texto.substr(inicio, fin - inicio));
}

std::string Left(std::string_view texto, std::ptrdiff_t cantidad) {
  return cantidad <= 0 ? std::string() : Mid(texto, 1, cantidad);
}

std::string Right(std::string_view texto, std::ptrdiff_t cantidad) {
  if (cantidad <= 0) return {};
  const auto largo = static_cast<std::ptrdiff_t>(Longitud(texto));
  return cantidad >= largo ? std::string(texto) : Mid(texto, largo - cantidad + 1);
}

std::size_t Buscar(std::string_view texto, std::string_view aguja, std::size_t desde, Comparar modo) {
  if (modo == Comparar::Exacto) return texto.find(aguja, desde);
  if (desde > texto.size()) return std::string_view::npos;
  if (aguja.empty()) return desde;
  if (!internal::EsAscii(aguja)) {
    const std::size_t hallado = Minusculas(texto.substr(desde)).find(Minusculas(aguja));
    return hallado == std::string::npos ? hallado : hallado + desde;
  }
  const char primera = internal::MinAscii(aguja[0]);
  for (std::size_t i = desde; i + aguja.size() <= texto.size(); ++i)
    if (internal::MinAscii(texto[i]) == primera &&
        IgualAsciiSinCaso(texto.data() + i, aguja.data(), aguja.size()))
      return i;
  return std::string_view::npos;
}

bool Contiene(std::string_view texto, std::string_view aguja, Comparar modo) {
  return Buscar(texto, aguja, 0, modo) != std::string_view::npos;
}

std::string Reemplazar(std::string_view texto, std::string_view de, std::string_view por, Comparar modo) {
  if (de.empty()) return std::string(texto);
  // Case folding keeps byte lengths, so that the offsets found in the folded text hold in the text.
  std::string plegado, de_plegado;
  std::string_view donde = texto, que = de;
  if (modo == Comparar::SinCaso && !internal::EsAscii(de)) {
    plegado = Minusculas(texto);
    de_plegado = Minusculas(de);
    donde = plegado;
    que = de_plegado;
    modo = Comparar::Exacto;
  }
  std::string salida;
  std::size_t i = 0;
  for (std::size_t h; (h = Buscar(donde, que, i, modo)) != std::string_view::npos; i = h + de.size())
    salida.append(texto, i, h - i).append(por);
  return salida.append(texto.substr(i));
}

void SplitVistas(std::string_view texto, std::string_view separador, std::vector<std::string_view>& piezas) {
  piezas.clear();
  std::size_t i = 0;
  if (!separador.empty())
    for (std::size_t h; (h = texto.find(separador, i)) != std::string_view::npos; i = h + separador.size())
      piezas.push_back(texto.substr(i, h - i));
  piezas.push_back(texto.substr(i));
}

std::vector<std::string> Split(std::string_view texto, std::string_view separador) {
  std::vector<std::string_view> vistas;
  SplitVistas(texto, separador, vistas);
  return {vistas.begin(), vistas.end()};
}

std::vector<std::string_view> SplitLines(std::string_view text) {
  constexpr std::size_t kNone = std::string_view::npos;
  std::vector<std::string_view> lines;
  std::size_t start = 0, lf = text.find('\n'), cr = text.find('\r');
  while (lf != kNone || cr != kNone) {
    const std::size_t end = std::min(lf, cr);
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
    if (end == cr && lf == start) ++start;  // one end of two characters
    // Each looks on from where it found its last one, so that both together pass over the text once.
    if (cr != kNone && cr < start) cr = text.find('\r', start);
    if (lf != kNone && lf < start) lf = text.find('\n', start);
  }
  lines.push_back(text.substr(start));
  return lines;
}

std::vector<std::string> Partir(std::string_view texto, std::string_view separador, int limite,
                                Comparar modo) {
  std::vector<std::string> piezas;
  if (texto.empty() || limite == 0) return piezas;
  std::size_t i = 0;
  while (!separador.empty() && (limite < 0 || piezas.size() + 1 < static_cast<std::size_t>(limite))) {
    const std::size_t h = Buscar(texto, separador, i, modo);
    if (h == std::string_view::npos) break;
    piezas.emplace_back(texto.substr(i, h - i));
    i = h + separador.size();
  }
  piezas.emplace_back(texto.substr(i));
  return piezas;
}

std::string Join(const std::vector<std::string>& piezas, std::string_view separador) {
  std::string salida;
  for (std::size_t i = 0; i < piezas.size(); ++i) {
    if (i > 0) salida += separador;
    salida += piezas[i];
  }
  return salida;
}

bool EmpiezaCon(std::string_view texto, std::string_view prefijo, Comparar modo) {
  if (texto.size() < prefijo.size()) return false;
  const std::string_view inicio = texto.substr(0, prefijo.size());
  return modo == Comparar::Exacto ? inicio == prefijo : IgualSinCaso(inicio, prefijo);
}

bool TerminaCon(std::string_view texto, std::string_view sufijo) {
  return texto.size() >= sufijo.size() && texto.substr(texto.size() - sufijo.size()) == sufijo;
}

std::string DoblarComillas(std::string_view texto) { return Reemplazar(texto, "'", "''"); }

std::u32string APuntos(std::string_view texto) {
  std::u32string puntos;
  puntos.reserve(texto.size());
  for (std::size_t i = 0; i < texto.size();) {
    const std::size_t largo = internal::LargoCaracter(texto, i);
    puntos += internal::PuntoEn(texto, i, largo);
    i += largo;
  }
  return puntos;
}

std::string DePuntos(std::u32string_view puntos) {
  std::string texto;
  texto.reserve(puntos.size());
  const auto byte = [&](char32_t b) { texto += static_cast<char>(static_cast<unsigned char>(b)); };
  for (const char32_t p : puntos) {
    if (p < 0x80) {
      byte(p);
    } else if (p < 0x800) {
      byte(0xC0 | p >> 6);
      byte(0x80 | (p & 0x3F));
    } else if (p >= 0xDC80 && p <= 0xDCFF) {
      byte(p - 0xDC00);
    } else if ((p >= 0xD800 && p <= 0xDFFF) || p > 0x10FFFF) {
      texto += "\xEF\xBF\xBD";
    } else if (p < 0x10000) {
      byte(0xE0 | p >> 12);
      byte(0x80 | (p >> 6 & 0x3F));
      byte(0x80 | (p & 0x3F));
    } else {
      byte(0xF0 | p >> 18);
      byte(0x80 | (p >> 12 & 0x3F));
      byte(0x80 | (p >> 6 & 0x3F));
      byte(0x80 | (p & 0x3F));
    }
  }
  return texto;
}

}  // namespace base
