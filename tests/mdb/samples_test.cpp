// The samples: what was put in is what is read.
#include "mdb/samples.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "engine_mdb/query_text.h"
#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/exported.h"
#include "mdb/outside.h"
#include "mdb/rows/table.h"
#include "mdb/verify/verify.h"

namespace {

using mdb_test::Sample;

class EverySample : public testing::TestWithParam<std::string> {
 protected:
  const Sample& Put() const { return mdb_test::SampleNamed(GetParam()); }
  std::unique_ptr<mdb::MemoryPages> pages_ = mdb_test::LoadSample(GetParam());
  mdb::SystemCatalog catalog_{*pages_};
};

TEST_P(EverySample, GivesTheRowsThatWerePutIn) {
  for (const assembler::Table& t : Put().file.tables) {
    SCOPED_TRACE(t.name);
    const auto definition = catalog_.Table(t.name);
    ASSERT_NE(definition, nullptr);
    std::vector<mdb::Row> found;
    mdb::WalkRows(*pages_, *definition, [&](mdb::RowId, const mdb::Row& row) {
      found.push_back(row);
      return true;
    });
    const auto put = mdb_test::RowsPutIn(t);
    ASSERT_EQ(found.size(), put.size());
    for (std::size_t i = 0; i < put.size(); ++i)
      for (std::size_t c = 0; c < put[i].size(); ++c)
        EXPECT_TRUE(found[i].at(c) == put[i][c]) << "row " << i << " column " << definition->columns[c].name;
    EXPECT_EQ(definition->rows, put.size());
  }
}

TEST_P(EverySample, GivesColumnsAndIndexesAsTheyWerePutIn) {
  for (const assembler::Table& t : Put().file.tables) {
    SCOPED_TRACE(t.name);
    const auto d = catalog_.Table(t.name);
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(d->max_columns, t.columns.size());
    std::size_t n = 0;
    for (std::size_t i = 0; i < t.columns.size(); ++i) {
      const assembler::Column& put = t.columns[i];
      if (put.gone) continue;
      const mdb::Column& c = d->columns.at(n++);
      EXPECT_EQ(c.name, put.name);
      EXPECT_EQ(c.type, put.type);
      EXPECT_EQ(c.number, i);
      EXPECT_EQ(c.IsAutoNumber(), put.autonumber);
      EXPECT_EQ(c.IsCalculated(), put.calculated);
      EXPECT_EQ(c.scale, put.scale);
      if (put.type == mdb::ColumnType::Text || put.type == mdb::ColumnType::Memo) {
        EXPECT_EQ(c.lcid, Put().file.lcid);
      }
    }
    EXPECT_EQ(n, d->columns.size());
    if (!t.shown.empty()) {
      const auto order = d->InOrder();
      for (std::size_t i = 0; i < order.size(); ++i) EXPECT_EQ(order[i], t.shown[i]);
    }
    ASSERT_EQ(d->reals.size(), t.indexes.size());
    for (std::size_t k = 0; k < t.indexes.size(); ++k) {
      const assembler::Index& put = t.indexes[k];
      std::vector<std::string> columns;
      for (const auto& part : d->reals[k].parts)
        columns.push_back((part.descending ? "-" : "") + d->columns[d->ByNumber(part.column).value()].name);
      EXPECT_EQ(columns, put.columns);
      EXPECT_EQ(d->reals[k].IsUnique(), put.unique || put.primary);
      EXPECT_EQ(d->reals[k].IgnoresNulls(), put.ignores_nulls);
      const auto name = std::find_if(d->logicals.begin(), d->logicals.end(),
                                     [&](const auto& l) { return l.name == put.name; });
      ASSERT_NE(name, d->logicals.end());
      EXPECT_EQ(name->real, k);
      EXPECT_EQ(name->kind == mdb::LogicalIndex::Primary, put.primary);
    }
  }
}

TEST_P(EverySample, GivesPropertiesRelationshipsQueriesAndLinks) {
  for (const assembler::Table& t : Put().file.tables)
    for (const assembler::Property& p : t.properties) {
      const mdb::Datum* found = mdb::Find(catalog_.PropertiesOf(t.name), p.owner, p.name);
      ASSERT_NE(found, nullptr) << t.name << " " << p.owner << " " << p.name;
      EXPECT_TRUE(*found == p.value) << t.name << " " << p.owner << " " << p.name;
    }
  ASSERT_EQ(catalog_.Relationships().size(), Put().file.relations.size());
  for (const assembler::Relation& put : Put().file.relations) {
    const auto& all = catalog_.Relationships();
    const auto r = std::find_if(all.begin(), all.end(), [&](const auto& x) { return x.name == put.name; });
    ASSERT_NE(r, all.end()) << put.name;
    EXPECT_EQ(r->table, put.table);
    EXPECT_EQ(r->columns, put.columns);
    EXPECT_EQ(r->referenced_table, put.parent);
    EXPECT_EQ(r->referenced_columns, put.parent_columns);
    EXPECT_EQ(r->flags, put.flags);
  }
  for (const auto& [name, text] : Put().query_texts)
    EXPECT_EQ(engine_mdb::QueryText(catalog_.QueryOf(name)), text) << name;
  for (const assembler::Link& put : Put().file.links) {
    const mdb::Object* o = catalog_.Find(put.name);
    ASSERT_NE(o, nullptr) << put.name;
    EXPECT_EQ(o->type, put.type);
    EXPECT_EQ(o->base, put.database);
    EXPECT_EQ(o->external_name, put.table);
    EXPECT_EQ(o->connection, put.connection);
  }
}

TEST_P(EverySample, IsSound) {
  for (const auto& finding : mdb::Verify(*pages_).findings)
    EXPECT_NE(finding.severity, mdb::Finding::Severity::Error) << finding.text;
  if (pages_->Header().key == 0) {
    EXPECT_EQ(mdb_test::RunChecker(pages_->Stored(), false), "");
  }
}

INSTANTIATE_TEST_SUITE_P(All, EverySample, testing::ValuesIn(mdb_test::SampleNames()),
                         [](const auto& c) { return mdb_test::CaseName(c.param); });

// Putting the same together twice gives the same bytes.
TEST(Samples, AreTheSameEachTime) {
  for (const Sample& s : mdb_test::Samples()) {
    const mdb::Bytes bytes = mdb_test::SampleBytes(s.name);
    EXPECT_TRUE(bytes == mdb_test::SampleBytes(s.name)) << s.name;
    EXPECT_EQ(bytes.size() % (s.file.format == assembler::Format::Jet3 ? 2048U : 4096U), 0U);
  }
}

}  // namespace
