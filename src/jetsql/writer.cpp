#include "jetsql/writer_internal.h"

#include <array>
#include <charconv>

#include "base/text.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {

QueryWriter::QueryWriter(SqlDraft& draft) : d_(draft), t_(draft.text) {}
FromWriter::FromWriter(SqlDraft& draft) : d_(draft), t_(draft.text) {}
ChangeWriter::ChangeWriter(SqlDraft& draft) : d_(draft), t_(draft.text) {}
ExpressionWriter::ExpressionWriter(SqlDraft& draft) : d_(draft), t_(draft.text) {}
ComparisonWriter::ComparisonWriter(SqlDraft& draft) : d_(draft), t_(draft.text) {}
CallWriter::CallWriter(SqlDraft& draft) : d_(draft), t_(draft.text) {}

std::string NombreSql(std::string_view nombre) {
  return std::string("\"").append(base::Reemplazar(nombre, "\"", "\"\"")).append("\"");
}

std::string LiteralSql(const base::Valor& v) {
  if (const auto* n = v.Si<std::int64_t>()) return std::to_string(*n);
  if (const auto* s = v.Si<std::string>())
    return std::string("'").append(base::DoblarComillas(*s)).append("'");
  double d = 0;
  if (const auto* x = v.Si<double>()) d = *x;
  if (const auto* f = v.Si<base::Fecha>()) d = f->serie;
  std::array<char, 40> b{};
  const auto r = std::to_chars(b.data(), b.data() + b.size(), d);
  std::string s(b.data(), r.ptr);
  if (s.find_first_of(".e") == std::string::npos) s += ".0";
  return s;
}

void SqlDraft::Nombre(std::string_view nombre) { text += NombreSql(nombre); }

void SqlDraft::Literal(const Expr& e) {
  if (e.indice >= 0)
    text.append("?").append(std::to_string(e.indice + 1));
  else
    text += LiteralSql(e.literal);
}

void SqlDraft::Abre(int fuerza, int minimo) {
  if (fuerza < minimo) text += '(';
}
void SqlDraft::Cierra(int fuerza, int minimo) {
  if (fuerza < minimo) text += ')';
}

std::string WriteQuery(const Consulta& query, const OpcionesTraduccion& options) {
  SqlDraft draft(options);
  draft.query.EscribirConsulta(query, {});
  return std::move(draft.text);
}

std::string WriteInsert(const Insercion& change, const OpcionesTraduccion& options) {
  SqlDraft draft(options);
  draft.change.Escribir(change);
  return std::move(draft.text);
}

std::string WriteDelete(const Borrado& change, const OpcionesTraduccion& options) {
  SqlDraft draft(options);
  draft.change.Escribir(change);
  return std::move(draft.text);
}

std::vector<std::string> WriteUpdate(const Actualizacion& change, const OpcionesTraduccion& options) {
  return ChangeWriter::Pasos(change, options);
}

std::string WriteInsertOf(const Consulta& query, std::string_view table,
                          const std::vector<ColumnaTabla>& columns, const OpcionesTraduccion& options) {
  SqlDraft draft(options);
  draft.change.InsertarConsulta(table, columns, query);
  return std::move(draft.text);
}

std::string WriteValue(const Expr& value, base::Tipo stored_as) {
  SqlDraft draft({});
  draft.change.Asignado(value, stored_as);
  return std::move(draft.text);
}

}  // namespace jetsql
