// Tables that live in another file.
#include "base/file.h"
#include "base/text.h"
#include "engine_mdb/source_internal.h"

namespace engine_mdb {
namespace {

// The last part of a path of any system.
std::string_view FileName(std::string_view path) {
  const std::size_t slash = path.find_last_of("/\\");
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

// A value of a text "KEY=value;KEY=value", or nothing.
std::string Value(std::string_view text, std::string_view key) {
  for (const std::string& piece : base::Split(text, ";")) {
    const std::size_t equal = piece.find('=');
    if (equal != std::string::npos && base::EqualIgnoringCase(base::Trim(piece.substr(0, equal)), key))
      return piece.substr(equal + 1);
  }
  return {};
}

bool IsOfAccess(std::string_view connection) {
  return connection.empty() || connection.front() == ';' ||
         base::StartsWith(connection, "MS Access", base::Compare::IgnoringCase);
}

}  // namespace

std::shared_ptr<mdb::Database> Links::Open(const mdb::Object& object) {
  const std::string who = "La tabla vinculada " + object.name;
  if (!IsOfAccess(object.connection))
    throw base::Error(who + " no es de otra base de Access (" +
                      std::string(base::Split(object.connection, ";").front()) +
                      "): no se puede leer desde aquí.");
  const std::string stored = object.base.empty() ? Value(object.connection, "DATABASE") : object.base;
  if (stored.empty()) throw base::Error(who + " no dice de qué archivo es.");
  auto& base = open_[stored];
  if (base != nullptr) return base;
  // The path is that of the machine where the link was made; the file often travels with ours.
  std::string path = stored;
  if (!base::FileExists(path)) path = base::JoinPath(base::FolderOf(path_), FileName(stored));
  if (!base::FileExists(path))
    throw base::StorageFault(who + " es del archivo " + stored + ", que no existe, ni está junto a la base.");
  try {
    base = mdb::Database::Open(path, {true, Value(object.connection, "PWD")});
  } catch (const base::Error& e) {
    open_.erase(stored);
    throw base::StorageFault(who + " no se puede leer: " + e.Description());
  }
  return base;
}

}  // namespace engine_mdb
