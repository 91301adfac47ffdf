#include "engine_mdb/query_text.h"

#include <algorithm>
#include <array>
#include <tuple>

#include "base/error.h"
#include "engine_mdb/query_text_internal.h"

namespace engine_mdb {
namespace {

using internal::Quote;
using internal::WithoutTail;
using mdb::QueryKind;
using mdb::QueryRow;
using mdb::SavedQuery;

namespace codes = mdb::query_codes;

using Range = std::span<const QueryRow>;

const char* ParameterType(std::int16_t type) {
  static constexpr std::array<const char*, 16> kTypes = {
      "Value",    "Bit",    "Byte", "Short",      "Long",  "Currency", "IEEESingle", "IEEEDouble",
      "DateTime", "Binary", "Text", "LongBinary", nullptr, nullptr,    nullptr,      "Guid"};
  const char* name = type >= 0 && type < 16 ? kTypes[static_cast<std::size_t>(type)] : nullptr;
  if (name == nullptr) throw base::Error("La consulta tiene un parámetro de un tipo que no se conoce");
  return name;
}

std::string OtherDatabaseClause(const std::optional<std::string>& path,
                                const std::optional<std::string>& type) {
  std::string text;
  if (path && !path->empty()) text += " IN '" + *path + "'";
  if (type && !type->empty()) text += (text.empty() ? " IN '' [" : " [") + *type + "]";
  return text;
}

class QueryWriter {
 public:
  explicit QueryWriter(const SavedQuery& query) : rows_(query.rows) {
    std::stable_sort(rows_.begin(), rows_.end(), [](const QueryRow& a, const QueryRow& b) {
      return std::tie(a.attribute, a.order) < std::tie(b.attribute, b.order);
    });
    for (const auto& f : Of(codes::kOptions)) {
      options_ |= f.flag.value_or(0);
      if (f.name1) limit_ = *f.name1;
    }
  }

  std::string Text(QueryKind kind) const {
    switch (kind) {
      case QueryKind::Definition:
      case QueryKind::PassThrough:
        return Expression(codes::kKind, "La consulta no tiene texto");
      case QueryKind::Union:
        return Parameters() + UnionText() + Final();
      case QueryKind::Crosstab:
        return Parameters() + Crosstab() + Final();
      case QueryKind::Update:
        return Parameters() + "UPDATE " + RowDistinction() + Sources() + " SET " + Assignments() + Where() +
               Final();
      case QueryKind::Delete:
        return Parameters() + "DELETE " + RowDistinction() + Columns(Of(codes::kColumn), true) + " FROM " +
               Sources() + Where() + Final();
      case QueryKind::Append:
        return Parameters() + Add() + Final();
      case QueryKind::CreateTable:
        return Parameters() + Select(" INTO " + Target()) + Final();
      case QueryKind::Select:
        break;
    }
    return Parameters() + Select("") + Final();
  }

 private:
  Range Of(std::uint8_t attribute) const {
    const auto first =
        std::find_if(rows_.begin(), rows_.end(), [=](const auto& f) { return f.attribute == attribute; });
    const auto end =
        std::find_if(first, rows_.end(), [=](const auto& f) { return f.attribute != attribute; });
    return Range(first, end);
  }
  bool HasOption(int option) const { return (options_ & option) != 0; }

  // The expression of the only row of an attribute; with a reason, its absence is an error.
  std::string Expression(std::uint8_t attribute, const char* reason = nullptr) const {
    const Range rows = Of(attribute);
    std::string text;
    if (!rows.empty()) text = WithoutTail(rows.front().expression.value_or(""));
    if (text.empty() && reason != nullptr) throw base::Error(reason);
    return text;
  }

  // "part, part, …" of the rows that `part` takes.
  template <typename Part>
  static std::string List(Range rows, Part&& part) {
    std::string text;
    for (const auto& f : rows) {
      const std::string one = part(f);
      if (!one.empty()) text += (text.empty() ? "" : ", ") + one;
    }
    return text;
  }

  static std::string ExpressionText(const QueryRow& f) {
    std::string text(WithoutTail(f.expression.value_or("")));
    if (text.empty()) throw base::Error("La consulta tiene una columna vacía");
    return text;
  }
  static std::string Column(const QueryRow& f) {
    std::string text = ExpressionText(f);
    if (f.name1 && !f.name1->empty()) text += " AS " + Quote(*f.name1);
    return text;
  }

  std::string Columns(Range rows, bool all_if_none = false) const {
    std::string text = List(rows, Column);
    if (HasOption(codes::kAll) || (text.empty() && all_if_none)) text += text.empty() ? "*" : ", *";
    if (text.empty()) throw base::Error("La consulta no tiene columnas");
    return text;
  }

  std::string Parameters() const {
    const std::string list = List(Of(codes::kParameter), [](const QueryRow& f) {
      std::string one = Quote(f.name1.value_or("")) + " " + ParameterType(f.flag.value_or(0));
      if (f.extra.value_or(0) > 0) one += " (" + std::to_string(*f.extra) + ")";
      return one;
    });
    return list.empty() ? "" : "PARAMETERS " + list + "; ";
  }

  std::string Sources() const {
    std::string text = internal::SourcesText(Of(codes::kSource), Of(codes::kJoin));
    if (const Range external = Of(codes::kOtherBase); !external.empty())
      text += OtherDatabaseClause(external.front().name1, external.front().expression);
    return text;
  }

