#include "mdb/tables/index_changes_internal.h"

#include <algorithm>

#include "mdb/indexes/index_key.h"

namespace mdb::internal {
namespace {

constexpr int kDuplicate = 3022, kNullInIndex = 3058;
constexpr std::size_t kWorthBuilding = 64;  // entries worth building an empty tree at once

struct ToText {
  std::string operator()(base::Null) const { return "Nulo"; }
  std::string operator()(bool b) const { return b ? "Verdadero" : "Falso"; }
  std::string operator()(const std::string& t) const { return "'" + t + "'"; }
  std::string operator()(const Bytes&) const { return "(binario)"; }
  std::string operator()(const Guid& g) const { return g.Text(); }
  std::string operator()(const Decimal& d) const { return d.Text(); }
  template <typename T>
  std::string operator()(T n) const {
    return base::Value(n).Text();
  }
};

bool IsPrimary(const Definition& d, std::size_t real) {
  return std::any_of(d.logicals.begin(), d.logicals.end(), [&](const LogicalIndex& l) {
    return l.real == real && l.kind == LogicalIndex::Primary;
  });
}

}  // namespace

IndexChanges::IndexChanges(PageFile& pages, Definition& definition) : pages_(pages), definition_(definition) {
  std::vector<bool> used(definition.columns.size());
  for (std::size_t i = 0; i < definition.reals.size(); ++i) {
    const RealIndex& real = definition.reals[i];
    One u;
    u.which = i;
    const bool primary = IsPrimary(definition, i);
    u.unique = real.IsUnique() || primary;
    u.required = real.IsRequired() || primary;
    for (const auto& part : real.parts) {
      const auto column = definition.ByNumber(part.column);
      if (!column) ThrowPageDamage(definition.Page(), "un índice es de una columna que no hay");
      u.columns.push_back(*column);
      used[*column] = true;
    }
    indexes_.push_back(std::move(u));
  }
  for (std::size_t i = 0; i < used.size(); ++i)
    if (used[i]) columns_.push_back(i);
}

std::string IndexChanges::NameOf(const One& u) const {
  const LogicalIndex* best = nullptr;
  for (const auto& l : definition_.logicals) {
    if (l.real != u.which) continue;
    const bool wins = best == nullptr || l.kind == LogicalIndex::Primary ||
                      (best->kind == LogicalIndex::Foreign && l.kind == LogicalIndex::Normal);
    if (wins) best = &l;
  }
  return best == nullptr ? std::string() : best->name;
}

std::string IndexChanges::ValuesText(const One& u, const Row& values) const {
  std::string text;
  for (const std::size_t c : u.columns) text += (text.empty() ? "" : ", ") + std::visit(ToText{}, values[c]);
  return text;
}

void IndexChanges::RowLeaves(One& u, RowId row, const Row& values) {
  const RealIndex& real = Real(u);
  if (real.IgnoresNulls() && AllNull(definition_, real, values)) return;
  Departure s;
  s.entry.row = row;
  // A stored text may have characters whose weight is not known; its entry is then found by the row.
  s.keyless = !base::PassOverError("clave de una fila guardada", nullptr, [&] {
    MakeRowKey(pages_.Header(), definition_, real, values, s.entry.key);
  });
  u.departures.push_back(std::move(s));
}

void IndexChanges::AddArrival(One& u, Arrival arrival, const Row& values) {
  const RealIndex& real = Real(u);
  if (u.required && AnyNull(definition_, real, values)) {
    const std::string name = NameOf(u);
    throw KeyError("El índice '" + name + "' de la tabla '" + definition_.name + "' no admite valores Nulos",
                   kNullInIndex, name);
  }
  arrival.all_null = AllNull(definition_, real, values);
  if (arrival.all_null && real.IgnoresNulls()) return;
  MakeRowKey(pages_.Header(), definition_, real, values, arrival.key);
  if (u.unique && !arrival.is_new) arrival.text = ValuesText(u, values);
  u.arrivals.push_back(std::move(arrival));
}

void IndexChanges::RowLeaves(RowId row, const Row& values) {
  for (auto& u : indexes_) RowLeaves(u, row, values);
}

void IndexChanges::RowEnters(std::size_t new_row, const Row& values) {
  for (auto& u : indexes_) {
    Arrival arrival;
    arrival.new_row = new_row;
    arrival.is_new = true;
    arrival.values = &values;
    AddArrival(u, std::move(arrival), values);
  }
}

void IndexChanges::RowChanges(RowId row, const Row& before, const Row& after,
                              const std::vector<bool>& changed) {
  for (auto& u : indexes_) {
    const auto touches = [&](std::size_t c) { return changed[c]; };
    if (std::none_of(u.columns.begin(), u.columns.end(), touches)) continue;
    const std::size_t departures = u.departures.size(), arrivals = u.arrivals.size();
    RowLeaves(u, row, before);
    Arrival arrival;
    arrival.row = row;
    AddArrival(u, std::move(arrival), after);
    if (u.departures.size() == departures || u.arrivals.size() == arrivals || u.departures.back().keyless)
      continue;
    if (u.departures.back().entry.key != u.arrivals.back().key) continue;
    u.departures.pop_back();
    u.arrivals.pop_back();
  }
}

void IndexChanges::Check(One& u) {
  IndexTree tree = Tree(u);
  std::sort(u.arrivals.begin(), u.arrivals.end(),
            [](const Arrival& a, const Arrival& b) { return a.key < b.key; });
  for (std::size_t i = 0; i < u.arrivals.size(); ++i) {
    const Arrival& l = u.arrivals[i];
    const bool repeated = (i > 0 && u.arrivals[i - 1].key == l.key) || tree.Has(l.key);
    if (!repeated) {
      ++Real(u).distinct;
    } else if (u.unique && !l.all_null) {
      const std::string name = NameOf(u);
      throw KeyError("Ya hay en la tabla '" + definition_.name + "' una fila con el valor " +
                         (l.is_new ? ValuesText(u, *l.values) : l.text) + " en el índice '" + name +
                         "', que no admite duplicados",
                     kDuplicate, name);
    }
  }
}

void IndexChanges::RemoveAndCheck() {
  for (auto& u : indexes_) {
    IndexTree tree = Tree(u);
    std::sort(u.departures.begin(), u.departures.end(),
              [](const Departure& a, const Departure& b) { return a.entry < b.entry; });
    for (const auto& s : u.departures)
      if (s.keyless || !tree.Delete(s.entry.key, s.entry.row)) tree.DeleteByRow(s.entry.row);
    Check(u);
  }
}

void IndexChanges::Put(const std::vector<RowId>& new_rows) {
  for (auto& u : indexes_) {
    if (u.arrivals.empty()) continue;
    std::vector<Entry> entries;
    entries.reserve(u.arrivals.size());
    for (auto& l : u.arrivals) entries.push_back({std::move(l.key), l.is_new ? new_rows[l.new_row] : l.row});
    std::sort(entries.begin(), entries.end());
    IndexTree tree = Tree(u);
    bool empty = entries.size() >= kWorthBuilding;
    if (empty) {
      tree.Walk([&](const Entry&) {
        empty = false;
        return false;
      });
    }
    if (empty) {
      tree.Build(entries);
      continue;
    }
    for (const auto& e : entries) tree.Insert(e.key, e.row);
  }
}

}  // namespace mdb::internal
