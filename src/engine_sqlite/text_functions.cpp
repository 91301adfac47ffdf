// The text functions of the dialect. Positions and lengths count characters. A text that is Null gives Null;
// a position, a length or a code that is Null is an error, as in classic Basic.
#include <limits>

#include "base/dialect_number.h"
#include "base/encoding.h"
#include "base/text.h"
#include "engine_sqlite/runtime_internal.h"
#include "engine_sqlite/text_search_internal.h"

namespace engine_sqlite {
namespace {

constexpr std::int64_t kTextoMasLargo = 1 << 26;  // of Space, String and Replace: a typing slip, not a text

void VerificarLargo(std::int64_t largo) {
  if (largo > kTextoMasLargo) throw base::Error("No hay espacio para un texto tan largo.", 14);
}

std::int64_t NoNegativo(const Llamada& l, int i) {
  const std::int64_t n = l.Entero32(i);
  if (n < 0) LanzarNumero(kLlamadaIncorrecta);
  return n;
}

void Len(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarEntero(Caracteres(l.Texto(0)));
}

void Left(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  const std::int64_t n = NoNegativo(l, 1);
  const std::string_view texto = l.Texto(0);
  l.DarTexto(texto.substr(0, AvanzarCaracteres(texto, 0, n)));
}

void Right(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  const std::int64_t n = NoNegativo(l, 1);
  const std::string_view texto = l.Texto(0);
  const std::int64_t sobran = Caracteres(texto) - n;
  l.DarTexto(sobran <= 0 ? texto : texto.substr(AvanzarCaracteres(texto, 0, sobran)));
}

void Mid(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  const std::int64_t inicio = l.Entero32(1);
  if (inicio < 1) LanzarNumero(kLlamadaIncorrecta);
  const std::int64_t n = l.Hay(2) ? NoNegativo(l, 2) : std::numeric_limits<std::int64_t>::max();
  const std::string_view texto = l.Texto(0);
  const std::size_t desde = AvanzarCaracteres(texto, 0, inicio - 1);
  l.DarTexto(texto.substr(desde, AvanzarCaracteres(texto, desde, n) - desde));
}

template <bool kIzquierda, bool kDerecha>
void Recortar(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  std::string_view texto = l.Texto(0);
  while (kIzquierda && !texto.empty() && texto.front() == ' ') texto.remove_prefix(1);
  while (kDerecha && !texto.empty() && texto.back() == ' ') texto.remove_suffix(1);
  l.DarTexto(texto);
}

void UCase(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarTexto(base::Mayusculas(l.Texto(0)));
}

void LCase(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  l.DarTexto(base::Minusculas(l.Texto(0)));
}

void InStr(Llamada& l) {
  const int t = l.Cantidad() > 2 ? 1 : 0;  // with a third argument the first is the start
  if (t == 1 && l.EsNulo(0)) LanzarNumero(kUsoDeNulo);
  const std::int64_t inicio = t == 1 ? l.Entero32(0) : 1;
  if (inicio < 1) LanzarNumero(kLlamadaIncorrecta);
  if (l.EsNulo(t) || l.EsNulo(t + 1)) return l.Nulo();
  const ModoTexto modo = LeerModo(l, t + 2);
  const std::string_view texto = l.Texto(t), aguja = l.Texto(t + 1);
  const std::size_t desde = AvanzarCaracteres(texto, 0, inicio - 1);
  if (desde >= texto.size()) return l.DarEntero(0);
  if (aguja.empty()) return l.DarEntero(inicio);
  const Hallazgo h = BuscarDesde(texto, aguja, desde, modo);
  l.DarEntero(h.Hay() ? inicio + Caracteres(texto.substr(desde, h.desde - desde)) : 0);
}

// The last occurrence that ends at or before character `fin`.
void InStrRev(Llamada& l) {
  if (l.EsNulo(0) || l.EsNulo(1)) return l.Nulo();
  std::int64_t fin = l.Opcional(2, -1);
  if (fin == 0 || fin < -1) LanzarNumero(kLlamadaIncorrecta);
  const ModoTexto modo = LeerModo(l, 3);
  const std::string_view texto = l.Texto(0), aguja = l.Texto(1);
  const std::int64_t largo = Caracteres(texto);
  if (fin == -1) fin = largo;
  if (largo == 0 || fin > largo) return l.DarEntero(0);
  if (aguja.empty()) return l.DarEntero(fin);
  const std::string_view parte = texto.substr(0, AvanzarCaracteres(texto, 0, fin));
  std::int64_t hallado = 0, posicion = 1;
  for (std::size_t i = 0; i < parte.size(); ++posicion) {
    if (OcurreEn(parte, aguja, i, modo) != 0) hallado = posicion;
    base::SiguientePunto(parte, i);
  }
  l.DarEntero(hallado);
}

// The result begins at the start position: what stands before is lost.
void Replace(Llamada& l) {
  if (l.AlgunNulo()) LanzarNumero(kUsoDeNulo);
  const std::int64_t inicio = l.Opcional(3, 1);
  std::int64_t quedan = l.Opcional(4, -1);
  if (inicio < 1 || quedan < -1) LanzarNumero(kLlamadaIncorrecta);
  const ModoTexto modo = LeerModo(l, 5);
  std::string_view texto = l.Texto(0);
  const std::string_view de = l.Texto(1), por = l.Texto(2);
  texto = texto.substr(AvanzarCaracteres(texto, 0, inicio - 1));
  std::string salida;
  std::size_t i = 0;
  while (!de.empty() && quedan != 0) {
    const Hallazgo h = BuscarDesde(texto, de, i, modo);
    if (!h.Hay()) break;
    salida += texto.substr(i, h.desde - i);
    salida += por;
    VerificarLargo(static_cast<std::int64_t>(salida.size()));
    i = h.desde + h.largo;
    if (quedan > 0) --quedan;
  }
  salida += texto.substr(i);
  l.DarTexto(salida);
}

void StrComp(Llamada& l) {
  if (l.EsNulo(0) || l.EsNulo(1)) return l.Nulo();
  const ModoTexto modo = LeerModo(l, 2);
  const std::string_view a = l.Texto(0), b = l.Texto(1);
  if (modo == ModoTexto::Base) return l.DarEntero(base::CompararTexto(a, b, l.Alrededor().orden));
  if (modo == ModoTexto::Texto) return l.DarEntero(CompararComoTexto(a, b, l.Alrededor().orden));
  const int orden = a.compare(b);
  l.DarEntero(orden < 0 ? -1 : (orden > 0 ? 1 : 0));
}

void StrReverse(Llamada& l) {
  if (l.EsNulo(0)) LanzarNumero(kUsoDeNulo);
  const std::string_view texto = l.Texto(0);
  std::string salida(texto.size(), '\0');
  std::size_t destino = texto.size();
  for (std::size_t i = 0; i < texto.size();) {
    const std::size_t desde = i;
    base::SiguientePunto(texto, i);
    destino -= i - desde;
    salida.replace(destino, i - desde, texto.substr(desde, i - desde));
  }
  l.DarTexto(salida);
}

void Space(Llamada& l) {
  const std::int64_t n = NoNegativo(l, 0);
  VerificarLargo(n);
  l.DarTexto(std::string(static_cast<std::size_t>(n), ' '));
}

void Repetir(Llamada& l) {
  if (l.AlgunNulo()) return l.Nulo();
  const std::int64_t n = NoNegativo(l, 0);
  VerificarLargo(n);
  std::string caracter;
  if (l.EsTexto(1)) {
    const std::string_view texto = l.Texto(1);
    if (texto.empty()) LanzarNumero(kLlamadaIncorrecta);
    caracter = texto.substr(0, AvanzarCaracteres(texto, 0, 1));
  } else {
    const char codigo = static_cast<char>(static_cast<unsigned char>(l.Entero32(1) & 0xFF));
    caracter = base::DeCp1252(std::string_view(&codigo, 1));
  }
  std::string salida;
  salida.reserve(caracter.size() * static_cast<std::size_t>(n));
  for (std::int64_t i = 0; i < n; ++i) salida += caracter;
  l.DarTexto(salida);
}

void Chr(Llamada& l) {
  const std::int32_t n = l.Entero32(0);
  if (n < 0 || n > 255) LanzarNumero(kLlamadaIncorrecta);
  const char codigo = static_cast<char>(static_cast<unsigned char>(n));
  l.DarTexto(base::DeCp1252(std::string_view(&codigo, 1)));
}

void ChrW(Llamada& l) {
  const std::int32_t n = l.Entero32(0);
  if (n < -32768 || n > 65535) LanzarNumero(kLlamadaIncorrecta);
  const auto punto = static_cast<char32_t>(n & 0xFFFF);
  l.DarTexto(base::DePuntos(std::u32string_view(&punto, 1)));
}

void Asc(Llamada& l) {
  if (l.EsNulo(0)) LanzarNumero(kUsoDeNulo);
  const std::string_view texto = l.Texto(0);
  if (texto.empty()) LanzarNumero(kLlamadaIncorrecta);
  const std::string byte = base::ACp1252(texto.substr(0, AvanzarCaracteres(texto, 0, 1)));
  l.DarEntero(static_cast<unsigned char>(byte.at(0)));
}

void AscW(Llamada& l) {
  if (l.EsNulo(0)) LanzarNumero(kUsoDeNulo);
  const std::string_view texto = l.Texto(0);
  if (texto.empty()) LanzarNumero(kLlamadaIncorrecta);
  std::size_t i = 0;
  const char32_t c = base::SiguientePunto(texto, i);
  const char32_t unidad = c > 0xFFFF ? 0xD800 + ((c - 0x10000) >> 10) : c;
  l.DarEntero(static_cast<std::int16_t>(static_cast<std::uint16_t>(unidad)));
}

std::string NombrePropio(std::string_view texto) {
  std::string salida;
  bool inicio = true;
  for (std::size_t i = 0; i < texto.size();) {
    const std::size_t desde = i;
    const char32_t c = base::SiguientePunto(texto, i);
    const std::string_view letra = texto.substr(desde, i - desde);
    salida += inicio ? base::Mayusculas(letra) : base::Minusculas(letra);
    inicio = c == ' ' || c == 0 || (c >= '\t' && c <= '\r');
  }
  return salida;
}

void StrConv(Llamada& l) {
  if (l.EsNulo(0)) return l.Nulo();
  const std::string_view texto = l.Texto(0);
  switch (l.Entero32(1)) {
    case 1:
      return l.DarTexto(base::Mayusculas(texto));
    case 2:
      return l.DarTexto(base::Minusculas(texto));
    case 3:
      return l.DarTexto(NombrePropio(texto));
    default:
      LanzarNumero(kLlamadaIncorrecta);
  }
}

constexpr Implementacion kFunciones[] = {
    {"ASC", Asc},
    {"ASCW", AscW},
    {"CHR", Chr},
    {"CHRW", ChrW},
    {"INSTR", InStr},
    {"INSTRREV", InStrRev},
    {"LCASE", LCase},
    {"LEFT", Left},
    {"LEN", Len},
    {"LTRIM", Recortar<true, false>},
    {"MID", Mid},
    {"REPLACE", Replace},
    {"RIGHT", Right},
    {"RTRIM", Recortar<false, true>},
    {"SPACE", Space},
    {"STRCOMP", StrComp},
    {"STRCONV", StrConv},
    {"STRING", Repetir},
    {"STRREVERSE", StrReverse},
    {"TRIM", Recortar<true, true>},
    {"UCASE", UCase},
};

}  // namespace

std::span<const Implementacion> FuncionesDeTexto() { return kFunciones; }

}  // namespace engine_sqlite
