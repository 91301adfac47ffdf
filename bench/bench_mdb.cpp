// bench_mdb [ROWS]: what rows of an Access file cost to insert, update, read and delete, and whether that
// grows in step with their number. See bench/README.md.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <random>
#include <string>

#include "base/standard_streams.h"
#include "mdb/rows/table.h"
#include "mdb/schema/database.h"

namespace {

namespace fs = std::filesystem;
using mdb::ColumnType;

// Seconds of the processor: other programs on the machine do not change them.
double Now() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

mdb::NewColumn Column(const char* name, ColumnType type, std::uint16_t length = 0) {
  mdb::NewColumn c;
  c.name = name;
  c.type = type;
  c.length = length;
  return c;
}

// Of the shape of the data of a liquidation: three indexes, some 60 bytes a row.
mdb::NewTable Data() {
  mdb::NewTable t{"Datos", {}, {}};
  t.columns = {Column("Id", ColumnType::Long),          Column("Encabezado", ColumnType::Long),
               Column("Codigo", ColumnType::Text, 20),  Column("Cantidad", ColumnType::Double),
               Column("Importe", ColumnType::Currency), Column("Fecha", ColumnType::Date),
               Column("Detalle", ColumnType::Text, 100)};
  t.indexes.push_back({"PrimaryKey", {{"Id", false}}, true, true, false, true});
  t.indexes.push_back({"PorEncabezado", {{"Encabezado", false}}, false, false, false, false});
  t.indexes.push_back({"PorCodigo", {{"Codigo", false}, {"Encabezado", true}}, false, false, false, false});
  return t;
}
// One row a page, for a big file.
mdb::NewTable Filler() {
  mdb::NewTable t{"Relleno", {}, {}};
  t.columns = {Column("Id", ColumnType::Long), Column("Nota", ColumnType::Ole)};
  t.indexes.push_back({"PrimaryKey", {{"Id", false}}, true, true, false, true});
  return t;
}

mdb::Row MakeRow(std::mt19937& random, std::int64_t id) {
  return {id,
          static_cast<std::int64_t>(random() % 5000),
          "HC" + std::to_string(random() % 300),
          static_cast<double>(random() % 1000) / 8,
          base::Currency{static_cast<std::int64_t>(random() % 10000000)},
          base::Date{46000.0 + static_cast<double>(random() % 400)},
          "8,5 x " + std::to_string(random() % 100000)};
}

struct Step {
  const char* name;
  double seconds = 0;
  std::size_t rows = 0;
};

class TestBench {
 public:
  explicit TestBench(std::string path) : path_(std::move(path)), random_(20261121) {}

  std::vector<Step> Run(std::size_t rows, std::size_t filler_pages) {
    fs::remove(path_);
    auto base = mdb::Database::Create(path_, 3082, base::Date{46347});
    base->CreateTable(Data(), base::Date{46347});
    Fill(*base, filler_pages);
    base->Commit();
    std::vector<Step> steps;
    ids_.clear();
    steps.push_back(Measure("insert, one batch", rows, [&] { Insert(*base, 0, rows, rows); }));
    steps.push_back(Measure("insert, a row a batch", rows, [&] { Insert(*base, rows, 2 * rows, 1); }));
    steps.push_back(Measure("update, one batch", 2 * rows, [&] { Change(*base, ids_.size()); }));
    steps.push_back(Measure("update, a row a batch", rows, [&] {
      ids_.resize(rows);
      Change(*base, 1);
    }));
    base.reset();
    steps.push_back(Measure("open and read", 2 * rows, [&] { Read(); }));
    base = mdb::Database::Open(path_);
    steps.push_back(Measure("delete, one batch", rows, [&] {
      mdb::Changes c;
      c.deleted = ids_;
      base->Apply("Datos", c);
      base->Commit();
    }));
    return steps;
  }

 private:
  std::string path_;
  std::mt19937 random_;
  std::vector<mdb::RowId> ids_;

