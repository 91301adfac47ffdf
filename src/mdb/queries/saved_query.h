// Saved queries: their rows of MSysQueries, and what the codes in them mean. What makes them of words, and
// words of them, stands above.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace mdb {

struct QueryRow {
  std::uint8_t attribute = 0;
  std::uint32_t order = 0;  // counter within the attribute, from 1 (0 for those without)
  std::optional<std::string> name1, name2, expression;
  std::optional<std::int16_t> flag;
  std::optional<std::int32_t> extra;  // LvExtra
};

enum class QueryKind {
  Select,
  CreateTable,
  Append,
  Update,
  Delete,
  Crosstab,
  Definition,
  PassThrough,
  Union
};

struct SavedQuery {
  std::string name;
  std::uint32_t flags = 0;     // of its row in MSysObjects
  std::vector<QueryRow> rows;  // in any order
};

namespace query_codes {

// What a row is, by its attribute.
enum Attribute : std::uint8_t {
  kStart = 0,
  kKind = 1,
  kParameter = 2,
  kOptions = 3,
  kOtherBase = 4,
  kSource = 5,
  kColumn = 6,
  kJoin = 7,
  kWhere = 8,
  kGroup = 9,
  kHaving = 10,
  kOrder = 11,
  kEnd = 255
};

// Flags, together, of the row of options. In a union kAll keeps rows that are alike.
inline constexpr std::int16_t kAll = 1, kDistinct = 2, kOwnerAccess = 4, kDistinctRows = 8, kTop = 16,
                              kPercent = 32;
// The flag of a column: of a crosstab, or of INSERT … VALUES.
inline constexpr std::int16_t kPivot = 1, kRowHeading = 2, kOfValues = -32768;
// The flag of a join.
inline constexpr std::int16_t kInner = 1, kLeft = 2, kRight = 3;

}  // namespace query_codes

// The flag of the row of the kind.
std::int16_t CodeOf(QueryKind kind);
// The bits of the object's flags that say the kind; the others are not its business.
inline constexpr std::uint32_t kKindBits = 0xF0;
std::uint32_t ObjectFlagsOf(QueryKind kind);

// By the row of the kind, else by the object's flags. Throws base::Error for a code that is none.
QueryKind KindOf(const SavedQuery& query);

}  // namespace mdb
