#include "mdb/schema/system_definitions_internal.h"

#include <algorithm>
#include <initializer_list>

#include "mdb/rows/row_internal.h"

namespace mdb {
namespace {

struct SystemColumn {
  const char* name;
  ColumnType type;
  bool sid = false;
};

std::uint16_t LengthOf(ColumnType type) {
  switch (type) {
    case ColumnType::Boolean:
      return 1;
    case ColumnType::Text:
    case ColumnType::Binary:
      return 510;
    default:
      return internal::TypeWidth(type);
  }
}

// Columns in the order of their numbers; stored by name, as Access stores those of its own tables.
Definition Table(const char* name, std::uint16_t order, std::initializer_list<SystemColumn> columns) {
  constexpr std::uint8_t kSid = 0x20;
  Definition d;
  d.name = name;
  d.kind = Definition::kSystem;
  std::uint16_t offset = 0;
  for (const auto& from : columns) {
    Column c;
    c.name = from.name;
    c.type = from.type;
    c.number = d.max_columns++;
    c.variable = d.variables;
    c.lcid = order;
    c.length = LengthOf(from.type);
    c.flags = Column::kUpdatable | Column::kSystem;
    if (from.sid) c.flags |= kSid;
    if (internal::IsVariableLength(from.type)) {
      ++d.variables;
    } else {
      c.flags |= Column::kFixed;
      if (from.type != ColumnType::Boolean) {
        c.offset = offset;
        offset = static_cast<std::uint16_t>(offset + c.length);
      }
    }
    d.columns.push_back(std::move(c));
  }
  std::sort(d.columns.begin(), d.columns.end(),
            [](const Column& a, const Column& b) { return a.name < b.name; });
  return d;
}

void AddIndex(Definition& d, const char* name, std::initializer_list<std::uint16_t> columns,
              std::uint8_t flags, LogicalIndex::Kind kind = LogicalIndex::Normal) {
  RealIndex r;
  for (const auto c : columns) r.parts.push_back({c, false});
  r.flags = RealIndex::kAlways | flags;
  LogicalIndex l;
  l.name = name;
  l.number = l.real = static_cast<std::uint32_t>(d.reals.size());
  l.kind = kind;
  d.reals.push_back(std::move(r));
  const auto place = std::find_if(d.logicals.begin(), d.logicals.end(),
                                  [&](const LogicalIndex& other) { return other.name > l.name; });
  d.logicals.insert(place, std::move(l));
}

}  // namespace

Definition MSysObjectsTable(std::uint16_t order) {
  using enum ColumnType;
  Definition d = Table("MSysObjects", order,
                       {{"Id", Long},
                        {"ParentId", Long},
                        {"Name", Text},
                        {"Type", Integer},
                        {"DateCreate", Date},
                        {"DateUpdate", Date},
                        {"Owner", Binary, true},
                        {"Flags", Long},
                        {"Database", Memo},
                        {"Connect", Memo},
                        {"ForeignName", Text},
                        {"RmtInfoShort", Binary},
                        {"RmtInfoLong", Ole},
                        {"Lv", Ole},
                        {"LvProp", Ole},
                        {"LvModule", Ole},
                        {"LvExtra", Ole}});
  AddIndex(d, "ParentIdName", {1, 2}, RealIndex::kUnique);
  AddIndex(d, "Id", {0}, RealIndex::kUnique, LogicalIndex::Primary);
  return d;
}

Definition MSysACEsTable(std::uint16_t order) {
  using enum ColumnType;
  Definition d = Table("MSysACEs", order,
                       {{"ObjectId", Long}, {"SID", Binary, true}, {"ACM", Long}, {"FInheritable", Boolean}});
  AddIndex(d, "ObjectId", {0}, RealIndex::kRequired);
  return d;
}

Definition MSysQueriesTable(std::uint16_t order) {
  using enum ColumnType;
  Definition d = Table("MSysQueries", order,
                       {{"ObjectId", Long},
                        {"Attribute", Byte},
                        {"Order", Binary},
                        {"Name1", Text},
                        {"Name2", Text},
                        {"Expression", Memo},
                        {"Flag", Integer},
                        {"LvExtra", Long}});
  AddIndex(d, "ObjectIdAttribute", {0, 1, 2}, RealIndex::kUnique, LogicalIndex::Primary);
  return d;
}

Definition MSysRelationshipsTable(std::uint16_t order) {
  using enum ColumnType;
  Definition d = Table("MSysRelationships", order,
                       {{"szRelationship", Text},
                        {"grbit", Long},
                        {"ccolumn", Long},
                        {"icolumn", Long},
                        {"szObject", Text},
                        {"szColumn", Text},
                        {"szReferencedObject", Text},
                        {"szReferencedColumn", Text}});
  AddIndex(d, "szRelationship", {0}, RealIndex::kIgnoresNulls);
  AddIndex(d, "szObject", {4}, RealIndex::kIgnoresNulls);
  AddIndex(d, "szReferencedObject", {6}, RealIndex::kIgnoresNulls);
  return d;
}

}  // namespace mdb
