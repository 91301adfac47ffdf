#include <algorithm>

#include "base/text.h"
#include "mdb/schema/schema_internal.h"

namespace mdb::internal {
namespace {

constexpr std::size_t kNameLetters = 64;

}  // namespace

void CheckName(std::string_view name, const char* what) {
  const auto reject = [&](const std::string& reason) {
    throw base::Error("'" + std::string(name) + "' no sirve de nombre para " + what + ": " + reason);
  };
  if (name.empty()) throw base::Error("Falta el nombre de " + std::string(what));
  if (base::Length(name) > kNameLetters) reject("tiene más de 64 letras");
  if (name.front() == ' ') reject("empieza con un espacio");
  for (const char c : name) {
    if (std::string_view(".!`[]").find(c) != std::string_view::npos)
      reject("lleva el signo " + std::string(1, c));
    if (static_cast<unsigned char>(c) < 0x20) reject("lleva un carácter de control");
  }
}

void CheckNameIsFree(const SystemCatalog& catalog, std::string_view name) {
  if (const Object* other = catalog.Find(name); other != nullptr)
    throw base::Error("La base ya tiene " +
                      std::string(other->type == Object::Query ? "una consulta" : "una tabla") +
                      " con el nombre '" + other->name + "'");
}

Definition TableToChange(PageFile& pages, const SystemCatalog& catalog, std::string_view name) {
  const Object* object = catalog.Find(name);
  if (object == nullptr) throw base::Error("La base no tiene una tabla '" + std::string(name) + "'");
  const std::string which = "'" + object->name + "'";
  if (object->type == Object::Query) throw base::Error(which + " es una consulta, no una tabla");
  if (object->type != Object::Table)
    throw base::Error("La tabla " + which + " está vinculada: se cambia en la base en la que está");
  if (object->IsSystem()) throw base::Error("La tabla " + which + " es del sistema y no se cambia");
  Definition d = ReadDefinition(pages, static_cast<PageNumber>(object->id));
  d.name = object->name;
  return d;
}

std::size_t ColumnOf(const Definition& definition, std::string_view column) {
  const auto position = definition.ByName(column);
  if (!position)
    throw base::Error("La tabla '" + definition.name + "' no tiene una columna '" + std::string(column) +
                      "'");
  return *position;
}

std::vector<LogicalIndex>::iterator FindLogical(Definition& definition, std::string_view name) {
  return std::find_if(definition.logicals.begin(), definition.logicals.end(),
                      [&](const LogicalIndex& l) { return base::EqualIgnoringCase(l.name, name); });
}

void InsertLogical(Definition& definition, LogicalIndex logical) {
  if (definition.logicals.size() >= Definition::kIndices)
    throw base::Error("La tabla '" + definition.name + "' ya tiene 32 índices, los que puede tener");
  const std::string name = base::LowerCase(logical.name);
  const auto place =
      std::find_if(definition.logicals.begin(), definition.logicals.end(),
                   [&](const LogicalIndex& other) { return base::LowerCase(other.name) > name; });
  definition.logicals.insert(place, std::move(logical));
}

std::uint32_t FreeNumber(const Definition& definition) {
  std::uint32_t n = 0;
  const auto taken = [&] {
    return std::any_of(definition.logicals.begin(), definition.logicals.end(),
                       [&](const LogicalIndex& l) { return l.number == n; });
  };
  while (taken()) ++n;
  return n;
}

}  // namespace mdb::internal
