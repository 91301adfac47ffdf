// Loads and imports files of hours of two sizes, ten times apart, and prints what each phase takes beside a
// floor measured in the same run, and how the time grows.
//
//   bench_import [CONTRACTS [REPEATS [mdb]]]
//
// 20000 contracts when not given, which is 100,000 lines; 3 repeats, of which the quickest counts; "mdb":
// into a real Access file, and into the embedded engine for comparison.
//
// Goals: at most 3 times the floor, at most 11 times the time for 10 times the lines.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

#include "base/encoding.h"
#include "base/file.h"
#include "base/standard_streams.h"
#include "bench_base.h"
#include "demo/demo_base.h"
#include "engine_mdb/mdb_connection.h"
#include "engine_sqlite/sqlite_connection.h"
#include "floor.h"
#include "formula/tablas_usuario/user_tables.h"
#include "importfile/import_grid.h"
#include "liquidation/importar.h"
#include "measured_connection.h"
#include "ports/clock.h"
#include "refdata/liquidation_types.h"
#include "settings/config_file.h"

namespace {

class SilentPrompts final : public ports::Prompts {
 public:
  // The one that comes is of the empty line after the last line end.
  bool Show(const ports::Notice&) override { return true; }
  bool Confirm(const std::string&) override { return true; }
};

// A folder that goes when the run ends.
class Folder {
 public:
  Folder() {
    for (int n = 0;; ++n) {
      path_ = std::filesystem::temp_directory_path() / ("bench_import_" + std::to_string(n));
      if (std::filesystem::create_directory(path_)) break;
    }
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string File(const char* name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

struct Measurement {
  double open = 0, persons = 0, load = 0, importing = 0, final_updates = 0, commit = 0;
  std::size_t lines = 0, imported = 0;
  bench::Floor floor;
  std::map<std::string, bench::Cost, std::less<>> costs;

  double Total() const { return open + persons + load + importing + final_updates + commit; }
};

struct Data {
  sesion::DbSession session;
  settings::Settings options;
  refdata::PersonsIndex persons;
  refdata::ConceptsCatalogue concepts;
  refdata::LiquidationTypes types;
  relations::CodeRelations relationships;
  formula::TablasUsuario tables;
  formula::Evaluador evaluator;
};

void LoadReferences(Data& d, base::Date month, const std::string& settings_text, ports::Prompts& prompts) {
  d.options = settings::LeerSettings(settings_text);
  d.session.idEmpresa = 1;
  d.session.LiqAgrup = true;
  refdata::CargarTiposLiquidacion(d.session, d.options, d.types);
  d.tables.CargarTablasUsuario(d.session, -1);
  refdata::CargarVecDePersonas(d.session, month, d.persons, prompts);
  refdata::ActuLSTdeConceptos(d.session, d.options, d.concepts);
  relations::LevantarRelaciones(d.session, d.options, settings_text, d.relationships);
  d.evaluator.sesion = &d.session;
  d.evaluator.prompts = &prompts;
  d.evaluator.reloj = d.session.reloj;
}

importfile::Carga Load(Data& d, const std::string& file, ports::Prompts& prompts, ports::Progress& progress) {
  importfile::EntradaCarga entry;
  entry.txtRuta = file;
  entry.opciones = &d.options;
  entry.personas = &d.persons;
  entry.conceptos = &d.concepts;
  entry.relaciones = &d.relationships;
  entry.evaluador = &d.evaluator;
  entry.prompts = &prompts;
  entry.progreso = &progress;
  return importfile::CargarDatos(entry);
}

liquidation::Importacion Import(Data& d, base::Date month, std::vector<importfile::ImportRow>& rows,
                                ports::Prompts& prompts, ports::Progress& progress) {
  liquidation::EntradaImportacion entry{d.session,  d.options,   d.persons, d.relationships,
                                        d.concepts, d.evaluator, d.tables,  prompts,
                                        progress,   month,       {},        {}};
  entry.condiciones = {"TiposLiquidacion.Salarial and (Not ParaEmp)", d.types.TypeCondition,
                       d.types.CalendarCondition};
  entry.texto_liquidacion = "0 - Sueldos";
  return liquidation::Importar(entry, rows);
}

void Distribute(const bench::MeasuredConnection& connection, double importing, Measurement& m) {
  m.costs = connection.Costs();
  for (const auto& [name, cost] : m.costs) {
    if (bench::IsFinalUpdate(name)) m.final_updates += cost.cpu_seconds;
    if (name == "commit") m.commit += cost.cpu_seconds;
  }
  m.importing = importing - m.final_updates - m.commit;
}

Measurement Measure(std::size_t contracts, bool mdb) {
  const Folder folder;
  const base::Date month = base::MakeDate(2024, 6, 1);
  const ports::FixedClock today(base::MakeDate(2024, 6, 18));
  const std::string base = folder.File("Personal.sqlite"), file = folder.File("horas.txt");
  engine_sqlite::Options options;
  options.create = true;
  options.clock = &today;
  bench::FillDatabase(*engine_sqlite::Open(base, options), month, contracts);
  const std::string access = folder.File("Personal.mdb");
  engine_mdb::Options de_access;
  de_access.clock = &today;
  if (mdb) bench::FillDatabase(*engine_mdb::Create(access, de_access), month, contracts);
  base::WriteWholeFile(file, bench::HoursFile(contracts));

  Measurement m;
  SilentPrompts prompts;
  ports::NoProgress progress;
  {
    Data d;
    d.session.reloj = &today;
    const bench::CpuTimer open;
    auto own = std::make_unique<bench::MeasuredConnection>(mdb ? engine_mdb::Open(access, de_access)
                                                               : engine_sqlite::Open(base, options));
    bench::MeasuredConnection& connection = *own;
    d.session.conexion = std::move(own);
    m.open = open.Seconds();

    const bench::CpuTimer persons;
    LoadReferences(d, month, base::FromCp1252(demo::AjustesDemo(month, false)), prompts);
    m.persons = persons.Seconds();

    const bench::CpuTimer loading;
    importfile::Carga load = Load(d, file, prompts, progress);
    m.load = loading.Seconds();
    m.lines = load.lineas;

    connection.Forget();
    const bench::CpuTimer importing;
    const liquidation::Importacion import_result = Import(d, month, load.filas, prompts, progress);
    Distribute(connection, importing.Seconds(), m);
    m.imported = import_result.importadas;
    for (const base::NotedError& e : import_result.errores)
      std::printf("  passed over: %s: %s\n", e.where.c_str(), e.description.c_str());
    for (const importfile::ImportRow& row : load.filas)
      if (row.resultado != "OK") {
        std::printf("  line %zu: %s\n", row.linea, row.resultado.c_str());
        break;
      }
  }
  if (!mdb) m.floor = bench::MeasureFloor(base, file, month.serial);
  return m;
}

Measurement Best(std::size_t contracts, int times, bool mdb) {
  Measurement best = Measure(contracts, mdb);
  for (int i = 1; i < times; ++i) {
    Measurement m = Measure(contracts, mdb);
    if (best.floor.Total() < m.floor.Total()) m.floor = best.floor;
    if (m.Total() < best.Total())
      best = m;
    else
      best.floor = m.floor;
  }
  return best;
}

void Print(const Measurement& m) {
  std::printf("%zu lines, %zu imported, %zu rows in the month; seconds of the processor\n\n", m.lines,
              m.imported, m.floor.inserted);
  std::printf("  %-14s %9s %9s %7s\n", "phase", "program", "floor", "ratio");
  const auto row = [](const char* name, double program, double floor) {
    if (floor > 0)
      std::printf("  %-14s %9.3f %9.3f %7.2f\n", name, program, floor, program / floor);
    else
      std::printf("  %-14s %9.3f\n", name, program);
  };
  row("open", m.open, 0);
  row("persons", m.persons, m.floor.persons);
  row("load", m.load, m.floor.load);
  row("import", m.importing, m.floor.rows);
  row("bulk updates", m.final_updates, 0);
  row("commit", m.commit, m.floor.commit);
  row("total", m.Total(), m.floor.Total());
  std::printf("\n  %-20s %9s %9s %9s\n", "statements", "times", "elapsed", "us each");
  for (const auto& [name, cost] : m.costs)
    std::printf("  %-20s %9zu %9.3f %9.2f\n", name.c_str(), cost.times, cost.seconds,
                cost.seconds / static_cast<double>(cost.times) * 1e6);
  std::printf("\n");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    base::OpenStandardStreams();
    const long requested = argc > 1 ? std::atol(argv[1]) : 20000;
    const std::size_t contracts = requested < 10 ? 10 : static_cast<std::size_t>(requested);
    const int repetitions = argc > 2 ? std::max(1, std::atoi(argv[2])) : 3;
    const bool mdb = argc > 3 && std::string(argv[3]) == "mdb";
    const Measurement little = Best(contracts / 10, repetitions, mdb);
    Print(little);
    const Measurement large = Best(contracts, repetitions, mdb);
    Print(large);
    const double growth = large.Total() / little.Total();
    if (mdb)
      std::printf("total over the embedded engine's: %.2f (goal: at most 5)\n",
                  large.Total() / Best(contracts, repetitions, false).Total());
    else
      std::printf("total over floor: %.2f (goal: at most 3)\n", large.Total() / large.floor.Total());
    std::printf("growth for %.1f times the lines: %.2f (goal: at most 11 for 10)\n",
                static_cast<double>(large.lines) / static_cast<double>(little.lines), growth);
    return large.imported == large.lines ? 0 : 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "bench_import: %s\n", e.what());
    return 2;
  }
}
