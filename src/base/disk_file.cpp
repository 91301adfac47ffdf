#include "base/disk_file.h"

#include <chrono>
#include <thread>

#include "base/file.h"

namespace base {
namespace {

std::string Text(std::string_view action, std::string_view path, DiskFault fault, std::string_view reason) {
  std::string text = std::string(action) + " " + NameOf(path) + ": ";
  switch (fault) {
    case DiskFault::NotFound:
      return text + "no existe";
    case DiskFault::AlreadyExists:
      return text + "ya existe";
    case DiskFault::NoPermission:
      return text + "no hay permiso";
    case DiskFault::ReadOnly:
      return text + "el disco es de solo lectura";
    case DiskFault::InUse:
      return text + "otro programa lo tiene en uso";
    case DiskFault::DiskFull:
      return text + "el disco está lleno";
    case DiskFault::NotSupported:
      return text + "el disco no lo admite";
    case DiskFault::Other:
      break;
  }
  return text + "falló el disco (" + std::string(reason) + ")";
}

}  // namespace

DiskError::DiskError(std::string_view action, std::string_view path, DiskFault fault, std::string_view reason)
    : StorageFault(Text(action, path, fault, reason)), fault_(fault) {}

bool SystemDisk::Exists(std::string_view path) { return FileExists(path); }

void SystemDisk::Wait(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace base
