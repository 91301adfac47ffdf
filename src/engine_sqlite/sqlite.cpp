#include "engine_sqlite/sqlite_internal.h"

namespace engine_sqlite {

void LanzarError(sqlite3* base, int numero) {
  const int codigo = sqlite3_extended_errcode(base);
  throw db::Error(DescripcionDe(codigo, sqlite3_errmsg(base)), numero, {},
                  KindOf(codigo, sqlite3_get_autocommit(base) == 0));
}

Sentencia Preparar(sqlite3* base, std::string_view sql) {
  sqlite3_stmt* cruda = nullptr;
  const int rc = sqlite3_prepare_v3(base, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                                    &cruda, nullptr);
  Sentencia sentencia(cruda);
  if (rc != SQLITE_OK) LanzarError(base);
  return sentencia;
}

void EjecutarPropio(sqlite3* base, const char* sql) {
  if (sqlite3_exec(base, sql, nullptr, nullptr, nullptr) != SQLITE_OK) LanzarError(base);
}

void Ligar(sqlite3_stmt* sentencia, int indice, const base::Valor& valor) {
  if (indice > sqlite3_bind_parameter_count(sentencia)) return;
  int rc = SQLITE_OK;
  switch (valor.tipo()) {
    case base::Tipo::Nulo:
      rc = sqlite3_bind_null(sentencia, indice);
      break;
    case base::Tipo::Booleano:
      rc = sqlite3_bind_int(sentencia, indice, *valor.Si<bool>() ? -1 : 0);
      break;
    case base::Tipo::Entero:
      rc = sqlite3_bind_int64(sentencia, indice, *valor.Si<std::int64_t>());
      break;
    case base::Tipo::Simple:
      rc = sqlite3_bind_double(sentencia, indice, static_cast<double>(*valor.Si<float>()));
      break;
    case base::Tipo::Numero:
      rc = sqlite3_bind_double(sentencia, indice, *valor.Si<double>());
      break;
    case base::Tipo::Moneda:
      rc = sqlite3_bind_double(sentencia, indice,
                               static_cast<double>(valor.Si<base::Moneda>()->diezmilesimas) / 10000.0);
      break;
    case base::Tipo::Fecha:
      rc = sqlite3_bind_double(sentencia, indice, valor.Si<base::Fecha>()->serie);
      break;
    case base::Tipo::Texto: {
      const std::string& t = *valor.Si<std::string>();
      rc = sqlite3_bind_text64(sentencia, indice, t.data(), t.size(), SQLITE_STATIC, SQLITE_UTF8);
      break;
    }
  }
  if (rc != SQLITE_OK) LanzarError(sqlite3_db_handle(sentencia));
}

std::string_view TextOf(sqlite3_stmt* row, int column) {
  const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
  if (p != nullptr) return {p, static_cast<std::size_t>(sqlite3_column_bytes(row, column))};
  if (sqlite3_errcode(sqlite3_db_handle(row)) == SQLITE_NOMEM) LanzarError(sqlite3_db_handle(row));
  return {};
}

}  // namespace engine_sqlite
