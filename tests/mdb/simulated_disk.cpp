#include "mdb/simulated_disk.h"

#include <algorithm>

namespace mdb_test {
namespace {

constexpr std::size_t kSector = 512;

void WriteAt(mdb::Bytes& bytes, std::size_t pos, mdb::View new_bytes) {
  if (bytes.size() < pos + new_bytes.size()) bytes.resize(pos + new_bytes.size());
  std::copy(new_bytes.begin(), new_bytes.end(), bytes.begin() + static_cast<std::ptrdiff_t>(pos));
}

}  // namespace

struct SimulatedDisk::Node {
  struct Pending {
    bool length = false;  // a change of length to `pos`; else a write
    std::size_t pos = 0;
    mdb::Bytes bytes;
  };
  struct HeldLock {
    const void* owner;
    std::uint64_t from, count;
    bool exclusive;
  };
  mdb::Bytes bytes, durable;
  std::vector<Pending> pending;
  std::vector<HeldLock> locks;
  std::int64_t date = 0;

  mdb::Bytes AfterCut(Loss loss, std::mt19937& random) const {
    if (loss == Loss::Nothing) return bytes;
    mdb::Bytes remaining = durable;
    if (loss == Loss::All) return remaining;
    for (const auto& p : pending) {
      if (random() % 2 == 0) continue;
      if (p.length)
        remaining.resize(p.pos);
      else
        WriteAt(remaining, p.pos, p.bytes);
    }
    return remaining;
  }
};

class SimulatedFile final : public base::OpenFile {
 public:
  using Node = SimulatedDisk::Node;
  SimulatedFile(SimulatedDisk& disk, std::string path, std::shared_ptr<Node> node, bool writes)
      : disk_(disk), path_(std::move(path)), node_(std::move(node)), writes_(writes) {}
  ~SimulatedFile() override {
    std::erase_if(node_->locks, [this](const auto& b) { return b.owner == this; });
  }
  SimulatedFile(const SimulatedFile&) = delete;
  SimulatedFile& operator=(const SimulatedFile&) = delete;

  std::size_t Read(std::uint64_t pos, std::span<std::uint8_t> target) override {
    disk_.Look("No se puede leer", path_);
    const mdb::Bytes& b = node_->bytes;
    if (pos >= b.size()) return 0;
    const std::size_t n = std::min<std::size_t>(target.size(), b.size() - pos);
    std::copy_n(b.begin() + static_cast<std::ptrdiff_t>(pos), n, target.begin());
    return n;
  }
  void Write(std::uint64_t pos, std::span<const std::uint8_t> bytes) override {
    RequireWriting();
    const bool halfway = disk_.Count("escribir " + path_ + " " + std::to_string(pos));
    std::size_t to = bytes.size();
    bool full = false;
    if (halfway) to = to / 2 / kSector * kSector;
    if (disk_.room_ && pos + to > node_->bytes.size()) {
      const std::uint64_t free_bytes = *disk_.room_ - std::min(*disk_.room_, disk_.UsedSpace());
      const std::uint64_t largest = node_->bytes.size() + free_bytes;
      full = largest < pos + to;
      if (full) to = largest > pos ? static_cast<std::size_t>(largest - pos) : 0;
    }
    // Sector by sector of the file, as a disk may lose them.
    for (std::size_t i = 0; i < to;) {
      const std::size_t n = std::min(kSector - static_cast<std::size_t>(pos + i) % kSector, to - i);
      const auto slice = bytes.subspan(i, n);
      WriteAt(node_->bytes, static_cast<std::size_t>(pos) + i, slice);
      node_->pending.push_back({false, static_cast<std::size_t>(pos) + i, {slice.begin(), slice.end()}});
      i += n;
    }
    node_->date = disk_.Now();
    if (halfway) disk_.Break(path_);
    if (full) throw base::DiskError("No se puede escribir", path_, base::DiskFault::DiskFull, {});
  }
  std::uint64_t Length() override {
    disk_.Look("No se puede consultar", path_);
    return node_->bytes.size();
  }
  void Resize(std::uint64_t length) override {
    RequireWriting();
    if (disk_.Count("largo " + path_)) disk_.Break(path_);
    node_->bytes.resize(length);
    node_->pending.push_back({true, static_cast<std::size_t>(length), {}});
    node_->date = disk_.Now();
  }
  void Sync() override {
    if (disk_.Count("sincronizar " + path_)) disk_.Break(path_);
    node_->durable = node_->bytes;
    node_->pending.clear();
  }
  std::int64_t Date() override {
    disk_.Look("No se puede consultar", path_);
    return node_->date;
  }
  void SetDate(std::int64_t date) override {
    RequireWriting();
    if (disk_.Count("fechar " + path_)) disk_.Break(path_);
    node_->date = date;
  }
  bool IsStillInPlace() override {
    const auto it = disk_.names_.find(path_);
    return it != disk_.names_.end() && it->second == node_;
  }
  bool Lock(std::uint64_t from, std::uint64_t count, bool exclusive) override {
    disk_.Look("No se puede bloquear", path_);
    RequireLocks();
    if (exclusive && !writes_)
      throw base::DiskError("No se puede bloquear", path_, base::DiskFault::Other, "se abrió para leer");
    for (const auto& b : node_->locks)
      if (b.owner != this && (b.exclusive || exclusive) && Overlaps(b, from, count)) return false;
    node_->locks.push_back({this, from, count, exclusive});
    return true;
  }
  void Unlock(std::uint64_t from, std::uint64_t count) override {
    std::erase_if(node_->locks,
                  [&](const auto& b) { return b.owner == this && b.from == from && b.count == count; });
  }
  std::optional<std::uint64_t> FirstLocked(std::uint64_t from, std::uint64_t count) override {
    RequireLocks();
    std::optional<std::uint64_t> first;
    for (const auto& b : node_->locks)
      if (b.owner != this && Overlaps(b, from, count))
        first = std::min(first.value_or(UINT64_MAX), std::max(from, b.from));
    return first;
  }

