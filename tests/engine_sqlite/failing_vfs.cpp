#include "failing_vfs.h"

#include <stdexcept>

namespace test {
namespace {

// The real file stands behind this one, in the same piece of memory.
struct File {
  sqlite3_file base;
  FailingVfs* vfs;
  sqlite3_file* Real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

File& Of(sqlite3_file* f) { return *reinterpret_cast<File*>(f); }
FailingVfs& Of(sqlite3_vfs* v) { return *static_cast<FailingVfs*>(v->pAppData); }
const sqlite3_io_methods& Methods(File& f) { return *f.Real()->pMethods; }

int Close(sqlite3_file* f) { return Methods(Of(f)).xClose(Of(f).Real()); }
int Read(sqlite3_file* f, void* to, int n, sqlite3_int64 pos) {
  if (Of(f).vfs->Count("read")) return SQLITE_IOERR_READ;
  return Methods(Of(f)).xRead(Of(f).Real(), to, n, pos);
}
int Write(sqlite3_file* f, const void* from, int n, sqlite3_int64 pos) {
  if (Of(f).vfs->Count("write")) return SQLITE_FULL;
  return Methods(Of(f)).xWrite(Of(f).Real(), from, n, pos);
}
int Truncate(sqlite3_file* f, sqlite3_int64 n) {
  if (Of(f).vfs->Count("truncate")) return SQLITE_IOERR_TRUNCATE;
  return Methods(Of(f)).xTruncate(Of(f).Real(), n);
}
int Sync(sqlite3_file* f, int flags) {
  if (Of(f).vfs->Count("sync")) return SQLITE_IOERR_FSYNC;
  return Methods(Of(f)).xSync(Of(f).Real(), flags);
}
int Size(sqlite3_file* f, sqlite3_int64* n) {
  if (Of(f).vfs->Count("size")) return SQLITE_IOERR_FSTAT;
  return Methods(Of(f)).xFileSize(Of(f).Real(), n);
}
int Lock(sqlite3_file* f, int kind) {
  if (Of(f).vfs->Count("lock")) return SQLITE_IOERR_LOCK;
  return Methods(Of(f)).xLock(Of(f).Real(), kind);
}
int Unlock(sqlite3_file* f, int kind) { return Methods(Of(f)).xUnlock(Of(f).Real(), kind); }
int Reserved(sqlite3_file* f, int* yes) {
  if (Of(f).vfs->Count("reserved")) return SQLITE_IOERR_CHECKRESERVEDLOCK;
  return Methods(Of(f)).xCheckReservedLock(Of(f).Real(), yes);
}
int Control(sqlite3_file* f, int op, void* arg) { return Methods(Of(f)).xFileControl(Of(f).Real(), op, arg); }
int Sector(sqlite3_file* f) { return Methods(Of(f)).xSectorSize(Of(f).Real()); }
int Traits(sqlite3_file* f) { return Methods(Of(f)).xDeviceCharacteristics(Of(f).Real()); }
int ShmMap(sqlite3_file* f, int region, int size, int extend, void volatile** at) {
  if (Of(f).vfs->Count("shared memory")) return SQLITE_IOERR_SHMMAP;
  return Methods(Of(f)).xShmMap(Of(f).Real(), region, size, extend, at);
}
int ShmLock(sqlite3_file* f, int offset, int n, int flags) {
  if ((flags & SQLITE_SHM_LOCK) != 0 && Of(f).vfs->Count("shared lock")) return SQLITE_IOERR_SHMLOCK;
  return Methods(Of(f)).xShmLock(Of(f).Real(), offset, n, flags);
}
void ShmBarrier(sqlite3_file* f) { Methods(Of(f)).xShmBarrier(Of(f).Real()); }
int ShmUnmap(sqlite3_file* f, int remove) { return Methods(Of(f)).xShmUnmap(Of(f).Real(), remove); }

constexpr sqlite3_io_methods kMethods = {2,       Close,      Read,     Write,   Truncate, Sync,   Size,
                                         Lock,    Unlock,     Reserved, Control, Sector,   Traits, ShmMap,
                                         ShmLock, ShmBarrier, ShmUnmap, nullptr, nullptr};

int Open(sqlite3_vfs* v, const char* name, sqlite3_file* f, int flags, int* out) {
  File& file = Of(f);
  file.base.pMethods = nullptr;
  file.vfs = &Of(v);
  if (file.vfs->Count("open")) return SQLITE_CANTOPEN;
  sqlite3_vfs* real = file.vfs->Real();
  file.Real()->pMethods = nullptr;
  const int rc = real->xOpen(real, name, file.Real(), flags, out);
  if (rc == SQLITE_OK) file.base.pMethods = &kMethods;
  return rc;
}
int Delete(sqlite3_vfs* v, const char* name, int sync) {
  if (Of(v).Count("delete")) return SQLITE_IOERR_DELETE;
  return Of(v).Real()->xDelete(Of(v).Real(), name, sync);
}
int Access(sqlite3_vfs* v, const char* name, int flags, int* out) {
  if (Of(v).Count("access")) return SQLITE_IOERR_ACCESS;
  return Of(v).Real()->xAccess(Of(v).Real(), name, flags, out);
}

}  // namespace

FailingVfs::FailingVfs() : real_(sqlite3_vfs_find(nullptr)) {
  own_ = *real_;
  own_.szOsFile = static_cast<int>(sizeof(File)) + real_->szOsFile;
  own_.pNext = nullptr;
  own_.zName = "failing";
  own_.pAppData = this;
  own_.xOpen = Open;
  own_.xDelete = Delete;
  own_.xAccess = Access;
  own_.xFullPathname = [](sqlite3_vfs* v, const char* name, int n, char* out) {
    return Of(v).Real()->xFullPathname(Of(v).Real(), name, n, out);
  };
  if (sqlite3_vfs_register(&own_, 1) != SQLITE_OK) throw std::runtime_error("no files of our own");
}

FailingVfs::~FailingVfs() {
  sqlite3_vfs_unregister(&own_);
  sqlite3_vfs_register(real_, 1);
}

bool FailingVfs::Count(const char* what) {
  ++calls_;
  if (fail_at_ == 0 || (always_ ? calls_ < fail_at_ : calls_ != fail_at_)) return false;
  ++failed_;
  what_ = what;
  return true;
}

}  // namespace test
