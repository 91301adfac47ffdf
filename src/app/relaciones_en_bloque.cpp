#include <utility>

#include "app/relaciones.h"
#include "base/text.h"
#include "refdata/elegir_concepto.h"
#include "settings/config_file.h"

namespace app {

std::vector<informe::CodigoSinRelacion> Relaciones::CodigosSinRelacion() const {
  return informe::CodigosSinRelacion(e_.filas, e_.aparte, e_.relaciones, e_.conceptos);
}

std::string Relaciones::Relacionar(const std::string& codigo, const informe::Propuesta& propuesta) {
  if (tareas_.EnCurso()) return "Se está cargando o importando";
  std::string rechazo = relations::RechazoDeCodigo(codigo);
  if (!rechazo.empty()) return rechazo;
  if (e_.relaciones.PosEnVecConc(codigo) >= 0) return "El código '" + codigo + "' ya está relacionado";
  const auto relacion = static_cast<std::size_t>(propuesta.relacion);
  const auto entrada = static_cast<std::size_t>(propuesta.entrada);
  if (propuesta.relacion >= 0 && relacion < e_.relaciones.Cantidad()) {
    e_.relaciones.PonerExternos(
        relacion, relations::ConCodigo(e_.relaciones.Campo(relations::kExternos, relacion), codigo));
  } else if (propuesta.entrada >= 0 && entrada < e_.conceptos.cmbConceptos.items.size()) {
    refdata::ConceptsCatalogue elegido = e_.conceptos;
    elegido.cmbConceptos.ListIndex = propuesta.entrada;
    refdata::LiquidationTypes tipos = e_.tipos;  // what the window shows does not change
    relations::DatosRelacion datos;
    datos.texto_combo = elegido.cmbConceptos.items[entrada].texto;
    datos.txtTipo = codigo;
    datos.id_concepto = elegido.tabla.Campo(0, entrada);
    datos.lblConcepto = refdata::ElegirConcepto(base_.Sesion(), e_.opciones, elegido, tipos).lblConcepto;
    e_.relaciones.Agregar(relations::RegistroDeRelacion(datos));
    if (e_.fila_relacion < 0) e_.fila_relacion = 0;
  } else {
    return "El código '" + codigo + "' no tiene un concepto con que relacionarlo";
  }
  ++e_.revision.relaciones;
  c_.Cambio();
  return {};
}

// Whatever the options list now: a relation may lead to what another option would show.
relations::LecturaDeRelaciones Relaciones::LeerCsv(std::string_view texto) const {
  settings::Settings todo = e_.opciones;
  todo.SoloDatosDeRel = false;
  todo.ImportarCuotas = true;
  refdata::ConceptsCatalogue conceptos;
  refdata::ActuLSTdeConceptos(base_.Sesion(), todo, conceptos, nullptr);
  if (!conceptos.motivo_fallo.empty())
    return {{}, {{1, "no se pudo leer la lista de conceptos: " + conceptos.motivo_fallo}}, {}};
  return relations::RelacionesDeCsv(
      texto, [&](std::int32_t id) { return conceptos.Buscar(std::to_string(id)) >= 0; });
}

std::string Relaciones::Reemplazar(const std::vector<relations::Relacion>& nuevas) {
  if (tareas_.EnCurso()) return "Se está cargando o importando";
  if (e_.opciones.MismoCodigoDeOrsa)
    return "Las relaciones son automáticas (MismoCodigoDeOrsa): no se importan otras";
  if (e_.relaciones.carga_fallida)
    return "Las relaciones que hay no se pudieron leer, y no se reemplazan: " + e_.relaciones.motivo_fallo;
  e_.relaciones.Reemplazar(nuevas);
  ++e_.revision.relaciones;
  e_.fila_relacion = e_.relaciones.Cantidad() > 0 ? 0 : -1;
  c_.Cambio();
  return {};
}

// The file between the statements and their commit: whichever fails, neither stays.
std::string Relaciones::Guardar(const std::string& ruta) {
  const settings::Ajustes viejos = settings::LeerAjustes(ruta);
  if (viejos.estado == settings::EstadoAjustes::Ilegible) return viejos.motivo;
  const std::string texto = settings::TextoConValor(viejos.texto, "Conceptos", e_.relaciones.Texto());
  if (settings::ValorDeTexto(texto, "Conceptos") != e_.relaciones.Texto())
    return "En '" + ruta + "' la clave Conceptos está repetida o le falta su cierre";
  db::Connection& conexion = *base_.Sesion().conexion;
  const bool en_base = e_.relaciones.tipo_dato_externo != 0;
  std::string motivo;
  try {
    if (en_base) {
      if (conexion.InTransaction()) conexion.RollbackTrans();
      conexion.BeginTrans();
      motivo = relations::GuardarRelacionesEnBase(base_.Sesion(), e_.relaciones, &c_.errores);
    }
    if (motivo.empty() && !settings::GuardarAjustes(ruta, texto))
      motivo = "No se puede escribir el archivo '" + ruta + "'";
    if (en_base && motivo.empty()) conexion.CommitTrans();
  } catch (const base::Error& e) {
    motivo = e.Description();
    settings::GuardarAjustes(ruta, viejos.texto);
  }
  if (en_base && conexion.InTransaction())
    base::AnyErrorNoted("Relaciones: deshacer", &c_.errores, [&] { conexion.RollbackTrans(); });
  return motivo;
}

}  // namespace app
