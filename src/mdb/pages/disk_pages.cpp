#include "mdb/pages/disk_pages.h"

#include <algorithm>

#include "base/file.h"
#include "mdb/pages/lock.h"

namespace mdb {
namespace {

// Pages read at once by whoever goes on reading behind the last ones.
constexpr PageNumber kSequentialGap = 32;

const char* const kAsItWas = "No se pudo guardar en la base, que quedó como estaba. ";

void DeleteIncompleteJournal(base::Disk& disk, const std::string& path) {
  JournalReader old_bytes(disk, path);
  if (old_bytes.Which() == JournalReader::State::Absent) return;
  if (old_bytes.Which() != JournalReader::State::Incomplete)
    throw base::StorageFault(
        "hay un diario de otra escritura junto a la base: cierre la base y vuelva a abrirla");
  old_bytes.Remove();
}

}  // namespace

DiskPages::DiskPages(FileHeader header, PageNumber count, Opened opened)
    : PageFile(std::move(header), count), opened_(std::move(opened)) {
  SetReadOnly(opened_.cause, opened_.reason);
}

Bytes DiskPages::Fetch(PageNumber number) {
  if (!broken_.empty()) throw base::StorageFault(broken_);
  if (number < run_start_ || number - run_start_ >= run_count_) {
    // The pages of a table have those of its indexes between them.
    const PageNumber end = run_start_ + run_count_;
    const bool sequential = number >= end && number - end < kSequentialGap;
    ReadRun(number, sequential ? std::min<PageNumber>(kSequentialGap, PagesOnDisk() - number) : 1);
  }
  const View stored = View(run_).subspan((number - run_start_) * PageSize(), PageSize());
  Bytes plain(stored.begin(), stored.end());
  EncryptPage(Header(), number, plain);
  return plain;
}

bool DiskPages::ChangedOutside() const {
  // One that was put in the file's place leaves the opened one as it was: its pages may still be read.
  return !opened_.reason.empty() && (StateChanged() || !opened_.file->IsStillInPlace());
}

bool DiskPages::StateChanged() const {
  return opened_.file->Date() != opened_.date || opened_.file->Length() != opened_.length;
}

PageNumber DiskPages::PagesOnDisk() const {
  const auto size = static_cast<std::uint64_t>(PageSize());
  return opened_.overlay ? opened_.overlay->Data().before : static_cast<PageNumber>(opened_.length / size);
}

void DiskPages::ReadRun(PageNumber first, PageNumber count) {
  const bool reader = !opened_.reason.empty();
  run_count_ = 0;
  run_.resize(count * PageSize());
  // The writer reads what nobody else may change.
  const CommitLock lock_file(*opened_.disk, *opened_.file, false, reader && opened_.has_locks);
  const std::size_t read_count = opened_.file->Read(static_cast<std::uint64_t>(first) * PageSize(), run_);
  if (reader && StateChanged()) throw FileChanged();
  if (read_count < run_.size()) ThrowPageDamage(first, "no se pudo leer entera");
  if (opened_.overlay) ApplyOverlay(first, count);
  run_start_ = first;
  run_count_ = count;
}

void DiskPages::ApplyOverlay(PageNumber first, PageNumber count) {
  if (!opened_.disk->Exists(JournalPath(opened_.path))) {
    // Rolled back meanwhile, and with the same date: not a byte of it had been written.
    opened_.overlay.reset();
    return;
  }
  for (PageNumber i = 0; i < count; ++i)
    if (opened_.overlay->Has(first + i))
      PutBytes(run_, i * PageSize(), opened_.overlay->ReadImage(first + i));
}

Bytes DiskPages::Stored(const Change& change) const {
  Bytes bytes = *change.plain;
  EncryptPage(Header(), change.number, bytes);
  return bytes;
}

// The pages whose bytes differ from those on the disk, in their order.
std::vector<DiskPages::Change> DiskPages::Collect(const ChangedPages& changed, PageNumber before) {
  std::vector<Change> changes;
  changes.reserve(changed.size());
  for (const auto& [number, plain] : changed) changes.push_back({number, plain.get(), {}});
  std::sort(changes.begin(), changes.end(), [](const auto& a, const auto& b) { return a.number < b.number; });
  for (auto& c : changes) {
    if (c.number >= before) continue;
    c.before.resize(PageSize());
    if (opened_.file->Read(static_cast<std::uint64_t>(c.number) * PageSize(), c.before) < PageSize())
      ThrowPageDamage(c.number, "no se pudo leer entera");
  }
  std::erase_if(changes, [this](const Change& c) { return !c.before.empty() && c.before == Stored(c); });
  return changes;
}

// Whether the file is still the one that was opened, as it was left.
void DiskPages::Check() {
  if (!opened_.file->IsStillInPlace())
    throw base::StorageFault("No se guardó nada: otro programa puso otro archivo en el lugar de la base");
  if (StateChanged())
    throw base::StorageFault(
        "No se guardó nada: otro programa cambió la base desde que se abrió. Ábrala de nuevo");
  // One that keeps pages in its memory would write old ones over the new.
  const std::string who = WhoHasItOpen(*opened_.disk, opened_.path);
  if (!who.empty()) throw base::StorageFault("No se guardó nada en la base: " + who);
}

void DiskPages::Flush(const ChangedPages& changed, PageNumber before, PageNumber count) {
  if (!broken_.empty()) throw base::StorageFault(broken_);
  const std::vector<Change> changes = Collect(changed, before);
  if (changes.empty() && before == count) return;
  const CommitLock lock_file(*opened_.disk, *opened_.file, true);
  Check();
  JournalWriter journal = WriteJournal(changes, MakeJournalData(changes, before, count));
  std::int64_t date = 0;
  try {
    base::MemoryAsFault([&] {
      WritePages(changes, count);
      date = opened_.file->Date();  // without its journal the commit cannot be taken back
      journal.Remove();
    });
  } catch (const base::Error& e) {
    RollBackAndThrow(changes, before, journal, e.Description());
  }
  run_count_ = 0;
  opened_.date = date;
  opened_.length = static_cast<std::uint64_t>(count) * PageSize();
}

JournalData DiskPages::MakeJournalData(const std::vector<Change>& changes, PageNumber before,
                                       PageNumber count) {
  JournalData data;
  data.page_size = static_cast<std::uint32_t>(PageSize());
  data.before = before;
  data.after = count;
  data.count = static_cast<std::uint32_t>(
      std::count_if(changes.begin(), changes.end(), [](const Change& c) { return !c.before.empty(); }));
  Bytes first(PageSize());
  if (opened_.file->Read(0, first) < first.size()) ThrowPageDamage(0, "no se pudo leer entera");
  data.first_checksum = Checksum(first);
  data.date = opened_.date;
  Bytes moment;
  Append64(moment, static_cast<std::uint64_t>(opened_.disk->Now()));
  data.mark = Checksum(moment, data.first_checksum);
  return data;
}

JournalWriter DiskPages::WriteJournal(const std::vector<Change>& changes, const JournalData& data) {
  std::optional<JournalWriter> journal;
  try {
    base::MemoryAsFault([&] {
      DeleteIncompleteJournal(*opened_.disk, opened_.path);
      journal.emplace(*opened_.disk, opened_.path, data);
      for (const auto& c : changes)
        if (!c.before.empty()) journal->Add(c.number, c.before, Stored(c));
      journal->Seal();
    });
  } catch (const base::Error& e) {
    if (journal) base::AnyErrorNoted("Volcar: diario", nullptr, [&] { journal->Remove(); });
    throw base::StorageFault(kAsItWas + e.Description());
  }
  return std::move(*journal);
}

void DiskPages::WritePages(const std::vector<Change>& changes, PageNumber count) {
  for (const auto& c : changes)
    opened_.file->Write(static_cast<std::uint64_t>(c.number) * PageSize(), Stored(c));
  const std::uint64_t length = static_cast<std::uint64_t>(count) * PageSize();
  if (opened_.file->Length() != length) opened_.file->Resize(length);
  DateCommit();
  opened_.file->Sync();
}

// A commit is told from the one before by its date, also when both fall in one tick of the disk's clock.
void DiskPages::DateCommit() {
  const std::int64_t us = opened_.disk->Microsecond();
  std::int64_t date = std::max(opened_.disk->Now(), opened_.date + us);
  for (const std::int64_t step : {std::int64_t{0}, 10'000 * us, 2'000'000 * us}) {
    const bool ok =
        base::AnyErrorNoted("Volcar: fecha", nullptr, [&] { opened_.file->SetDate(date + step); });
    if (!ok || opened_.file->Date() > opened_.date) return;
  }
}

void DiskPages::RollBackAndThrow(const std::vector<Change>& changes, PageNumber before,
                                 JournalWriter& journal, const std::string& reason) {
  try {
    for (const auto& c : changes)
      if (!c.before.empty()) opened_.file->Write(static_cast<std::uint64_t>(c.number) * PageSize(), c.before);
    opened_.file->Resize(static_cast<std::uint64_t>(before) * PageSize());
    base::AnyErrorNoted("VolverAtras: fecha", nullptr, [&] { opened_.file->SetDate(opened_.date); });
    opened_.file->Sync();
    journal.Remove();
  } catch (const base::Error& e) {
    broken_ = "La base quedó a medio escribir. " + reason +
              ". Tampoco se la pudo volver atrás: " + e.Description() + ". No borre " +
              base::NameOf(JournalPath(opened_.path)) + ": al abrir la base de nuevo se restablece con él";
    SetReadOnly(ReadOnlyCause::Broken, broken_);
    throw base::StorageFault(broken_);
  }
  // The same bytes with the same date: whoever reads them goes on. Where the date could not be set, not.
  opened_.date = opened_.file->Date();
  throw base::StorageFault(kAsItWas + reason);
}

}  // namespace mdb
