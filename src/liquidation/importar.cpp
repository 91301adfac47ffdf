#include "liquidation/importar.h"

#include <cmath>
#include <map>

#include "base/number.h"
#include "formula/vector_utils.h"

namespace liquidation {
namespace {

using importfile::ImportRow;

Corrida Preparar(const EntradaImportacion& e, base::SumideroErrores& errores) {
  Corrida c;
  c.sesion = e.sesion;
  c.opciones = e.opciones;
  c.personas = e.personas;
  c.evaluador = e.evaluador;
  c.tablas = e.tablas;
  c.mes = e.mes;
  c.condiciones = e.condiciones;
  c.texto_liquidacion = e.texto_liquidacion;
  c.errores = &errores;
  return c;
}

// The concepts of all relations, joined with ","; a relation without a number would make the list unreadable,
// and the sums of all the others would be lost with it.
std::string ConceptosDeRelaciones(const relations::CodeRelations& relaciones) {
  formula::Vector legibles;
  legibles.dimensiones = 1;
  for (std::size_t i = 0; i < relaciones.Cantidad(); ++i)
    if (const auto n = base::NumeroDeTexto(relaciones.Campo(relations::kConcepto, i)))
      legibles.registros.push_back({base::SqlDeNumero(*n)});
  return formula::UnirVector(legibles, 0, "", ",");
}

// What the month's open liquidations already hold, so that the lines are added to it.
void Precargar(const EntradaImportacion& e, Corrida& c) {
  if (!e.opciones->SumarAyaIng) return;
  base::ErrorIgnorado("Importar: datos ya ingresados", c.errores, [&] {
    const std::string conceptos = ConceptosDeRelaciones(*e.relaciones);
    if (conceptos.empty()) return;
    const auto rs = e.sesion->conexion->Ejecutar(sql::Precarga(e.sesion->idEmpresa, e.mes, conceptos));
    for (std::size_t i = 0; i < rs.Cantidad(); ++i) c.datos.Agregar(rs.En(0, i).Texto());
  });
}

struct Destino {
  std::int32_t concepto;
  float cantidad, coeficiente;
};

Destino DestinoDe(const EntradaImportacion& e, std::size_t relacion, const ImportRow& fila) {
  Destino d{0, static_cast<float>(base::ValorNumerico(fila.campo[importfile::kCantidad])),
            static_cast<float>(base::ValorNumerico(fila.campo[importfile::kValor]))};
  const double id = base::ValorNumerico(e.relaciones->Campo(relations::kConcepto, relacion));
  d.concepto = std::abs(id) < 2147483647.0 ? base::Entero32(id) : 0;
  // Common hours of who is paid by the month are one month of the basic concept, unless hours are wanted.
  if (e.relaciones->Campo(relations::kCodigo, relacion) == "HC" && !e.opciones->LiqHCaMensuales &&
      base::ValorNumerico(fila.campo[importfile::kTipoRem]) == 1) {
    d.concepto = 1;
    d.cantidad = 1;
  }
  return d;
}

// Sums by concept of the lines that were written.
using Totales = std::map<std::int32_t, TotalConcepto>;

void Sumar(Totales& totales, const Destino& d, const std::string& nombre) {
  TotalConcepto& t = totales[d.concepto];
  t.concepto = d.concepto;
  if (t.nombre.empty()) t.nombre = nombre;
  ++t.lineas;
  t.cantidad += base::DobleDeSimple(d.cantidad);
}

std::string ImportarFila(const EntradaImportacion& e, Corrida& c, const ImportRow& fila, Totales& totales) {
  const int persona = e.personas->Buscar(fila.campo[importfile::kClave], e.opciones->Configura);
  if (persona < 0) return "La Persona no existe o no tiene contrato activo en el mes seleccionado";
  const int relacion = e.relaciones->PosEnVecConc(fila.campo[importfile::kTipo]);
  if (relacion < 0) return "Tipo No asosciado con concepto de Orsa";
  if (!fila.rechazo.empty()) return fila.rechazo;
  Destino d = DestinoDe(e, static_cast<std::size_t>(relacion), fila);
  if (d.cantidad == 0 && e.opciones->NoImpCantEn0) return "Cantidad En 0 (Conf. No importar)";
  // Before the writer clears what the line was to replace.
  if (!std::isfinite(d.cantidad) || !std::isfinite(d.coeficiente)) return base::DescripcionDeError(6);
  const Destino leido = d;  // the writer overwrites quantity and coefficient with its sums
  std::string resultado;
  try {
    resultado = AgregarDatosALiq(c, d.concepto, d.cantidad, static_cast<std::size_t>(persona), fila,
                                 e.centro_costo, d.coeficiente);
  } catch (const base::Error& error) {  // a sum that grew too large; one line does not take the run along
    resultado = error.Descripcion();
  }
  if (resultado.empty())
    Sumar(totales, leido, e.relaciones->Campo(relations::kNombre, static_cast<std::size_t>(relacion)));
  return resultado;
}

Totales ImportarFilas(const EntradaImportacion& e, Corrida& c, std::vector<ImportRow>& filas) {
  Totales totales;
  if (filas.empty()) return totales;
  e.progreso->ActuBarra(100.0F / static_cast<float>(filas.size()), true);
  for (ImportRow& fila : filas) {
    const std::string resultado = ImportarFila(e, c, fila, totales);
    fila.resultado = resultado.empty() ? "OK" : resultado;
    e.progreso->ActuBarra(-1, true);
  }
  e.progreso->ActuBarra(0, true);
  return totales;
}

void ActualizarEnBloque(const EntradaImportacion& e, base::SumideroErrores& errores) {
  const auto ejecutar = [&](const char* donde, const std::string& texto) {
    base::ErrorIgnorado(donde, &errores, [&] { e.sesion->conexion->Ejecutar(texto); });
  };
  ejecutar("Importar: días trabajados", sql::ActualizarDias(e.sesion->idEmpresa, e.mes));
  ejecutar("Importar: montos", sql::ActualizarMontos(e.sesion->idEmpresa, e.mes));
  ejecutar("Importar: detalle", sql::ActualizarDetalle(e.mes));
}

// Nothing was written: every row says why, and the operator is told once.
void NadaEscrito(const EntradaImportacion& e, const std::string& motivo, std::vector<ImportRow>& filas,
                 Importacion& resultado) {
  resultado.error = motivo;
  resultado.totales.clear();
  for (ImportRow& fila : filas) fila.resultado = motivo;
  e.prompts->Mostrar({motivo, ports::Icono::Exclamacion, false});
}

}  // namespace

Importacion Importar(const EntradaImportacion& e, std::vector<ImportRow>& filas) {
  Importacion resultado;
  if (!e.sesion->Abierta()) {
    NadaEscrito(e, "La Base no está Abierta", filas, resultado);
    return resultado;
  }
  db::Connection& conexion = *e.sesion->conexion;
  try {
    if (!conexion.EnTransaccion()) conexion.BeginTrans();
  } catch (const base::Error& error) {
    NadaEscrito(e, error.Descripcion(), filas, resultado);
    return resultado;
  }
  Corrida corrida = Preparar(e, resultado.errores);
  Precargar(e, corrida);
  base::ErrorIgnorado("Importar: encabezados abiertos", &resultado.errores, [&] {
    corrida.encabezados.Abrir(*e.sesion, e.mes, e.condiciones.TypeFilter, e.opciones->Configura);
  });
  const Totales totales = ImportarFilas(e, corrida, filas);
  const auto recargar = [&] {
    base::ErrorIgnorado("Importar: tablas de usuario", &resultado.errores,
                        [&] { e.tablas->CargarTablasUsuario(*e.sesion, -1); });
  };
  for (const auto& [concepto, total] : totales) resultado.totales.push_back(total);
  recargar();
  ActualizarEnBloque(e, resultado.errores);
  try {
    if (e.deshacer)
      conexion.RollbackTrans();
    else
      conexion.CommitTrans();
    resultado.confirmada = true;
  } catch (const base::Error& error) {
    if (conexion.EnTransaccion())  // a commit that fails may have undone it
      base::ErrorIgnorado("Importar: deshacer", &resultado.errores, [&] { conexion.RollbackTrans(); });
    NadaEscrito(e, error.Descripcion(), filas, resultado);
  }
  if (e.deshacer || !resultado.confirmada) recargar();  // what the cache saw was undone
  for (const ImportRow& fila : filas) resultado.importadas += fila.resultado == "OK" ? 1 : 0;
  return resultado;
}

}  // namespace liquidation
