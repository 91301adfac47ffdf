#include <algorithm>
#include <initializer_list>

#include "base/text.h"
#include "mdb/catalog/catalog_internal.h"
#include "mdb/rows/table.h"

namespace mdb::internal {
namespace {

// A system table, read by the names of its columns: files of other versions have others, and fewer.
class SystemTable {
 public:
  SystemTable(PageFile& pages, PageNumber page, std::initializer_list<const char*> names)
      : pages_(pages), definition_(ReadDefinition(pages, page)) {
    for (const char* name : names) {
      const auto i = definition_.ByName(name);
      // Any column beyond the last stands for one that is missing.
      positions_.push_back(i.value_or(definition_.columns.size()));
      if (i) chosen_.push_back(*i);
    }
    if (chosen_.empty()) ThrowPageDamage(page, "no es la tabla de sistema que debe");
  }

  // Calls `visit` with each row; Datum(k) is then the value of the k-th name.
  template <typename Visitor>
  void Walk(Visitor&& visit) {
    WalkRows(
        pages_, definition_,
        [&](RowId id, const Row& row) {
          row_ = &row;
          visit(id);
          return true;
        },
        chosen_);
  }

  std::optional<std::int64_t> Integer(std::size_t k) const {
    const auto* n = Value<std::int64_t>(k);
    return n == nullptr ? std::nullopt : std::optional(*n);
  }
  std::int32_t Long(std::size_t k) const { return static_cast<std::int32_t>(Integer(k).value_or(0)); }
  std::optional<std::string> Text(std::size_t k) const {
    const auto* t = Value<std::string>(k);
    return t == nullptr ? std::nullopt : std::optional(*t);
  }
  Bytes Binary(std::size_t k) const {
    const auto* b = Value<Bytes>(k);
    return b == nullptr ? Bytes() : *b;
  }

 private:
  template <typename T>
  const T* Value(std::size_t k) const {
    return positions_[k] < row_->size() ? std::get_if<T>(&(*row_)[positions_[k]]) : nullptr;
  }

  PageFile& pages_;
  Definition definition_;
  std::vector<std::size_t> positions_, chosen_;
  const Row* row_ = nullptr;
};

// A counter of four bytes, highest first; Access writes nothing for the attributes that have one row.
std::uint32_t Counter(const Bytes& bytes) {
  std::uint32_t n = 0;
  for (const auto b : bytes) n = n << 8 | b;
  return n;
}

}  // namespace

std::vector<Object> ReadObjects(PageFile& pages) {
  SystemTable table(
      pages, pages.Header().objects,
      {"Id", "ParentId", "Name", "Type", "Flags", "Database", "Connect", "ForeignName", "LvProp"});
  std::vector<Object> objects;
  table.Walk([&](RowId id) {
    Object o;
    o.id = table.Long(0);
    o.parent = table.Long(1);
    o.name = table.Text(2).value_or("");
    o.type = static_cast<std::int16_t>(table.Long(3));
    o.flags = static_cast<std::uint32_t>(table.Long(4));
    o.base = table.Text(5).value_or("");
    o.connection = table.Text(6).value_or("");
    o.external_name = table.Text(7).value_or("");
    o.properties = table.Binary(8);
    o.row = id;
    objects.push_back(std::move(o));
  });
  return objects;
}

std::vector<TableRelationship> ReadRelationships(PageFile& pages, PageNumber page) {
  SystemTable table(pages, page,
                    {"szRelationship", "grbit", "icolumn", "szObject", "szColumn", "szReferencedObject",
                     "szReferencedColumn"});
  struct Pair {
    std::int32_t place;
    std::string column, referenced;
  };
  std::vector<TableRelationship> relationships;
  std::vector<std::vector<Pair>> pairs;
  std::unordered_map<std::string, std::size_t> by_name;
  table.Walk([&](RowId) {
    const std::string name = table.Text(0).value_or("");
    const auto [it, fresh] = by_name.emplace(base::LowerCase(name), relationships.size());
    if (fresh) {
      relationships.push_back({name, table.Text(3).value_or(""), {}, table.Text(5).value_or(""), {}, 0});
      relationships.back().flags = static_cast<std::uint32_t>(table.Long(1));
      pairs.emplace_back();
    }
    pairs[it->second].push_back({table.Long(2), table.Text(4).value_or(""), table.Text(6).value_or("")});
  });
  for (std::size_t i = 0; i < relationships.size(); ++i) {
    std::stable_sort(pairs[i].begin(), pairs[i].end(),
                     [](const Pair& a, const Pair& b) { return a.place < b.place; });
    for (auto& pair : pairs[i]) {
      relationships[i].columns.push_back(std::move(pair.column));
      relationships[i].referenced_columns.push_back(std::move(pair.referenced));
    }
  }
  return relationships;
}

std::unordered_map<std::int32_t, std::vector<QueryRow>> ReadQueryRows(PageFile& pages, PageNumber page) {
  SystemTable table(pages, page,
                    {"ObjectId", "Attribute", "Order", "Name1", "Name2", "Expression", "Flag", "LvExtra"});
  std::unordered_map<std::int32_t, std::vector<QueryRow>> queries;
  table.Walk([&](RowId) {
    QueryRow f;
    f.attribute = static_cast<std::uint8_t>(table.Long(1));
    f.order = Counter(table.Binary(2));
    f.name1 = table.Text(3);
    f.name2 = table.Text(4);
    f.expression = table.Text(5);
    if (const auto n = table.Integer(6)) f.flag = static_cast<std::int16_t>(*n);
    if (const auto n = table.Integer(7)) f.extra = static_cast<std::int32_t>(*n);
    queries[table.Long(0)].push_back(std::move(f));
  });
  return queries;
}

}  // namespace mdb::internal
