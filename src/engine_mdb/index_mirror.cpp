// The indexes of a table in its mirror: unique ones keep their word, the others make lookups quick.
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

}  // namespace

void CrearIndices(sqlite3* espejo, TablaEspejo& t) {
  const mdb::Definicion& d = t.definicion;
  for (std::size_t i = 0; i < d.reales.size(); ++i) {
    const mdb::IndiceReal& real = d.reales[i];
    std::string columnas;
    for (const auto& parte : real.partes) {
      const auto posicion = d.PorNumero(parte.columna);
      if (!posicion) continue;
      columnas += (columnas.empty() ? "" : ", ") + Citado(d.columnas[*posicion].nombre);
      if (parte.descendente) columnas += " DESC";
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
    } catch (const db::Error&) {
      engine_sqlite::EjecutarPropio(espejo, ("CREATE " + resto).c_str());
      t.motivo = "La tabla " + t.info.nombre + " tiene valores repetidos en su índice " + nombre +
                 ", que no los admite: se puede leer, no escribir. Compacte y repare la base con Access.";
    }
  }
}

}  // namespace engine_mdb
