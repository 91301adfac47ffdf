// What holds between tables: relationships and saved queries.
#include <algorithm>
#include <optional>
#include <unordered_set>

#include "base/text.h"
#include "mdb/catalog/catalog_internal.h"
#include "mdb/indexes/index_key.h"
#include "mdb/rows/table.h"
#include "mdb/verify/verify_internal.h"

namespace mdb::internal {
namespace {

using Columns = std::vector<std::size_t>;
constexpr std::size_t kPerRelationship = 5;  // rows without a parent that are named

const Definition* TableOf(const Tables& tables, const std::string& name) {
  for (const auto& [page, d] : tables)
    if (base::EqualIgnoringCase(d.name, name)) return &d;
  return nullptr;
}

bool IsLinked(const std::vector<SeenObject>& objects, const std::string& name) {
  return std::any_of(objects.begin(), objects.end(), [&](const SeenObject& o) {
    return (o.type == Object::Linked || o.type == Object::LinkedOdbc) &&
           base::EqualIgnoringCase(o.name, name);
  });
}

class RelationshipCheck {
 public:
  RelationshipCheck(Revision& r, const Tables& tables, const std::vector<SeenObject>& objects,
                    const TableRelationship& relationship)
      : r_(r),
        tables_(tables),
        objects_(objects),
        relationship_(relationship),
        where_("relación " + Quoted(relationship.name)) {}

  void Run() {
    const Definition* child = Table(relationship_.table);
    const Definition* parent = Table(relationship_.referenced_table);
    if (child == nullptr || parent == nullptr) return;
    const auto child_positions = Positions(*child, relationship_.columns);
    const auto parent_positions = Positions(*parent, relationship_.referenced_columns);
    if (!child_positions || !parent_positions || !relationship_.IsEnforced()) return;
    if (!AreComparable(*child, *child_positions, *parent, *parent_positions))
      return r_.Note(0, where_, "sus columnas no son del mismo tipo y no se comprobó");
    try {
      CheckRows(*child, *child_positions, *parent, *parent_positions);
    } catch (const Damage&) {  // a table with damage has its own findings
    } catch (const base::Error& e) {
      r_.Note(0, where_, "no se pudo comprobar: " + e.Description());
    }
  }

 private:
  const Definition* Table(const std::string& name) {
    const Definition* d = TableOf(tables_, name);
    if (d == nullptr && !IsLinked(objects_, name))
      r_.Error(0, where_, "nombra la tabla " + Quoted(name) + ", que no existe");
    return d;
  }

  std::optional<Columns> Positions(const Definition& d, const std::vector<std::string>& names) {
    Columns positions;
    for (const std::string& name : names) {
      const auto i = d.ByName(name);
      if (!i) {
        r_.Error(0, where_,
                 "nombra la columna " + Quoted(name) + " de la tabla " + Quoted(d.name) + ", que no existe");
        return {};
      }
      positions.push_back(*i);
    }
    return positions;
  }

  static bool AreComparable(const Definition& a, const Columns& a_positions, const Definition& b,
                            const Columns& b_positions) {
    return std::equal(a_positions.begin(), a_positions.end(), b_positions.begin(), b_positions.end(),
                      [&](std::size_t i, std::size_t k) {
                        return a.columns[i].type == b.columns[k].type &&
                               a.columns[i].scale == b.columns[k].scale;
                      });
  }

  // The values as a text that is equal for values that Access takes for equal; none with a Null among them.
  std::optional<std::string> Key(const Definition& d, const Columns& columns, const Row& row) {
    key_.clear();
    for (const std::size_t i : columns) {
      if (IsNull(row[i])) return {};
      AppendKey(r_.pages.Header(), d.columns[i], false, row[i], key_);
    }
    return std::string(key_.begin(), key_.end());
  }

