// From a text to its rows.
#include <algorithm>

#include "base/text.h"
#include "engine_odbc/connection_internal.h"
#include "engine_odbc/qualifiers_internal.h"
#include "engine_odbc/reading_internal.h"
#include "engine_odbc/rows_internal.h"
#include "jetsql/parser.h"
#include "jetsql/statement_kind.h"

namespace engine_odbc {
namespace {

constexpr std::size_t kFormasRecordadas = 500;
constexpr std::size_t kTextoMasLargo = 1U << 28;  // bytes; the driver manager counts with 32 bits

// What only a driver knows may define, too.
bool MayDefine(std::string_view sql) {
  return jetsql::KindOfText(sql).value_or(jetsql::Clase::Definicion) == jetsql::Clase::Definicion;
}

// A character beyond U+FFFF takes four bytes.
bool TieneLejanos(std::string_view texto) {
  return std::any_of(texto.begin(), texto.end(),
                     [](char c) { return static_cast<unsigned char>(c) >= 0xF0; });
}

}  // namespace

db::Recordset ConexionOdbc::Ejecutar(std::string_view sql) {
  return db::AsConnectionErrors([&] {
    VerificarUtil();
    afectadas_ = 0;
    if (!solo_lectura_) return Correr(sql, nullptr);
    jetsql::Sentencia tree = ComprobarQueSoloLee(sql);
    return Correr(sql, &tree);
  });
}

db::Recordset ConexionOdbc::Consultar(std::string_view sql) {
  return db::AsConnectionErrors([&] {
    VerificarUtil();
    afectadas_ = 0;
    jetsql::Sentencia tree = ComprobarQueSoloLee(sql);
    return Correr(sql, &tree);
  });
}

db::Recordset ConexionOdbc::QueryBounded(std::string_view sql, db::QueryBudget& budget) {
  const db::BudgetInUse lent(budget_, budget);
  try {
    return Consultar(sql);
  } catch (const OdbcError& e) {
    if (e.TimedOut()) throw db::QueryInterrupted(db::QueryInterrupted::By::Work);
    throw;
  }
}

std::string ConexionOdbc::TextoParaElDriver(std::string_view sql, jetsql::Sentencia* tree) {
  jetsql::Forma forma;
  if (!jetsql::SepararLiterales(sql, forma) || sin_tocar_.contains(forma.clave)) return std::string(sql);
  std::string texto(sql);
  bool cambio = false;
  // What the dialect does not know is for the driver to judge.
  base::ErrorIgnorado("ODBC: calificadores", nullptr, [&] {
    jetsql::Sentencia own;
    if (tree == nullptr) {
      own = jetsql::Analizar(sql);
      tree = &own;
    }
    cambio = Calificadores(catalogo_).Resolver(*tree);
    if (cambio) texto = jetsql::Imprimir(*tree);
  });
  if (!cambio) {
    if (sin_tocar_.size() >= kFormasRecordadas) sin_tocar_.clear();
    sin_tocar_.insert(std::move(forma.clave));
  }
  return texto;
}

db::Recordset ConexionOdbc::Correr(std::string_view sql, jetsql::Sentencia* tree) {
  if (base::TrimVista(sql).empty()) throw db::Error("La sentencia está vacía.");
  // A driver that ends the text at a NUL would run a DELETE without its condition.
  if (sql.find('\0') != std::string_view::npos)
    throw db::Error("La sentencia tiene un carácter nulo, que la base no admite.");
  if (sql.size() > kTextoMasLargo) throw db::Error("La sentencia es demasiado larga.");
  const std::string texto = TextoParaElDriver(sql, tree);
  OpenCursor();
  StatementLimits limits(cursor_, budget_);
  const CloseCursor close(cursor_);  // before the limits go: a driver may refuse to change them else
  const SQLRETURN rc = Mandar(texto);
  if (rc != SQL_NO_DATA && !SQL_SUCCEEDED(rc))  // no data: a change that found no row
    Fallar(SQL_HANDLE_STMT, cursor_.Crudo(), "La base no pudo ejecutar la sentencia");
  if (MayDefine(sql)) {
    catalogo_.Olvidar();
    sin_tocar_.clear();
  }
  if (rc == SQL_NO_DATA) return {nullptr, {}, std::string(sql)};
  const db::Recordset filas = Recoger(sql, limits);
  if (filas.Campos().empty()) NoteChange(texto, rows_of_last_);
  return filas;
}

void ConexionOdbc::OpenCursor() {
  if (cursor_) return;
  cursor_ = CrearCursor(enlace_);
  // Braces inside a text are the text's own. A driver that cannot be told so keeps its habit.
  SQLSetStmtAttrW(cursor_.Crudo(), SQL_ATTR_NOSCAN, reinterpret_cast<SQLPOINTER>(SQL_NOSCAN_ON),
                  SQL_IS_UINTEGER);
}

SQLRETURN ConexionOdbc::Mandar(const std::string& texto) {
  if (TieneLejanos(texto)) {
    if (!pierde_caracteres_) pierde_caracteres_ = PierdeCaracteres(enlace_.Crudo());
    // Then the driver takes bytes, and the driver manager hands over ours untouched.
    if (*pierde_caracteres_) {
      std::string bytes = texto;
      return SQLExecDirectA(cursor_.Crudo(), reinterpret_cast<SQLCHAR*>(bytes.data()),
                            static_cast<SQLINTEGER>(bytes.size()));
    }
  }
  TextoAncho ancho(texto);
  return SQLExecDirectW(cursor_.Crudo(), ancho.Datos(), ancho.Largo());
}

db::Recordset ConexionOdbc::Recoger(std::string_view sql, StatementLimits& limits) {
  try {
    Lector lector(cursor_.Crudo());
    if (lector.Columnas()->empty()) {
      rows_of_last_ = RowCount();
      if (rows_of_last_ > 0) afectadas_ = rows_of_last_;
      return {lector.Columnas(), {}, std::string(sql)};
    }
    return {lector.Columnas(), lector.Filas(&limits), std::string(sql)};
  } catch (const OdbcError& e) {
    if (!e.Lost() && !EstaMuerta()) throw;
    Perder();
    throw db::Error(base::StorageFault(e.Descripcion(), e.Numero(), e.Fuente()));
  }
}

SQLLEN ConexionOdbc::RowCount() const {
  SQLLEN rows = -1;
  return SQL_SUCCEEDED(SQLRowCount(cursor_.Crudo(), &rows)) ? rows : -1;
}

}  // namespace engine_odbc
