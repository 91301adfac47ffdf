#include "mdb/random_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "mdb/indexes/index_key.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/rows/table.h"

namespace mdb_test {
namespace {

using mdb::ColumnType;
using mdb::Datum;

std::string RandomText(Random& random, std::size_t units, bool sortable) {
  static const char* const kLetters[] = {"a", "e", "N", "o", "z", "B", "1", "9", " ",  "ñ", "Ñ", "á",
                                         "É", "ü", "ç", "c", "h", "l", "l", "-", "\'", ".", "_", "ª"};
  static const char* const kOthers[] = {"€", "Ж", "中", "\u00ad", "\u0100"};
  std::string text;
  const unsigned rare = sortable ? 0 : random.Below(4) == 0 ? 3 : 0;
  for (std::size_t i = 0; i < units; ++i)
    text += rare != 0 && random.One(rare) ? kOthers[random.Below(5)] : kLetters[random.Below(24)];
  return text;
}

// Mostly short, now and then as long as the column takes.
std::size_t RandomLength(Random& random, std::size_t more) {
  if (random.One(12)) return more;
  return random.Below(static_cast<unsigned>(std::min<std::size_t>(more, random.One(3) ? 200 : 12) + 1));
}

std::int64_t RandomInteger(Random& random, int bits) {
  if (random.One(2)) return random.Below(40);
  const auto n =
      static_cast<std::int64_t>(std::uint64_t{random.Below(0xFFFFFFFF)} << 32 | random.Below(0xFFFFFFFF));
  return n >> (64 - bits);
}

std::size_t MemoLength(Random& random) {
  switch (random.Below(6)) {
    case 0:
      return random.Below(34);  // in the row
    case 1:
      return 30 + random.Below(6) * 17;
    case 2:
      return random.Below(300);
    case 3:
      return 2000 + random.Below(100);  // about a whole page
    case 4:
      return random.Below(20000);  // a chain
    default:
      return 0;
  }
}

mdb::Bytes RandomBytes(Random& random, std::size_t length) {
  mdb::Bytes b(length);
  for (auto& x : b) x = static_cast<std::uint8_t>(random.Below(256));
  return b;
}

mdb::Decimal RandomDecimal(Random& random, const mdb::Column& c) {
  std::string text = random.One(3) ? "-" : "";
  const unsigned digits = 1 + random.Below(c.precision);
  for (unsigned i = 0; i < digits; ++i) text += static_cast<char>('0' + random.Below(10));
  return mdb::DecimalFromText(text + "e-" + std::to_string(c.scale), c.scale);
}

}  // namespace

Datum RandomDatum(Random& random, const mdb::Column& c, bool sortable) {
  if (c.type != ColumnType::Boolean && random.One(7)) return base::Null{};
  switch (c.type) {
    case ColumnType::Boolean:
      return random.One(2);
    case ColumnType::Byte:
      return std::int64_t{random.Below(256)};
    case ColumnType::Integer:
      return RandomInteger(random, 16);
    case ColumnType::Long:
      return RandomInteger(random, 32);
    case ColumnType::Currency:
      return base::Currency{RandomInteger(random, 50)};
    case ColumnType::Single:
      return static_cast<float>(RandomInteger(random, 20)) / 8;
    case ColumnType::Double:
      return static_cast<double>(RandomInteger(random, 40)) / 16;
    case ColumnType::Date:
      return base::Date{static_cast<double>(RandomInteger(random, 19)) + random.Below(24) / 24.0};
    case ColumnType::Text:
      return RandomText(random, RandomLength(random, c.length / 2), sortable);
    case ColumnType::Memo:
      return RandomText(random, MemoLength(random), sortable);
    case ColumnType::Ole:
      return RandomBytes(random, MemoLength(random));
    case ColumnType::Guid: {
      mdb::Guid g;
      for (auto& b : g.bytes) b = static_cast<std::uint8_t>(random.Below(256));
      return g;
    }
    case ColumnType::Decimal:
      return RandomDecimal(random, c);
    default:
      return RandomBytes(random, RandomLength(random, c.length));
  }
}

namespace {

// The unique and required indexes of a table, over the rows put in so far.
class Rules {
 public:
  Rules(const mdb::FileHeader& header, const mdb::Definition& d) : header_(header), d_(d) {
    for (std::size_t i = 0; i < d.reals.size(); ++i) {
      const bool primary = std::any_of(d.logicals.begin(), d.logicals.end(), [&](const auto& l) {
        return l.real == i && l.kind == mdb::LogicalIndex::Primary;
      });
      indexes_.push_back({i, d.reals[i].IsUnique() || primary, d.reals[i].IsRequired() || primary, {}});
    }
  }
  // False, and the row left out, when an index does not take it.
  bool Put(const mdb::Row& row) {
    for (auto& u : indexes_) {
      if (u.required && mdb::AnyNull(d_, Real(u), row)) return false;
      if (u.unique && !mdb::AllNull(d_, Real(u), row) && u.keys.contains(Key(u, row))) return false;
    }
    for (auto& u : indexes_)
      if (u.unique) u.keys.insert(Key(u, row));
    return true;
  }
  void Remove(const mdb::Row& row) {
    for (auto& u : indexes_)
      if (u.unique) u.keys.erase(u.keys.find(Key(u, row)));
  }

