// Handles and texts of the driver manager.
#ifndef _WIN32
#include <locale.h>
#endif

#include <algorithm>

#include "base/encoding.h"
#include "engine_odbc/odbc_internal.h"

namespace engine_odbc {
namespace {

constexpr std::string_view kSinRecursos = "No se pudo iniciar ODBC en este equipo";
constexpr std::size_t kMasDiagnosticos = 50;  // a driver that never ends its list is not believed

}  // namespace

Ambiente CrearAmbiente() {
  SQLHANDLE crudo = nullptr;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &crudo)))
    throw db::Error(base::StorageFault(std::string(kSinRecursos) + "."));
  Ambiente ambiente(crudo);
  if (!SQL_SUCCEEDED(SQLSetEnvAttr(crudo, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3),
                                   SQL_IS_UINTEGER)))
    throw FaultOf(Diagnosticos(SQL_HANDLE_ENV, crudo), kSinRecursos);
  return ambiente;
}

Enlace CrearEnlace(const Ambiente& padre) {
  SQLHANDLE crudo = nullptr;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, padre.Crudo(), &crudo)))
    throw FaultOf(Diagnosticos(SQL_HANDLE_ENV, padre.Crudo()), kSinRecursos);
  return Enlace(crudo);
}

Cursor CrearCursor(const Enlace& padre) {
  SQLHANDLE crudo = nullptr;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, padre.Crudo(), &crudo)))
    throw FaultOf(Diagnosticos(SQL_HANDLE_DBC, padre.Crudo()), "La base no pudo preparar una sentencia");
  return Cursor(crudo);
}

TextoAncho::TextoAncho(std::string_view utf8) {
  const std::u16string texto = base::AUtf16(utf8);
  unidades_.reserve(texto.size() + 1);
  for (const char16_t u : texto) unidades_.push_back(static_cast<SQLWCHAR>(u));
  unidades_.push_back(0);
}

std::string DeAncho(const SQLWCHAR* unidades, std::size_t cuantas) {
  std::string texto(cuantas, '\0');
  std::size_t i = 0;
  for (; i < cuantas && unidades[i] < 0x80; ++i) texto[i] = static_cast<char>(unidades[i]);
  if (i == cuantas) return texto;
  std::u16string ancho(cuantas, u'\0');
  for (i = 0; i < cuantas; ++i) ancho[i] = static_cast<char16_t>(unidades[i]);
  return base::DeUtf16(ancho);
}

#ifdef _WIN32
TextosUtf8::TextosUtf8() = default;
TextosUtf8::~TextosUtf8() = default;
bool PierdeCaracteres(SQLHANDLE) { return false; }
#else
TextosUtf8::TextosUtf8() {
  const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  if (utf8 == nullptr) return;
  propia_ = utf8;
  anterior_ = uselocale(utf8);
}
TextosUtf8::~TextosUtf8() {
  if (propia_ == nullptr) return;
  uselocale(static_cast<locale_t>(anterior_));
  freelocale(static_cast<locale_t>(propia_));
}
bool PierdeCaracteres(SQLHANDLE enlace) {
  TextoAncho prueba("SELECT '\U0001F600'");
  std::vector<SQLWCHAR> vuelta(64);
  SQLINTEGER largo = 0;
  if (!SQL_SUCCEEDED(SQLNativeSqlW(enlace, prueba.Datos(), prueba.Largo(), vuelta.data(),
                                   static_cast<SQLINTEGER>(vuelta.size()), &largo)))
    return false;
  return !std::equal(prueba.Datos(), prueba.Datos() + prueba.Largo(), vuelta.data());
}
#endif

std::vector<Diagnostico> Diagnosticos(SQLSMALLINT que, SQLHANDLE manejador) {
  std::vector<Diagnostico> todos;
  std::vector<SQLWCHAR> texto(1024);
  for (SQLSMALLINT i = 1; todos.size() < kMasDiagnosticos; ++i) {
    SQLWCHAR estado[6] = {};
    SQLINTEGER nativo = 0;
    SQLSMALLINT largo = 0;
    const auto leer = [&] {
      return SQLGetDiagRecW(que, manejador, i, estado, &nativo, texto.data(),
                            static_cast<SQLSMALLINT>(texto.size()), &largo);
    };
    SQLRETURN rc = leer();
    if (rc == SQL_SUCCESS_WITH_INFO && largo >= static_cast<SQLSMALLINT>(texto.size()) && largo < 32000) {
      texto.resize(static_cast<std::size_t>(largo) + 1);
      rc = leer();
    }
    if (!SQL_SUCCEEDED(rc)) break;
    // Up to the NUL: some drivers give the length in bytes.
    std::size_t fin = 0;
    while (fin + 1 < texto.size() && texto[fin] != 0) ++fin;
    while (fin > 0 && texto[fin - 1] <= ' ') --fin;
    // A message is shown on one line.
    std::replace_if(
        texto.begin(), texto.begin() + static_cast<std::ptrdiff_t>(fin), [](SQLWCHAR u) { return u < ' '; },
        SQLWCHAR{' '});
    todos.push_back({DeAncho(estado, 5), DeAncho(texto.data(), fin), static_cast<std::int32_t>(nativo)});
  }
  return todos;
}

}  // namespace engine_odbc