 private:
  static bool Overlaps(const Node::HeldLock& b, std::uint64_t from, std::uint64_t count) {
    return b.from < from + count && from < b.from + b.count;
  }
  void RequireLocks() const {
    if (disk_.without_locks_)
      throw base::DiskError("No se puede bloquear", path_, base::DiskFault::NotSupported, {});
  }
  void RequireWriting() const {
    if (!writes_)
      throw base::DiskError("No se puede escribir", path_, base::DiskFault::NoPermission,
                            "se abrió para leer");
  }
  SimulatedDisk& disk_;
  std::string path_;
  std::shared_ptr<Node> node_;
  bool writes_;
};

SimulatedDisk::SimulatedDisk() = default;
SimulatedDisk::~SimulatedDisk() = default;

bool SimulatedDisk::Count(const std::string& what) {
  log_.push_back(what);
  ++calls_;
  return calls_ == cut_at_ || calls_ == fail_at_ || (fail_always_ && fail_at_ != 0 && calls_ > fail_at_);
}

void SimulatedDisk::Break(const std::string& path) const {
  if (calls_ == cut_at_) throw Cut{};
  throw base::DiskError("No se puede escribir", path, base::DiskFault::Other, "error de prueba");
}

void SimulatedDisk::Look(const std::string& what, const std::string& path) {
  ++looks_;
  if (fail_look_at_ == 0 || (fail_looks_always_ ? looks_ < fail_look_at_ : looks_ != fail_look_at_)) return;
  ++failed_looks_;
  throw base::DiskError(what, path, base::DiskFault::Other, "error de prueba");
}

void SimulatedDisk::Put(const std::string& path, const mdb::Bytes& bytes) {
  auto node = std::make_shared<Node>();
  node->bytes = node->durable = bytes;
  node->date = ++clock_;
  names_[path] = durable_names_[path] = node;
}

mdb::Bytes SimulatedDisk::Contents(const std::string& path) const { return names_.at(path)->bytes; }

std::uint64_t SimulatedDisk::UsedSpace() const {
  std::uint64_t sum = 0;
  for (const auto& [path, node] : names_) sum += node->bytes.size();
  return sum;
}

std::shared_ptr<SimulatedDisk> SimulatedDisk::After(Loss loss, std::mt19937& random) const {
  auto other = std::make_shared<SimulatedDisk>();
  other->clock_ = clock_ + 1000;
  std::set<std::string> paths;
  for (const auto& [path, node] : names_) paths.insert(path);
  for (const auto& [path, node] : durable_names_) paths.insert(path);
  for (const auto& path : paths) {
    // Of a name changed since the last sync of the folder either state may be found.
    const bool current = loss == Loss::Nothing || (loss == Loss::Random && random() % 2 == 0);
    const Names& which = current ? names_ : durable_names_;
    const auto it = which.find(path);
    if (it == which.end()) continue;
    other->Put(path, it->second->AfterCut(loss, random));
    other->names_[path]->date = it->second->date;
  }
  return other;
}

std::unique_ptr<base::OpenFile> SimulatedDisk::Open(std::string_view path, base::FileMode mode) {
  const std::string name(path);
  const bool fresh = mode == base::FileMode::New, writes = mode != base::FileMode::Read;
  const auto it = names_.find(name);
  if (it == names_.end() && !fresh)
    throw base::DiskError("No se puede abrir", path, base::DiskFault::NotFound, {});
  if (writes && read_only_) throw base::DiskError("No se puede abrir", path, base::DiskFault::ReadOnly, {});
  if (!fresh) return std::make_unique<SimulatedFile>(*this, name, it->second, writes);
  if (it != names_.end())
    throw base::DiskError("No se puede crear", path, base::DiskFault::AlreadyExists, {});
  if (Count("crear " + name)) Break(name);
  const auto node = names_[name] = std::make_shared<Node>();
  node->date = Now();
  return std::make_unique<SimulatedFile>(*this, name, node, true);
}

bool SimulatedDisk::Exists(std::string_view path) { return names_.count(std::string(path)) != 0; }

void SimulatedDisk::Delete(std::string_view path) {
  const std::string name(path);
  if (names_.count(name) == 0)
    throw base::DiskError("No se puede borrar", path, base::DiskFault::NotFound, {});
  if (read_only_) throw base::DiskError("No se puede borrar", path, base::DiskFault::ReadOnly, {});
  if (Count("borrar " + name)) Break(name);
  names_.erase(name);
}

void SimulatedDisk::Move(std::string_view from, std::string_view a) {
  if (Exists(a)) throw base::DiskError("No se puede crear", a, base::DiskFault::AlreadyExists, {});
  if (Count("mover " + std::string(from))) Break(std::string(from));
  names_[std::string(a)] = names_.at(std::string(from));
  names_.erase(std::string(from));
}

void SimulatedDisk::SyncFolderOf(std::string_view path) {
  if (Count("sincronizar carpeta de " + std::string(path))) Break(std::string(path));
  durable_names_ = names_;
}

}  // namespace mdb_test