 private:
  struct One {
    std::size_t which;
    bool unique, required;
    std::multiset<mdb::Bytes> keys;
  };
  const mdb::RealIndex& Real(const One& u) const { return d_.reals[u.which]; }
  mdb::Bytes Key(const One& u, const mdb::Row& row) const {
    mdb::Bytes key;
    mdb::MakeRowKey(header_, d_, Real(u), row, key);
    return key;
  }
  const mdb::FileHeader& header_;
  const mdb::Definition& d_;
  std::vector<One> indexes_;
};

}  // namespace

ModelledTable::ModelledTable(mdb::PageFile& pages, mdb::PageNumber definition, std::string name)
    : pages_(pages), definition_(mdb::ReadDefinition(pages, definition)) {
  definition_.name = std::move(name);
  sortable_.resize(definition_.columns.size());
  for (const auto& i : definition_.reals)
    for (const auto& p : i.parts) sortable_[*definition_.ByNumber(p.column)] = true;
  mdb::WalkRows(pages, definition_, [&](mdb::RowId id, const mdb::Row& row) {
    rows_.emplace(id, row);
    return true;
  });
}

mdb::Row ModelledTable::RandomRow(Random& random) {
  mdb::Row row;
  for (std::size_t i = 0; i < definition_.columns.size(); ++i)
    row.push_back(RandomDatum(random, definition_.columns[i], sortable_[i]));
  return row;
}

bool ModelledTable::IsAdmitted(const Contents& rows, const std::vector<mdb::Row>& inserted) const {
  Rules rules(pages_.Header(), definition_);
  for (const auto& [id, row] : rows)
    if (!rules.Put(row)) return false;
  for (const auto& row : inserted)
    if (!rules.Put(row)) return false;
  return true;
}

void ModelledTable::Apply(const mdb::Changes& changes, Contents after) {
  const bool admitted = IsAdmitted(after, changes.inserted);
  const auto point = pages_.Save();
  const mdb::Definition before = definition_;
  try {
    const auto ids = mdb::Apply(pages_, definition_, changes);
    ASSERT_TRUE(admitted) << "a batch that breaks an index was taken";
    ASSERT_EQ(ids.size(), changes.inserted.size());
    for (std::size_t i = 0; i < ids.size(); ++i)
      ASSERT_TRUE(after.emplace(ids[i], changes.inserted[i]).second) << "an identity was given twice";
    rows_ = std::move(after);
    counts.inserted += static_cast<unsigned>(ids.size());
    counts.changed += static_cast<unsigned>(changes.changed.size());
    counts.deleted += static_cast<unsigned>(changes.deleted.size());
  } catch (const mdb::KeyError& e) {
    ASSERT_FALSE(admitted) << e.what();
    definition_ = before;
    pages_.RollbackTo(point);
    ++counts.rejected;
  }
}

void ModelledTable::Change(Random& random, unsigned length) {
  constexpr int kAttempts = 8;
  mdb::Changes changes;
  Contents after = rows_;
  const bool careful = !random.One(8), full = rows_.size() > many_rows;
  Rules rules(pages_.Header(), definition_);
  for (const auto& [id, row] : rows_) ASSERT_TRUE(rules.Put(row));
  for (const auto& [id, row] : rows_) {
    if (changes.deleted.size() + changes.changed.size() >= length) break;
    if (!random.One(1 + static_cast<unsigned>(rows_.size()) / length)) continue;
    rules.Remove(row);
    if (random.One(full ? 2 : 4)) {
      changes.deleted.push_back(id);
      after.erase(id);
      continue;
    }
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
      mdb::RowChange change{id, {}};
      mdb::Row fresh = row;
      for (std::size_t c = 0; c < definition_.columns.size(); ++c) {
        if (!random.One(3)) continue;
        change.values.emplace_back(c, RandomDatum(random, definition_.columns[c], sortable_[c]));
        fresh[c] = change.values.back().second;
      }
      const bool fits = rules.Put(fresh);
      if (careful && !fits) continue;
      after[id] = std::move(fresh);
      changes.changed.push_back(std::move(change));
      break;
    }
    if (careful && after[id] == row && (changes.changed.empty() || changes.changed.back().row != id))
      rules.Put(row);
  }
  for (unsigned i = random.Below(full ? length / 2 + 1 : length + 1); i > 0; --i) {
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
      mdb::Row row = RandomRow(random);
      if (!rules.Put(row) && careful) continue;
      changes.inserted.push_back(std::move(row));
      break;
    }
  }
  Apply(changes, std::move(after));
}

