#include "engine_sqlite/statement_cache_internal.h"

#include <cstdint>

namespace engine_sqlite {
namespace {

bool SameFixed(const Prepared& p, const std::vector<base::Value>& literals) {
  const std::vector<int>& fixed = p.translation.fixed;
  for (std::size_t k = 0; k < fixed.size(); ++k)
    if (literals.at(static_cast<std::size_t>(fixed[k])) != p.fixed_values[k]) return false;
  return true;
}

}  // namespace

std::shared_ptr<Prepared> ShapeCache::Find(const jetsql::Shape& shape) {
  const auto it = by_key_.find(shape.key);
  if (it == by_key_.end()) return nullptr;
  entries_.splice(entries_.begin(), entries_, it->second);
  for (const auto& variant : it->second->variants)
    if (SameFixed(*variant, shape.literals)) return variant;
  return nullptr;
}

void ShapeCache::Store(const jetsql::Shape& shape, std::shared_ptr<Prepared> prepared) {
  const auto it = by_key_.find(shape.key);
  if (it != by_key_.end()) {
    auto& variants = it->second->variants;
    if (variants.size() == kVariants) variants.erase(variants.begin());
    variants.push_back(std::move(prepared));
    return;
  }
  if (entries_.size() == kShapes) {
    by_key_.erase(entries_.back().key);
    entries_.pop_back();
  }
  entries_.push_front({shape.key, {}});
  entries_.front().variants.push_back(std::move(prepared));
  by_key_.emplace(entries_.front().key, entries_.begin());
}

void ShapeCache::Clear() {
  by_key_.clear();
  entries_.clear();
}

MouldCache::Group& MouldCache::GroupOf(std::string_view sql) {
  constexpr std::size_t kStart = 32;
  std::uint64_t hash = 14695981039346656037U;
  for (std::size_t i = 0; i < sql.size() && i < kStart; ++i) {
    const char c = sql[i];
    if ((c >= '0' && c <= '9') || c == '\'' || c == '"' || c == '#') break;
    hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
  }
  return groups_[(hash >> 32) % kGroups];
}

MouldCache::Found MouldCache::Find(std::string_view sql) {
  using Match = jetsql::Mould::Match;
  if (sql.size() > kLongestText) return {};
  for (Slot& slot : GroupOf(sql).slots) {
    const Match finding = slot.mould.Recognise(sql);
    if (finding == Match::Other) continue;
    if (!SameFixed(*slot.prepared, slot.mould.Literals())) return {};
    return {&slot, finding == Match::Equal};
  }
  return {};
}

void MouldCache::Store(std::string_view sql, const jetsql::Shape& shape,
                       const std::shared_ptr<Prepared>& prepared) {
  if (sql.size() > kLongestText) return;
  Group& group = GroupOf(sql);
  Slot& slot = group.slots[group.next];
  group.next = (group.next + 1) % kPerGroup;
  slot.mould.Take(sql, shape);
  slot.prepared = prepared;
}

void MouldCache::Clear() {
  for (Group& group : groups_) group = {};
}

}  // namespace engine_sqlite
