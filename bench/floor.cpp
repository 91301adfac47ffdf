#include "floor.h"

#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/file.h"
#include "measured_connection.h"

namespace bench {
namespace {

struct Closer {
  void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
  void operator()(sqlite3_stmt* st) const { sqlite3_finalize(st); }
  void operator()(sqlite3_value* v) const { sqlite3_value_free(v); }
};
using Base = std::unique_ptr<sqlite3, Closer>;
using Statement = std::unique_ptr<sqlite3_stmt, Closer>;

[[noreturn]] void Fail(sqlite3* db) { throw std::runtime_error(std::string("floor: ") + sqlite3_errmsg(db)); }

Base Open(const std::string& path) {
  sqlite3* db = nullptr;
  const int rc = sqlite3_open(path.c_str(), &db);
  Base base(db);
  if (rc != SQLITE_OK) Fail(db);
  return base;
}

Statement Prepare(sqlite3* db, const std::string& sql) {
  sqlite3_stmt* st = nullptr;
  if (sqlite3_prepare_v2(db, sql.c_str(), -1, &st, nullptr) != SQLITE_OK) Fail(db);
  return Statement(st);
}

void Execute(sqlite3* db, const std::string& sql) {
  if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Fail(db);
}

// Rows of a table held apart.
struct Rows {
  int width = 0;
  std::vector<std::unique_ptr<sqlite3_value, Closer>> cells;
};

Rows Read(sqlite3* db, const std::string& sql) {
  const Statement st = Prepare(db, sql);
  Rows rows;
  rows.width = sqlite3_column_count(st.get());
  int rc = 0;
  while ((rc = sqlite3_step(st.get())) == SQLITE_ROW)
    for (int c = 0; c < rows.width; ++c)
      rows.cells.emplace_back(sqlite3_value_dup(sqlite3_column_value(st.get(), c)));
  if (rc != SQLITE_DONE) Fail(db);
  return rows;
}

std::size_t Insert(sqlite3* db, const std::string& table, const Rows& rows) {
  std::string marks = "?";
  for (int c = 1; c < rows.width; ++c) marks += ",?";
  const Statement st = Prepare(db, "INSERT INTO " + table + " VALUES(" + marks + ")");
  std::size_t n = 0;
  for (std::size_t i = 0; i < rows.cells.size(); ++n) {
    for (int c = 1; c <= rows.width; ++c, ++i) sqlite3_bind_value(st.get(), c, rows.cells[i].get());
    if (sqlite3_step(st.get()) != SQLITE_DONE) Fail(db);
    sqlite3_reset(st.get());
  }
  return n;
}

using Index = std::unordered_map<std::string, std::int64_t>;

Index ReadContracts(sqlite3* db) {
  Index index;
  const Statement st =
      Prepare(db, "SELECT Tarjeta, id_Contrato FROM Contrato WHERE idEmpresa=1 AND Tarjeta IS NOT NULL");
  while (sqlite3_step(st.get()) == SQLITE_ROW)
    index.emplace(reinterpret_cast<const char*>(sqlite3_column_text(st.get(), 0)),
                  sqlite3_column_int64(st.get(), 1));
  return index;
}

struct FoundLine {
  std::int64_t contract;
  int concept_id;
  double quantity;
};

std::vector<FoundLine> Load(const std::string& file, const Index& contracts, std::size_t& lines) {
  const std::unordered_map<std::string_view, int> concepts = {
      {"HC", 7}, {"HE", 2}, {"HN", 3}, {"HF", 4}, {"VI", 9}};
  const std::string text = base::ReadWholeFile(file).value();
  std::vector<FoundLine> found;
  for (std::size_t from = 0; from < text.size(); ++lines) {
    const std::size_t end = text.find("\r\n", from);
    const std::string_view line = std::string_view(text).substr(from, end - from);
    const std::size_t a = line.find(';'), b = line.find(';', a + 1);
    std::string_view key = line.substr(0, a);
    key.remove_prefix(std::min(key.find_first_not_of('0'), key.size()));
    std::string quantity(line.substr(b + 1));
    if (const std::size_t comma = quantity.find(','); comma != quantity.npos) quantity[comma] = '.';
    const auto contract = contracts.find(std::string(key));
    const auto concept_id = concepts.find(line.substr(a + 1, b - a - 1));
    if (contract != contracts.end() && concept_id != concepts.end())
      found.push_back({contract->second, concept_id->second, std::strtod(quantity.c_str(), nullptr)});
    from = end == text.npos ? text.size() : end + 2;
  }
  return found;
}

}  // namespace

Floor MeasureFloor(const std::string& final_base, const std::string& file, double month) {
  Floor floor;
  const Base base = Open(final_base);
  sqlite3* const db = base.get();
  const std::string of_month = " WHERE MesDeLiq=" + std::to_string(month);
  const std::string month_data =
      " WHERE id_Encabezado IN (SELECT id_Encabezado FROM Encabezados" + of_month + ")";
  const Rows data = Read(db, "SELECT * FROM Datos_Liquidacion" + month_data + " ORDER BY id_Dato");
  const Rows headings = Read(db, "SELECT * FROM Encabezados" + of_month + " ORDER BY id_Encabezado");
  Execute(db, "DELETE FROM Datos_Liquidacion" + month_data);
  Execute(db, "DELETE FROM Encabezados" + of_month);
  Execute(db, "PRAGMA wal_checkpoint(TRUNCATE)");

  const CpuTimer persons;
  const Index contracts = ReadContracts(db);
  floor.persons = persons.Seconds();

  const CpuTimer load;
  floor.found = Load(file, contracts, floor.lines).size();
  floor.load = load.Seconds();

  const CpuTimer rows;
  Execute(db, "BEGIN IMMEDIATE");
  floor.inserted = Insert(db, "Encabezados", headings) + Insert(db, "Datos_Liquidacion", data);
  floor.rows = rows.Seconds();
  const CpuTimer commit;
  Execute(db, "COMMIT");
  floor.commit = commit.Seconds();
  return floor;
}

}  // namespace bench