// Every row takes the values that the next one had: what unique indexes allow only when all is done at once.
void ModelledTable::Rotate() {
  mdb::Changes changes;
  Contents after;
  for (auto it = rows_.begin(); it != rows_.end(); ++it) {
    const auto next = std::next(it) == rows_.end() ? rows_.begin() : std::next(it);
    mdb::RowChange change{it->first, {}};
    for (std::size_t c = 0; c < definition_.columns.size(); ++c)
      change.values.emplace_back(c, next->second[c]);
    after.emplace(it->first, next->second);
    changes.changed.push_back(std::move(change));
  }
  Apply(changes, std::move(after));
}

void ModelledTable::DeleteAll() {
  mdb::Changes changes;
  for (const auto& [id, row] : rows_) changes.deleted.push_back(id);
  Apply(changes, {});
}

void ModelledTable::Compare() {
  // What counts is what the pages say, not what the writer still has at hand.
  mdb::Definition stored = mdb::ReadDefinition(pages_, definition_.Page());
  EXPECT_EQ(stored.rows, definition_.rows);
  EXPECT_EQ(stored.last_auto_number, definition_.last_auto_number);
  std::size_t seen = 0, equal = 0;
  mdb::WalkRows(pages_, stored, [&](mdb::RowId id, const mdb::Row& row) {
    ++seen;
    const auto it = rows_.find(id);
    equal += it != rows_.end() && it->second == row ? 1 : 0;
    return true;
  });
  ASSERT_EQ(seen, rows_.size());
  ASSERT_EQ(equal, rows_.size());
  for (const auto& real : stored.reals) {
    std::vector<mdb::Entry> expected, found;
    for (const auto& [id, row] : rows_) {
      if (real.IgnoresNulls() && mdb::AllNull(stored, real, row)) continue;
      expected.push_back({{}, id});
      mdb::MakeRowKey(pages_.Header(), stored, real, row, expected.back().key);
    }
    std::sort(expected.begin(), expected.end());
    mdb::IndexTree(pages_, stored.Page(), real).Walk([&](const mdb::Entry& e) {
      found.push_back(e);
      return true;
    });
    ASSERT_EQ(found == expected, true) << "index entries: " << found.size() << " of " << expected.size();
  }
}

}  // namespace mdb_test
