#include "mdb/pages/page_file.h"

#include <algorithm>

namespace mdb {
namespace {

// Clean images kept for the next reader (32 MB of 4 KB pages). All go at once: whoever reads a table reads
// each of its pages once.
constexpr std::size_t kMaxClean = 8192;

// The format's greatest file: 2 GiB, 1 GiB in Jet 3.
PageNumber MaxPages(const FileHeader& c) {
  return static_cast<PageNumber>((c.Jet3() ? (1ULL << 30) : (1ULL << 31)) / c.page_size);
}

}  // namespace

Image PageFile::Read(PageNumber number) {
  if (const auto c = changed_.find(number); c != changed_.end()) return c->second;
  if (const auto l = clean_.find(number); l != clean_.end()) return l->second;
  if (number >= count_) ThrowPageDamage(number, "el archivo tiene " + std::to_string(count_) + " páginas");
  auto image = std::make_shared<const Bytes>(Fetch(number));
  if (clean_.size() >= kMaxClean) clean_.clear();
  clean_.emplace(number, image);
  return image;
}

Bytes& PageFile::Modify(PageNumber number) {
  if (!reason_.empty()) throw base::StorageFault(reason_);
  auto it = changed_.find(number);
  if (it == changed_.end()) {
    it = changed_.emplace(number, std::make_shared<Bytes>(*Read(number))).first;
    clean_.erase(number);
  } else if (it->second.use_count() > 1) {
    it->second = std::make_shared<Bytes>(*it->second);
  }
  return *it->second;
}

PageNumber PageFile::Add() {
  if (!reason_.empty()) throw base::StorageFault(reason_);
  if (count_ >= MaxPages(header_))
    throw base::StorageFault(
        "La base llegó al tamaño más grande que admite su formato: compáctela antes de seguir");
  changed_.emplace(count_, std::make_shared<Bytes>(PageSize(), std::uint8_t{0}));
  return count_++;
}

void PageFile::Commit() {
  if (changed_.empty()) return;
  try {
    Flush(changed_, stored_, count_);
  } catch (const base::Error&) {
    Rollback();
    throw;
  }
  stored_ = count_;
  for (auto& [number, bytes] : changed_) clean_[number] = std::move(bytes);
  changed_.clear();
}

void PageFile::Rollback() {
  changed_.clear();
  count_ = stored_;
}

void PageFile::RollbackTo(Savepoint point) {
  changed_ = std::move(point.changed);
  count_ = point.count;
}

MemoryPages::MemoryPages(FileHeader header, Bytes bytes)
    : PageFile(header, static_cast<PageNumber>(bytes.size() / header.page_size)), bytes_(std::move(bytes)) {}

Bytes MemoryPages::Fetch(PageNumber number) {
  const View page = Slice(bytes_, number * PageSize(), PageSize());
  Bytes plain(page.begin(), page.end());
  EncryptPage(Header(), number, plain);
  return plain;
}

void MemoryPages::Flush(const ChangedPages& changed, PageNumber, PageNumber count) {
  bytes_.resize(count * PageSize());
  for (const auto& [number, plain] : changed) {
    Bytes stored = *plain;
    EncryptPage(Header(), number, stored);
    std::copy(stored.begin(), stored.end(),
              bytes_.begin() + static_cast<std::ptrdiff_t>(number * PageSize()));
  }
}

}  // namespace mdb
