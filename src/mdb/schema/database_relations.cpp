#include <algorithm>

#include "base/text.h"
#include "mdb/indexes/index_key.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/rows/table.h"
#include "mdb/schema/schema_internal.h"
#include "mdb/schema/system_definitions_internal.h"

namespace mdb {
namespace {

struct Pair {  // positions in `columns` of the child and of the parent
  std::size_t child, parent;
};

// The two tables of a relationship. One definition serves both when a table refers to itself.
struct RelationshipEnds {
  Definition parent, other;
  bool same = false;
  Definition& Parent() { return parent; }
  Definition& Child() { return same ? parent : other; }
};

RelationshipEnds OpenEnds(PageFile& pages, const SystemCatalog& catalog, const TableRelationship& r) {
  RelationshipEnds e;
  e.parent = internal::TableToChange(pages, catalog, r.referenced_table);
  e.same = base::EqualIgnoringCase(r.table, r.referenced_table);
  if (!e.same) e.other = internal::TableToChange(pages, catalog, r.table);
  return e;
}

std::vector<Pair> PairsOf(RelationshipEnds& e, const TableRelationship& r) {
  if (r.columns.empty() || r.columns.size() > 10 || r.columns.size() != r.referenced_columns.size())
    throw base::Error("La relación '" + r.name + "' debe unir de 1 a 10 columnas con otras tantas");
  std::vector<Pair> pairs;
  for (std::size_t i = 0; i < r.columns.size(); ++i) {
    pairs.push_back({internal::ColumnOf(e.Child(), r.columns[i]),
                     internal::ColumnOf(e.Parent(), r.referenced_columns[i])});
    const Column& child = e.Child().columns[pairs.back().child];
    const Column& parent = e.Parent().columns[pairs.back().parent];
    if (r.IsEnforced() && (child.type != parent.type || child.scale != parent.scale))
      throw base::Error("La relación '" + r.name + "' une columnas de tipos distintos: '" + child.name +
                        "' y '" + parent.name + "'");
  }
  return pairs;
}

// The unique index over exactly the referenced columns; the pairs are put in its order.
std::uint32_t ReferencedIndex(const Definition& parent, const TableRelationship& r,
                              std::vector<Pair>& pairs) {
  for (std::size_t i = 0; i < parent.reals.size(); ++i) {
    const auto& real = parent.reals[i];
    if (!real.IsUnique() || real.parts.size() != pairs.size()) continue;
    std::vector<Pair> in_order;
    for (const auto& part : real.parts)
      for (const auto& pair : pairs)
        if (parent.columns[pair.parent].number == part.column) in_order.push_back(pair);
    if (in_order.size() != pairs.size()) continue;
    pairs = std::move(in_order);
    return static_cast<std::uint32_t>(i);
  }
  throw base::Error("La relación '" + r.name + "' necesita en la tabla '" + parent.name +
                    "' un índice sin repetidos sobre las columnas a las que se refiere");
}

// An index of the child over these columns in this order, shared when it has one that lists all its rows.
std::uint32_t ChildIndex(PageFile& pages, Definition& child, const TableRelationship& r,
                         const std::vector<Pair>& pairs) {
  const bool unique = (r.flags & TableRelationship::kOneToOne) != 0;
  RealIndex fresh;
  for (const auto& pair : pairs) fresh.parts.push_back({child.columns[pair.child].number, false});
  const auto equal = [](const RealIndex::Part& a, const RealIndex::Part& b) {
    return a.column == b.column && a.descending == b.descending;
  };
  for (std::size_t i = 0; i < child.reals.size(); ++i) {
    const auto& real = child.reals[i];
    if (std::equal(real.parts.begin(), real.parts.end(), fresh.parts.begin(), fresh.parts.end(), equal) &&
        !real.IgnoresNulls() && (real.IsUnique() || !unique))
      return static_cast<std::uint32_t>(i);
  }
  if (unique) fresh.flags |= RealIndex::kUnique;
  return internal::AddReal(pages, child, std::move(fresh), r.name);
}

// Every row of the child has its parent, but for those whose columns are all Null.
void CheckRows(PageFile& pages, RelationshipEnds& e, std::uint32_t index, const TableRelationship& r,
               const std::vector<Pair>& pairs) {
  const Definition& parent = e.Parent();
  const RealIndex& real = parent.reals.at(index);
  const IndexTree tree(pages, parent.Page(), real);
  std::vector<std::size_t> columns_read;
  for (const auto& pair : pairs) columns_read.push_back(pair.child);
  Row sought(parent.columns.size());
  Bytes key;
  WalkRows(
      pages, e.Child(),
      [&](RowId, const Row& row) {
        for (const auto& pair : pairs) sought[pair.parent] = row[pair.child];
        if (AllNull(parent, real, sought)) return true;
        MakeRowKey(pages.Header(), parent, real, sought, key);
        if (!tree.Has(key))
          throw base::Error("La relación '" + r.name + "' no se puede exigir: la tabla '" + e.Child().name +
                            "' tiene filas que no están en '" + parent.name + "'");
        return true;
      },
      columns_read);
}

// Access names the parent's side after its number: ".rA" for 0, ".rB" for 1.
std::string ParentName(Definition& parent, std::uint32_t number) {
  std::string letters(1, static_cast<char>('A' + number % 26));
  if (number >= 26) letters.insert(letters.begin(), static_cast<char>('A' + number / 26 % 26));
  std::string name = ".r" + letters;
  while (internal::FindLogical(parent, name) != parent.logicals.end()) name += 'A';
  return name;
}

void PutLogicals(RelationshipEnds& e, const TableRelationship& r, std::uint32_t parent_real,
                 std::uint32_t child_real) {
  Definition &parent = e.Parent(), &child = e.Child();
  if (internal::FindLogical(child, r.name) != child.logicals.end())
    throw base::Error("La tabla '" + child.name + "' ya tiene un índice '" + r.name + "'");
  LogicalIndex p, h;
  p.kind = h.kind = LogicalIndex::Foreign;
  p.cascades_updates = h.cascades_updates = (r.flags & TableRelationship::kCascadesUpdates) != 0 ? 1 : 0;
  p.cascades_deletes = h.cascades_deletes = (r.flags & TableRelationship::kCascadesDeletes) != 0 ? 1
                                            : (r.flags & TableRelationship::kSetsNull) != 0      ? 2
                                                                                                 : 0;
  p.side = LogicalIndex::Parent;
  p.real = parent_real;
  p.other_table = child.Page();
  p.number = internal::FreeNumber(parent);
  p.name = ParentName(parent, p.number);
  h.side = LogicalIndex::Child;
  h.real = child_real;
  h.other_table = parent.Page();
  h.name = r.name;
  h.other_index = static_cast<std::int32_t>(p.number);
  internal::InsertLogical(parent, p);
  h.number = internal::FreeNumber(child);
  internal::FindLogical(parent, p.name)->other_index = static_cast<std::int32_t>(h.number);
  internal::InsertLogical(child, std::move(h));
}

void Save(PageFile& pages, RelationshipEnds& e) {
  WriteDefinition(pages, e.parent);
  if (!e.same) WriteDefinition(pages, e.other);
}

void AddRows(PageFile& pages, RelationshipEnds& e, const TableRelationship& r,
             const std::vector<Pair>& pairs) {
  Definition d = internal::ReadSystemTable(pages, pages.Header().relationships);
  Changes changes;
  for (std::size_t i = 0; i < pairs.size(); ++i)
    changes.inserted.push_back(internal::RowByName(d)
                                   .Set("szRelationship", r.name)
                                   .Set("grbit", std::int64_t{static_cast<std::int32_t>(r.flags)})
                                   .Set("ccolumn", static_cast<std::int64_t>(pairs.size()))
                                   .Set("icolumn", static_cast<std::int64_t>(i))
                                   .Set("szObject", e.Child().name)
                                   .Set("szColumn", e.Child().columns[pairs[i].child].name)
                                   .Set("szReferencedObject", e.Parent().name)
                                   .Set("szReferencedColumn", e.Parent().columns[pairs[i].parent].name)
                                   .Take());
  Apply(pages, d, changes);
}

const Object* RelationshipObject(const SystemCatalog& catalog, std::string_view name) {
  for (const auto& o : catalog.Objects())
    if (o.type == Object::Relationship && base::EqualIgnoringCase(o.name, name)) return &o;
  return nullptr;
}

// Takes the two logical indexes away, and the child's real one when nothing else stands on it.
void RemoveLogicals(PageFile& pages, RelationshipEnds& e, const std::string& name) {
  Definition& child = e.Child();
  const auto h = internal::FindLogical(child, name);
  if (h == child.logicals.end() || h->kind != LogicalIndex::Foreign || h->side != LogicalIndex::Child) return;
  const LogicalIndex its = *h;
  child.logicals.erase(h);
  std::erase_if(e.Parent().logicals, [&](const LogicalIndex& l) {
    return l.kind == LogicalIndex::Foreign && l.side == LogicalIndex::Parent &&
           static_cast<std::int32_t>(l.number) == its.other_index && l.other_table == child.Page();
  });
  const bool shared = std::any_of(child.logicals.begin(), child.logicals.end(),
                                  [&](const LogicalIndex& l) { return l.real == its.real; });
  if (!shared) internal::RemoveReal(pages, child, its.real);
}

}  // namespace

namespace internal {

void RemoveRelationship(PageFile& pages, const SystemCatalog& catalog,
                        const TableRelationship& relationship) {
  if (relationship.IsEnforced()) {
    RelationshipEnds e = OpenEnds(pages, catalog, relationship);
    RemoveLogicals(pages, e, relationship.name);
    Save(pages, e);
  }
  DeleteRowsWhere(pages, pages.Header().relationships, "szRelationship", relationship.name);
  if (const Object* object = RelationshipObject(catalog, relationship.name)) RemoveObject(pages, *object);
}

}  // namespace internal

void Database::CreateRelationship(const TableRelationship& relationship, base::Date now) {
  internal::CheckName(relationship.name, "una relación");
  if (RelationshipObject(catalog_, relationship.name) != nullptr)
    throw base::Error("La base ya tiene una relación '" + relationship.name + "'");
  internal::Attempt attempt(*pages_, catalog_);
  RelationshipEnds e = OpenEnds(*pages_, catalog_, relationship);
  auto pairs = PairsOf(e, relationship);
  if (relationship.IsEnforced()) {
    const std::uint32_t parent_real = ReferencedIndex(e.Parent(), relationship, pairs);
    CheckRows(*pages_, e, parent_real, relationship, pairs);
    const std::uint32_t child_real = ChildIndex(*pages_, e.Child(), relationship, pairs);
    PutLogicals(e, relationship, parent_real, child_real);
    Save(*pages_, e);
  }
  AddRows(*pages_, e, relationship, pairs);
  internal::NewObject object;
  object.id = internal::FreeId(catalog_);
  object.parent = kRelationshipsContainer;
  object.name = relationship.name;
  object.type = Object::Relationship;
  internal::AddObject(*pages_, catalog_, object, now);
  attempt.Complete();
}

void Database::DropRelationship(std::string_view name) {
  internal::Attempt attempt(*pages_, catalog_);
  const auto& relationships = catalog_.Relationships();
  const auto r = std::find_if(relationships.begin(), relationships.end(),
                              [&](const auto& other) { return base::EqualIgnoringCase(other.name, name); });
  if (r == relationships.end())
    throw base::Error("La base no tiene una relación '" + std::string(name) + "'");
  internal::RemoveRelationship(*pages_, catalog_, *r);
  attempt.Complete();
}

}  // namespace mdb
