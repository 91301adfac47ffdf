#include "mdb/queries/saved_query.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

#include "base/text.h"
#include "engine_mdb/query_text.h"
#include "jetsql/parser.h"
#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/exported.h"
#include "mdb/outside.h"
#include "mdb/samples.h"

namespace {

// Calls `visit` with each saved query of every file.
template <typename Visitor>
std::size_t ForEachQuery(Visitor&& visit) {
  std::size_t count = 0;
  for (const auto& path : mdb_test::EveryFile()) {
    const auto pages = mdb_test::Load(path);
    const mdb::SystemCatalog catalog(*pages);
    for (const auto& o : catalog.Objects()) {
      if (o.type != mdb::Object::Query) continue;
      SCOPED_TRACE(path + " " + o.name);
      visit(path, catalog.QueryOf(o.name));
      ++count;
    }
  }
  return count;
}

// Those of the further files, one of each kind, put together by hand from their rows. The samples bring their
// own texts.
const std::map<std::string, std::string> kTexts = {
    {"SelectQuery",
     "SELECT DISTINCT Table1.*, Table2.col1, Table2.col2, Table3.col3 FROM (Table1 LEFT JOIN Table3 ON "
     "Table1.col1 = Table3.col1) INNER JOIN Table2 ON (Table3.col1 = Table2.col2) AND (Table3.col1 = "
     "Table2.col1) WHERE (((Table2.col2)=\"foo\" Or (Table2.col2) In (\"buzz\",\"bazz\"))) ORDER BY "
     "Table2.col1"},
    {"UpdateQuery",
     "PARAMETERS [User Name] Text; UPDATE Table1 SET Table1.col1 = \"foo\", Table1.col2 = [Table2].[col3], "
     "[Table2].[col1] = [User Name] WHERE ((([Table2].[col1]) Is Not Null))"},
    {"AppendQuery",
     "INSERT INTO Table3 (col2, col2, col3) SELECT [Table1].[col2], [Table2].[col2], [Table2].[col3] FROM "
     "Table3, Table1 INNER JOIN Table2 ON [Table1].[col1]=[Table2].[col1]"},
    {"DeleteQuery",
     "DELETE Table1.col1, Table1.col2, Table1.col3 FROM Table1 WHERE (((Table1.col1)>\"blah\"))"},
    {"MakeTableQuery",
     "SELECT Max(Table2.col1) AS MaxOfcol1, Table2.col2, Table3.col2 INTO Table4 FROM (Table2 INNER JOIN "
     "Table1 ON Table2.col1 = Table1.col2) RIGHT JOIN Table3 ON Table1.col2 = Table3.col3 GROUP BY "
     "Table2.col2, Table3.col2 HAVING (((Max(Table2.col1))=\"buzz\") AND ((Table2.col2)<>\"blah\"))"},
    {"CrosstabQuery",
     "TRANSFORM Count([Table2].[col2]) AS CountOfcol2 SELECT Table2_1.col1, [Table2].[col3], "
     "Avg(Table2_1.col2) AS AvgOfcol2 FROM (Table1 INNER JOIN Table2 ON [Table1].[col1]=[Table2].[col1]) "
     "INNER JOIN Table2 AS Table2_1 ON [Table2].[col1]=Table2_1.col3 WHERE ((([Table1].[col1])>\"10\") And "
     "((Table2_1.col1) Is Not Null) And ((Avg(Table2_1.col2))>\"10\")) GROUP BY Table2_1.col1, "
     "[Table2].[col3] ORDER BY [Table2].[col3] PIVOT [Table1].[col1]"},
    {"UnionQuery",
     "Select Table1.col1, Table1.col2\r\nwhere Table1.col1 = \"foo\"\r\nUNION\r\nSelect Table2.col1, "
     "Table2.col2 UNION ALL Select Table3.col1, Table3.col2\r\nwhere Table3.col3 > \"blah\""},
    {"PassthroughQuery", "ALTER TABLE Table4 DROP COLUMN col5"},
    {"DataDefinitionQuery", "CREATE TABLE Table5 (col1 CHAR, col2 CHAR)"},
    {"q_stdev",
     "TRANSFORM StDev(t_pivot.[c_val]) AS DevSt_Value SELECT t_pivot.[c_dt], StDev(t_pivot.[c_val]) AS "
     "Total_Value FROM t_pivot GROUP BY t_pivot.[c_dt] PIVOT Format([c_dt],\"yyyy\")"},
    {"q_trim",
     "TRANSFORM Sum(t_pivot.[c_val]) AS Sum_Value SELECT t_pivot.[c_cod], Sum(t_pivot.[c_val]) AS "
     "Total_Value "
     "FROM t_pivot GROUP BY t_pivot.[c_cod] PIVOT \"Trim \" & Format([c_dt],\"q\")"}};

TEST(SavedQuery, EveryQueryHasItsText) {
  auto texts = kTexts;
  std::size_t expected = mdb_test::CorpusFolder().empty() ? 0 : 38;
  for (const auto& sample : mdb_test::Samples()) {
    texts.insert(sample.query_texts.begin(), sample.query_texts.end());
    expected += sample.query_texts.size();
  }
  const auto found = ForEachQuery([&](const std::string&, const mdb::SavedQuery& q) {
    const auto it = texts.find(q.name);
    ASSERT_NE(it, texts.end()) << q.name;
    EXPECT_EQ(engine_mdb::QueryText(q), it->second);
  });
  EXPECT_EQ(found, expected);
}

TEST(SavedQuery, WhatGivesRowsParses) {
  std::size_t queries_read = 0;
  ForEachQuery([&](const std::string&, const mdb::SavedQuery& q) {
    const auto kind = mdb::KindOf(q);
    // A pass-through is another program's language; a deletion that lists columns is not of our dialect.
    if (kind == mdb::QueryKind::PassThrough || kind == mdb::QueryKind::Delete) return;
    EXPECT_NO_THROW(jetsql::Parse(engine_mdb::QueryText(q), jetsql::Literals::InText));
    ++queries_read;
  });
  EXPECT_GT(queries_read, 20U);
}

// mdb-queries knows no joins, groups nor kinds: what it prints of the conditions, the order and the columns
// must stand in our text.
TEST(SavedQuery, ConditionsAreThoseOfMdbtools) {
  if (!mdb_test::HasMdbtools()) GTEST_SKIP() << "mdbtools is not installed";
  std::size_t compared = 0;
  ForEachQuery([&](const std::string& path, const mdb::SavedQuery& q) {
    std::string theirs = mdb_test::Output("mdb-queries " + mdb_test::Quoted(path) + " " +
                                          mdb_test::Quoted(q.name) + " 2>/dev/null");
    theirs = base::Replace(theirs, " DESCENDING", " DESC");  // its own word
    const std::string ours = engine_mdb::QueryText(q);
    const auto order = theirs.rfind(" ORDER BY ");
    if (order != std::string::npos) {
      EXPECT_TRUE(base::Contains(ours, base::Trim(base::Replace(theirs.substr(order), "\n", ""))));
      ++compared;
    }
    const auto where = theirs.find(" WHERE ");
    if (where != std::string::npos) {
      const std::string condition = base::Replace(theirs.substr(where, order - where), "\n", "");
      EXPECT_TRUE(base::Contains(ours, base::Trim(condition))) << condition;
      ++compared;
    }
  });
  EXPECT_GT(compared, 8U);
}

// A tree of joins drawn at random, the text that its author wrote and the rows that Access keeps of it.
class RandomTree {
 public:
  explicit RandomTree(unsigned seed) : random_(seed) {
    text = Text(Draw(0, 2 + static_cast<int>(random_() % 7), 0), false);
  }
  mdb::SavedQuery query{"Q", 0, {}};
  std::string text;

