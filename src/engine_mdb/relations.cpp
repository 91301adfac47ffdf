// Enforced relationships, as triggers of the mirrors: what Access refuses or carries on, row by row.
// Triggers, because SQLite's own foreign keys would have to be declared before the other table is known, and
// cannot name the relationship that was broken.
#include "base/error.h"
#include "base/text.h"
#include "engine_mdb/source_internal.h"

namespace engine_mdb {
namespace {

using mdb::RelacionDeTablas;

constexpr std::string_view kViejo = "OLD.", kNuevo = "NEW.";

// a1 = OLD.b1 AND …
std::string Iguales(const std::vector<std::string>& suyas, std::string_view de,
                    const std::vector<std::string>& otras) {
  std::string sql;
  for (std::size_t i = 0; i < suyas.size(); ++i)
    sql += (i == 0 ? "" : " AND ") + Citado(suyas[i]) + " = " + std::string(de) + Citado(otras[i]);
  return sql;
}

// NEW.a IS NOT NULL OR …
std::string AlgunoLleno(const std::vector<std::string>& columnas) {
  std::string sql;
  for (const auto& c : columnas)
    sql += (sql.empty() ? "(" : " OR ") + std::string(kNuevo) + Citado(c) + " IS NOT NULL";
  return sql + ")";
}

std::string Cambio(const std::vector<std::string>& columnas) {
  std::string sql;
  for (const auto& c : columnas)
    sql += (sql.empty() ? "(" : " OR ") + ("OLD." + Citado(c)) + " IS NOT NEW." + Citado(c);
  return sql + ")";
}

std::string Rehusar(const std::string& texto) {
  return "SELECT RAISE(ABORT, " + EnComillas(std::string(engine_sqlite::kTextoPropio) + texto) + ")";
}

std::string Disparador(const RelacionDeTablas& r, std::string_view cual, const std::string& cuando,
                       const std::string& condicion, const std::string& cuerpo) {
  return "CREATE TRIGGER IF NOT EXISTS " + Citado("jet_rel." + r.nombre + "." + std::string(cual)) +
         " AFTER " + cuando + (condicion.empty() ? "" : " WHEN " + condicion) + " BEGIN " + cuerpo + "; END";
}

std::string AlCambiarDe(const std::vector<std::string>& columnas, const std::string& tabla) {
  return "UPDATE OF " + ListaCitada(columnas) + " ON " + Citado(tabla);
}

std::string Asignar(const std::vector<std::string>& columnas, const std::vector<std::string>* nuevas) {
  std::string sql;
  for (std::size_t i = 0; i < columnas.size(); ++i)
    sql += (i == 0 ? "" : ", ") + Citado(columnas[i]) + " = " +
           (nuevas == nullptr ? "NULL" : std::string(kNuevo) + Citado((*nuevas)[i]));
  return sql;
}

bool Cascada(const RelacionDeTablas& r) {
  return (r.banderas & (RelacionDeTablas::kActualizaEnCascada | RelacionDeTablas::kBorraEnCascada |
                        RelacionDeTablas::kPoneNulo)) != 0;
}

}  // namespace

// A key without any value refers to nothing; one of which a part is missing must be found as it is, and no
// key with a Null ever is.
void FuenteMdb::VigilarComoHija(const TablaEspejo& hija, const RelacionDeTablas& r) {
  const std::string falta = AlgunoLleno(r.columnas) + " AND NOT EXISTS (SELECT 1 FROM " +
                            Citado(r.tabla_referida) + " WHERE " +
                            Iguales(r.columnas_referidas, kNuevo, r.columnas) + ")";
  const std::string no = Rehusar("No se puede guardar el registro en la tabla " + r.tabla +
                                 ": falta el registro relacionado en la tabla " + r.tabla_referida +
                                 " (relación " + r.nombre + ").");
  Ejecutar(Disparador(r, "alta", "INSERT ON " + Citado(hija.info.nombre), falta, no));
  Ejecutar(Disparador(r, "cambio", AlCambiarDe(r.columnas, hija.info.nombre),
                      Cambio(r.columnas) + " AND " + falta, no));
}

void FuenteMdb::VigilarComoPadre(const TablaEspejo& padre, const RelacionDeTablas& r) {
  const std::string hijas = Citado(r.tabla) + " WHERE " + Iguales(r.columnas, kViejo, r.columnas_referidas);
  const std::string hay = "EXISTS (SELECT 1 FROM " + hijas + ")";
  const std::string no = Rehusar("No se puede borrar el registro de la tabla " + r.tabla_referida +
                                 " ni cambiar su clave: la tabla " + r.tabla +
                                 " tiene registros relacionados (relación " + r.nombre + ").");
  const std::string& tabla = padre.info.nombre;
  const std::string borrar = "DELETE ON " + Citado(tabla);
  if ((r.banderas & RelacionDeTablas::kBorraEnCascada) != 0)
    Ejecutar(Disparador(r, "baja", borrar, {}, "DELETE FROM " + hijas));
  else if ((r.banderas & RelacionDeTablas::kPoneNulo) != 0)
    Ejecutar(Disparador(r, "baja", borrar, {},
                        "UPDATE " + Citado(r.tabla) + " SET " + Asignar(r.columnas, nullptr) + " WHERE " +
                            Iguales(r.columnas, kViejo, r.columnas_referidas)));
  else
    Ejecutar(Disparador(r, "baja", borrar, hay, no));
  const std::string cambiar = AlCambiarDe(r.columnas_referidas, tabla);
  if ((r.banderas & RelacionDeTablas::kActualizaEnCascada) != 0)
    Ejecutar(Disparador(r, "clave", cambiar, Cambio(r.columnas_referidas),
                        "UPDATE " + Citado(r.tabla) + " SET " + Asignar(r.columnas, &r.columnas_referidas) +
                            " WHERE " + Iguales(r.columnas, kViejo, r.columnas_referidas)));
  else
    Ejecutar(Disparador(r, "clave", cambiar, Cambio(r.columnas_referidas) + " AND " + hay, no));
}

void FuenteMdb::VigilarAutomatico(const TablaEspejo& t) {
  if (t.automatica < 0) return;
  const std::string& columna = t.info.columnas[static_cast<std::size_t>(t.automatica)].nombre;
  Ejecutar("CREATE TRIGGER IF NOT EXISTS " + Citado("jet_auto." + t.info.nombre) + " AFTER INSERT ON " +
           Citado(t.info.nombre) + " BEGIN SELECT idm_visto(" + std::to_string(t.numero) + ", NEW." +
           Citado(columna) + "); END");
}

// What a column of the file cannot hold as it was given takes the form that it will have there: the digits of
// a decimal, the letters of a GUID, the bytes of a text.
void FuenteMdb::VigilarFormas(const TablaEspejo& t) {
  const std::string tabla = Citado(t.info.nombre);
  for (const std::size_t i : t.columnas) {
    const mdb::Columna& c = t.definicion.columnas[i];
    const std::string columna = Citado(c.nombre);
    std::string forma;
    if (c.tipo == mdb::TipoColumna::Decimal)
      forma = "idm_decimal(NEW." + columna + ", " + std::to_string(c.precision) + ", " +
              std::to_string(c.escala) + ", " + EnComillas(c.nombre) + ")";
    else if (c.tipo == mdb::TipoColumna::Guid)
      forma = "idm_forma_guid(NEW." + columna + ", " + EnComillas(c.nombre) + ")";
    else if (c.tipo == mdb::TipoColumna::Binario || c.tipo == mdb::TipoColumna::Ole)
      forma = "idm_bytes(NEW." + columna + ", " +
              std::to_string(c.tipo == mdb::TipoColumna::Ole ? 0 : c.largo) + ", " + EnComillas(c.nombre) +
              ")";
    else
      continue;
    const std::string fila = NombreDeFila(t);
    const std::string cuerpo = " WHEN NEW." + columna + " IS NOT " + forma + " COLLATE BINARY BEGIN UPDATE " +
                               tabla + " SET " + columna + " = " + forma + " WHERE " + fila + " = NEW." +
                               fila + "; END";
    const std::string nombre =
        "CREATE TRIGGER IF NOT EXISTS " + Citado("jet_forma." + t.info.nombre + "." + c.nombre + ".1");
    const std::string otro =
        "CREATE TRIGGER IF NOT EXISTS " + Citado("jet_forma." + t.info.nombre + "." + c.nombre + ".2");
    Ejecutar(nombre + " AFTER INSERT ON " + tabla + cuerpo);
    Ejecutar(otro + " AFTER UPDATE OF " + columna + " ON " + tabla + cuerpo);
  }
}

// Inserting needs the tables that the row refers to; changing and deleting also those that refer to it, and
// with a cascade whatever they need in turn.
void FuenteMdb::Preparar(TablaEspejo& t, bool todo) {
  if (todo ? t.estado.listo_para_todo : t.estado.listo_para_insertar) return;
  if (t.base_refuses) throw BaseNotWritable(t.motivo);
  if (!t.motivo.empty()) throw base::Error(t.motivo);
  Cargar(t);
  Indexar(t);
  if (!t.motivo.empty()) throw base::Error(t.motivo);  // its rows break a unique index
  std::vector<std::pair<const RelacionDeTablas*, TablaEspejo*>> padres, hijas;
  for (const RelacionDeTablas& r : base_.Indice().Relaciones()) {
    if (!r.Exigida() || r.columnas.empty() || r.columnas.size() != r.columnas_referidas.size()) continue;
    const bool hija = base::IgualSinCaso(r.tabla, t.info.nombre);
    const bool padre = todo && base::IgualSinCaso(r.tabla_referida, t.info.nombre);
    if (hija) padres.emplace_back(&r, &Local(r.tabla_referida));
    if (padre) hijas.emplace_back(&r, &Local(r.tabla));
  }
  VigilarAutomatico(t);
  VigilarFormas(t);
  for (const auto& [r, padre] : padres) {
    Indexar(*padre);
    VigilarComoHija(t, *r);
  }
  for (const auto& [r, hija] : hijas) {
    Indexar(*hija);
    VigilarComoPadre(t, *r);
  }
  t.estado.listo_para_insertar = true;
  t.estado.listo_para_todo = todo || t.estado.listo_para_todo;
  try {
    for (const auto& [r, hija] : hijas)
      if (Cascada(*r)) Preparar(*hija, true);
  } catch (const base::Error&) {
    t.estado.listo_para_todo = false;  // a table that it would carry on to cannot be written
    throw;
  }
}

}  // namespace engine_mdb
