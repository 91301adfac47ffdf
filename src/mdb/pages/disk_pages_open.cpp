// Opening a file: who may write, what a cut commit left, what kind of file it is.
#include "base/file.h"
#include "mdb/pages/disk_pages.h"
#include "mdb/pages/lock.h"

namespace mdb {

using State = JournalReader::State;

class Opening {
 public:
  Opening(std::string_view path, std::shared_ptr<base::Disk> disk) {
    opened_.disk = disk != nullptr ? std::move(disk) : std::make_shared<base::SystemDisk>();
    opened_.path = opened_.disk->RealPath(path);
  }

  std::unique_ptr<DiskPages> Run(bool read_only) {
    const bool has_journal = opened_.disk->Exists(JournalPath(opened_.path));
    if (!read_only || has_journal) OpenForWriting();
    if (opened_.file != nullptr) {
      RestoreOnDisk();
      ReadFirstPage();
      CheckFormat();
    }
    if (read_only) Refuse(ReadOnlyCause::Asked, "La base se abrió solo para leer");
    if (!opened_.reason.empty()) OpenForReading();
    const std::uint64_t pages =
        opened_.overlay ? opened_.overlay->Data().before : opened_.length / header_.page_size;
    return std::unique_ptr<DiskPages>(
        new DiskPages(header_, static_cast<PageNumber>(pages), std::move(opened_)));
  }

 private:
  static constexpr const char* kCannot = "No se puede escribir en la base: ";
  static constexpr const char* kInUse = "Otro programa tiene abierta la base";

  void Refuse(ReadOnlyCause cause, std::string text) {
    opened_.cause = cause;
    opened_.reason = std::move(text);
  }

  // Leaves the file open with the writer's lock, or closed with the reason why it cannot be had.
  void OpenForWriting() {
    try {
      opened_.file = opened_.disk->Open(opened_.path, base::FileMode::Write);
      if (!LockWriter(*opened_.disk, *opened_.file)) Refuse(ReadOnlyCause::InUse, kInUse);
    } catch (const base::DiskError& e) {
      RefuseFor(e);
    }
    if (opened_.reason.empty() || in_use_) {
      const std::string who = WhoHasItOpen(*opened_.disk, opened_.path);
      if (!who.empty()) Refuse(ReadOnlyCause::Denied, kCannot + who);
    }
    if (opened_.reason.empty() && !opened_.disk->FolderAllowsNewFiles(opened_.path))
      Refuse(ReadOnlyCause::Denied,
             std::string(kCannot) + "no hay permiso para crear archivos en su carpeta");
    if (!opened_.reason.empty()) opened_.file.reset();
  }

  void RefuseFor(const base::DiskError& e) {
    switch (e.Fault()) {
      case base::DiskFault::NoPermission:
        return Refuse(ReadOnlyCause::Denied,
                      std::string(kCannot) + "su archivo es de solo lectura, o no hay permiso");
      case base::DiskFault::ReadOnly:
        return Refuse(ReadOnlyCause::Denied, std::string(kCannot) + "su disco es de solo lectura");
      case base::DiskFault::InUse:
        in_use_ = true;
        return Refuse(ReadOnlyCause::InUse, kInUse);
      case base::DiskFault::NotSupported:
        return Refuse(ReadOnlyCause::Denied, std::string(kCannot) + "su disco no permite bloquear archivos");
      default:
        throw;
    }
  }

  void RestoreOnDisk() {
    const CommitLock lock_file(*opened_.disk, *opened_.file, true);
    JournalReader journal(*opened_.disk, opened_.path);
    if (journal.Which() == State::Absent) return;
    RefuseJournal(journal);
    if (journal.Which() == State::Complete) {
      journal.CompareWith(*opened_.file);
      journal.Restore(*opened_.file);
    }
    journal.Remove();
  }

  static void RefuseJournal(const JournalReader& journal) {
    if (journal.Which() == State::Damaged)
      throw base::StorageFault("Junto a la base quedó el diario de una escritura cortada, y " +
                               journal.Reason() + ". La base puede estar a medio escribir: no se la abre");
    // The writer has the lock of a base, and here we have it or read under it: of another one.
    if (journal.Which() == State::Live)
      throw base::StorageFault("Otro programa escribe en la base, pero en su lugar hay otro archivo");
  }

  void OpenForReading() {
    opened_.file = opened_.disk->Open(opened_.path, base::FileMode::Read);
    opened_.has_locks = SupportsLocks();
    const CommitLock lock_file(*opened_.disk, *opened_.file, false, opened_.has_locks);
    JournalReader journal(*opened_.disk, opened_.path);
    RefuseJournal(journal);
    if (journal.Which() == State::Complete) {
      journal.CompareWith(*opened_.file);
      opened_.overlay.emplace(std::move(journal));
      opened_.overlay->Close();
    }
    ReadFirstPage();
  }

  bool SupportsLocks() {
    try {
      opened_.file->FirstLocked(kByteCommit, 1);
      return true;
    } catch (const base::DiskError& e) {
      if (e.Fault() == base::DiskFault::NotSupported) return false;
      throw;
    }
  }

  void ReadFirstPage() {
    opened_.date = opened_.file->Date();
    opened_.length = opened_.file->Length();
    if (opened_.length == 0) throw base::StorageFault("El archivo está vacío: no es una base de Access");
    Bytes first(4096);
    if (opened_.overlay && opened_.overlay->Has(0)) {
      first = opened_.overlay->ReadImage(0);
    } else {
      first.resize(opened_.file->Read(0, first));
    }
    header_ = ReadHeader(first);
    const std::uint64_t largest = header_.Jet3() ? std::uint64_t{1} << 30 : std::uint64_t{1} << 31;
    if (opened_.length > largest)
      throw base::StorageFault("El archivo es más grande de lo que admite su formato");
    if (opened_.length < header_.page_size)
      throw base::StorageFault("El archivo es demasiado corto para ser una base de Access");
    if (opened_.length % header_.page_size != 0 && !opened_.overlay && opened_.reason.empty())
      Refuse(ReadOnlyCause::Incomplete, "El archivo termina a mitad de una página: le falta una parte");
  }

  // What is only read, whoever asks.
  void CheckFormat() {
    if (!opened_.reason.empty()) return;
    if (header_.version == Version::Jet3)
      Refuse(ReadOnlyCause::Format, "Las bases de Access 97 solo se leen");
    if (header_.version == Version::Ace)
      Refuse(ReadOnlyCause::Format, "Las bases .accdb (Access 2007 y posteriores) solo se leen");
  }

  DiskPages::Opened opened_;
  FileHeader header_;
  bool in_use_ = false;
};

std::unique_ptr<DiskPages> DiskPages::Open(std::string_view path, bool read_only,
                                           std::shared_ptr<base::Disk> disk) {
  return Opening(path, std::move(disk)).Run(read_only);
}

}  // namespace mdb
