#include "jetsql/domain_internal.h"

#include "base/error.h"
#include "base/text.h"
#include "jetsql/parser.h"

namespace jetsql {
namespace {

struct DomainFunction {
  std::string_view name;
  std::string_view aggregate;  // none: the value of any row
};
constexpr DomainFunction kFunctions[] = {{"DLOOKUP", ""},       {"DCOUNT", "Count"}, {"DSUM", "Sum"},
                                         {"DAVG", "Avg"},       {"DMIN", "Min"},     {"DMAX", "Max"},
                                         {"DFIRST", "First"},   {"DLAST", "Last"},   {"DSTDEV", "StDev"},
                                         {"DSTDEVP", "StDevP"}, {"DVAR", "Var"},     {"DVARP", "VarP"}};

const DomainFunction* Find(std::string_view function) {
  for (const auto& d : kFunctions)
    if (base::EqualIgnoringCase(d.name, function)) return &d;
  return nullptr;
}

// The place of value i in the text of a condition, until it is read.
std::string Placeholder(std::size_t i) { return "[jet_valor_" + std::to_string(i) + "]"; }

class Condition {
 public:
  Condition(const std::string& function, std::vector<int>& fixed) : function_(function), fixed_(fixed) {}

  std::string Read(const ExprPtr& e) {
    if (e->node == Node::Binary && e->op == Op::Concat) {
      for (const auto& h : e->children) Piece(h);
    } else {
      Text(*e);
    }
    return std::move(text_);
  }
  // A literal text.
  std::string ReadFixed(const Expr& e) {
    Text(e);
    return std::move(text_);
  }

  // Puts the values where their places stand.
  void Put(Query& c) {
    for (auto& part : c.parts) {
      for (auto& item : part.list)
        if (item.expr) Put(item.expr);
      if (part.where) Put(part.where);
      if (part.having) Put(part.having);
    }
  }
  std::vector<ExprPtr> Values() && { return std::move(values_); }

 private:
  void Text(const Expr& e) {
    const auto* text = e.node == Node::Literal ? e.literal.GetIf<std::string>() : nullptr;
    if (text == nullptr)
      throw base::Error("Los argumentos de " + function_ +
                        " deben ser textos; la condición puede unirlos con valores mediante &");
    if (e.index >= 0) fixed_.push_back(e.index);
    std::string_view next = *text;
    if (in_date_ && !next.empty() && next.front() == '#') next.remove_prefix(1);
    in_date_ = false;
    text_ += next;
  }

  void Piece(const ExprPtr& e) {
    if (e->node == Node::Literal && e->literal.GetIf<std::string>() != nullptr) {
      Text(*e);
      return;
    }
    ExprPtr value = e;
    if (!text_.empty() && text_.back() == '#') {  // "#" & date & "#"
      text_.pop_back();
      in_date_ = true;
      const bool format = e->node == Node::Call && base::EqualIgnoringCase(e->name, "Format") &&
                          e->children[0]->type.type == base::Type::Date;
      if (format) value = e->children[0];
      if (value->type.type != base::Type::Date)
        throw base::Error("En la condición de " + function_ + " lo que va entre # debe ser una fecha");
    }
    text_ += Placeholder(values_.size());
    values_.push_back(std::move(value));
  }

  void Put(ExprPtr& e) {
    for (auto& h : e->children) Put(h);
    if (e->query) Put(*e->query);
    if (e->node == Node::Column && e->qualifier.empty()) {
      for (std::size_t i = 0; i < values_.size(); ++i)
        if ("[" + e->name + "]" == Placeholder(i)) {
          e = values_[i];
          return;
        }
    }
    if (const auto* text = e->node == Node::Literal ? e->literal.GetIf<std::string>() : nullptr)
      e = WithValues(*text, e);
  }

  // 'a[value]b' is 'a' & value & 'b'.
  ExprPtr WithValues(const std::string& text, const ExprPtr& literal) const {
    auto chain = std::make_shared<Expr>(Node::Binary);
    chain->op = Op::Concat;
    std::size_t from = 0;
    for (std::size_t i = 0; i < values_.size(); ++i) {
      const std::size_t h = text.find(Placeholder(i), from);
      if (h == std::string::npos) continue;
      chain->children.push_back(FromText(text.substr(from, h - from)));
      chain->children.push_back(values_[i]);
      from = h + Placeholder(i).size();
    }
    if (chain->children.empty()) return literal;
    chain->children.push_back(FromText(text.substr(from)));
    return chain;
  }

  static ExprPtr FromText(std::string text) {
    auto e = std::make_shared<Expr>(Node::Literal);
    e->literal = std::move(text);
    return e;
  }

  const std::string& function_;
  std::vector<int>& fixed_;
  std::string text_;
  std::vector<ExprPtr> values_;
  bool in_date_ = false;
};

QueryPtr Read(const std::string& function, const std::string& sql) {
  try {
    Statement s = Parse(sql, Literals::InText);
    auto* query = std::get_if<QueryPtr>(&s);
    if (query != nullptr && (*query)->parts.size() == 1) return std::move(*query);
  } catch (const base::Error& e) {
    throw base::Error("En " + function + ": " + e.Description());
  }
  throw base::Error("En " + function + ": sus textos no forman una consulta");
}

}  // namespace

bool IsDomainFunction(std::string_view function) { return Find(function) != nullptr; }

void OpenDomain(Expr& e, std::vector<int>& fixed) {
  const DomainFunction& d = *Find(e.name);
  Condition condition(e.name, fixed);
  const std::string value = condition.ReadFixed(*e.children[0]);
  std::string table(base::TrimView(condition.ReadFixed(*e.children[1])));
  if (!table.empty() && table.front() != '[') table = "[" + table + "]";
  const std::string where =
      e.children.size() > 2 && !e.children[2]->type.null ? condition.Read(e.children[2]) : "";
  std::string sql = "SELECT ";
  if (d.aggregate.empty())
    sql.append("TOP 1 ").append(value);
  else
    sql.append(d.aggregate).append("(").append(value).append(")");
  sql.append(" FROM ").append(table);
  if (!base::TrimView(where).empty()) sql.append(" WHERE ").append(where);
  e.query = Read(e.name, sql);
  condition.Put(*e.query);
  e.node = Node::Subquery;
  e.children = std::move(condition).Values();
}

}  // namespace jetsql
