#include "mdb/pages/journal.h"

#include <algorithm>
#include <array>

#include "mdb/pages/lock.h"

namespace mdb {
namespace {

constexpr std::array<std::uint8_t, 8> kMagic{'I', 'D', 'M', 'D', 'I', 'A', 'R', 0x1A};
constexpr std::array<std::uint8_t, 8> kEnd{'I', 'D', 'M', 'F', 'I', 'N', '!', 0x1A};
constexpr std::uint32_t kVersion = 1;
constexpr std::size_t kHeader = 64, kClosing = 24, kStart = 16;
// The least that a disk writes whole: a page cut by a lost current is old and new by such pieces.
constexpr std::size_t kSector = 512;
constexpr std::size_t kRun = std::size_t{1} << 18;

std::size_t SectorCount(const JournalData& d) { return d.page_size / kSector; }
std::size_t RecordLength(const JournalData& d) { return kStart + 4 * SectorCount(d) + d.page_size; }
std::uint64_t JournalLength(const JournalData& d) {
  return kHeader + d.count * static_cast<std::uint64_t>(RecordLength(d)) + kClosing;
}
std::uint32_t SectorChecksum(View sector) { return static_cast<std::uint32_t>(Checksum(sector)); }

Bytes Header(const JournalData& d) {
  Bytes b(kMagic.begin(), kMagic.end());
  Append32(b, kVersion);
  Append32(b, d.page_size);
  Append32(b, d.before);
  Append32(b, d.after);
  Append32(b, d.count);
  Append32(b, 0);
  Append64(b, d.mark);
  Append64(b, d.first_checksum);
  Append64(b, static_cast<std::uint64_t>(d.date));
  Append64(b, Checksum(b));
  return b;
}

// The sum of a record: of all but the place it stands in.
std::uint64_t RecordChecksum(const JournalData& d, View record) {
  return Checksum(record.subspan(kStart), Checksum(record.first(8), d.mark));
}

// It vouches for itself first, so that an end torn while it was written is told from damage before it.
Bytes Closing(const JournalData& d, std::uint64_t checksum) {
  Bytes b(kEnd.begin(), kEnd.end());
  Append64(b, checksum);
  Append64(b, Checksum(b, d.mark));
  return b;
}

std::size_t ReadAt(base::OpenFile& file, std::uint64_t pos, Bytes& bytes) { return file.Read(pos, bytes); }

const char* const kOtherDatabase =
    "Junto a la base quedó el diario de una escritura cortada (archivo terminado en -diario), pero la base "
    "no es "
    "la que ese diario conoce: la reemplazaron o la cambió otro programa después. No se tocó ninguno de los "
    "dos. "
    "Si puso una copia de respaldo en su lugar, mueva el diario a otra carpeta y vuelva a abrir";

}  // namespace

std::string JournalPath(std::string_view database_path) { return std::string(database_path) + "-diario"; }

std::uint64_t Checksum(View bytes, std::uint64_t from) {
  constexpr std::uint64_t kPrime = 0x9E3779B97F4A7C15;
  std::uint64_t h = from ^ (kPrime + bytes.size());
  const auto mix = [&h](std::uint64_t word) {
    h = (h ^ word) * kPrime;
    h ^= h >> 32;
  };
  std::size_t i = 0;
  for (; i + 8 <= bytes.size(); i += 8) {
    std::uint64_t word = 0;
    for (std::size_t k = 0; k < 8; ++k) word |= static_cast<std::uint64_t>(bytes[i + k]) << (8 * k);
    mix(word);
  }
  std::uint64_t rest = 0;
  for (std::size_t k = 0; i + k < bytes.size(); ++k)
    rest |= static_cast<std::uint64_t>(bytes[i + k]) << (8 * k);
  mix(rest);
  return h;
}

JournalWriter::JournalWriter(base::Disk& disk, std::string_view database_path, const JournalData& data)
    : disk_(disk),
      path_(JournalPath(database_path)),
      file_(disk.Open(path_, base::FileMode::New)),
      data_(data),
      checksum_(data.mark),
      run_(Header(data)) {
  // Nobody else can have a file locked that was created a moment ago.
  file_->Lock(kWriterByte, 1, true);
}

void JournalWriter::Add(PageNumber number, View before, View after) {
  const std::size_t beginning = run_.size();
  Append32(run_, number);
  Append32(run_, 0);
  Append64(run_, 0);
  for (std::size_t s = 0; s < data_.page_size; s += kSector)
    Append32(run_, SectorChecksum(Slice(after, s, kSector)));
  AppendBytes(run_, Slice(before, 0, data_.page_size));
  const std::uint64_t checksum = RecordChecksum(data_, View(run_).subspan(beginning));
  Put64(run_, beginning + 8, checksum);
  checksum_ = Checksum(View(run_).subspan(beginning + 8, 8), checksum_);
  if (run_.size() >= kRun) Flush();
}

void JournalWriter::Flush() {
  file_->Write(pos_, run_);
  pos_ += run_.size();
  run_.clear();
}

void JournalWriter::Seal() {
  // The end goes last and by itself: where it stands, all before it is on the disk.
  Flush();
  file_->Sync();
  run_ = Closing(data_, checksum_);
  Flush();
  file_->Sync();
  disk_.SyncFolderOf(path_);
}

void JournalWriter::Remove() {
  if (!base::AnyErrorNoted("EscritorDeDiario::Quitar", nullptr, [&] { disk_.Delete(path_); })) {
    file_->Resize(0);
    file_->Sync();
  }
  file_.reset();
  // The commit cannot be taken back any more; should the name come up again after a lost current, the base is
  // rolled back whole.
  base::AnyErrorNoted("EscritorDeDiario::Quitar", nullptr, [&] { disk_.SyncFolderOf(path_); });
}

JournalReader::JournalReader(base::Disk& disk, std::string_view database_path)
    : disk_(disk), path_(JournalPath(database_path)) {
  if (!disk_.Exists(path_)) return;
  try {
    file_ = disk_.Open(path_, base::FileMode::Read);
  } catch (const base::DiskError& e) {
    if (e.Fault() == base::DiskFault::NotFound) return;
    throw;
  }
  Examine();
}

void JournalReader::Examine() {
  try {
    if (file_->FirstLocked(kWriterByte, 1)) {
      state_ = State::Live;
      return;
    }
  } catch (const base::DiskError& e) {
    if (e.Fault() != base::DiskFault::NotSupported) throw;
  }
  state_ = State::Incomplete;
  Bytes b(kHeader);
  if (ReadAt(*file_, 0, b) < b.size()) return;
  if (!std::equal(kMagic.begin(), kMagic.end(), b.begin()) || U64(b, 56) != Checksum(View(b).first(56)))
    return;
  if (U32(b, 8) != kVersion) {
    state_ = State::Damaged;
    reason_ = "lo dejó otra versión del programa: abra la base con esa";
    return;
  }
  data_ = {U32(b, 12), U32(b, 16), U32(b, 20), U32(b, 24), U64(b, 32), U64(b, 40), I64(b, 48)};
  if (data_.page_size != 4096 && data_.page_size != 2048) return;
  // Also what keeps a false count from asking for more memory than the file has bytes.
  if (file_->Length() < JournalLength(data_)) return;
  Bytes end(kClosing);
  if (ReadAt(*file_, JournalLength(data_) - kClosing, end) < end.size()) return;
  if (end != Closing(data_, U64(end, 8))) return;
  const bool ok = ExamineRecords(U64(end, 8));
  state_ = ok ? State::Complete : State::Damaged;
  if (!ok) reason_ = "está dañado";
}

bool JournalReader::ExamineRecords(std::uint64_t final_checksum) {
  Bytes record(RecordLength(data_));
  std::uint64_t pos = kHeader, checksum = data_.mark;
  for (std::uint32_t i = 0; i < data_.count; ++i, pos += record.size()) {
    if (ReadAt(*file_, pos, record) < record.size()) return false;
    if (U64(record, 8) != RecordChecksum(data_, record)) return false;
    if (U32(record, 0) >= data_.before || !places_.emplace(U32(record, 0), pos).second) return false;
    checksum = Checksum(View(record).subspan(8, 8), checksum);
  }
  return checksum == final_checksum;
}

Bytes JournalReader::ReadRecord(base::OpenFile& file, PageNumber number, std::uint64_t pos) const {
  Bytes record(RecordLength(data_));
  if (ReadAt(file, pos, record) < record.size() || U32(record, 0) != number ||
      U64(record, 8) != RecordChecksum(data_, record))
    throw base::StorageFault("El diario de la base cambió o está dañado: cierre la base y vuelva a abrirla");
  return record;
}

Bytes JournalReader::ReadImage(PageNumber number) const {
  const auto place = places_.find(number);
  if (place == places_.end()) throw base::StorageFault("El diario de la base no tiene esa página");
  std::unique_ptr<base::OpenFile> other;
  if (file_ == nullptr) other = disk_.Open(path_, base::FileMode::Read);
  Bytes record = ReadRecord(file_ != nullptr ? *file_ : *other, number, place->second);
  record.erase(record.begin(), record.begin() + static_cast<std::ptrdiff_t>(record.size() - data_.page_size));
  return record;
}

void JournalReader::ComparePage(base::OpenFile& file, PageNumber number, std::uint64_t pos) const {
  const Bytes record = ReadRecord(*file_, number, pos);
  const View before = View(record).last(data_.page_size);
  Bytes now(data_.page_size);
  if (ReadAt(file, static_cast<std::uint64_t>(number) * data_.page_size, now) < now.size())
    throw base::StorageFault(kOtherDatabase);
  for (std::size_t s = 0; s < SectorCount(data_); ++s) {
    const View sector = View(now).subspan(s * kSector, kSector);
    const View old_bytes = before.subspan(s * kSector, kSector);
    if (!std::equal(sector.begin(), sector.end(), old_bytes.begin()) &&
        SectorChecksum(sector) != U32(record, kStart + 4 * s))
      throw base::StorageFault(kOtherDatabase);
  }
}

void JournalReader::CompareWith(base::OpenFile& file) const {
  const std::uint64_t length = file.Length(), size = data_.page_size;
  if (length < data_.before * size || length > std::max(data_.before, data_.after) * size)
    throw base::StorageFault(kOtherDatabase);
  if (!Has(0)) {
    Bytes first(data_.page_size);
    if (ReadAt(file, 0, first) < first.size() || Checksum(first) != data_.first_checksum)
      throw base::StorageFault(kOtherDatabase);
  }
  for (const auto& [number, pos] : places_) ComparePage(file, number, pos);
}

void JournalReader::Restore(base::OpenFile& file) const {
  for (const auto& [number, pos] : places_) {
    const Bytes record = ReadRecord(*file_, number, pos);
    file.Write(static_cast<std::uint64_t>(number) * data_.page_size, View(record).last(data_.page_size));
  }
  file.Resize(static_cast<std::uint64_t>(data_.before) * data_.page_size);
  base::AnyErrorNoted("LectorDeDiario::Restaurar", nullptr, [&] { file.SetDate(data_.date); });
  file.Sync();
}

void JournalReader::Remove() {
  file_.reset();
  disk_.Delete(path_);
  disk_.SyncFolderOf(path_);
}

}  // namespace mdb
