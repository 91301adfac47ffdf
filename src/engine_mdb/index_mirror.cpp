// The indexes of a table in its mirror: unique ones keep their word, the others make lookups quick.
#include "base/error.h"
#include "engine_mdb/mirror_internal.h"

namespace engine_mdb {
namespace {

std::string NombreDe(const mdb::Definicion& d, std::size_t real) {
  std::string nombre;
  for (const mdb::IndiceLogico& logico : d.logicos) {
    if (logico.real != real) continue;
    if (nombre.empty() || logico.clase != mdb::IndiceLogico::Foraneo) nombre = logico.nombre;
  }
  return nombre;
}

// To SQLite two keys that are Null in a part always differ; to the file they are the same when their other
// parts are. Each set of parts that may be Null together gets an index over the rest. Rows of the file that
// do not obey are another program's business.
void CrearIndicesConNulos(sqlite3* espejo, const TablaEspejo& t, const std::string& nombre,
                          const std::vector<std::string>& columnas) {
  constexpr std::size_t kMasColumnas = 3;
  if (columnas.size() < 2 || columnas.size() > kMasColumnas) return;
  const unsigned todas = (1U << columnas.size()) - 1;
  for (unsigned nulas = 1; nulas < todas; ++nulas) {
    std::string resto, cuando;
    for (std::size_t i = 0; i < columnas.size(); ++i) {
      if ((nulas >> i & 1U) != 0)
        cuando += (cuando.empty() ? "" : " AND ") + Citado(columnas[i]) + " IS NULL";
      else
        resto += (resto.empty() ? "" : ", ") + Citado(columnas[i]);
    }
    const std::string sql = "CREATE UNIQUE INDEX " +
                            Citado(t.info.nombre + "." + nombre + "#" + std::to_string(nulas)) + " ON " +
                            Citado(t.info.nombre) + " (" + resto + ") WHERE " + cuando;
    base::ErrorIgnorado("CrearIndicesConNulos", nullptr,
                        [&] { engine_sqlite::EjecutarPropio(espejo, sql.c_str()); });
  }
}

}  // namespace

void CrearIndices(sqlite3* espejo, TablaEspejo& t) {
  const mdb::Definicion& d = t.definicion;
  for (std::size_t i = 0; i < d.reales.size(); ++i) {
    const mdb::IndiceReal& real = d.reales[i];
    std::string columnas;
    std::vector<std::string> nombres;
    for (const auto& parte : real.partes) {
      const auto posicion = d.PorNumero(parte.columna);
      if (!posicion) continue;
      columnas += (columnas.empty() ? "" : ", ") + Citado(d.columnas[*posicion].nombre);
      if (parte.descendente) columnas += " DESC";
      nombres.push_back(d.columnas[*posicion].nombre);
    }
    if (columnas.empty()) continue;
    const std::string nombre = NombreDe(d, i);
    const std::string resto =
        "INDEX " + Citado(t.info.nombre + "." + (nombre.empty() ? "#" + std::to_string(i) : nombre)) +
        " ON " + Citado(t.info.nombre) + " (" + columnas + ")";
    if (!real.Unico()) {
      engine_sqlite::EjecutarPropio(espejo, ("CREATE " + resto).c_str());
      continue;
    }
    try {
      engine_sqlite::EjecutarPropio(espejo, ("CREATE UNIQUE " + resto).c_str());
      if (!real.Requerido()) CrearIndicesConNulos(espejo, t, nombre, nombres);
    } catch (const db::Error& e) {
      if (e.IsStorageFault()) throw;
      engine_sqlite::EjecutarPropio(espejo, ("CREATE " + resto).c_str());
      t.motivo = "La tabla " + t.info.nombre + " tiene valores repetidos en su índice " + nombre +
                 ", que no los admite: se puede leer, no escribir. Compacte y repare la base con Access.";
    }
  }
}

}  // namespace engine_mdb
