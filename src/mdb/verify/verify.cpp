#include "mdb/verify/verify.h"

#include <algorithm>
#include <map>

#include "base/text.h"
#include "mdb/verify/verify_internal.h"

namespace mdb {

using internal::Quoted;
using internal::Revision;
using internal::SeenObject;

bool Report::IsSound() const {
  return std::none_of(findings.begin(), findings.end(),
                      [](const Finding& h) { return h.severity == Finding::Severity::Error; });
}

namespace {

constexpr Pointer kGlobalMap{1, 0};

class FileCheck {
 public:
  FileCheck(PageFile& pages, std::size_t limit) : r_(pages, limit) {}

  Report Run() {
    const FileHeader& header = r_.pages.Header();
    r_.report.pages = r_.pages.Count();
    if (header.foreign_encryption) {
      r_.Note(0, "", "el archivo está cifrado y no se puede revisar");
      return std::move(r_.report);
    }
    if (r_.pages.Count() < 3) {
      r_.Error(0, "", "el archivo tiene menos páginas que las que hacen falta para su catálogo");
      return std::move(r_.report);
    }
    r_.Take(0, Revision::kSystem, "");
    free_pages_ = r_.CheckMap(kGlobalMap, Revision::kMaps, "mapa de páginas libres");
    if (ReadCatalog()) {
      CheckTables();
      CheckRelationships(r_, tables_, objects_);
      CheckQueries(r_, objects_);
    }
    r_.CheckMapPages();
    CheckProperty();
    return std::move(r_.report);
  }

 private:
  static std::string OfTable(const std::string& name) { return "tabla " + Quoted(name); }

  bool ReadCatalog() {
    const PageNumber page = r_.pages.Header().objects;
    return r_.Try(page, OfTable("MSysObjects"), [&] {
      Definition d = ReadDefinition(r_.pages, page);
      d.name = "MSysObjects";
      std::vector<std::size_t> columns;
      for (const char* name : {"Id", "ParentId", "Name", "Type"}) {
        const auto i = d.ByName(name);
        if (!i) ThrowPageDamage(page, "el catálogo no tiene la columna " + Quoted(name));
        columns.push_back(*i);
      }
      tables_[page] = d;
      CheckTable(r_, d, columns, [&](RowId id, const Row& row) {
        const auto integer = [&](std::size_t k) {
          const auto* n = std::get_if<std::int64_t>(&row[columns[k]]);
          return n == nullptr ? 0 : *n;
        };
        const auto* name = std::get_if<std::string>(&row[columns[2]]);
        objects_.push_back({integer(0), integer(1), integer(3), name == nullptr ? "" : *name, id});
      });
      CheckObjects();
    });
  }

  void CheckObjects() {
    std::map<std::int64_t, const SeenObject*> by_id;
    std::map<std::pair<std::int64_t, std::string>, const SeenObject*> by_name;
    for (const SeenObject& o : objects_) {
      if (!by_id.emplace(o.id, &o).second)
        r_.Error(o.row.page, "catálogo",
                 "los objetos " + Quoted(o.name) + " y " + Quoted(by_id[o.id]->name) +
                     " tienen el mismo identificador");
      if (!by_name.emplace(std::pair(o.parent, base::LowerCase(o.name)), &o).second)
        r_.Error(o.row.page, "catálogo", "hay dos objetos con el nombre " + Quoted(o.name));
    }
  }

  void CheckTables() {
    const PageNumber catalog = r_.pages.Header().objects;
    for (const SeenObject& o : objects_) {
      if (o.type != 1 || o.id == catalog) continue;
      if (o.id <= 1 || o.id >= static_cast<std::int64_t>(r_.pages.Count())) {
        r_.Error(o.row.page, "catálogo",
                 "la tabla " + Quoted(o.name) + " dice tener su definición en la página " +
                     std::to_string(o.id) + ", que no hay");
        continue;
      }
      const auto page = static_cast<PageNumber>(o.id);
      if (tables_.contains(page)) continue;  // told with the catalog
      r_.Try(page, OfTable(o.name), [&] {
        Definition d = ReadDefinition(r_.pages, page);
        d.name = o.name;
        tables_[page] = d;
        CheckTable(r_, d);
      });
    }
    for (const PageNumber page :
         {catalog, r_.pages.Header().permissions, r_.pages.Header().queries, r_.pages.Header().relationships})
      if (std::none_of(objects_.begin(), objects_.end(),
                       [&](const SeenObject& o) { return o.type == 1 && o.id == page; }))
        r_.Error(page, "catálogo", "la tabla de sistema de esta página no está en el catálogo");
  }

  // Every page is free or belongs to one thing.
  void CheckProperty() {
    if (!free_pages_.readable) return;
    std::vector<bool> is_free(r_.pages.Count(), false);
    for (const PageNumber p : free_pages_.pages) is_free[p] = true;
    r_.report.free_pages = free_pages_.pages.size();
    std::size_t lost = 0;
    std::string first_ones;
    for (PageNumber p = 0; p < is_free.size(); ++p) {
      const bool taken = r_.IsTaken(p);
      if (is_free[p] && taken)
        r_.Error(p, "mapa de páginas libres", "figura como libre, y la usa " + r_.NameOf(p));
      // What the map cannot name counts as free.
      if (is_free[p] || taken || p < free_pages_.start || p >= free_pages_.end) continue;
      if (++lost <= 5) first_ones += (lost == 1 ? "" : ", ") + std::to_string(p);
    }
    if (lost != 0)
      r_.Note(0, "",
              internal::Counted(lost, "una página no está libre ni la usa nadie",
                                "páginas no están libres ni las usa nadie") +
                  " (" + first_ones + (lost > 5 ? ", …" : "") + "); compactar la base recupera su lugar");
  }

  Revision r_;
  internal::SeenMap free_pages_;
  std::vector<SeenObject> objects_;
  internal::Tables tables_;
};

}  // namespace

Report Verify(PageFile& pages, std::size_t limit) { return FileCheck(pages, limit).Run(); }

}  // namespace mdb
