// Runs the files of tests/data/jetsql. The catalog of a file starts empty. Verbs:
//   define      CREATE statements, one a line: each must translate; adds its table or saved query to the
//   catalog translate   a statement: its SQLite text, a line a step. Options: columns (name:type of the
//   result), fixed (the
//               literals that the translation depends on), class, dao (LIKE with * ? #)
//   print       a statement read and printed back; what is printed is read again and must print the same
//   shape       the key, with the marks as <i> <n> <t> <d>, and the literals, one a line
//   same        two statements, one a line: whether they have one shape
#include <memory>
#include <string>

#include "base/text.h"
#include "jetsql/parser.h"
#include "jetsql/translate.h"
#include "support/data_test.h"

namespace {

class TestCatalog : public jetsql::Catalog {
 public:
  const jetsql::TableInfo* Table(std::string_view name) override {
    for (const auto& t : tables_)
      if (base::EqualIgnoringCase(t->name, name)) return t.get();
    return nullptr;
  }
  const std::string* Query(std::string_view name) override {
    for (const auto& c : queries_)
      if (base::EqualIgnoringCase(c->first, name)) return &c->second;
    return nullptr;
  }
  void Add(const jetsql::Definition& d) {
    if (d.what == jetsql::Definition::What::CreateTable)
      tables_.push_back(std::make_unique<jetsql::TableInfo>(jetsql::TableInfo{d.name, d.columns}));
    if (d.what == jetsql::Definition::What::CreateView)
      queries_.push_back(std::make_unique<std::pair<std::string, std::string>>(d.name, d.view_text));
  }
  // A saved query whose text nobody has checked.
  void AddQuery(std::string name, std::string text) {
    queries_.push_back(
        std::make_unique<std::pair<std::string, std::string>>(std::move(name), std::move(text)));
  }

 private:
  std::vector<std::unique_ptr<jetsql::TableInfo>> tables_;
  std::vector<std::unique_ptr<std::pair<std::string, std::string>>> queries_;
};

std::string Type(base::Type type) {
  static constexpr const char* kNames[] = {"unknown", "boolean",  "integer", "single",
                                           "number",  "currency", "date",    "text"};
  return kNames[static_cast<std::size_t>(type)];
}

std::string Kind(jetsql::Kind kind) {
  static constexpr const char* kNames[] = {"query", "insert", "update", "delete", "definition"};
  return kNames[static_cast<std::size_t>(kind)];
}

std::string Reprinted(const std::string& sql) {
  const std::string one = jetsql::Print(jetsql::Parse(sql));
  const std::string other = jetsql::Print(jetsql::Parse(one));
  return one == other ? one : "PRINTED AGAIN: " + other + "\nFIRST: " + one;
}

std::string Error(const base::Error& e) {
  std::string text = "ERROR " + e.Description();
  if (e.Number() != 0) text.append(" [").append(std::to_string(e.Number())).append("]");
  return text;
}

std::string Define(TestCatalog& catalog, const support::Block& b) {
  for (const auto& line : base::Split(b.entry, "\n")) {
    const auto parts = base::Split(line, " := ");
    if (parts.size() == 2)
      catalog.AddQuery(parts[0], parts[1]);
    else
      catalog.Add(jetsql::Translate(line, catalog).definition);
  }
  return "";
}

std::string Translated(TestCatalog& catalog, const support::Block& b) {
  jetsql::TranslationOptions options;
  options.dao_wildcards = b.Has("dao");
  const jetsql::Translation t = jetsql::Translate(b.entry, catalog, options);
  // What is printed must mean the same: it has the same columns, of the same types.
  const std::string printed = Reprinted(b.entry);
  const jetsql::Translation of_printed = jetsql::Translate(printed, catalog, options);
  std::vector<std::string> lines = t.steps;
  if (b.Has("class"))
    lines.insert(lines.begin(), Kind(t.kind) + (t.deterministic ? "" : ", changes by itself"));
  if (b.Has("columns"))
    for (const auto& c : t.columns) lines.push_back(c.name + ": " + Type(c.type));
  if (b.Has("fixed")) {
    std::string fixed = "fixed";
    for (const int i : t.fixed) fixed.append(" ?").append(std::to_string(i + 1));
    lines.push_back(fixed);
  }
  if (of_printed.steps.size() != t.steps.size() || of_printed.columns.size() != t.columns.size())
    lines.push_back("THE PRINTED STATEMENT DIFFERS: " + printed);
  for (std::size_t i = 0; i < t.columns.size() && i < of_printed.columns.size(); ++i)
    if (t.columns[i].name != of_printed.columns[i].name || t.columns[i].type != of_printed.columns[i].type)
      lines.push_back("THE PRINTED STATEMENT HAS ANOTHER COLUMN " + of_printed.columns[i].name);
  return base::Join(lines, "\n");
}

std::string ShapeOf(const support::Block& b) {
  jetsql::Shape shape;
  if (!jetsql::SeparateLiterals(b.entry, shape)) return "MALFORMED";
  std::string text;
  for (const char c : shape.key) {
    static constexpr const char* kMarks[] = {"", "<i>", "<n>", "<t>", "<d>"};
    if (c >= 1 && c <= 4)
      text += kMarks[static_cast<std::size_t>(c)];
    else
      text += c;
  }
  for (const auto& v : shape.literals)
    text.append("\n").append(Type(v.type())).append(" ").append(v.CsvText());
  return text;
}

std::string SameShape(const support::Block& b) {
  const auto lines = base::Split(b.entry, "\n");
  jetsql::Shape a, other;
  if (!jetsql::SeparateLiterals(lines.at(0), a) || !jetsql::SeparateLiterals(lines.at(1), other))
    return "MALFORMED";
  return a.key == other.key ? "same" : "different";
}

support::Verbs Prepare() {
  const auto catalog = std::make_shared<TestCatalog>();
  const auto with_errors = [](auto f) {
    return [f](const support::Block& b) -> std::string {
      try {
        return f(b);
      } catch (const base::Error& e) {
        return Error(e);
      }
    };
  };
  support::Verbs verbs;
  verbs["define"] = with_errors([catalog](const support::Block& b) { return Define(*catalog, b); });
  verbs["translate"] = with_errors([catalog](const support::Block& b) { return Translated(*catalog, b); });
  verbs["print"] = with_errors([](const support::Block& b) { return Reprinted(b.entry); });
  verbs["shape"] = with_errors(ShapeOf);
  verbs["same"] = with_errors(SameShape);
  return verbs;
}

}  // namespace

int main(int argc, char** argv) { return support::RunFiles(argc, argv, Prepare); }
