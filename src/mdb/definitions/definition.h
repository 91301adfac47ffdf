// A table's definition (pages of type 2): its columns, indexes and page maps.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mdb/pages/page_file.h"

namespace mdb {

enum class ColumnType : std::uint8_t {
  Boolean = 1,
  Byte = 2,
  Integer = 3,  // 16 bits
  Long = 4,     // 32 bits
  Currency = 5,
  Single = 6,
  Double = 7,
  Date = 8,
  Binary = 9,
  Text = 10,
  Ole = 11,
  Memo = 12,
  Guid = 15,
  Decimal = 16,
  FixedBinary = 17,
  Complex = 18,      // .accdb: key of another table's rows
  BigInteger = 19,   // .accdb
  ExtendedDate = 20  // .accdb: read as its text
};

struct Column {
  static constexpr std::uint8_t kFixed = 0x01, kUpdatable = 0x02, kAutoNumber = 0x04, kSystem = 0x10,
                                kAutoGuid = 0x40;
  static constexpr std::uint8_t kCompressed = 0x01, kCalculated = 0xC0;  // of extended_flags

  std::string name;
  ColumnType type = ColumnType::Long;
  std::uint16_t number = 0;    // bit of the null mask; what indexes name it by
  std::uint16_t variable = 0;  // its place among the variable columns
  std::uint16_t position = 0;  // for display
  std::uint16_t lcid = 0;      // sort order of Text and Memo; in others it says nothing
  std::uint8_t order_version = 0;
  std::uint8_t precision = 0, scale = 0;  // of Numeric
  std::uint8_t flags = kUpdatable, extended_flags = 0;
  std::uint16_t offset = 0;               // of a fixed one
  std::uint16_t length = 0;               // bytes; 0 for Memo and OLE
  Pointer lv_owned_pages, lv_free_pages;  // page maps of a Memo's or OLE's long values

  bool IsFixed() const { return (flags & kFixed) != 0; }  // never told by the type
  bool IsAutoNumber() const { return (flags & kAutoNumber) != 0; }
  bool IsText() const { return type == ColumnType::Text || type == ColumnType::Memo; }
  // Of an .accdb: each value is wrapped, and stands in the row even for a Boolean.
  bool IsCalculated() const { return (extended_flags & kCalculated) == kCalculated; }
  bool IsLong() const { return type == ColumnType::Memo || type == ColumnType::Ole; }
};

struct RealIndex {
  static constexpr std::uint8_t kUnique = 0x01, kIgnoresNulls = 0x02, kRequired = 0x08, kAlways = 0x80;
  struct Part {
    std::uint16_t column = 0;  // its `number`
    bool descending = false;
  };
  std::vector<Part> parts;
  Pointer map;
  PageNumber root = 0;
  std::uint8_t flags = kAlways;
  std::uint32_t entries = 0, distinct = 0;  // counters of the definition; not exact in files of Access

  bool IsUnique() const { return (flags & kUnique) != 0; }
  bool IgnoresNulls() const { return (flags & kIgnoresNulls) != 0; }
  bool IsRequired() const { return (flags & kRequired) != 0; }
};

// A name over a real index; several may share one.
struct LogicalIndex {
  enum Kind : std::uint8_t { Normal = 0, Primary = 1, Foreign = 2 };
  enum Side : std::uint8_t { None = 0, Parent = 1, Child = 2 };
  static constexpr std::uint8_t kNoRelationship =
      4;  // both cascade bytes of an index that is in no relationship
  std::string name;
  std::uint32_t number = 0;
  std::uint32_t real = 0;  // in `reals`
  std::uint8_t side = None;
  std::int32_t other_index = -1;  // its number in the other table
  PageNumber other_table = 0;
  std::uint8_t cascades_updates = kNoRelationship, cascades_deletes = kNoRelationship;
  std::uint8_t kind = Normal;
};

struct Definition {
  static constexpr std::uint8_t kUser = 0x4E, kSystem = 0x53;
  static constexpr std::size_t kColumns = 255, kIndices = 32;  // the most that a table can have

  std::string name;               // of the catalog; not in the definition itself
  std::vector<PageNumber> pages;  // of the definition; the first is the table's identity
  std::uint32_t rows = 0;
  std::int32_t last_auto_number = 0, increment = 1;
  std::uint8_t kind = kUser;
  std::uint16_t max_columns = 0, variables = 0;  // deleted columns included
  std::vector<Column> columns;                   // as stored
  std::vector<RealIndex> reals;
  std::vector<LogicalIndex> logicals;
  Pointer owned_pages, free_pages;  // page maps of the data pages

  PageNumber Page() const { return pages.empty() ? 0 : pages.front(); }
  // Positions in `columns` in the order in which Access shows them.
  std::vector<std::size_t> InOrder() const;
  // Position in `columns` by `number`, or by name whatever its case.
  std::optional<std::size_t> ByNumber(std::uint16_t number) const;
  std::optional<std::size_t> ByName(std::string_view name) const;
  const LogicalIndex* PrimaryKey() const;
};

// Throws Damage naming the page; never loops over a chain of definition pages that comes back.
Definition ReadDefinition(PageFile& pages, PageNumber page);

// Writes the definition over its pages; takes more pages, or frees those that it no longer needs, and keeps
// the first. A definition without pages gets its first here.
void WriteDefinition(PageFile& pages, Definition& definition);
// Writes only the row count, the last autonumber and the indexes' counters, in place: what each change of
// rows touches.
void WriteCounters(PageFile& pages, const Definition& definition);

}  // namespace mdb
