// Translated and prepared statements, so that a text of a known shape costs neither a translation nor a
// preparation.
#pragma once

#include <array>
#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "db/recordset.h"
#include "engine_sqlite/sqlite_internal.h"
#include "jetsql/mould.h"
#include "jetsql/translate.h"

namespace engine_sqlite {

// One translation, ready to run with the literals of any statement of its shape.
struct Prepared {
  jetsql::Translation translation;
  std::shared_ptr<const db::Columns> columns;
  std::vector<Statement> statements;      // one a step; null until it first runs
  std::vector<base::Value> fixed_values;  // of the literals that the translation depends on
};

// By shape; the shapes used longest ago are dropped first.
class ShapeCache {
 public:
  std::shared_ptr<Prepared> Find(const jetsql::Shape& shape);
  void Store(const jetsql::Shape& shape, std::shared_ptr<Prepared> prepared);
  void Clear();

 private:
  static constexpr std::size_t kShapes = 300;
  static constexpr std::size_t kVariants = 16;  // of one shape, by the literals it depends on
  struct Entry {
    std::string key;
    std::vector<std::shared_ptr<Prepared>> variants;
  };
  std::list<Entry> entries_;                                                 // the last used first
  std::unordered_map<std::string_view, std::list<Entry>::iterator> by_key_;  // views into the entries
};

// The last texts that ran, as moulds for those to come: a text that differs from one of them in literals
// alone is not even cut into tokens. Looked for by how the text begins, up to its first digit or quote.
class MouldCache {
 public:
  struct Slot {
    jetsql::Mould mould;
    std::shared_ptr<Prepared> prepared;
  };
  struct Found {
    Slot* slot = nullptr;
    bool equal = false;  // the text itself was there
  };
  // The slot whose mould the text fits, holding the text's literals; none when there is no such slot.
  Found Find(std::string_view sql);
  void Store(std::string_view sql, const jetsql::Shape& shape, const std::shared_ptr<Prepared>& prepared);
  void Clear();

 private:
  static constexpr std::size_t kGroups = 64;
  static constexpr std::size_t kLongestText = 1 << 16;  // a longer one is not kept
  static constexpr std::size_t kPerGroup = 4;
  struct Group {
    std::array<Slot, kPerGroup> slots;
    std::size_t next = 0;  // the slot to be given up next
  };
  Group& GroupOf(std::string_view sql);

  std::array<Group, kGroups> groups_;
};

}  // namespace engine_sqlite
