#include "base/file.h"
#include "mdb/pages/disk_pages.h"
#include "mdb/schema/database.h"
#include "mdb/schema/new_file.h"

namespace mdb {
namespace {

// All of it or no file; never over one that is there.
void CreateDatabaseFile(base::Disk& disk, const std::string& path, View bytes) {
  if (disk.Exists(path)) throw base::DiskError("No se puede crear", path, base::DiskFault::AlreadyExists, {});
  // A new base would be taken for the one that this journal is of.
  if (disk.Exists(JournalPath(path)))
    throw base::StorageFault("No se puede crear " + base::NameOf(path) + ": en la carpeta quedó " +
                             base::NameOf(JournalPath(path)) + ", el diario de otra base de ese nombre");
  const std::string new_path = path + "-nueva";
  base::AnyErrorNoted("CrearArchivo", nullptr, [&] { disk.Delete(new_path); });  // of a run that was cut
  try {
    const auto file = disk.Open(new_path, base::FileMode::New);
    file->Write(0, bytes);
    file->Sync();
  } catch (const base::Error&) {
    base::AnyErrorNoted("CrearArchivo", nullptr, [&] { disk.Delete(new_path); });
    throw;
  }
  disk.Move(new_path, path);
  disk.SyncFolderOf(path);
}

}  // namespace

std::unique_ptr<Database> Database::Open(std::string_view path, const DatabaseOptions& options) {
  auto pages = DiskPages::Open(path, options.read_only);
  const FileHeader& c = pages->Header();
  if (c.foreign_encryption)
    throw base::StorageFault(
        "La base está cifrada con una contraseña de Access 2007 o posterior: no se puede leer");
  if (!c.password.empty() && c.password != options.password)
    throw base::StorageFault(options.password.empty() ? "La base tiene contraseña y no se dio ninguna"
                                                      : "La contraseña de la base no es la que se dio");
  return std::make_unique<Database>(std::move(pages));
}

std::unique_ptr<Database> Database::Create(std::string_view path, std::uint16_t order, base::Date now) {
  base::SystemDisk disk;
  CreateDatabaseFile(disk, std::string(path), MakeDatabase(order, now));
  auto base = Open(path);
  if (!base->ReadOnlyReason().empty()) throw base::StorageFault(base->ReadOnlyReason());
  return base;
}

}  // namespace mdb
