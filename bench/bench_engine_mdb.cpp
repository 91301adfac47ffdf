// Makes an Access file with one table of some 100 MB in a temporary folder, and prints what the first
// statement over it takes beside the reading of its rows and nothing else, and what the next statements take.
//
//   bench_engine_mdb [ROWS]     400000 when not given
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <random>
#include <string>

#include "base/standard_streams.h"
#include "engine_mdb/mdb_connection.h"
#include "mdb/rows/table.h"
#include "mdb/schema/database.h"

namespace {

// Of the processor: another program on the machine changes those of the clock.
template <typename Step>
double Measure(Step&& step) {
  const std::clock_t from = std::clock();
  step();
  return static_cast<double>(std::clock() - from) / CLOCKS_PER_SEC;
}

void Fill(const std::string& path, long rows) {
  const auto c = engine_mdb::Create(path);
  c->Execute(
      "CREATE TABLE grande (id LONG CONSTRAINT pk PRIMARY KEY, idEmpresa LONG, id_Encabezado LONG, Cantidad "
      "DOUBLE, "
      "Monto CURRENCY, Fecha DATETIME, Activo YESNO, Detalle TEXT(200), Nombre TEXT(50))");
  c->Execute("CREATE INDEX por_encabezado ON grande (id_Encabezado)");
  c->Execute("CREATE INDEX por_nombre ON grande (Nombre)");
  c->BeginTrans();
  c->Execute(
      "INSERT INTO grande VALUES (0, 1, 0, 1.5, 100.25, #01/31/2024#, True, String(170, 'd'), 'Núñez')");
  for (long found = 1; found < rows; found *= 2) {
    const std::string n = std::to_string(found);
    c->Execute("INSERT INTO grande SELECT id + " + n + " AS id, idEmpresa, (id + " + n +
               ") \\ 20 AS id_Encabezado, id / 7 AS Cantidad, Monto, Fecha, Activo, Detalle, 'Persona ' & "
               "(id Mod 1000) "
               "AS Nombre FROM grande WHERE id < " +
               std::to_string(rows - found));
  }
  c->CommitTrans();
}

}  // namespace

int main(int argc, char** argv) {
  base::OpenStandardStreams();
  const long rows = argc > 1 ? std::atol(argv[1]) : 400000;
  const auto folder =
      std::filesystem::temp_directory_path() / ("bench_engine_mdb_" + std::to_string(std::random_device{}()));
  std::filesystem::create_directory(folder);
  const std::string path = (folder / "grande.mdb").string();
  try {
    std::printf("filled in %.2f s, ", Measure([&] { Fill(path, rows); }));
    std::printf("%.1f MB\n", static_cast<double>(std::filesystem::file_size(path)) / 1e6);
    std::size_t rows_read = 0;
    const double reading = Measure([&] {
      const auto base = mdb::Database::Open(path, {true, {}});
      mdb::WalkRows(base->Pages(), *base->Catalog().Table("grande"), [&](mdb::RowId, const mdb::Row&) {
        ++rows_read;
        return true;
      });
    });
    std::printf("%-42s %8.3f s (%zu rows)\n", "rows read, and nothing else", reading, rows_read);
    std::unique_ptr<db::Connection> c;
    const auto row = [](const char* what, double seconds) { std::printf("%-42s %8.3f s\n", what, seconds); };
    row("opened", Measure([&] { c = engine_mdb::Open(path); }));
    const double first =
        Measure([&] { c->Execute("SELECT Count(*), Sum(Monto) FROM grande WHERE id_Encabezado < 50"); });
    row("first statement", first);
    std::printf("%-42s %8.3f s (goal: well under 1)\n", "  over the reading", first - reading);
    for (int i = 0; i < 5; ++i)
      row("a look-up",
          Measure([&] { c->Execute("SELECT Sum(Cantidad) FROM grande WHERE id_Encabezado = 77"); }));
    row("one row changed and saved",
        Measure([&] { c->Execute("UPDATE grande SET Monto = 1 WHERE id = 5"); }));
    row("another one", Measure([&] { c->Execute("UPDATE grande SET Monto = 1 WHERE id = 6"); }));
    row("10,000 rows changed and saved",
        Measure([&] { c->Execute("UPDATE grande SET Cantidad = Cantidad + 1 WHERE id < 10000"); }));
  } catch (const base::Error& e) {
    std::fprintf(stderr, "bench_engine_mdb: %s\n", e.what());
    return 2;
  }
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  return 0;
}