  void CheckRows(const Definition& child, const Columns& child_positions, const Definition& parent,
                 const Columns& parent_positions) {
    std::unordered_set<std::string> found;
    WalkRows(
        r_.pages, parent,
        [&](RowId, const Row& row) {
          if (auto key = Key(parent, parent_positions, row)) found.insert(std::move(*key));
          return true;
        },
        parent_positions);
    std::size_t orphans = 0;
    WalkRows(
        r_.pages, child,
        [&](RowId id, const Row& row) {
          const auto key = Key(child, child_positions, row);
          if (key && !found.contains(*key) && ++orphans <= kPerRelationship)
            r_.Error(id.page, where_,
                     OfRow(id) + " de la tabla " + Quoted(child.name) + " no tiene la suya en la tabla " +
                         Quoted(parent.name));
          return true;
        },
        child_positions);
    if (orphans > kPerRelationship)
      r_.Error(0, where_, "en total son " + std::to_string(orphans) + " las filas sin la suya");
  }

  Revision& r_;
  const Tables& tables_;
  const std::vector<SeenObject>& objects_;
  const TableRelationship& relationship_;
  std::string where_;
  Bytes key_;
};

// The two indexes of an enforced relationship name each other.
void CheckPairs(Revision& r, const Tables& tables) {
  for (const auto& [page, d] : tables)
    for (const LogicalIndex& l : d.logicals) {
      if (l.side == LogicalIndex::None) continue;
      const std::string where = "tabla " + Quoted(d.name) + ", índice " + Quoted(l.name);
      const auto other = tables.find(l.other_table);
      if (other == tables.end()) {
        r.Error(page, where,
                "es de una relación con la tabla de la página " + std::to_string(l.other_table) +
                    ", que no existe");
        continue;
      }
      const auto& logicals = other->second.logicals;
      const PageNumber this_page = page;
      if (std::none_of(logicals.begin(), logicals.end(), [&](const LogicalIndex& o) {
            return static_cast<std::int64_t>(o.number) == l.other_index && o.other_table == this_page &&
                   o.other_index == static_cast<std::int64_t>(l.number);
          }))
        r.Error(page, where,
                "es de una relación con la tabla " + Quoted(other->second.name) +
                    ", que no tiene el índice que va con él");
    }
}

// Some files of Access 97 have these tables on other pages than their header says; the catalog tells.
PageNumber SystemTablePage(const std::vector<SeenObject>& objects, std::string_view name,
                           PageNumber of_the_header) {
  for (const SeenObject& o : objects)
    if (o.type == Object::Table && o.name == name) return static_cast<PageNumber>(o.id);
  return of_the_header;
}

}  // namespace

void CheckRelationships(Revision& r, const Tables& tables, const std::vector<SeenObject>& objects) {
  CheckPairs(r, tables);
  std::vector<TableRelationship> relationships;
  const PageNumber page = SystemTablePage(objects, "MSysRelationships", r.pages.Header().relationships);
  r.Try(page, "tabla 'MSysRelationships'", [&] { relationships = ReadRelationships(r.pages, page); });
  for (const TableRelationship& relationship : relationships)
    RelationshipCheck(r, tables, objects, relationship).Run();
}

void CheckQueries(Revision& r, const std::vector<SeenObject>& objects) {
  constexpr std::uint8_t kStart = 0, kEnd = 255;
  const PageNumber page = SystemTablePage(objects, "MSysQueries", r.pages.Header().queries);
  r.Try(page, "tabla 'MSysQueries'", [&] {
    auto rows = ReadQueryRows(r.pages, page);
    for (const SeenObject& o : objects) {
      if (o.type != Object::Query) continue;
      const auto its = rows.extract(static_cast<std::int32_t>(o.id));
      const auto count = [&](std::uint8_t attribute) {
        if (its.empty()) return std::ptrdiff_t{0};
        return std::count_if(its.mapped().begin(), its.mapped().end(),
                             [&](const QueryRow& f) { return f.attribute == attribute; });
      };
      if (count(kStart) != 1 || count(kEnd) != 1)
        r.Error(o.row.page, "consulta " + Quoted(o.name),
                its.empty() ? "el catálogo la tiene, y no están sus filas"
                            : "no tiene una fila de comienzo y una de fin");
    }
    if (!rows.empty())
      r.Note(
          0, "tabla 'MSysQueries'",
          "hay filas de " + Counted(rows.size(), "una consulta que no existe", "consultas que no existen"));
  });
}

}  // namespace mdb::internal
