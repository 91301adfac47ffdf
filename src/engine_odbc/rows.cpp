#include "engine_odbc/rows_internal.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/number.h"

namespace engine_odbc {
namespace {

constexpr std::string_view kNoSePuedeLeer = "La base no pudo dar los datos que se le pidieron";
constexpr std::size_t kPieza = 2048;           // units of a first piece
constexpr std::size_t kPiezaMayor = 1U << 19;  // of the largest one
constexpr std::size_t kNombreMasLargo = 1U << 14;

}  // namespace

Lector::Lector(SQLHANDLE cursor) : cursor_(cursor), pieza_(kPieza) {
  SQLSMALLINT ancho = 0;
  if (!SQL_SUCCEEDED(SQLNumResultCols(cursor_, &ancho))) Lanzar();
  auto columnas = std::make_shared<db::Columnas>();
  for (SQLSMALLINT i = 1; i <= ancho; ++i) Describir(static_cast<SQLUSMALLINT>(i), *columnas);
  columnas_ = std::move(columnas);
}

// A result of which a part cannot be had is a fault, unless the driver says that a value was to blame.
void Lector::Lanzar() const {
  throw ErrorDe(Diagnosticos(SQL_HANDLE_STMT, cursor_), kNoSePuedeLeer, base::ErrorKind::Storage);
}

void Lector::Describir(SQLUSMALLINT i, db::Columnas& columnas) {
  SQLSMALLINT largo = 0, tipo = 0, decimales = 0, admite_nulo = 0;
  SQLULEN tamanio = 0;
  const auto leer = [&] {
    return SQLDescribeColW(cursor_, i, pieza_.data(), static_cast<SQLSMALLINT>(pieza_.size()), &largo, &tipo,
                           &tamanio, &decimales, &admite_nulo);
  };
  if (!SQL_SUCCEEDED(leer())) Lanzar();
  if (static_cast<std::size_t>(largo) >= pieza_.size() && static_cast<std::size_t>(largo) < kNombreMasLargo) {
    pieza_.resize(static_cast<std::size_t>(largo) + 1);
    if (!SQL_SUCCEEDED(leer())) Lanzar();
  }
  const auto fin = std::find(pieza_.begin(), pieza_.end(), SQLWCHAR{0});
  const std::string nombre = DeAncho(pieza_.data(), static_cast<std::size_t>(fin - pieza_.begin()));

  std::string nombre_de_tipo;
  bool precision_fija = false;
  if (tipo == SQL_NUMERIC || tipo == SQL_DECIMAL) {
    // A driver that does not know these says so, and the column is an ordinary number.
    SQLSMALLINT bytes = 0;
    SQLLEN si = SQL_FALSE;
    pieza_[0] = 0;
    if (SQL_SUCCEEDED(SQLColAttributeW(cursor_, i, SQL_DESC_TYPE_NAME, pieza_.data(),
                                       static_cast<SQLSMALLINT>(kPieza), &bytes, nullptr))) {
      const auto cabo = std::find(pieza_.begin(), pieza_.end(), SQLWCHAR{0});
      nombre_de_tipo = DeAncho(pieza_.data(), static_cast<std::size_t>(cabo - pieza_.begin()));
    }
    if (SQL_SUCCEEDED(SQLColAttributeW(cursor_, i, SQL_DESC_FIXED_PREC_SCALE, nullptr, 0, nullptr, &si)))
      precision_fija = si == SQL_TRUE && decimales > 0;
  }
  lecturas_.push_back(LecturaDe(tipo, nombre_de_tipo, precision_fija));
  columnas.push_back({nombre, TipoDe(lecturas_.back())});
}

std::vector<base::Valor> Lector::Filas(StatementLimits* limits) {
  std::vector<base::Valor> celdas;
  SQLRETURN rc = SQL_SUCCESS;
  while (SQL_SUCCEEDED(rc = SQLFetch(cursor_))) {
    for (std::size_t i = 0; i < lecturas_.size(); ++i)
      celdas.push_back(Celda(static_cast<SQLUSMALLINT>(i + 1)));
    if (limits != nullptr) limits->Row(celdas, lecturas_.size());
  }
  if (rc != SQL_NO_DATA) Lanzar();
  return celdas;
}

base::Valor Lector::Celda(SQLUSMALLINT i) {
  switch (lecturas_[i - 1U]) {
    case Lectura::Texto:
    case Lectura::Guid:
      return CeldaDeTexto(i);
    case Lectura::Binario:
      return CeldaDeBytes(i);
    case Lectura::Simple: {
      SQLREAL v = 0;
      if (!Fijo(i, SQL_C_FLOAT, &v, sizeof v)) return {};
      return float{v};
    }
    case Lectura::Doble:
      return CeldaDoble(i);
    case Lectura::Entero:
    case Lectura::Booleano:
    case Lectura::Decimal:
    case Lectura::Moneda:
      return CeldaDeCifras(i);
    case Lectura::Momento:
    case Lectura::Dia:
    case Lectura::Hora:
      break;
  }
  return CeldaDeFecha(i);
}

bool Lector::Fijo(SQLUSMALLINT i, SQLSMALLINT tipo_c, SQLPOINTER destino, std::size_t bytes, SQLLEN* dados) {
  SQLLEN largo = 0;
  if (!SQL_SUCCEEDED(SQLGetData(cursor_, i, tipo_c, destino, static_cast<SQLLEN>(bytes), &largo))) Lanzar();
  if (dados != nullptr) *dados = largo;
  return largo != SQL_NULL_DATA;
}

// mdbtools' driver gives the four bytes of a single whatever is asked for.
base::Valor Lector::CeldaDoble(SQLUSMALLINT i) {
  SQLDOUBLE v = 0;
  SQLLEN dados = 0;
  if (!Fijo(i, SQL_C_DOUBLE, &v, sizeof v, &dados)) return {};
  if (dados != static_cast<SQLLEN>(sizeof(float))) return double{v};
  float simple = 0;
  std::memcpy(&simple, &v, sizeof simple);
  return base::DobleDeSimple(simple);
}

base::Valor Lector::CeldaDeFecha(SQLUSMALLINT i) {
  SQL_TIMESTAMP_STRUCT m{};
  const Lectura lectura = lecturas_[i - 1U];
  if (lectura == Lectura::Dia) {
    SQL_DATE_STRUCT d{};
    if (!Fijo(i, SQL_C_TYPE_DATE, &d, sizeof d)) return {};
    m.year = d.year;
    m.month = d.month;
    m.day = d.day;
  } else if (lectura == Lectura::Hora) {
    SQL_TIME_STRUCT h{};
    if (!Fijo(i, SQL_C_TYPE_TIME, &h, sizeof h)) return {};
    m = {1899, 12, 30, h.hour, h.minute, h.second, 0};
  } else if (!Fijo(i, SQL_C_TYPE_TIMESTAMP, &m, sizeof m)) {
    return {};
  }
  return FechaDeMomento(m, (*columnas_)[i - 1U].nombre);
}

base::Valor Lector::CeldaDeCifras(SQLUSMALLINT i) {
  char cifras[128] = {};  // more than the digits of any number
  SQLLEN largo = 0;
  const SQLRETURN rc = SQLGetData(cursor_, i, SQL_C_CHAR, cifras, sizeof cifras, &largo);
  if (!SQL_SUCCEEDED(rc)) Lanzar();
  if (largo == SQL_NULL_DATA) return {};
  if (largo == SQL_NO_TOTAL ? rc == SQL_SUCCESS_WITH_INFO : largo >= static_cast<SQLLEN>(sizeof cifras))
    throw db::Error("El campo " + (*columnas_)[i - 1U].nombre + " trae un número que no lo es.");
  return ValorDeCifras(cifras, lecturas_[i - 1U]);
}

Lector::Pieza Lector::LeerPieza(SQLUSMALLINT i, SQLSMALLINT tipo_c, std::size_t ancho) {
  const std::size_t bytes = pieza_.size() * sizeof(SQLWCHAR);
  const std::size_t caben = tipo_c == SQL_C_BINARY ? bytes : bytes - ancho;  // a text ends in a NUL
  SQLLEN largo = 0;
  const SQLRETURN rc = SQLGetData(cursor_, i, tipo_c, pieza_.data(), static_cast<SQLLEN>(bytes), &largo);
  if (rc == SQL_NO_DATA) return {};
  if (!SQL_SUCCEEDED(rc)) Lanzar();
  if (largo == SQL_NULL_DATA) return {0, true, true};
  if (largo == SQL_NO_TOTAL) {
    if (rc == SQL_SUCCESS_WITH_INFO || tipo_c == SQL_C_BINARY) return {caben, false, false};
    const auto fin = std::find(pieza_.begin(), pieza_.end(), SQLWCHAR{0});
    return {static_cast<std::size_t>(fin - pieza_.begin()) * ancho, false, true};
  }
  if (largo < 0) Lanzar();
  const auto total = static_cast<std::size_t>(largo);
  return {std::min(total, caben), false, total <= caben};
}

base::Valor Lector::CeldaDeTexto(SQLUSMALLINT i) {
  Pieza p = LeerPieza(i, SQL_C_WCHAR, sizeof(SQLWCHAR));
  if (p.nulo) return {};
  std::string texto;
  if (p.ultima) {
    texto = DeAncho(pieza_.data(), p.bytes / sizeof(SQLWCHAR));
  } else {
    // Joined before it is decoded: a character of two units may be cut between pieces.
    std::vector<SQLWCHAR> todo(pieza_.begin(), pieza_.begin() + static_cast<std::ptrdiff_t>(p.bytes / 2));
    while (!p.ultima) {
      if (pieza_.size() < kPiezaMayor) pieza_.resize(pieza_.size() * 4);
      p = LeerPieza(i, SQL_C_WCHAR, sizeof(SQLWCHAR));
      todo.insert(todo.end(), pieza_.begin(), pieza_.begin() + static_cast<std::ptrdiff_t>(p.bytes / 2));
    }
    texto = DeAncho(todo.data(), todo.size());
  }
  if (lecturas_[i - 1U] == Lectura::Guid && !texto.empty() && texto[0] != '{') texto = "{" + texto + "}";
  return texto;
}

base::Valor Lector::CeldaDeBytes(SQLUSMALLINT i) {
  std::string bytes;
  for (Pieza p{0, false, false}; !p.ultima;) {
    p = LeerPieza(i, SQL_C_BINARY, 1);
    if (p.nulo) return {};
    bytes.append(reinterpret_cast<const char*>(pieza_.data()), p.bytes);
    if (!p.ultima && pieza_.size() < kPiezaMayor) pieza_.resize(pieza_.size() * 4);
  }
  return bytes;
}

}  // namespace engine_odbc
