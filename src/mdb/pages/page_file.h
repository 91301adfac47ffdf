// The pages of a file and the changes that wait for their commit.
//
// Changes stay in memory until Commit, which writes all of them or none; Rollback drops them. An image
// handed out by Read never changes: a page that is modified while somebody holds its image is copied first.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

#include "mdb/pages/header.h"

namespace mdb {

using Image = std::shared_ptr<const Bytes>;

// Why nothing may be written into a file.
enum class ReadOnlyCause : std::uint8_t {
  None,
  Asked,       // it was opened for reading
  Format,      // of a kind that is only read
  Incomplete,  // the end of the file is missing
  InUse,       // by a program that does not say who it is
  Denied,      // the system, or a program that says who it is, does not let us
  Broken       // a commit failed half-way
};

class PageFile {
 public:
  explicit PageFile(FileHeader header, PageNumber count)
      : header_(std::move(header)), stored_(count), count_(count) {}
  PageFile(const PageFile&) = delete;
  PageFile& operator=(const PageFile&) = delete;
  virtual ~PageFile() = default;

  const FileHeader& Header() const { return header_; }
  std::size_t PageSize() const { return header_.page_size; }
  PageNumber Count() const { return count_; }  // with the pages added since the last commit

  // The page as it is now, plain. Throws Damage for a number beyond the end, base::Error when the disk fails.
  Image Read(PageNumber number);
  // The page to write in. The reference holds until the next Modify of the same page, Save, RollbackTo,
  // Commit or Rollback. Throws base::Error when the file is open for reading only.
  Bytes& Modify(PageNumber number);
  // A new page at the end, all zeros; the caller enters it in the page maps (see page_map.h). Throws
  // base::Error at the format's greatest size.
  PageNumber Add();

  // Why nothing may be written; empty when it may.
  const std::string& ReadOnlyReason() const { return reason_; }
  ReadOnlyCause WhyReadOnly() const { return cause_; }
  bool HasChanges() const { return !changed_.empty(); }
  // Whether another program has committed into a file that is only read since it was opened, or has put
  // another file in its place: what was read from it is then of the past, and more may not be had.
  virtual bool ChangedOutside() const { return false; }

  // Writes all changes, or none (then throws base::Error with the reason and the changes are dropped).
  void Commit();
  void Rollback();

  // A point inside a transaction to come back to.
  struct Savepoint {
    std::unordered_map<PageNumber, std::shared_ptr<Bytes>> changed;
    PageNumber count = 0;
  };
  Savepoint Save() const { return {changed_, count_}; }
  void RollbackTo(Savepoint point);

 protected:
  using ChangedPages = std::unordered_map<PageNumber, std::shared_ptr<Bytes>>;
  // The stored page, decrypted.
  virtual Bytes Fetch(PageNumber number) = 0;
  // Writes the pages (plain bytes) and makes the file `count` pages long, all or nothing; throws
  // base::Error. `before` is the length in pages at the last commit.
  virtual void Flush(const ChangedPages& changed, PageNumber before, PageNumber count) = 0;
  void SetReadOnly(ReadOnlyCause cause, std::string reason) {
    cause_ = cause;
    reason_ = std::move(reason);
  }

 private:
  FileHeader header_;
  ReadOnlyCause cause_ = ReadOnlyCause::None;
  std::string reason_;
  ChangedPages changed_;
  std::unordered_map<PageNumber, Image> clean_;
  PageNumber stored_, count_;
};

// A file in memory, for tests and for building a new file before it is written.
class MemoryPages final : public PageFile {
 public:
  MemoryPages(FileHeader header, Bytes bytes);
  const Bytes& Stored() const { return bytes_; }  // as stored, since the last commit

 private:
  Bytes Fetch(PageNumber number) override;
  void Flush(const ChangedPages& changed, PageNumber before, PageNumber count) override;
  Bytes bytes_;
};

}  // namespace mdb
