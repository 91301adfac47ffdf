#include "engine_mdb/cells_internal.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "base/currency.h"
#include "base/error.h"
#include "base/number.h"
#include "base/text.h"

namespace engine_mdb {
namespace {

using mdb::TipoColumna;

// A cell that got no memory looks like an empty one.
void NeedMemory(int rc) {
  if (rc == SQLITE_NOMEM) throw base::StorageFault(base::kOutOfMemory);
}

std::string_view TextoDe(sqlite3_stmt* fila, int columna) {
  const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(fila, columna));
  if (p == nullptr) {
    NeedMemory(sqlite3_errcode(sqlite3_db_handle(fila)));
    return {};
  }
  return {p, static_cast<std::size_t>(sqlite3_column_bytes(fila, columna))};
}

mdb::Vista BytesDe(sqlite3_stmt* fila, int columna) {
  const auto* p = static_cast<const std::uint8_t*>(sqlite3_column_blob(fila, columna));
  if (p == nullptr) return {};
  return {p, static_cast<std::size_t>(sqlite3_column_bytes(fila, columna))};
}

double NumeroDe(const mdb::Dato& dato) {
  if (const auto* f = std::get_if<float>(&dato)) return base::DobleDeSimple(*f);
  if (const auto* d = std::get_if<double>(&dato)) return *d;
  if (const auto* m = std::get_if<base::Moneda>(&dato))
    return static_cast<double>(m->diezmilesimas) / 10000.0;
  if (const auto* f = std::get_if<base::Fecha>(&dato)) return f->serie;
  return std::get<mdb::Decimal>(dato).Numero();
}

std::int64_t EnteroDe(const mdb::Columna& columna, sqlite3_stmt* fila, int indice) {
  if (sqlite3_column_type(fila, indice) == SQLITE_INTEGER) return sqlite3_column_int64(fila, indice);
  if (sqlite3_column_type(fila, indice) == SQLITE_FLOAT)
    return base::EnteroBancario(sqlite3_column_double(fila, indice));
  throw base::Error("El tipo del valor no es el del campo " + columna.nombre + ".", 13);
}

mdb::Dato EnRango(const mdb::Columna& columna, std::int64_t v, std::int64_t desde, std::int64_t hasta) {
  if (v < desde || v > hasta) throw base::Error("El número no cabe en el campo " + columna.nombre + ".", 6);
  return v;
}

double RealDe(const mdb::Columna& columna, sqlite3_stmt* fila, int indice) {
  const int tipo = sqlite3_column_type(fila, indice);
  if (tipo != SQLITE_INTEGER && tipo != SQLITE_FLOAT)
    throw base::Error("El tipo del valor no es el del campo " + columna.nombre + ".", 13);
  return sqlite3_column_double(fila, indice);
}

mdb::Dato Binario(sqlite3_stmt* fila, int indice) {
  if (sqlite3_column_type(fila, indice) != SQLITE_BLOB) return EnUtf16(TextoDe(fila, indice));
  const mdb::Vista v = BytesDe(fila, indice);
  return mdb::Bytes(v.begin(), v.end());
}

mdb::Dato Simple(const mdb::Columna& columna, sqlite3_stmt* fila, int indice) {
  const double v = RealDe(columna, fila, indice);
  if (std::abs(v) > static_cast<double>(std::numeric_limits<float>::max()))
    throw base::Error("El número no cabe en el campo " + columna.nombre + ".", 6);
  return static_cast<float>(v);
}

mdb::Dato Moneda(const mdb::Columna& columna, sqlite3_stmt* fila, int indice) {
  const double v = RealDe(columna, fila, indice);
  if (std::abs(v) > 922337203685477.5807)
    throw base::Error("El número no cabe en el campo " + columna.nombre + ".", 6);
  return base::CurrencyOf(v);
}

}  // namespace

