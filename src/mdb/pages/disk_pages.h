// The pages of a file on disk.
//
// One program writes, any number read. Who opens for writing has the writer's lock until it closes; a second
// one that asks for it gets the file for reading only. A program that reads need not close for another to
// write: each reading of pages and each commit take the commit lock (see lock.h), so that no reader sees half
// a commit. A reader goes on seeing the file as it was when opened, or nothing: once another program has
// committed, reading a page not read before throws FileChanged, and the file must be opened anew. That is
// told by the file's date, which a commit always raises, and its length.
//
// A commit writes the journal (journal.h), the changed pages, and removes the journal, each synced before the
// next: a program killed anywhere leaves the file as before or, after the next opening, as before or as
// after. A disk that fails in between is answered by putting the old pages back at once; when that fails too,
// the journal stays for the next opening and nothing more is read from this one. A file in which nothing is
// written keeps its bytes and its date.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/disk_file.h"
#include "mdb/pages/journal.h"
#include "mdb/pages/page_file.h"

namespace mdb {

// Another program changed the file since it was opened.
class FileChanged : public base::StorageFault {
 public:
  FileChanged() : base::StorageFault("Otro programa cambió la base desde que se abrió: ábrala de nuevo") {}
};

class DiskPages final : public PageFile {
 public:
  // Rolls back what a cut commit left. When the file cannot be written it opens for reading:
  // ReadOnlyReason says why. Throws base::Error: no such file, another kind of file, a journal that is not
  // of this file.
  static std::unique_ptr<DiskPages> Open(std::string_view path, bool read_only = false,
                                         std::shared_ptr<base::Disk> disk = nullptr);

  bool ChangedOutside() const override;

 private:
  friend class Opening;
  struct Opened {
    std::shared_ptr<base::Disk> disk;
    std::string path;
    std::unique_ptr<base::OpenFile> file;
    ReadOnlyCause cause = ReadOnlyCause::None;
    std::string reason;     // empty: open for writing
    bool has_locks = true;  // the disk has locks
    std::optional<JournalReader>
        overlay;            // a cut commit that could not be rolled back on disk: its pages count
    std::int64_t date = 0;  // of the file, when opened or at the last own commit
    std::uint64_t length = 0;
  };
  DiskPages(FileHeader header, PageNumber count, Opened opened);
  Bytes Fetch(PageNumber number) override;
  void Flush(const ChangedPages& changed, PageNumber before, PageNumber count) override;

  struct Change {
    PageNumber number;
    const Bytes* plain;
    Bytes before;  // as stored; empty for a page that is new
  };
  Bytes Stored(const Change& change) const;
  std::vector<Change> Collect(const ChangedPages& changed, PageNumber before);
  JournalData MakeJournalData(const std::vector<Change>& changes, PageNumber before, PageNumber count);
  JournalWriter WriteJournal(const std::vector<Change>& changes, const JournalData& data);
  void WritePages(const std::vector<Change>& changes, PageNumber count);
  [[noreturn]] void RollBackAndThrow(const std::vector<Change>& changes, PageNumber before,
                                     JournalWriter& journal, const std::string& reason);
  void DateCommit();
  bool StateChanged() const;
  void Check();
  void ReadRun(PageNumber first, PageNumber count);
  void ApplyOverlay(PageNumber first, PageNumber count);
  PageNumber PagesOnDisk() const;

  Opened opened_;
  std::string broken_;  // why nothing more is read
  // The pages last read from the disk, as stored: whoever reads a table reads on.
  PageNumber run_start_ = 0, run_count_ = 0;
  Bytes run_;
};

}  // namespace mdb