 private:
  struct Node {
    int first, last;  // sources
    std::string leaf;
    std::string union_, condition;
    std::vector<Node> sides;
  };
  Node Draw(int first, int count, int level) {
    if (count == 1) {
      const std::string name = "T" + std::to_string(first);
      const bool alias = random_() % 3 == 0;
      query.rows.push_back({5,
                            static_cast<std::uint32_t>(first + 1),
                            alias ? "Tabla base" : name,
                            alias ? std::optional(name) : std::nullopt,
                            {},
                            {},
                            {}});
      return {first, first, alias ? "[Tabla base] AS " + name : name, {}, {}, {}};
    }
    const int left = 1 + static_cast<int>(random_() % static_cast<unsigned>(count - 1));
    Node n{first, first + count - 1, {}, {}, {}, {}};
    n.sides.push_back(Draw(first, left, level + 1));
    n.sides.push_back(Draw(first + left, count - left, level + 1));
    const auto kind = static_cast<std::int16_t>(1 + random_() % 3);
    n.union_ = kind == 1 ? "INNER" : kind == 2 ? "LEFT" : "RIGHT";
    const auto one = [&](const Node& l) {
      return "T" + std::to_string(l.first +
                                  static_cast<int>(random_() % static_cast<unsigned>(l.last - l.first + 1)));
    };
    for (int i = 0, conditions = 1 + static_cast<int>(random_() % 3); i < conditions; ++i) {
      const std::string a = one(n.sides[0]), b = one(n.sides[1]);
      const std::string condition = a + ".c" + std::to_string(i) + " = " + b + ".c";
      query.rows.push_back({7, ++order_, a, b, condition, kind, {}});
      if (conditions == 1) {
        n.condition = condition;
      } else {
        n.condition = "(" + condition + ")" + (i == 0 ? "" : " AND ") + n.condition;
      }
    }
    return n;
  }
  static std::string Text(const Node& n, bool inside) {
    if (n.sides.empty()) return n.leaf;
    const std::string t =
        Text(n.sides[0], true) + " " + n.union_ + " JOIN " + Text(n.sides[1], true) + " ON " + n.condition;
    return inside ? "(" + t + ")" : t;
  }
  std::mt19937 random_;
  std::uint32_t order_ = 0;
};

TEST(SavedQuery, AnyTreeOfJoinsComesBack) {
  for (unsigned seed = 0; seed < 500; ++seed) {
    SCOPED_TRACE(seed);
    RandomTree tree(seed);
    tree.query.rows.push_back({3, 1, {}, {}, {}, std::int16_t{1}, {}});
    std::shuffle(tree.query.rows.begin(), tree.query.rows.end(), std::mt19937(seed));
    const std::string text = engine_mdb::QueryText(tree.query);
    EXPECT_EQ(text, "SELECT * FROM " + tree.text);
    EXPECT_NO_THROW(jetsql::Parse(text));
  }
}

TEST(SavedQuery, TooManyJoinsAreRefused) {
  mdb::SavedQuery q{"Q", 0, {}};
  q.rows.push_back({5, 1, "A", {}, {}, {}, {}});
  q.rows.push_back({5, 2, "B", {}, {}, {}, {}});
  q.rows.push_back({6, 1, {}, {}, "1", {}, {}});
  for (std::uint32_t i = 0; i < 2000; ++i) q.rows.push_back({7, i, "A", "B", "A.x = B.x", {}, {}});
  EXPECT_NO_THROW(engine_mdb::QueryText(q));
  q.rows.push_back({7, 2000, "A", "B", "A.x = B.x", {}, {}});
  EXPECT_THROW(engine_mdb::QueryText(q), base::Error);
}

TEST(SavedQuery, TooManySourcesAreRefused) {
  mdb::SavedQuery q{"Q", 0, {}};
  for (std::uint32_t i = 0; i < 256; ++i) q.rows.push_back({5, i, "T" + std::to_string(i), {}, {}, {}, {}});
  q.rows.push_back({6, 1, {}, {}, "1", {}, {}});
  EXPECT_THROW(engine_mdb::QueryText(q), base::Error);
  q.rows.erase(q.rows.begin());
  EXPECT_NO_THROW(engine_mdb::QueryText(q));
}

}  // namespace
