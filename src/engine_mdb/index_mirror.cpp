// The indexes of a table in its mirror: unique ones keep their word, the others make lookups quick.
#include "base/error.h"
#include "engine_mdb/mirror_internal.h"

namespace engine_mdb {
namespace {

std::string NameOf(const mdb::Definition& d, std::size_t real) {
  std::string name;
  for (const mdb::LogicalIndex& logical : d.logicals) {
    if (logical.real != real) continue;
    if (name.empty() || logical.kind != mdb::LogicalIndex::Foreign) name = logical.name;
  }
  return name;
}

// To SQLite two keys that are Null in a part always differ; to the file they are the same when their other
// parts are. Each set of parts that may be Null together gets an index over the rest. Rows of the file that
// do not obey are another program's business.
void CreateIndexesWithNulls(sqlite3* mirror, const MirrorTable& t, const std::string& name,
                            const std::vector<std::string>& columns) {
  constexpr std::size_t kMaxColumns = 3;
  if (columns.size() < 2 || columns.size() > kMaxColumns) return;
  const unsigned all = (1U << columns.size()) - 1;
  for (unsigned nulls = 1; nulls < all; ++nulls) {
    std::string rest, when;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if ((nulls >> i & 1U) != 0)
        when += (when.empty() ? "" : " AND ") + Quoted(columns[i]) + " IS NULL";
      else
        rest += (rest.empty() ? "" : ", ") + Quoted(columns[i]);
    }
    const std::string sql = "CREATE UNIQUE INDEX " +
                            Quoted(t.info.name + "." + name + "#" + std::to_string(nulls)) + " ON " +
                            Quoted(t.info.name) + " (" + rest + ") WHERE " + when;
    base::PassOverError("CrearIndicesConNulos", nullptr,
                        [&] { engine_sqlite::ExecuteOwn(mirror, sql.c_str()); });
  }
}

}  // namespace

void CreateIndexes(sqlite3* mirror, MirrorTable& t) {
  const mdb::Definition& d = t.definition;
  for (std::size_t i = 0; i < d.reals.size(); ++i) {
    const mdb::RealIndex& real = d.reals[i];
    std::string columns;
    std::vector<std::string> names;
    for (const auto& part : real.parts) {
      const auto position = d.ByNumber(part.column);
      if (!position) continue;
      columns += (columns.empty() ? "" : ", ") + Quoted(d.columns[*position].name);
      if (part.descending) columns += " DESC";
      names.push_back(d.columns[*position].name);
    }
    if (columns.empty()) continue;
    const std::string name = NameOf(d, i);
    const std::string rest = "INDEX " +
                             Quoted(t.info.name + "." + (name.empty() ? "#" + std::to_string(i) : name)) +
                             " ON " + Quoted(t.info.name) + " (" + columns + ")";
    if (!real.IsUnique()) {
      engine_sqlite::ExecuteOwn(mirror, ("CREATE " + rest).c_str());
      continue;
    }
    try {
      engine_sqlite::ExecuteOwn(mirror, ("CREATE UNIQUE " + rest).c_str());
      if (!real.IsRequired()) CreateIndexesWithNulls(mirror, t, name, names);
    } catch (const db::Error& e) {
      if (e.IsStorageFault()) throw;
      engine_sqlite::ExecuteOwn(mirror, ("CREATE " + rest).c_str());
      t.reason = "La tabla " + t.info.name + " tiene valores repetidos en su índice " + name +
                 ", que no los admite: se puede leer, no escribir. Compacte y repare la base con Access.";
    }
  }
}

}  // namespace engine_mdb