  template <typename Action>
  static Step Measure(const char* name, std::size_t rows, Action&& done) {
    const double before = Now();
    done();
    return {name, Now() - before, rows};
  }

  static void Fill(mdb::Database& base, std::size_t pages) {
    base.CreateTable(Filler(), base::Date{46347});
    for (std::size_t i = 0; i < pages; i += 500) {
      mdb::Changes c;
      for (std::size_t k = i; k < std::min(pages, i + 500); ++k)
        c.inserted.push_back({static_cast<std::int64_t>(k), mdb::Bytes(4000, 1)});
      base.Apply("Relleno", c);
      base.Commit();
    }
  }

  void Insert(mdb::Database& base, std::size_t from, std::size_t to, std::size_t batch) {
    mdb::Definition d = *base.Catalog().Table("Datos");
    d = mdb::ReadDefinition(base.Pages(), d.Page());
    for (std::size_t i = from; i < to; i += batch) {
      mdb::Changes c;
      for (std::size_t k = i; k < i + batch; ++k)
        c.inserted.push_back(MakeRow(random_, static_cast<std::int64_t>(k)));
      for (const auto id : mdb::Apply(base.Pages(), d, c)) ids_.push_back(id);
    }
    base.Commit();
  }

  // The amounts change, and each fourth row's header: one index of three.
  void Change(mdb::Database& base, std::size_t batch) {
    mdb::Definition d = *base.Catalog().Table("Datos");
    d = mdb::ReadDefinition(base.Pages(), d.Page());
    for (std::size_t i = 0; i < ids_.size(); i += batch) {
      mdb::Changes c;
      for (std::size_t k = i; k < i + batch; ++k) {
        mdb::RowChange change{ids_[k], {{3, static_cast<double>(random_() % 1000)}}};
        if (random_() % 4 == 0) change.values.push_back({1, static_cast<std::int64_t>(random_() % 5000)});
        c.changed.push_back(std::move(change));
      }
      mdb::Apply(base.Pages(), d, c);
    }
    base.Commit();
  }

  void Read() const {
    const auto base = mdb::Database::Open(path_, {true, {}});
    std::size_t rows = 0;
    mdb::WalkRows(base->Pages(), *base->Catalog().Table("Datos"), [&](mdb::RowId, const mdb::Row& f) {
      rows += f.size() / 7;
      return true;
    });
    if (rows == 0) throw base::Error("nothing was read");
  }
};

void Print(const char* title, const std::vector<Step>& few, const std::vector<Step>& many) {
  std::printf("\n%s\n%-24s %10s %12s %12s %8s\n", title, "", "rows", "s", "rows/s", "growth");
  for (std::size_t i = 0; i < many.size(); ++i) {
    const auto& m = many[i];
    std::printf("%-24s %10zu %12.3f %12.0f", m.name, m.rows, m.seconds,
                static_cast<double>(m.rows) / m.seconds);
    if (i < few.size()) std::printf(" %8.1f", m.seconds / few[i].seconds);
    std::printf("\n");
  }
}

}  // namespace

int main(int argc, char** argv) {
  base::OpenStandardStreams();
  const std::size_t rows = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 20000;
  if (rows < 10) {
    std::fprintf(stderr, "usage: bench_mdb [ROWS]\n");
    return 2;
  }
  const fs::path folder = fs::temp_directory_path() / ("bench_mdb_" + std::to_string(std::random_device{}()));
  fs::create_directories(folder);
  try {
    TestBench bench((folder / "banco.mdb").string());
    const auto few = bench.Run(rows / 10, 0), many = bench.Run(rows, 0);
    Print("A file of its own; growth: times what a tenth of the rows take", few, many);
    const auto large = bench.Run(rows, 25000);
    Print("Beside a table of 100 MB; growth: times the above", many, large);
  } catch (const base::Error& e) {
    std::fprintf(stderr, "%s\n", e.what());
    fs::remove_all(folder);
    return 1;
  }
  fs::remove_all(folder);
  return 0;
}
