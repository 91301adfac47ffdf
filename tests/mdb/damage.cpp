#include "mdb/damage.h"

#include <algorithm>

#include "mdb/catalog/catalog.h"
#include "mdb/verify/verify.h"

namespace mdb_test {

Workpiece::Workpiece(const std::string& file) : pages(LoadSample(file)) {}

mdb::Definition Workpiece::Def(const std::string& table) {
  const auto d = mdb::SystemCatalog(*pages).Table(table);
  if (d == nullptr) throw base::Error("no table " + table);
  return *d;
}

PageNumber Workpiece::DataPage(const std::string& table, std::size_t k) {
  return mdb::ReadMap(*pages, Def(table).owned_pages).at(k);
}

std::vector<RowId> Workpiece::Rows(const std::string& table) {
  std::vector<RowId> ids;
  mdb::WalkRows(*pages, Def(table), [&](RowId id, const mdb::Row&) {
    ids.push_back(id);
    return true;
  });
  return ids;
}

mdb::IndexTree Workpiece::Tree(const std::string& table, std::size_t index) {
  const auto d = Def(table);
  return {*pages, d.Page(), d.reals.at(index)};
}

std::vector<mdb::Entry> Workpiece::Entries(const std::string& table, std::size_t index) {
  std::vector<mdb::Entry> v;
  Tree(table, index).Walk([&](const mdb::Entry& e) {
    v.push_back(e);
    return true;
  });
  return v;
}

// Where the bytes of a row, or of one of its columns, stand.
Workpiece::Place Workpiece::Row(const std::string& table, RowId id) {
  const auto f = mdb::FindRow(*pages, Def(table), id).value();
  return {f.place.page, static_cast<std::size_t>(f.bytes.data() - f.image->data()), f.bytes.size()};
}

Workpiece::Place Workpiece::Cell(const std::string& table, RowId id, const std::string& column) {
  const auto d = Def(table);
  const auto f = mdb::FindRow(*pages, d, id).value();
  const auto cell = mdb::SplitRow(pages->Header(), d, f.bytes).at(d.ByName(column).value()).value();
  return {f.place.page, static_cast<std::size_t>(cell.data() - f.image->data()), cell.size()};
}

// The first row whose column is this.
RowId Workpiece::Where(const std::string& table, const std::string& column, const mdb::Datum& value) {
  const auto d = Def(table);
  const auto i = d.ByName(column).value();
  RowId found;
  mdb::WalkRows(*pages, d, [&](RowId id, const mdb::Row& row) {
    if (row[i] == value) found = id;
    return found.page == 0;
  });
  EXPECT_NE(found.page, 0U);
  return found;
}

// In the first page of a definition: its columns, and its real and logical indexes.
std::size_t Workpiece::ColumnPos(const std::string& table, std::size_t k) {
  return 63 + 12 * Def(table).reals.size() + 25 * k;
}

std::size_t Workpiece::RealPos(const std::string& table, std::size_t k) {
  const auto d = Def(table);
  const auto image = pages->Read(d.Page());
  std::size_t pos = ColumnPos(table, d.columns.size());
  for (std::size_t i = 0; i < d.columns.size(); ++i) pos += 2 + mdb::U16(*image, pos);
  return pos + 52 * k;
}

std::size_t Workpiece::LogicalPos(const std::string& table, std::size_t k) {
  return RealPos(table, Def(table).reals.size()) + 28 * k;
}

// The row of a map.
Workpiece::Place Workpiece::Map(mdb::Pointer map) {
  const auto r = mdb::ReadSlot(map.page, *pages->Read(map.page), map.row);
  return {map.page, r.from, r.length};
}
namespace {
std::string AllFindings(const mdb::Report& report) {
  std::string t;
  for (const auto& h : report.findings)
    t += (h.severity == mdb::Finding::Severity::Error ? "\n  error: " : "\n  note: ") + h.text;
  return t;
}

}  // namespace

void Plant(const std::vector<PlantedDamage>& damages) {
  for (const PlantedDamage& damage : damages) {
    SCOPED_TRACE(damage.name);
    Workpiece workpiece(damage.file);
    EXPECT_TRUE(mdb::Verify(*workpiece.pages).IsSound());
    const PageNumber page = damage.plant(workpiece);
    const mdb::Report report = mdb::Verify(*workpiece.pages);
    EXPECT_FALSE(report.IsSound());
    const std::string number = "Página " + std::to_string(page);
    EXPECT_TRUE(std::any_of(report.findings.begin(), report.findings.end(),
                            [&](const mdb::Finding& h) {
                              return h.severity == mdb::Finding::Severity::Error &&
                                     h.text.find(damage.finding) != std::string::npos &&
                                     (page == 0 ||
                                      (h.page == page && h.text.compare(0, number.size(), number) == 0));
                            }))
        << damage.finding << " on page " << page << AllFindings(report);
  }
}

}  // namespace mdb_test