mdb::Bytes EnUtf16(std::string_view texto) {
  mdb::Bytes bytes;
  for (const char32_t c : base::APuntos(texto)) {
    if (c < 0x10000) {
      mdb::Agregar16(bytes, static_cast<std::uint16_t>(c));
    } else {
      mdb::Agregar16(bytes, static_cast<std::uint16_t>(0xD800 + ((c - 0x10000) >> 10)));
      mdb::Agregar16(bytes, static_cast<std::uint16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
    }
  }
  return bytes;
}

base::Tipo TipoDe(TipoColumna tipo) {
  switch (tipo) {
    case TipoColumna::Booleano:
      return base::Tipo::Booleano;
    case TipoColumna::Byte:
    case TipoColumna::Entero:
    case TipoColumna::Largo:
    case TipoColumna::Complejo:
    case TipoColumna::EnteroGrande:
      return base::Tipo::Entero;
    case TipoColumna::Moneda:
      return base::Tipo::Moneda;
    case TipoColumna::Simple:
      return base::Tipo::Simple;
    case TipoColumna::Doble:
    case TipoColumna::Decimal:
      return base::Tipo::Numero;
    case TipoColumna::Fecha:
      return base::Tipo::Fecha;
    case TipoColumna::Texto:
    case TipoColumna::Memo:
    case TipoColumna::Guid:
    case TipoColumna::FechaExtendida:
      return base::Tipo::Texto;
    case TipoColumna::Binario:
    case TipoColumna::Ole:
    case TipoColumna::BinarioFijo:
      break;
  }
  return base::Tipo::Nulo;
}

void Ligar(sqlite3_stmt* sentencia, int indice, const mdb::Dato& dato) {
  int rc = SQLITE_OK;
  std::visit(
      [&](const auto& v) {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, base::Nulo>) {
          rc = sqlite3_bind_null(sentencia, indice);
        } else if constexpr (std::is_same_v<T, bool>) {
          rc = sqlite3_bind_int(sentencia, indice, v ? -1 : 0);
        } else if constexpr (std::is_same_v<T, std::int64_t>) {
          rc = sqlite3_bind_int64(sentencia, indice, v);
        } else if constexpr (std::is_same_v<T, std::string>) {
          rc = sqlite3_bind_text64(sentencia, indice, v.data(), v.size(), SQLITE_STATIC, SQLITE_UTF8);
        } else if constexpr (std::is_same_v<T, mdb::Bytes>) {
          // A null pointer would bind Null.
          if (v.empty())
            rc = sqlite3_bind_zeroblob(sentencia, indice, 0);
          else
            rc = sqlite3_bind_blob64(sentencia, indice, v.data(), v.size(), SQLITE_STATIC);
        } else if constexpr (std::is_same_v<T, mdb::Guid>) {
          const std::string texto = v.Texto();
          rc = sqlite3_bind_text64(sentencia, indice, texto.data(), texto.size(), SQLITE_TRANSIENT,
                                   SQLITE_UTF8);
        } else {
          rc = sqlite3_bind_double(sentencia, indice, NumeroDe(dato));
        }
      },
      dato);
  NeedMemory(rc);
}

bool MismoValor(const mdb::Dato& dato, sqlite3_stmt* fila, int columna) {
  const int tipo = sqlite3_column_type(fila, columna);
  return std::visit(
      [&](const auto& v) -> bool {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, base::Nulo>) {
          return tipo == SQLITE_NULL;
        } else if constexpr (std::is_same_v<T, bool>) {
          return tipo == SQLITE_INTEGER && sqlite3_column_int64(fila, columna) == (v ? -1 : 0);
        } else if constexpr (std::is_same_v<T, std::int64_t>) {
          return tipo == SQLITE_INTEGER && sqlite3_column_int64(fila, columna) == v;
        } else if constexpr (std::is_same_v<T, std::string>) {
          return tipo == SQLITE_TEXT && TextoDe(fila, columna) == v;
        } else if constexpr (std::is_same_v<T, mdb::Bytes>) {
          const mdb::Vista b = BytesDe(fila, columna);
          return tipo == SQLITE_BLOB && b.size() == v.size() &&
                 (v.empty() || std::memcmp(b.data(), v.data(), v.size()) == 0);
        } else if constexpr (std::is_same_v<T, mdb::Guid>) {
          return tipo == SQLITE_TEXT && TextoDe(fila, columna) == v.Texto();
        } else {
          const double numero = NumeroDe(dato);
          if (std::isnan(numero)) return tipo == SQLITE_NULL;  // SQLite has no other place for it
          return (tipo == SQLITE_FLOAT || tipo == SQLITE_INTEGER) &&
                 sqlite3_column_double(fila, columna) == numero;
        }
      },
      dato);
}

mdb::Dato DatoDeCelda(const mdb::Columna& columna, sqlite3_stmt* fila, int indice) {
  constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
  if (sqlite3_column_type(fila, indice) == SQLITE_NULL) {
    if (columna.tipo == TipoColumna::Booleano) return false;
    return base::Nulo{};
  }
  const auto entero = [&](std::int64_t desde, std::int64_t hasta) {
    return EnRango(columna, EnteroDe(columna, fila, indice), desde, hasta);
  };
  switch (columna.tipo) {
    case TipoColumna::Booleano:
      return EnteroDe(columna, fila, indice) != 0;
    case TipoColumna::Byte:
      return entero(0, 255);
    case TipoColumna::Entero:
      return entero(-32768, 32767);
    case TipoColumna::Largo:
    case TipoColumna::Complejo:
      return entero(-2147483648LL, 2147483647LL);
    case TipoColumna::EnteroGrande:
      return entero(-kMax - 1, kMax);
    case TipoColumna::Moneda:
      return Moneda(columna, fila, indice);
    case TipoColumna::Simple:
      return Simple(columna, fila, indice);
    case TipoColumna::Doble:
      return RealDe(columna, fila, indice);
    case TipoColumna::Fecha:
      return base::Fecha{RealDe(columna, fila, indice)};
    case TipoColumna::Decimal:
      return mdb::DecimalDeTexto(base::SqlDeNumero(RealDe(columna, fila, indice)), columna.escala);
    case TipoColumna::Guid:
      return mdb::GuidDeTexto(TextoDe(fila, indice));
    case TipoColumna::Texto:
    case TipoColumna::Memo:
    case TipoColumna::FechaExtendida:
      return std::string(TextoDe(fila, indice));
    case TipoColumna::Binario:
    case TipoColumna::Ole:
    case TipoColumna::BinarioFijo:
      return Binario(fila, indice);
  }
  throw base::Error("El campo " + columna.nombre + " es de un tipo que no se escribe.");
}

}  // namespace engine_mdb
