#include <algorithm>
#include <bit>
#include <cmath>

#include "base/encoding.h"
#include "mdb/rows/row_encode_internal.h"
#include "mdb/rows/row_internal.h"

namespace mdb::internal {
namespace {

constexpr int kOtroTipo = 3421, kFueraDeRango = 6, kTextoLargo = 3163;
constexpr std::size_t kMasComprimido = 1024;  // characters; longer texts are never compressed
constexpr double kPrimeraFecha = -657434, kTrasUltimaFecha = 2958466;  // 1 January 100, 1 January 10000

template <typename T>
const T& Del(const Definicion& d, const Columna& c, const Dato& dato) {
  const T* valor = std::get_if<T>(&dato);
  if (valor == nullptr)
    throw base::Error("La " + NombreCompleto(d, c) + " no admite un valor de ese tipo", kOtroTipo);
  return *valor;
}

std::int64_t EnteroEntre(const Definicion& d, const Columna& c, const Dato& dato, std::int64_t minimo,
                         std::int64_t maximo) {
  const auto n = Del<std::int64_t>(d, c, dato);
  if (n < minimo || n > maximo)
    throw base::Error("El valor " + std::to_string(n) + " no cabe en la " + NombreCompleto(d, c) +
                          ", que va de " + std::to_string(minimo) + " a " + std::to_string(maximo),
                      kFueraDeRango);
  return n;
}

double Finito(const Definicion& d, const Columna& c, double n) {
  if (!std::isfinite(n))
    throw base::Error("El valor para la " + NombreCompleto(d, c) + " no es un número", kFueraDeRango);
  return n;
}

double FechaValida(const Definicion& d, const Columna& c, double serie) {
  // Below zero the time of day still counts forward, so the first day reaches a whole day under its number.
  if (!(serie > kPrimeraFecha - 1 && serie < kTrasUltimaFecha))
    throw base::Error("La fecha para la " + NombreCompleto(d, c) + " está fuera de los años 100 a 9999",
                      kFueraDeRango);
  return serie;
}

void CodificarDecimal(const Definicion& d, const Columna& c, const Decimal& n, Bytes& destino) {
  Decimal entero = n;
  entero.escala = 0;
  entero.negativo = false;
  const std::string digitos = entero.Texto();
  if (n.escala != c.escala || (digitos != "0" && digitos.size() > c.precision))
    throw base::Error("El número " + n.Texto() + " no cabe en la " + NombreCompleto(d, c) + ", que tiene " +
                          std::to_string(c.precision) + " cifras, " + std::to_string(c.escala) +
                          " de ellas decimales",
                      kFueraDeRango);
  Agregar8(destino, n.negativo && digitos != "0" ? 0x80 : 0x00);
  for (const std::uint32_t palabra : n.magnitud) Agregar32(destino, palabra);
}

// The first three groups of a GUID stand with their lowest byte first.
void CodificarGuid(const Guid& g, Bytes& destino) {
  constexpr std::array<std::size_t, 16> kOrden = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  for (const std::size_t i : kOrden) Agregar8(destino, g.bytes[i]);
}

void RevisarLargo(const Definicion& d, const Columna& c, std::size_t largo, const char* de_que,
                  std::size_t por_unidad) {
  if (largo <= c.largo) return;
  throw base::Error("El valor para la " + NombreCompleto(d, c) + " tiene " +
                        std::to_string(largo / por_unidad) + " " + de_que + " y caben " +
                        std::to_string(c.largo / por_unidad),
                    kTextoLargo);
}

void AgregarUtf16(Bytes& destino, std::u16string_view texto) {
  for (const char16_t u : texto) Agregar16(destino, u);
}

// A text that starts with the mark of compressed ones would be taken for one: it must be written as such,
// with the byte that switches to UTF-16 and back. Units with a zero byte cannot stand there.
void AgregarConCambios(Bytes& destino, std::u16string_view texto) {
  destino.insert(destino.end(), {0xFF, 0xFE});
  bool comprimido = true;
  for (const char16_t u : texto) {
    const bool corto = u > 0 && u < 0x100;
    if (!corto && ((u & 0xFF) == 0 || u >> 8 == 0))
      throw base::Error(
          "Un texto que empieza con la marca U+FEFF no se puede guardar con los demás caracteres"
          " que tiene");
    if (corto != comprimido) Agregar8(destino, 0);
    comprimido = corto;
    if (corto) {
      Agregar8(destino, static_cast<std::uint8_t>(u));
    } else {
      Agregar16(destino, u);
    }
  }
}

void CodificarBytes(const Definicion& d, const Columna& c, const Dato& dato, Bytes& destino) {
  const auto& bytes = Del<Bytes>(d, c, dato);
  RevisarLargo(d, c, bytes.size(), "bytes", 1);
  AgregarBytes(destino, bytes);
}

void CodificarTextoCorto(const Definicion& d, const Columna& c, const Dato& dato, Bytes& destino) {
  const auto& texto = Del<std::string>(d, c, dato);
  // Each character is one to three bytes of UTF-8 a unit, so most texts need no counting.
  if (texto.size() * 2 > c.largo) RevisarLargo(d, c, base::AUtf16(texto).size() * 2, "caracteres", 2);
  CodificarTexto(texto, (c.banderas_ext & Columna::kComprime) != 0, destino);
}

}  // namespace

void CodificarTexto(std::string_view texto, bool comprime, Bytes& destino) {
  const std::u16string unidades = base::AUtf16(texto);
  const bool latino =
      std::all_of(unidades.begin(), unidades.end(), [](char16_t u) { return u > 0 && u < 0x100; });
  if (comprime && latino && unidades.size() > 2 && unidades.size() <= kMasComprimido)
    return AgregarConCambios(destino, unidades);
  if (!unidades.empty() && unidades.front() == 0xFEFF) return AgregarConCambios(destino, unidades);
  AgregarUtf16(destino, unidades);
}

void CodificarValor(const Definicion& d, const Columna& c, const Dato& dato, Bytes& destino) {
  switch (c.tipo) {
    case TipoColumna::Booleano:
      return Agregar8(destino, Del<bool>(d, c, dato) ? 1 : 0);
    case TipoColumna::Byte:
      return Agregar8(destino, static_cast<std::uint8_t>(EnteroEntre(d, c, dato, 0, 255)));
    case TipoColumna::Entero:
      return Agregar16(destino, static_cast<std::uint16_t>(EnteroEntre(d, c, dato, -32768, 32767)));
    case TipoColumna::Largo:
      return Agregar32(destino,
                       static_cast<std::uint32_t>(EnteroEntre(d, c, dato, -2147483648LL, 2147483647LL)));
    case TipoColumna::Moneda:
      return Agregar64(destino, static_cast<std::uint64_t>(Del<base::Moneda>(d, c, dato).diezmilesimas));
    case TipoColumna::Simple: {
      const float n = Del<float>(d, c, dato);
      Finito(d, c, double{n});
      return Agregar32(destino, std::bit_cast<std::uint32_t>(n));
    }
    case TipoColumna::Doble:
      return Agregar64(destino, std::bit_cast<std::uint64_t>(Finito(d, c, Del<double>(d, c, dato))));
    case TipoColumna::Fecha:
      return Agregar64(destino,
                       std::bit_cast<std::uint64_t>(FechaValida(d, c, Del<base::Fecha>(d, c, dato).serie)));
    case TipoColumna::Texto:
      return CodificarTextoCorto(d, c, dato, destino);
    case TipoColumna::Memo:
      return CodificarTexto(Del<std::string>(d, c, dato), (c.banderas_ext & Columna::kComprime) != 0,
                            destino);
    case TipoColumna::Ole:
      return AgregarBytes(destino, Del<Bytes>(d, c, dato));
    case TipoColumna::Guid:
      return CodificarGuid(Del<Guid>(d, c, dato), destino);
    case TipoColumna::Decimal:
      return CodificarDecimal(d, c, Del<Decimal>(d, c, dato), destino);
    case TipoColumna::Binario:
    case TipoColumna::BinarioFijo:
      return CodificarBytes(d, c, dato, destino);
    default:
      throw base::Error("La " + NombreCompleto(d, c) + " es de un tipo que no se escribe");
  }
}

}  // namespace mdb::internal
