#include "base/number.h"
#include "base/text.h"
#include "relations/code_relations.h"
#include "relations/relation_line_internal.h"
#include "relations/sql.h"
#include "settings/config_file.h"

namespace relations {
namespace {

// Common hours in yellow and overtime in green; no external code is linked to them yet.
constexpr std::string_view kRelacionesPorDefecto =
    "HC*65535**7*Horas Comunes*0\r\n"
    "HE*65280**2*Horas Extras*0";

// A number too large names a store that cannot be: the settings' relations are not what was asked for.
std::int32_t TipoDeDatoExterno(std::string_view valor) {
  try {
    return base::Integer32(base::Parse(valor));
  } catch (const base::Error&) {
    throw db::Error("TomaConceptosDeBD: '" + std::string(valor) + "' no es un tipo de datos externos");
  }
}

// The rows of the query, each its only column: a name may hold line ends as well as stars.
std::vector<Relacion> RelacionesDeLaBase(const sesion::DbSession& sesion, const std::string& sql,
                                         Lista lista) {
  if (!sesion.Abierta()) throw db::Error("La Base no está Abierta");
  const db::Recordset filas = sesion.conexion->Execute(sql);
  if (filas.Fields().empty()) throw db::Error("La consulta de las relaciones no devolvió su columna.");
  std::vector<Relacion> relaciones;
  for (std::size_t fila = 0; fila < filas.Count(); ++fila)
    relaciones.push_back(RelacionDeFila(filas.At(0, fila).CsvText(), lista));
  return relaciones;
}

std::string TextoDeAjuste(std::string_view ajustes) {
  std::string conceptos = settings::ValorDeTexto(ajustes, "Conceptos");
  return conceptos.empty() ? std::string(kRelacionesPorDefecto) : conceptos;
}

}  // namespace

void LevantarRelaciones(const sesion::DbSession& sesion, const settings::Settings& opciones,
                        std::string_view ajustes, CodeRelations& relaciones, base::ErrorSink* errores) {
  relaciones.tipo_dato_externo = 0;
  relaciones.Reemplazar("");
  relaciones.carga_fallida = true;
  base::PassOverError("LevantarRelaciones", errores, [&] {
    try {
      relaciones.tipo_dato_externo = TipoDeDatoExterno(settings::ValorDeTexto(ajustes, "TomaConceptosDeBD"));
      if (opciones.MismoCodigoDeOrsa)
        relaciones.Reemplazar(
            RelacionesDeLaBase(sesion,
                               sql::ConceptosComoRelaciones(opciones.CodTipoNumerico, opciones.SoloDatosDeRel,
                                                            opciones.ImportarCuotas),
                               opciones.CodTipoNumerico ? Lista::Numero : Lista::Codigo));
      else if (relaciones.tipo_dato_externo != 0)
        relaciones.Reemplazar(RelacionesDeLaBase(
            sesion, sql::DatosExternosComoRelaciones(relaciones.tipo_dato_externo), Lista::Guardada));
      else
        relaciones.Reemplazar(TextoDeAjuste(ajustes));
      relaciones.carga_fallida = false;
      relaciones.motivo_fallo.clear();
    } catch (const base::Error& e) {
      relaciones.motivo_fallo = e.Description();
      throw;
    }
  });
}

}  // namespace relations
