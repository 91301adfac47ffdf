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

std::string NameSql(std::string_view name) {
  return std::string("\"").append(base::Replace(name, "\"", "\"\"")).append("\"");
}

std::string LiteralSql(const base::Value& v) {
  if (const auto* n = v.GetIf<std::int64_t>()) return std::to_string(*n);
  if (const auto* s = v.GetIf<std::string>())
    return std::string("'").append(base::EscapeQuotes(*s)).append("'");
  double d = 0;
  if (const auto* x = v.GetIf<double>()) d = *x;
  if (const auto* f = v.GetIf<base::Date>()) d = f->serial;
  std::array<char, 40> b{};
  const auto r = std::to_chars(b.data(), b.data() + b.size(), d);
  std::string s(b.data(), r.ptr);
  if (s.find_first_of(".e") == std::string::npos) s += ".0";
  return s;
}

void SqlDraft::Name(std::string_view name) { text += NameSql(name); }

void SqlDraft::Literal(const Expr& e) {
  if (e.index >= 0)
    text.append("?").append(std::to_string(e.index + 1));
  else
    text += LiteralSql(e.literal);
}

void SqlDraft::OpenBracket(int strength, int minimum) {
  if (strength < minimum) text += '(';
}
void SqlDraft::CloseBracket(int strength, int minimum) {
  if (strength < minimum) text += ')';
}

std::string WriteQuery(const Query& query, const TranslationOptions& options) {
  SqlDraft draft(options);
  draft.query.WriteQuery(query, {});
  return std::move(draft.text);
}

std::string WriteInsert(const Insert& change, const TranslationOptions& options) {
  SqlDraft draft(options);
  draft.change.Write(change);
  return std::move(draft.text);
}

std::string WriteDelete(const Delete& change, const TranslationOptions& options) {
  SqlDraft draft(options);
  draft.change.Write(change);
  return std::move(draft.text);
}

std::vector<std::string> WriteUpdate(const Update& change, const TranslationOptions& options) {
  return ChangeWriter::Steps(change, options);
}

std::string WriteInsertOf(const Query& query, std::string_view table, const std::vector<TableColumn>& columns,
                          const TranslationOptions& options) {
  SqlDraft draft(options);
  draft.change.InsertQuery(table, columns, query);
  return std::move(draft.text);
}

std::string WriteValue(const Expr& value, base::Type stored_as) {
  SqlDraft draft({});
  draft.change.Assigned(value, stored_as);
  return std::move(draft.text);
}

}  // namespace jetsql
