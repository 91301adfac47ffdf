#include "mdb/catalog/catalog.h"

#include <optional>
#include <unordered_map>

#include "base/text.h"
#include "mdb/catalog/catalog_internal.h"
#include "mdb/rows/table.h"

namespace mdb {
namespace {

// Of several objects of one name the one that users see, then the first.
bool IsPreferable(const Object& a, const Object& b) { return !a.IsSystem() && b.IsSystem(); }

bool IsTableOrQuery(const Object& o) {
  return o.type == Object::Table || o.type == Object::LinkedOdbc || o.type == Object::Linked ||
         o.type == Object::Query;
}

}  // namespace

struct SystemCatalog::Loaded {
  std::vector<Object> objects;
  std::unordered_map<std::string, std::size_t> by_name;  // lower case; what Find finds
  std::unordered_map<std::string, std::shared_ptr<const Definition>> tables;
  std::unordered_map<std::string, Properties> properties;
  std::optional<std::vector<TableRelationship>> relationships;
  std::optional<std::unordered_map<std::int32_t, std::vector<QueryRow>>> queries;
};

SystemCatalog::Loaded& SystemCatalog::Read() const {
  if (loaded_) return *loaded_;
  auto fresh = std::make_shared<Loaded>();
  fresh->objects = internal::ReadObjects(pages_);
  for (std::size_t i = 0; i < fresh->objects.size(); ++i) {
    const Object& o = fresh->objects[i];
    if (!IsTableOrQuery(o)) continue;
    const auto [it, is_new] = fresh->by_name.emplace(base::LowerCase(o.name), i);
    if (!is_new && IsPreferable(o, fresh->objects[it->second])) it->second = i;
  }
  loaded_ = std::move(fresh);
  return *loaded_;
}

const std::vector<Object>& SystemCatalog::Objects() const { return Read().objects; }

const Object* SystemCatalog::Find(std::string_view name) const {
  const Loaded& loaded = Read();
  const auto it = loaded.by_name.find(base::LowerCase(name));
  return it == loaded.by_name.end() ? nullptr : &loaded.objects[it->second];
}

std::shared_ptr<const Definition> SystemCatalog::Table(std::string_view name) const {
  const Object* object = Find(name);
  if (object == nullptr || object->type != Object::Table) return nullptr;
  auto& stored = Read().tables[base::LowerCase(name)];
  if (!stored) {
    auto d = ReadDefinition(pages_, static_cast<PageNumber>(object->id));
    d.name = object->name;
    stored = std::make_shared<const Definition>(std::move(d));
  }
  return stored;
}

const Properties& SystemCatalog::PropertiesOf(std::string_view table) const {
  Loaded& loaded = Read();
  const auto key = base::LowerCase(table);
  const auto it = loaded.properties.find(key);
  if (it != loaded.properties.end()) return it->second;
  const Object* object = Find(table);
  Properties properties;
  if (object != nullptr) properties = ReadProperties(pages_.Header(), object->properties);
  return loaded.properties.emplace(key, std::move(properties)).first->second;
}

// Some files of Access 97 have these tables on other pages than their header says; the catalog tells.
PageNumber SystemCatalog::SystemTablePage(std::string_view name, PageNumber of_the_header) const {
  const Object* object = Find(name);
  const bool told = object != nullptr && object->type == Object::Table && object->IsSystem();
  return told ? static_cast<PageNumber>(object->id) : of_the_header;
}

const std::vector<TableRelationship>& SystemCatalog::Relationships() const {
  auto& relationships = Read().relationships;
  if (!relationships)
    relationships = internal::ReadRelationships(
        pages_, SystemTablePage("MSysRelationships", pages_.Header().relationships));
  return *relationships;
}

SavedQuery SystemCatalog::QueryOf(std::string_view name) const {
  const Object* object = Find(name);
  if (object == nullptr || object->type != Object::Query)
    throw base::Error("La base no tiene una consulta '" + std::string(name) + "'");
  auto& queries = Read().queries;
  if (!queries)
    queries = internal::ReadQueryRows(pages_, SystemTablePage("MSysQueries", pages_.Header().queries));
  SavedQuery query{object->name, object->flags, {}};
  if (const auto it = queries->find(object->id); it != queries->end()) query.rows = it->second;
  return query;
}

void SystemCatalog::Forget() { loaded_.reset(); }

}  // namespace mdb
