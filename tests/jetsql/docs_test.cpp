// The examples of docs/sql-dialect.md are what the translator writes.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <memory>

#include "base/text.h"
#include "jetsql/functions.h"
#include "jetsql/translate.h"
#include "support/source_dir.h"

namespace {

class Catalog : public jetsql::Catalog {
 public:
  const jetsql::TableInfo* Table(std::string_view name) override {
    const auto it = tables_.find(base::UpperCase(name));
    return it == tables_.end() ? nullptr : &it->second;
  }
  const std::string* Query(std::string_view name) override {
    const auto it = queries_.find(base::UpperCase(name));
    return it == queries_.end() ? nullptr : &it->second;
  }
  void Create(std::string_view sql) {
    const jetsql::Definition d = jetsql::Translate(sql, *this).definition;
    if (d.what == jetsql::Definition::What::CreateTable)
      tables_[base::UpperCase(d.name)] = {d.name, d.columns};
    else
      queries_[base::UpperCase(d.name)] = d.view_text;
  }

 private:
  std::map<std::string, jetsql::TableInfo> tables_;
  std::map<std::string, std::string> queries_;
};

std::string ReadPage() {
  std::ifstream f(support::SourceDir() + "/docs/sql-dialect.md", std::ios::binary);
  return {std::istreambuf_iterator<char>(f), {}};
}

TEST(Docs, EveryExampleIsTranslatedAsWritten) {
  Catalog catalog;
  std::string example;
  int seen = 0;
  const auto pieces = base::Split(ReadPage(), "```");
  for (std::size_t i = 1; i < pieces.size(); i += 2) {  // every second piece is inside a block
    const std::size_t end = pieces[i].find('\n');
    ASSERT_NE(end, std::string::npos) << pieces[i];
    const std::string kind = pieces[i].substr(0, end);
    const std::string text = base::Trim(base::Replace(pieces[i].substr(end), "\n", " "));
    if (kind == "tables") {
      for (const auto& line : base::Split(base::Trim(pieces[i].substr(end + 1)), "\n"))
        if (!line.empty()) catalog.Create(line);
    } else if (kind == "jet") {
      ASSERT_EQ(example, "") << "an example without its translation";
      example = text;
    } else if (kind == "sqlite") {
      EXPECT_EQ(base::Join(jetsql::Translate(example, catalog).steps, " "), text) << example;
      example.clear();
      ++seen;
    }
  }
  EXPECT_GT(seen, 20);
}

TEST(Docs, EveryFunctionIsNamed) {
  const std::string page = base::Replace(ReadPage(), "\n", " ");
  for (const jetsql::Function& f : jetsql::Functions()) {
    const std::string name = std::string(" ").append(f.name);
    EXPECT_TRUE(base::Contains(page, name + ",") || base::Contains(page, name + ".")) << f.name;
  }
}

}  // namespace
