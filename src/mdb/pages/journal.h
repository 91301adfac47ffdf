// The journal of a commit: the pages as they were, in a file of its own beside the base ("<base>-diario").
//
// It is written and on the disk before the first byte of the base changes, and removed when the commit is on
// the disk. Whoever opens the base and finds a complete one puts the old pages back; one without its end was
// being written when its program was cut, and the base is as it was. docs/formats/mdb.md has its layout.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "base/disk_file.h"
#include "mdb/pages/bytes.h"

namespace mdb {

std::string JournalPath(std::string_view database_path);

struct JournalData {
  std::uint32_t page_size = 4096;
  PageNumber before = 0, after = 0;  // pages of the base before and after the commit
  std::uint32_t count = 0;           // pages kept
  std::uint64_t mark = 0;            // tells this commit's records from those of any other
  std::uint64_t first_checksum = 0;  // of page 0 before the commit
  std::int64_t date = 0;             // of the base before the commit
};

// Sums of stored bytes, to find out a torn or foreign page; no protection against a forger.
std::uint64_t Checksum(View bytes, std::uint64_t from = 0);

class JournalWriter {
 public:
  // Creates the file; whoever holds it open has it locked. Throws base::Error when there is one.
  JournalWriter(base::Disk& disk, std::string_view database_path, const JournalData& data);
  // The stored bytes of a page before and after; `data.count` times.
  void Add(PageNumber number, View before, View after);
  // After this it is complete and on the disk.
  void Seal();
  // After this it is gone, or at least of no effect. Throws base::Error when neither could be done.
  void Remove();

 private:
  base::Disk& disk_;
  std::string path_;
  std::unique_ptr<base::OpenFile> file_;
  JournalData data_;
  std::uint64_t pos_ = 0, checksum_ = 0;
  Bytes run_;  // what waits to be written
  void Flush();
};

class JournalReader {
 public:
  enum class State {
    Absent,
    Incomplete,  // the base was not touched
    Live,        // its writer has it open
    Complete,
    Damaged,  // sealed, and yet not what was sealed: `reason`
  };
  JournalReader(base::Disk& disk, std::string_view database_path);
  State Which() const { return state_; }
  const std::string& Reason() const { return reason_; }
  const JournalData& Data() const { return data_; }
  bool Has(PageNumber number) const { return places_.count(number) != 0; }
  // The stored bytes of a page before the commit. Throws base::Error when they are not what was sealed.
  Bytes ReadImage(PageNumber number) const;

  // Throws base::Error unless every byte of the base is one that this commit, cut anywhere, may have left:
  // then the base is another one, or was changed since.
  void CompareWith(base::OpenFile& file) const;
  // Puts the pages, the length and the date back, and syncs. May be done again after being cut anywhere.
  void Restore(base::OpenFile& file) const;
  // Closes and removes it.
  void Remove();
  // Closes it; ReadImage opens it again each time and throws when it is another one by then.
  void Close() { file_.reset(); }

 private:
  base::Disk& disk_;
  std::string path_;
  std::unique_ptr<base::OpenFile> file_;
  State state_ = State::Absent;
  std::string reason_;
  JournalData data_;
  std::map<PageNumber, std::uint64_t> places_;  // of the records
  void Examine();
  bool ExamineRecords(std::uint64_t final_checksum);
  Bytes ReadRecord(base::OpenFile& file, PageNumber number, std::uint64_t pos) const;
  void ComparePage(base::OpenFile& file, PageNumber number, std::uint64_t pos) const;
};

}  // namespace mdb