  std::string Clause(const char* word, std::uint8_t attribute) const {
    const std::string expression = Expression(attribute);
    return expression.empty() ? "" : word + expression;
  }
  std::string Where() const { return Clause(" WHERE ", codes::kWhere); }

  std::string Group(bool crosstab) const {
    const std::string list = List(Of(codes::kGroup), [&](const QueryRow& f) {
      const bool outside = crosstab && f.flag.value_or(0) == codes::kPivot;
      return outside ? std::string() : ExpressionText(f);
    });
    return list.empty() ? "" : " GROUP BY " + list;
  }

  std::string SortOrder() const {
    const std::string list = List(Of(codes::kOrder), [](const QueryRow& f) {
      const bool descending = f.name1 && (*f.name1 == "D" || *f.name1 == "d");
      return ExpressionText(f) + (descending ? " DESC" : "");
    });
    return list.empty() ? "" : " ORDER BY " + list;
  }

  std::string Final() const { return HasOption(codes::kOwnerAccess) ? " WITH OWNERACCESS OPTION" : ""; }
  std::string RowDistinction() const { return HasOption(codes::kDistinctRows) ? "DISTINCTROW " : ""; }

  std::string Predicate() const {
    std::string text;
    if (HasOption(codes::kDistinct)) text += "DISTINCT ";
    text += RowDistinction();
    if (HasOption(codes::kTop)) {
      if (limit_.empty()) throw base::Error("La consulta no dice cuántas filas da");
      text += "TOP " + limit_ + (HasOption(codes::kPercent) ? " PERCENT " : " ");
    }
    return text;
  }

  std::string FromBody(bool crosstab) const {
    const std::string sources = Sources();
    return (sources.empty() ? "" : " FROM " + sources) + Where() + Group(crosstab) +
           Clause(" HAVING ", codes::kHaving) + SortOrder();
  }

  std::string Select(const std::string& target) const {
    return "SELECT " + Predicate() + Columns(Of(codes::kColumn)) + target + FromBody(false);
  }

  std::string Target() const {
    const Range rows = Of(codes::kKind);
    if (rows.empty() || rows.front().name1.value_or("").empty())
      throw base::Error("La consulta no dice en qué tabla escribe");
    const auto& f = rows.front();
    return Quote(*f.name1) + OtherDatabaseClause(f.name2, f.expression);
  }

  std::string Add() const {
    const Range columns = Of(codes::kColumn);
    std::string text = "INSERT INTO " + Target();
    const std::string names = List(columns, [](const QueryRow& f) {
      return f.name2 && !f.name2->empty() ? internal::QuoteCompound(*f.name2) : std::string();
    });
    if (!names.empty()) text += " (" + names + ")";
    const bool of_values = !columns.empty() && std::all_of(columns.begin(), columns.end(), [](auto& f) {
      return f.flag.value_or(0) == codes::kOfValues;
    });
    if (of_values) return text + " VALUES (" + List(columns, ExpressionText) + ")";
    return text + " " + Select("");
  }

  std::string Assignments() const {
    const std::string list = List(Of(codes::kColumn), [](const QueryRow& f) {
      if (!f.name2 || f.name2->empty()) throw base::Error("La consulta no dice qué columna cambia");
      return internal::QuoteCompound(*f.name2) + " = " + ExpressionText(f);
    });
    if (list.empty()) throw base::Error("La consulta no cambia ninguna columna");
    return list;
  }

  std::string UnionText() const {
    std::string text;
    for (const auto& f : Of(codes::kSource)) {
      if (!text.empty()) text += HasOption(codes::kDistinct) ? " UNION " : " UNION ALL ";
      text += ExpressionText(f);
    }
    if (text.empty()) throw base::Error("La consulta de unión no tiene partes");
    return text + SortOrder();
  }

  std::string Crosstab() const {
    std::string value, pivot;
    std::vector<QueryRow> headings;
    for (const auto& f : Of(codes::kColumn)) {
      switch (f.flag.value_or(0)) {
        case codes::kRowHeading:
          headings.push_back(f);
          break;
        case codes::kPivot:
          pivot = Column(f);
          break;
        default:
          value = Column(f);
      }
    }
    if (value.empty() || pivot.empty())
      throw base::Error("La consulta de referencias cruzadas no está completa");
    return "TRANSFORM " + value + " SELECT " + Predicate() + Columns(headings) + FromBody(true) + " PIVOT " +
           pivot;
  }

  std::vector<QueryRow> rows_;
  int options_ = 0;
  std::string limit_;
};

}  // namespace

const char* KindName(QueryKind kind) {
  switch (kind) {
    case QueryKind::Select:
      return "de selección";
    case QueryKind::CreateTable:
      return "de creación de tabla";
    case QueryKind::Append:
      return "de datos anexados";
    case QueryKind::Update:
      return "de actualización";
    case QueryKind::Delete:
      return "de eliminación";
    case QueryKind::Crosstab:
      return "de referencias cruzadas";
    case QueryKind::Definition:
      return "de definición de datos";
    case QueryKind::PassThrough:
      return "de paso a través";
    case QueryKind::Union:
      return "de unión";
  }
  return "";
}

bool GivesRows(QueryKind kind) { return kind == QueryKind::Select || kind == QueryKind::Union; }

std::string QueryText(const SavedQuery& query) { return QueryWriter(query).Text(mdb::KindOf(query)); }

}  // namespace engine_mdb
