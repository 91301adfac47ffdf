// Changes of rows on files with bytes that are wrong: an error, or a change; never a crash or an endless
// loop.
#include <gtest/gtest.h>

#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/random_rows.h"
#include "mdb/rows/table.h"
#include "mdb/samples.h"

namespace {

using mdb_test::Random;

// Mostly where the page says what it is and where its rows are.
void Corrupt(mdb::PageFile& pages, Random& random) {
  for (unsigned i = 1 + random.Below(12); i > 0; --i) {
    mdb::Bytes& p = pages.Modify(1 + random.Below(pages.Count() - 1));
    const std::size_t where = random.One(2) ? random.Below(64) : random.Below(4096);
    p[where] =
        static_cast<std::uint8_t>(random.One(2) ? random.Below(256) : p[where] ^ 1U << random.Below(8));
  }
}

void ChangeSomething(mdb::PageFile& pages, mdb::Definition d, Random& random) {
  mdb::Changes changes;
  mdb::WalkRows(pages, d, [&](mdb::RowId id, const mdb::Row&) {
    if (random.One(3)) {
      changes.deleted.push_back(id);
    } else if (random.One(2)) {
      const std::size_t c = random.Below(static_cast<unsigned>(d.columns.size()));
      changes.changed.push_back({id, {{c, mdb_test::RandomDatum(random, d.columns[c], true)}}});
    }
    return changes.deleted.size() < 30;
  });
  for (unsigned i = random.Below(40); i > 0; --i) {
    mdb::Row row;
    for (const auto& c : d.columns) row.push_back(mdb_test::RandomDatum(random, c, true));
    changes.inserted.push_back(std::move(row));
  }
  mdb::Apply(pages, d, changes);
}

TEST(WriteToDamaged, EndsInAnErrorOrAChange) {
  unsigned errors = 0, changes = 0;
  for (const char* file : {"relations.mdb", "long.mdb", "types.mdb", "moved.mdb"}) {
    const auto pages = mdb_test::LoadSample(file);
    std::vector<mdb::PageNumber> tables;
    const mdb::SystemCatalog catalog(*pages);
    for (const auto& o : catalog.Objects())
      if (o.type == mdb::Object::Table && !o.name.starts_with("MSys"))
        tables.push_back(static_cast<mdb::PageNumber>(o.id));
    for (unsigned seed = 0; seed < 150; ++seed) {
      Random random(seed);
      Corrupt(*pages, random);
      for (const auto table : tables) {
        // The damage may lie in the catalog alone, and a batch may be refused for its keys.
        const bool done = base::AnyErrorNoted("damaged", nullptr, [&] {
          for (int i = 0; i < 3; ++i) ChangeSomething(*pages, mdb::ReadDefinition(*pages, table), random);
        });
        ++(done ? changes : errors);
      }
      pages->Rollback();
    }
  }
  EXPECT_GT(errors, 100U);
  EXPECT_GT(changes, 20U);
}

}  // namespace
