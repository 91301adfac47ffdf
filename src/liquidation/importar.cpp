#include "liquidation/importar.h"

#include <map>
#include <new>
#include <utility>

#include "base/number.h"
#include "base/text.h"
#include "liquidation/agregar_datos_a_liq.h"
#include "liquidation/revisar_fila.h"

namespace liquidation {
namespace {

using importfile::ImportRow;

// The operator asked to stop.
struct Cancelacion {};

void VerSiSigue(const EntradaImportacion& e) {
  if (e.progreso.IsCancelled()) throw Cancelacion{};
}

// The concepts of all relations, joined with ","; a relation without a number would make the list unreadable,
// and the sums of all the others would be lost with it.
std::string ConceptosDeRelaciones(const relations::CodeRelations& relaciones) {
  std::vector<std::string> legibles;
  for (std::size_t i = 0; i < relaciones.Cantidad(); ++i)
    if (const auto concepto = ConceptoDeRelacion(relaciones.Campo(relations::kConcepto, i)))
      legibles.push_back(std::to_string(*concepto));
  return base::Join(legibles, ",");
}

// What the month's open liquidations already hold, so that the lines are added to it.
void Precargar(Corrida& c) {
  const EntradaImportacion& e = c.entrada;
  if (!e.opciones.SumarAyaIng) return;
  const std::string conceptos = ConceptosDeRelaciones(e.relaciones);
  if (conceptos.empty()) return;
  const auto rs = e.sesion.conexion->Execute(sql::Precarga(e.sesion.idEmpresa, e.mes, conceptos));
  for (std::size_t i = 0; i < rs.Count(); ++i) c.datos.Agregar(rs.At(0, i).Text());
}

// A step that the rows cannot do without.
template <typename Paso>
void LeerAntes(std::string_view que, Paso&& paso) {
  try {
    std::forward<Paso>(paso)();
  } catch (const base::Error& e) {
    if (e.IsStorageFault()) throw;
    throw base::Error("No se importó nada: " + std::string(que) + ": " + e.Description(), e.Number());
  }
}

// Everything that the lines are judged and added up by. Half of it would make other quantities.
void LeerLoNecesario(Corrida& c) {
  const EntradaImportacion& e = c.entrada;
  LeerAntes("no se pudieron leer las tablas de usuario", [&] { e.tablas.CargarTablasUsuario(e.sesion, -1); });
  LeerAntes("no se pudo leer lo ya ingresado en el mes", [&] { Precargar(c); });
  LeerAntes("no se pudieron leer las liquidaciones abiertas del mes",
            [&] { c.encabezados.Abrir(e.sesion, e.mes, e.condiciones.TypeFilter, e.opciones.Configura); });
}

// Sums by concept of the lines that were written.
using Totales = std::map<std::int32_t, TotalConcepto>;

void Sumar(Totales& totales, const LineaAImportar& linea, const std::string& nombre) {
  TotalConcepto& t = totales[linea.concepto];
  t.concepto = linea.concepto;
  if (t.nombre.empty()) t.nombre = nombre;
  ++t.lineas;
  t.cantidad += base::DoubleOfSingle(linea.cantidad);
}

// A line that an error refused leaves nothing: not in the base, and not in what the run remembers of it. The
// type found for its contract was there before it. Where the line cannot be undone alone, the run is.
void DeshacerLinea(Corrida& c, const base::Error& motivo) {
  if (c.marcada && c.escribio) {
    try {
      c.entrada.sesion.conexion->RollbackToSavepoint();
    } catch (const base::Error& e) {
      throw base::Error(motivo.Description() + "; y no se pudo deshacer la línea sola: " + e.Description(),
                        e.Number(), e.Source(), base::ErrorKind::Storage);
    }
  }
  c.datos.Deshacer();
  c.encabezados.Deshacer();
}

// "" or the reason why the line was not written.
std::string EscribirLinea(Corrida& c, const ImportRow& fila, LineaAImportar linea) {
  c.marcada = c.escribio = false;
  c.datos.Marcar();
  c.encabezados.Marcar();
  try {
    return AgregarDatosALiq(c, linea.concepto, linea.cantidad, linea.persona, fila, c.entrada.centro_costo,
                            linea.coeficiente);
  } catch (const base::Error& error) {
    if (error.IsStorageFault()) throw;
    DeshacerLinea(c, error);
    return error.Description().empty() ? "Error" : error.Description();
  }
}

std::string ImportarFila(Corrida& c, ImportRow& fila, Totales& totales) {
  fila.destino = {};
  const FilaRevisada revisada = RevisarFila(c.entrada, fila);
  if (!revisada.linea) return revisada.motivo;
  std::string motivo = EscribirLinea(c, fila, *revisada.linea);
  if (motivo.empty()) fila.destino = c.destino;
  if (motivo.empty())
    Sumar(totales, *revisada.linea, c.entrada.relaciones.Campo(relations::kNombre, revisada.linea->relacion));
  return motivo;
}

Totales ImportarFilas(Corrida& c, std::vector<ImportRow>& filas) {
  if (filas.empty()) return {};
  Totales totales;
  ports::Progress& progreso = c.entrada.progreso;
  progreso.ActuBarra(100.0F / static_cast<float>(filas.size()), true);
  for (ImportRow& fila : filas) {
    VerSiSigue(c.entrada);
    if (c.entrada.testigo != nullptr) c.entrada.testigo->AntesDeFila(fila);
    const std::string resultado = ImportarFila(c, fila, totales);
    fila.resultado = resultado.empty() ? "OK" : resultado;
    if (c.entrada.testigo != nullptr) c.entrada.testigo->DespuesDeFila(fila);
    progreso.ActuBarra(-1, true);
  }
  progreso.ActuBarra(0, true);
  return totales;
}

void ActualizarEnBloque(const EntradaImportacion& e, Importacion& r) {
  const auto ejecutar = [&](const char* etapa, const char* donde, const char* falla,
                            const std::string& texto) {
    VerSiSigue(e);
    e.progreso.Stage(etapa);
    if (!base::PassOverError(donde, &r.errores, [&] { e.sesion.conexion->Execute(texto); }))
      r.actualizaciones_fallidas.push_back(std::string(falla) + ": " + r.errores.back().description);
  };
  ejecutar("Actualizando los días trabajados…", "Importar: días trabajados",
           "No se actualizaron los días trabajados", sql::ActualizarDias(e.sesion.idEmpresa, e.mes));
  ejecutar("Actualizando los montos…", "Importar: montos", "No se actualizaron los montos",
           sql::ActualizarMontos(e.sesion.idEmpresa, e.mes));
  ejecutar("Actualizando el detalle…", "Importar: detalle", "No se actualizó el detalle",
           sql::ActualizarDetalle(e.mes));
}

// From the first statement to the commit. Throws base::Error when nothing may stay written.
void Correr(const EntradaImportacion& e, std::vector<ImportRow>& filas, Importacion& r) {
  db::Connection& conexion = *e.sesion.conexion;
  if (!conexion.InTransaction()) conexion.BeginTrans();
  if (e.testigo != nullptr) e.testigo->AntesDeEscribir();
  Corrida corrida(e, r.errores);
  e.progreso.Stage("Leyendo lo que hay en el mes…");
  LeerLoNecesario(corrida);
  e.progreso.Stage("");
  for (const auto& [concepto, total] : ImportarFilas(corrida, filas)) r.totales.push_back(total);
  base::PassOverError("Importar: tablas de usuario", &r.errores,
                      [&] { e.tablas.CargarTablasUsuario(e.sesion, -1); });
  ActualizarEnBloque(e, r);
  if (e.testigo != nullptr) e.testigo->AntesDeTerminar(filas, r);
  VerSiSigue(e);
  e.progreso.Stage(e.deshacer ? "Deshaciendo…" : "Guardando…");
  if (e.deshacer)
    conexion.RollbackTrans();
  else
    conexion.CommitTrans();
  r.confirmada = true;
}

// Undoes the run. Returns what to add to its reason when that fails too. A transaction that stayed open would
// be committed by the next import: the base is closed instead.
std::string DeshacerTodo(const EntradaImportacion& e, Importacion& r) {
  db::Connection& conexion = *e.sesion.conexion;
  if (!conexion.InTransaction()) return {};  // a commit that fails may have undone it
  if (base::AnyErrorNoted("Importar: deshacer", &r.errores, [&] { conexion.RollbackTrans(); })) return {};
  const std::string motivo = "; además no se pudo deshacer lo hecho (" + r.errores.back().description + ")";
  base::AnyErrorNoted("Importar: cerrar", &r.errores, [&] { conexion.Close(); });
  if (!conexion.IsOpen())
    return motivo + " y se cerró la base: ábrala de nuevo y revise el mes antes de volver a importar";
  return motivo +
         ": la base puede haber quedado con la transacción abierta; cierre el programa y revise el mes antes "
         "de volver a importar";
}

// Nothing was written: every row says why, and the operator is told once.
void NadaEscrito(const EntradaImportacion& e, const std::string& motivo, std::vector<ImportRow>& filas,
                 Importacion& r) {
  r.error = motivo;
  r.totales.clear();
  r.actualizaciones_fallidas.clear();
  for (ImportRow& fila : filas) {
    fila.resultado = motivo;
    fila.destino = {};
  }
  e.progreso.Stage("");
  e.progreso.ActuBarra(0, true);
  e.prompts.Show({motivo, ports::Icon::Exclamation, false});
}

void Abandonar(const EntradaImportacion& e, const base::Error& error, std::vector<ImportRow>& filas,
               Importacion& r) {
  r.fallo_de_almacenamiento = error.IsStorageFault();
  NadaEscrito(e, error.Description() + DeshacerTodo(e, r), filas, r);
}

}  // namespace

Importacion Importar(const EntradaImportacion& e, std::vector<ImportRow>& filas) {
  Importacion r;
  if (!e.sesion.Abierta()) {
    NadaEscrito(e, "La Base no está Abierta", filas, r);
    return r;
  }
  try {
    Correr(e, filas, r);
  } catch (const Cancelacion&) {
    r.cancelada = true;
    e.progreso.Stage("Deshaciendo…");
    NadaEscrito(e, "La importación se canceló: no se escribió nada" + DeshacerTodo(e, r), filas, r);
  } catch (const base::Error& error) {
    Abandonar(e, error, filas, r);
  } catch (const std::bad_alloc&) {
    Abandonar(e, base::Error("No hay memoria suficiente.", 7, {}, base::ErrorKind::Storage), filas, r);
  } catch (const std::exception&) {  // a defect goes on, but leaves no half-written month to the next import
    DeshacerTodo(e, r);
    throw;
  }
  if (e.deshacer || !r.confirmada)  // what the tables held was undone
    base::AnyErrorNoted("Importar: tablas de usuario", &r.errores,
                        [&] { e.tablas.CargarTablasUsuario(e.sesion, -1); });
  for (const ImportRow& fila : filas) r.importadas += fila.resultado == "OK" ? 1 : 0;
  if (e.testigo != nullptr) e.testigo->Terminada(r.confirmada && !e.deshacer);
  return r;
}

}  // namespace liquidation
