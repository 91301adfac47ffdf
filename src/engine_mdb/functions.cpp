// What the mirrors' conditions, defaults and triggers call.
#include <algorithm>
#include <cmath>
#include <string>

#include "base/error.h"
#include "base/number.h"
#include "engine_mdb/cells_internal.h"
#include "engine_mdb/source_internal.h"
#include "mdb/indexes/index_key.h"

namespace engine_mdb {
namespace {

FuenteMdb& De(sqlite3_context* contexto) { return *static_cast<FuenteMdb*>(sqlite3_user_data(contexto)); }

void Siguiente(sqlite3_context* contexto, int, sqlite3_value** valores) {
  sqlite3_result_int64(contexto, De(contexto).SiguienteAutomatico(sqlite3_value_int(valores[0])));
}

void Visto(sqlite3_context* contexto, int, sqlite3_value** valores) {
  if (sqlite3_value_type(valores[1]) == SQLITE_INTEGER)
    De(contexto).VerAutomatico(sqlite3_value_int(valores[0]), sqlite3_value_int64(valores[1]));
}

void FallarCon(sqlite3_context* contexto, const std::string& texto) {
  const std::string propio = std::string(engine_sqlite::kTextoPropio) + texto;
  sqlite3_result_error(contexto, propio.c_str(), static_cast<int>(propio.size()));
}

std::string TextoDe(sqlite3_value* valor) {
  const auto* p = reinterpret_cast<const char*>(sqlite3_value_text(valor));
  return p == nullptr ? std::string() : std::string(p, static_cast<std::size_t>(sqlite3_value_bytes(valor)));
}

// idm_decimal(value, precision, scale, column)
void Decimal(sqlite3_context* contexto, int, sqlite3_value** valores) {
  if (sqlite3_value_type(valores[0]) == SQLITE_NULL) return;
  const int escala = sqlite3_value_int(valores[2]);
  const double v = base::Redondear(sqlite3_value_double(valores[0]), std::min(escala, 22));
  if (std::abs(v) >= std::pow(10.0, sqlite3_value_int(valores[1]) - escala))
    return FallarCon(contexto, "El número no cabe en el campo " + TextoDe(valores[3]) + ".");
  sqlite3_result_double(contexto, v);
}

// idm_bytes(value, most bytes or 0, column): a text as the bytes that the file keeps of it.
void FormaDeBytes(sqlite3_context* contexto, int, sqlite3_value** valores) {
  if (sqlite3_value_type(valores[0]) == SQLITE_NULL) return;
  const bool son = sqlite3_value_type(valores[0]) == SQLITE_BLOB;
  const mdb::Bytes bytes = son ? mdb::Bytes() : EnUtf16(TextoDe(valores[0]));
  const auto largo = son ? static_cast<std::size_t>(sqlite3_value_bytes(valores[0])) : bytes.size();
  const auto tope = static_cast<std::size_t>(sqlite3_value_int(valores[1]));
  if (tope != 0 && largo > tope)
    return FallarCon(contexto, "El valor es demasiado largo para el campo " + TextoDe(valores[2]) + ".");
  if (son)
    sqlite3_result_value(contexto, valores[0]);
  else if (bytes.empty())
    sqlite3_result_zeroblob(contexto, 0);  // a null pointer would be Null
  else
    sqlite3_result_blob64(contexto, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
}

void FormaDeGuid(sqlite3_context* contexto, int, sqlite3_value** valores) {
  if (sqlite3_value_type(valores[0]) == SQLITE_NULL) return;
  try {
    const std::string texto = mdb::GuidDeTexto(TextoDe(valores[0])).Texto();
    sqlite3_result_text64(contexto, texto.data(), texto.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
  } catch (const base::Error&) {
    FallarCon(contexto,
              "El texto no es un GUID: no se puede guardar en el campo " + TextoDe(valores[1]) + ".");
  }
}

// idm_unidades(text): its length as the file counts it, in units of UTF-16. A text may hold a NUL.
void Unidades(sqlite3_context* contexto, int, sqlite3_value** valores) {
  if (sqlite3_value_type(valores[0]) == SQLITE_NULL) return;
  const auto* p = sqlite3_value_text(valores[0]);
  const int bytes = sqlite3_value_bytes(valores[0]);
  sqlite3_int64 unidades = 0;
  for (int i = 0; i < bytes; ++i) {
    if ((p[i] & 0xC0U) != 0x80U) ++unidades;
    if (p[i] >= 0xF0U) ++unidades;
  }
  sqlite3_result_int64(contexto, unidades);
}

// idm_en_indice(table, column, text): true, or the reason why no index of the file can hold the text.
void EnIndice(sqlite3_context* contexto, int, sqlite3_value** valores) {
  sqlite3_result_int(contexto, 1);
  if (sqlite3_value_type(valores[2]) != SQLITE_TEXT) return;
  const std::string texto = TextoDe(valores[2]);
  if (std::all_of(texto.begin(), texto.end(), [](char c) { return c >= ' ' && c <= '~'; })) return;
  try {
    De(contexto).ProbarClave(sqlite3_value_int(valores[0]), sqlite3_value_int(valores[1]), texto);
  } catch (const base::Error& e) {
    FallarCon(contexto, e.Descripcion());
  }
}

void Falla(sqlite3_context* contexto, int, sqlite3_value** valores) {
  FallarCon(contexto, TextoDe(valores[0]));
}

void GuidNuevo(sqlite3_context* contexto, int, sqlite3_value**) {
  mdb::Guid guid;
  sqlite3_randomness(static_cast<int>(guid.bytes.size()), guid.bytes.data());
  guid.bytes[6] = static_cast<std::uint8_t>((guid.bytes[6] & 0x0F) | 0x40);
  guid.bytes[8] = static_cast<std::uint8_t>((guid.bytes[8] & 0x3F) | 0x80);
  const std::string texto = guid.Texto();
  sqlite3_result_text64(contexto, texto.data(), texto.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

// SQLite is no place for exceptions to pass through.
template <void (*Body)(sqlite3_context*, int, sqlite3_value**)>
void Guarded(sqlite3_context* contexto, int n, sqlite3_value** valores) {
  try {
    Body(contexto, n, valores);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(contexto);
  }
}

struct Funcion {
  const char* nombre;
  int argumentos;
  bool fija;  // the same answer for the same arguments
  void (*funcion)(sqlite3_context*, int, sqlite3_value**);
};
constexpr Funcion kFunciones[] = {
    {"idm_siguiente", 1, false, Siguiente},        {"idm_visto", 2, false, Visto},
    {"idm_falla", 1, false, Guarded<Falla>},       {"idm_guid", 0, false, Guarded<GuidNuevo>},
    {"idm_decimal", 4, true, Guarded<Decimal>},    {"idm_forma_guid", 2, true, Guarded<FormaDeGuid>},
    {"idm_bytes", 3, true, Guarded<FormaDeBytes>}, {"idm_unidades", 1, true, Unidades},
    {"idm_en_indice", 3, true, Guarded<EnIndice>},
};

}  // namespace

void FuenteMdb::RegistrarFunciones() {
  for (const Funcion& f : kFunciones)
    sqlite3_create_function_v2(espejo_, f.nombre, f.argumentos,
                               SQLITE_UTF8 | SQLITE_INNOCUOUS | (f.fija ? SQLITE_DETERMINISTIC : 0), this,
                               f.funcion, nullptr, nullptr, nullptr);
}

std::int64_t FuenteMdb::SiguienteAutomatico(int tabla) {
  TablaEspejo& t = *por_numero_.at(static_cast<std::size_t>(tabla));
  return t.estado.ultimo_automatico += std::max(t.definicion.incremento, std::int32_t{1});
}

void FuenteMdb::VerAutomatico(int tabla, std::int64_t valor) {
  TablaEspejo& t = *por_numero_.at(static_cast<std::size_t>(tabla));
  t.estado.ultimo_automatico = std::max(t.estado.ultimo_automatico, valor);
}

void FuenteMdb::ProbarClave(int tabla, int columna, const std::string& texto) const {
  const TablaEspejo& t = *por_numero_.at(static_cast<std::size_t>(tabla));
  mdb::Bytes clave;
  mdb::AgregarClave(t.base->Cab(), t.definicion.columnas.at(static_cast<std::size_t>(columna)), false, texto,
                    clave);
}

}  // namespace engine_mdb
