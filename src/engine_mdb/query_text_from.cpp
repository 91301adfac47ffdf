#include <algorithm>
#include <memory>

#include "base/error.h"
#include "base/text.h"
#include "engine_mdb/query_text_internal.h"
#include "jetsql/statement_kind.h"

namespace engine_mdb::internal {
namespace {

// Access takes 32 tables; the bounds keep a damaged file from building a tree of any height or a condition of
// any length.
constexpr std::size_t kMaxSources = 255, kMaxJoins = 2000;

std::string WithoutBrackets(std::string_view name) {
  if (name.size() >= 2 && name.front() == '[' && name.back() == ']') name = name.substr(1, name.size() - 2);
  return std::string(name);
}

// The text of a derived table, without the marks of the old spelling: [SELECT …].
std::string_view WithoutMarks(std::string_view text) {
  text = base::TrimView(WithoutTail(text));
  if (base::EndsWith(text, ".")) text.remove_suffix(1);
  if (text.size() >= 2 && text.front() == '[' && text.back() == ']')
    text = WithoutTail(text.substr(1, text.size() - 2));
  return text;
}

std::string SourceText(const mdb::QueryRow& f) {
  std::string text;
  const std::string expression = f.expression.value_or("");
  if (const auto inside = WithoutMarks(expression); jetsql::BeginsQuery(inside)) {
    text = "(" + std::string(inside) + ")";
  } else {
    if (!inside.empty()) text = "[" + std::string(inside) + "].";
    if (!f.name1 || f.name1->empty()) throw base::Error("La consulta tiene una fuente sin nombre");
    text += Quote(*f.name1);
  }
  if (f.name2 && !f.name2->empty()) text += " AS " + Quote(*f.name2);
  return text;
}

// A source, or the join of two groups of sources.
struct Node {
  std::string leaf;
  std::unique_ptr<Node> left, right;
  const char* type = nullptr;
  std::vector<std::string> conditions;  // the last stored first: so they are written
  std::vector<std::size_t> sources;     // all below it

  bool Has(std::size_t source) const {
    return std::find(sources.begin(), sources.end(), source) != sources.end();
  }
  std::string Text() const {
    if (!type) return leaf;
    std::string text = Side(*left) + type + Side(*right) + " ON ";
    if (conditions.size() == 1) return text + conditions.front();
    for (std::size_t i = 0; i < conditions.size(); ++i)
      text += (i == 0 ? "(" : " AND (") + conditions[i] + ")";
    return text;
  }

 private:
  static std::string Side(const Node& n) { return n.type ? "(" + n.Text() + ")" : n.Text(); }
};

const char* JoinType(std::int16_t flag) {
  switch (flag) {
    case mdb::query_codes::kInner:
      return " INNER JOIN ";
    case mdb::query_codes::kLeft:
      return " LEFT JOIN ";
    case mdb::query_codes::kRight:
      return " RIGHT JOIN ";
    default:
      throw base::Error("La consulta une sus tablas de un modo que no se conoce");
  }
}

class Tree {
 public:
  explicit Tree(std::span<const mdb::QueryRow> sources) {
    if (sources.size() > kMaxSources) throw base::Error("La consulta tiene demasiadas tablas");
    for (const auto& f : sources) {
      auto leaf = std::make_unique<Node>();
      leaf->leaf = SourceText(f);
      leaf->sources.push_back(names_.size());
      names_.push_back(WithoutBrackets(f.name2 && !f.name2->empty() ? *f.name2 : f.name1.value_or("")));
      groups_.push_back(std::move(leaf));
    }
  }

  void Join(const mdb::QueryRow& u) {
    const std::size_t a = Source(u.name1), b = Source(u.name2);
    if (a == b) throw base::Error("La consulta une una tabla con ella misma");
    const std::size_t ga = Group(a), gb = Group(b);
    const std::string condition(WithoutTail(u.expression.value_or("")));
    if (condition.empty()) throw base::Error("La consulta une dos tablas sin decir por qué");
    if (ga == gb) {
      AddCondition(*groups_[ga], a, b, condition);
      return;
    }
    auto node = std::make_unique<Node>();
    node->type = JoinType(u.flag.value_or(mdb::query_codes::kInner));
    node->conditions.push_back(condition);
    node->sources = groups_[ga]->sources;
    node->sources.insert(node->sources.end(), groups_[gb]->sources.begin(), groups_[gb]->sources.end());
    node->left = std::move(groups_[ga]);
    node->right = std::move(groups_[gb]);
    groups_[std::min(ga, gb)] = std::move(node);
    groups_.erase(groups_.begin() + static_cast<std::ptrdiff_t>(std::max(ga, gb)));
  }

  std::string Text() const {
    std::string text;
    for (const auto& g : groups_) text += (text.empty() ? "" : ", ") + g->Text();
    return text;
  }

 private:
  std::size_t Source(const std::optional<std::string>& name) const {
    const std::string sought = WithoutBrackets(name.value_or(""));
    for (std::size_t i = 0; i < names_.size(); ++i)
      if (base::EqualIgnoringCase(names_[i], sought)) return i;
    throw base::Error("La consulta une '" + sought + "', que no está entre sus tablas");
  }

  std::size_t Group(std::size_t source) const {
    std::size_t g = 0;
    while (!groups_[g]->Has(source)) ++g;
    return g;
  }

  // A further condition belongs to the join that first brings its two sides together.
  static void AddCondition(Node& group, std::size_t a, std::size_t b, const std::string& condition) {
    Node* n = &group;
    for (;;) {
      if (n->left->Has(a) && n->left->Has(b)) {
        n = n->left.get();
      } else if (n->right->Has(a) && n->right->Has(b)) {
        n = n->right.get();
      } else {
        break;
      }
    }
    n->conditions.insert(n->conditions.begin(), condition);
  }

  std::vector<std::string> names_;
  std::vector<std::unique_ptr<Node>> groups_;
};

}  // namespace

std::string SourcesText(std::span<const mdb::QueryRow> sources, std::span<const mdb::QueryRow> joins) {
  if (joins.size() > kMaxJoins) throw base::Error("La consulta tiene demasiadas uniones");
  Tree tree(sources);
  for (const auto& u : joins) tree.Join(u);
  return tree.Text();
}

}  // namespace engine_mdb::internal
