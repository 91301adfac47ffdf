#include "mdb/indexes/index_key.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "base/encoding.h"
#include "base/sort_order.h"
#include "mdb/indexes/index_key97_internal.h"

namespace mdb {
namespace {

constexpr std::uint8_t kNulo = 0x00, kValor = 0x7F, kSigue = 0x09;
constexpr std::size_t kUnidades = 255;  // of a text, in an index entry

std::string Columnas(const Columna& c) { return "la columna «" + c.nombre + "»"; }

template <typename T>
const T& Tomar(const Columna& columna, const Dato& dato) {
  if (const T* v = std::get_if<T>(&dato)) return *v;
  throw base::Error("El valor de " + Columnas(columna) + " no es del tipo de la columna");
}

void Invertir(Bytes& clave, std::size_t desde) {
  for (std::size_t i = desde; i < clave.size(); ++i) clave[i] = static_cast<std::uint8_t>(~clave[i]);
}

void AgregarAlReves(Bytes& clave, std::uint64_t n, std::size_t bytes) {
  for (std::size_t i = bytes; i-- > 0;) clave.push_back(static_cast<std::uint8_t>(n >> (8 * i)));
}

void AgregarEntero(const Columna& columna, const Dato& dato, std::size_t bytes, Bytes& clave) {
  const std::int64_t n = columna.tipo == TipoColumna::Moneda
                             ? Tomar<base::Moneda>(columna, dato).diezmilesimas
                             : Tomar<std::int64_t>(columna, dato);
  const std::uint64_t signo = 1ULL << (8 * bytes - 1);
  if (bytes < 8 && static_cast<std::uint64_t>(n) + signo >= signo * 2)
    throw base::Error("El número " + std::to_string(n) + " no cabe en " + Columnas(columna));
  AgregarAlReves(clave, static_cast<std::uint64_t>(n) ^ signo, bytes);
}

// Floating-point bits in an order that is that of their numbers.
template <typename Entero>
void AgregarFlotante(Entero bits, Bytes& clave) {
  constexpr Entero kSigno = Entero{1} << (8 * sizeof(Entero) - 1);
  AgregarAlReves(clave, (bits & kSigno) != 0 ? static_cast<Entero>(~bits) : bits | kSigno, sizeof(Entero));
}

// Pieces of eight bytes; the byte after each says that more follows, or how much of the last one counts. The
// mark of "more" is not inverted in a descending index.
void AgregarTrozos(Vista v, bool descendente, Bytes& clave) {
  while (!v.empty()) {
    const std::size_t n = std::min<std::size_t>(v.size(), 8);
    const bool ultimo = n == v.size();
    const std::size_t desde = clave.size();
    AgregarBytes(clave, v.first(n));
    clave.resize(desde + 8, 0);
    if (ultimo) clave.push_back(static_cast<std::uint8_t>(n));
    if (descendente) Invertir(clave, desde);
    if (!ultimo) clave.push_back(kSigue);
    v = v.subspan(n);
  }
}

// Old files keep a sign byte that does not go with the inversion of the rest: Access wrote it so at first and
// had to stay with it.
void AgregarDecimal(const Cabecera& cabecera, const Columna& columna, bool descendente, const Decimal& d,
                    Bytes& clave) {
  if (d.escala != columna.escala)
    throw base::Error("El valor de " + Columnas(columna) + " no tiene los decimales de la columna");
  const std::size_t desde = clave.size();
  const bool nuevo = cabecera.version == Version::Ace;
  clave.push_back(nuevo ? 0xFF : d.negativo ? 0x80 : 0x00);
  for (const std::uint32_t parte : d.magnitud) AgregarAlReves(clave, parte, 4);
  if (d.negativo != descendente) Invertir(clave, desde);
  if (!nuevo) clave[desde] = d.negativo ? 0x00 : 0xFF;
}

// The part of the text that an index entry looks at. A character that stands half inside is taken along, so
// that its lack of a weight is seen.
std::string_view ParteDeIndice(std::string_view texto) {
  std::size_t i = 0;
  for (std::size_t unidades = 0; i < texto.size() && unidades < kUnidades;)
    unidades += base::SiguientePunto(texto, i) > 0xFFFF ? 2 : 1;
  return texto.substr(0, i);
}

[[noreturn]] void LanzarSinPeso(const Columna& columna, std::string_view texto) {
  for (std::size_t i = 0; i < texto.size();) {
    const std::size_t antes = i;
    base::SiguientePunto(texto, i);
    const std::string_view letra = texto.substr(antes, i - antes);
    if (!base::TienePesos(letra))
      throw base::Error("El texto «" + std::string(texto) + "» de " + Columnas(columna) +
                        ", que está en un índice, tiene el carácter «" + std::string(letra) +
                        "», cuyo lugar en el orden de Access no se conoce");
  }
  throw base::Error("El texto de " + Columnas(columna) + " no se puede ordenar");
}

void AgregarTexto(const Columna& columna, bool descendente, std::string_view texto, Bytes& clave) {
  const auto orden = base::OrderOfLanguage(columna.lcid);
  if (!orden || columna.version_orden != 0)
    throw base::Error("El orden de texto de " + Columnas(columna) + " (" + std::to_string(columna.lcid) +
                      ", versión " + std::to_string(columna.version_orden) + ") no se conoce");
  const std::string_view parte = ParteDeIndice(texto);
  if (!base::TienePesos(parte)) LanzarSinPeso(columna, parte);
  const std::size_t desde = clave.size();
  for (const char c : base::ClaveDeIndice(parte, *orden)) clave.push_back(static_cast<std::uint8_t>(c));
  if (!descendente) return;
  Invertir(clave, desde);
  clave.push_back(0);
}

// The accent section of an Access 97 key: half bytes between two 0, up to the last accented letter.
void AgregarAcentos97(const std::string& bytes, Bytes& clave) {
  std::vector<std::uint8_t> mitades;
  std::size_t llanas = 0;
  for (const char c : bytes) {
    const std::uint8_t acento = kPesos97[static_cast<unsigned char>(c)].acento;
    if (acento == 0) continue;
    if (acento == 2) {
      ++llanas;
      continue;
    }
    if (mitades.empty()) mitades.push_back(0);
    mitades.insert(mitades.end(), llanas, 2);
    mitades.push_back(acento);
    llanas = 0;
  }
  if (mitades.empty()) {
    clave.push_back(0);
    return;
  }
  mitades.push_back(0);
  if (mitades.size() % 2 != 0) mitades.push_back(0);
  for (std::size_t i = 0; i < mitades.size(); i += 2)
    clave.push_back(static_cast<std::uint8_t>(mitades[i] << 4 | mitades[i + 1]));
}

void AgregarTexto97(const Cabecera& cabecera, const Columna& columna, bool descendente,
                    std::string_view texto, Bytes& clave) {
  std::size_t perdidos = 0;
  std::string bytes = base::ACp1252(texto, &perdidos);
  if (cabecera.pagina_de_codigos != 1252 || perdidos != 0)
    throw base::Error("El orden de texto de " + Columnas(columna) + " no se conoce");
  bytes.resize(std::min(bytes.size(), kUnidades));
  while (!bytes.empty() && bytes.back() == ' ') bytes.pop_back();
  const std::size_t desde = clave.size();
  for (const char c : bytes) {
    const Peso97& p = kPesos97[static_cast<unsigned char>(c)];
    clave.push_back(p.inicial);
    if (p.siguiente != 0) clave.push_back(p.siguiente);
  }
  AgregarAcentos97(bytes, clave);
  if (descendente) Invertir(clave, desde);
}

const Columna* ColumnaDe(const Definicion& definicion, const IndiceReal::Parte& parte) {
  for (const Columna& c : definicion.columnas)
    if (c.numero == parte.columna) return &c;
  return nullptr;
}

template <typename Visitante>
void PorPartes(const Definicion& definicion, const IndiceReal& indice, const Fila& fila,
               Visitante&& visitante) {
  for (const IndiceReal::Parte& parte : indice.partes) {
    const Columna* columna = ColumnaDe(definicion, parte);
    const std::size_t i =
        columna == nullptr ? fila.size() : static_cast<std::size_t>(columna - definicion.columnas.data());
    if (i >= fila.size())
      DanioEnPagina(definicion.Pagina(), "un índice de la tabla «" + definicion.nombre +
                                             "» nombra la columna número " + std::to_string(parte.columna) +
                                             ", que no existe");
    visitante(*columna, parte.descendente, fila[i]);
  }
}

bool TieneClaves(TipoColumna tipo) {
  const auto n = static_cast<std::uint8_t>(tipo);
  return n >= 1 && n <= 20 && n != 13 && n != 14 && tipo != TipoColumna::Ole &&
         tipo != TipoColumna::BinarioFijo;
}

// What columns of other types have: the value's bytes, ascending.
void AgregarSencillo(const Columna& columna, const Dato& dato, Bytes& clave) {
  switch (columna.tipo) {
    case TipoColumna::Byte: {
      const std::int64_t n = Tomar<std::int64_t>(columna, dato);
      if (n < 0 || n > 255)
        throw base::Error("El número " + std::to_string(n) + " no cabe en " + Columnas(columna));
      return clave.push_back(static_cast<std::uint8_t>(n));
    }
    case TipoColumna::Entero:
      return AgregarEntero(columna, dato, 2, clave);
    case TipoColumna::Largo:
    case TipoColumna::Complejo:
      return AgregarEntero(columna, dato, 4, clave);
    case TipoColumna::Moneda:
    case TipoColumna::EnteroGrande:
      return AgregarEntero(columna, dato, 8, clave);
    case TipoColumna::Simple:
      return AgregarFlotante(std::bit_cast<std::uint32_t>(Tomar<float>(columna, dato)), clave);
    case TipoColumna::Doble:
      return AgregarFlotante(std::bit_cast<std::uint64_t>(Tomar<double>(columna, dato)), clave);
    case TipoColumna::Fecha:
      return AgregarFlotante(std::bit_cast<std::uint64_t>(Tomar<base::Fecha>(columna, dato).serie), clave);
    default:
      throw base::Error("No se conocen las claves de índice del tipo de " + Columnas(columna));
  }
}

}  // namespace

void AgregarClave(const Cabecera& cabecera, const Columna& columna, bool descendente, const Dato& dato,
                  Bytes& clave) {
  const auto marca = [&](std::uint8_t b) {
    clave.push_back(descendente ? static_cast<std::uint8_t>(~b) : b);
  };
  if (columna.tipo == TipoColumna::Booleano) {  // never Null: a row older than the column has False
    marca(kValor);
    return marca(!EsNulo(dato) && Tomar<bool>(columna, dato) ? 0x00 : 0xFF);
  }
  if (EsNulo(dato)) return marca(kNulo);
  marca(kValor);
  switch (columna.tipo) {
    case TipoColumna::Texto:
    case TipoColumna::Memo: {
      const std::string& texto = Tomar<std::string>(columna, dato);
      return cabecera.Jet3() ? AgregarTexto97(cabecera, columna, descendente, texto, clave)
                             : AgregarTexto(columna, descendente, texto, clave);
    }
    case TipoColumna::Binario:
      return AgregarTrozos(Tomar<Bytes>(columna, dato), descendente, clave);
    case TipoColumna::Guid:
      return AgregarTrozos(Tomar<Guid>(columna, dato).bytes, descendente, clave);
    case TipoColumna::FechaExtendida: {
      const std::string& t = Tomar<std::string>(columna, dato);
      return AgregarTrozos(Bytes(t.begin(), t.end()), descendente, clave);
    }
    case TipoColumna::Decimal:
      return AgregarDecimal(cabecera, columna, descendente, Tomar<Decimal>(columna, dato), clave);
    default:
      break;
  }
  const std::size_t desde = clave.size();
  AgregarSencillo(columna, dato, clave);
  if (descendente) Invertir(clave, desde);
}

void ClaveDeFila(const Cabecera& cabecera, const Definicion& definicion, const IndiceReal& indice,
                 const Fila& fila, Bytes& clave) {
  clave.clear();
  PorPartes(definicion, indice, fila, [&](const Columna& columna, bool descendente, const Dato& dato) {
    AgregarClave(cabecera, columna, descendente, dato, clave);
  });
}

bool TodosNulos(const Definicion& definicion, const IndiceReal& indice, const Fila& fila) {
  bool todos = true;
  PorPartes(definicion, indice, fila, [&](const Columna& columna, bool, const Dato& dato) {
    todos = todos && columna.tipo != TipoColumna::Booleano && EsNulo(dato);
  });
  return todos;
}

bool AlgunNulo(const Definicion& definicion, const IndiceReal& indice, const Fila& fila) {
  bool alguno = false;
  PorPartes(definicion, indice, fila, [&](const Columna& columna, bool, const Dato& dato) {
    alguno = alguno || (columna.tipo != TipoColumna::Booleano && EsNulo(dato));
  });
  return alguno;
}

std::string MotivoSinClaves(const Cabecera& cabecera, const Definicion& definicion,
                            const IndiceReal& indice) {
  for (const IndiceReal::Parte& parte : indice.partes) {
    const Columna* c = ColumnaDe(definicion, parte);
    if (c == nullptr)
      return "un índice nombra la columna número " + std::to_string(parte.columna) + ", que no existe";
    if (c->Calculada()) return Columnas(*c) + " es calculada y está en un índice";
    if (c->EsTexto() && cabecera.Jet3() && cabecera.pagina_de_codigos != 1252)
      return Columnas(*c) + " tiene la página de códigos " + std::to_string(cabecera.pagina_de_codigos) +
             ", cuyo orden no se conoce";
    if (c->EsTexto() && !cabecera.Jet3() && (!base::OrderOfLanguage(c->lcid) || c->version_orden != 0))
      return Columnas(*c) + " está en un índice con el orden de texto " + std::to_string(c->lcid) +
             " versión " + std::to_string(c->version_orden) + ", que no se conoce";
    if (!TieneClaves(c->tipo)) return Columnas(*c) + " es de un tipo cuyas claves de índice no se conocen";
  }
  return {};
}

}  // namespace mdb
