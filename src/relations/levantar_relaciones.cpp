#include "base/number.h"
#include "base/text.h"
#include "relations/code_relations.h"
#include "relations/sql.h"
#include "settings/config_file.h"

namespace relations {
namespace {

// Common hours in yellow and overtime in green; no external code is linked to them yet.
constexpr std::string_view kRelacionesPorDefecto =
    "HC*65535**7*Horas Comunes*0\r\n"
    "HE*65280**2*Horas Extras*0";

std::int32_t EnteroDeAjuste(std::string_view valor) {
  std::int32_t entero = 0;
  base::ErrorIgnorado("LevantarRelaciones: TomaConceptosDeBD", nullptr,
                      [&] { entero = base::Entero32(base::Parse(valor)); });
  return entero;
}

// The only column of the rows, one row a line.
std::string FilasComoTexto(const db::DbSession& sesion, const std::string& sql) {
  if (!sesion.Abierta()) throw db::Error("La Base no está Abierta");
  const db::Recordset filas = sesion.conexion->Ejecutar(sql);
  std::string texto;
  for (std::size_t fila = 0; fila < filas.Cantidad(); ++fila) {
    texto += filas.En(0, fila).TextoCsv();
    texto += base::kCrLf;
  }
  return texto;
}

std::string TextoDeAjuste(std::string_view ajustes) {
  std::string conceptos = settings::ValorDeTexto(ajustes, "Conceptos");
  return conceptos.empty() ? std::string(kRelacionesPorDefecto) : conceptos;
}

}  // namespace

void LevantarRelaciones(const db::DbSession& sesion, const settings::Settings& opciones,
                        std::string_view ajustes, CodeRelations& relaciones, base::SumideroErrores* errores) {
  relaciones.tipo_dato_externo = EnteroDeAjuste(settings::ValorDeTexto(ajustes, "TomaConceptosDeBD"));
  relaciones.Reemplazar("");
  relaciones.carga_fallida = true;
  base::ErrorIgnorado("LevantarRelaciones", errores, [&] {
    try {
      std::string texto;
      if (opciones.MismoCodigoDeOrsa)
        texto = FilasComoTexto(sesion,
                               sql::ConceptosComoRelaciones(opciones.CodTipoNumerico, opciones.SoloDatosDeRel,
                                                            opciones.ImportarCuotas));
      else if (relaciones.tipo_dato_externo != 0)
        texto = FilasComoTexto(sesion, sql::DatosExternosComoRelaciones(relaciones.tipo_dato_externo));
      else
        texto = TextoDeAjuste(ajustes);
      relaciones.Reemplazar(texto);
      relaciones.carga_fallida = false;
      relaciones.motivo_fallo.clear();
    } catch (const base::Error& e) {
      relaciones.motivo_fallo = e.Descripcion();
      throw;
    }
  });
}

}  // namespace relations
