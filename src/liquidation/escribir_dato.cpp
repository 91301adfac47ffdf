#include <optional>

#include "base/number.h"
#include "base/text.h"
#include "formula/evaluador/line_formula.h"
#include "liquidation/liquidation_internal.h"
#include "liquidation/revisar_fila.h"

namespace liquidation {
namespace {

// What one datum needs on its way through the steps.
struct Escritura {
  Corrida& c;
  const DatoALiquidar& dato;
  int TipoDato;
  int TipoCuota;
  std::string nombre_cuota;

  sql::ClaveDato Clave() const {
    return {c.entrada.sesion.idEmpresa, dato.encabezado, dato.concepto, dato.agrupa};
  }
};

// Whether evaluating the instalment name could do anything but give a text: only a "(" or an unpaired bracket
// brings a message box or a query. Then it is evaluated for every line, as an instalment's would be.
bool EvaluacionVisible(std::string_view plantilla, const formula::CamposDeLinea& campos) {
  int abiertos = 0;
  for (const char letra : plantilla) {
    if (letra == '(') return true;
    if (letra == '[') ++abiertos;
    if (letra == ']' && --abiertos < 0) return true;
  }
  if (abiertos != 0) return true;
  for (const auto& campo : campos)
    if (campo.find_first_of("([]") != std::string::npos) return true;
  return false;
}

std::string NombreDeCuota(Corrida& c, int TipoCuota, const formula::CamposDeLinea& campos) {
  const std::string& plantilla = c.entrada.opciones.TextoTipoCuota;
  if (TipoCuota == 0 && !EvaluacionVisible(plantilla, campos)) return {};
  std::string nombre =
      formula::EvaluarTexto(c.entrada.evaluador, "#" + formula::ReemplazaComodines(plantilla, campos) + "#");
  if (TipoCuota != 0 && c.entrada.evaluador.agotado != nullptr)
    throw base::Error(c.entrada.evaluador.agotado);
  return nombre;
}

void InsertarCuota(Escritura& e, std::int32_t id_Pago, std::int32_t id_Dato, const std::string& cantidad) {
  const sql::Cuota cuota{e.c.entrada.sesion.idEmpresa,
                         id_Pago,
                         e.dato.contrato,
                         e.dato.concepto,
                         id_Dato,
                         cantidad,
                         e.nombre_cuota};
  Escribir(e.c, sql::InsertarPago(cuota, e.c.entrada.mes));
  Escribir(e.c, sql::InsertarPagoDeta(cuota, e.c.entrada.mes));
}

void Insertar(Escritura& e) {
  const auto [cantidad, coeficiente] = e.dato.cifras;
  const std::string q = base::SqlSingle(cantidad), k = base::SqlSingle(coeficiente);
  const std::int32_t id_Dato = IdentificadorNuevo(e.c, "Datos_Liquidacion", "id_Dato");
  std::string par;
  if (e.TipoDato == kTipoCantidad)
    par = q + ",0";
  else if (e.TipoCuota != 0)
    par = "1," + q;
  else if (e.TipoDato == kTipoCantidadYValor)
    par = q + "," + k;
  else
    par = "0," + q;
  Escribir(e.c, sql::InsertarDato(id_Dato, e.Clave(), par));
  std::int32_t id_Pago = -1;
  if (e.TipoCuota != 0) {
    id_Pago = IdentificadorNuevo(e.c, "PagosEnSueldo", "id_Pago");
    InsertarCuota(e, id_Pago, id_Dato, q);
  }
  if (e.c.entrada.opciones.TotalizarConc)
    e.c.datos.Agregar(DatoDelMes{e.dato.concepto, cantidad, e.dato.contrato, id_Pago, e.dato.agrupa,
                                 coeficiente, e.dato.encabezado});
}

// The row of the header's datum, to be added to; null when the line replaces what stands. The preload does
// not say in which header it found something: that datum is read when it is first met. An answer without it
// is an error of the line, which would otherwise replace what nobody could read.
DatoDelMes* FilaDelDato(Escritura& e, std::int32_t id_Dato) {
  const DatoALiquidar& d = e.dato;
  DatoDelMes* fila = e.c.datos.Buscar(d.concepto, d.contrato, d.agrupa, d.encabezado);
  if (fila != nullptr || !e.c.datos.Precargado(d.concepto, d.contrato, d.agrupa)) return fila;
  const auto rs = e.c.entrada.sesion.conexion->Execute(sql::LeerDato(e.c.entrada.sesion.idEmpresa, id_Dato));
  const auto cantidad = static_cast<float>(rs.At(0, 0).NumberOrZero());
  const auto coeficiente = static_cast<float>(rs.At(1, 0).NumberOrZero());
  const bool llena_cantidad = e.TipoDato == kTipoCantidad || e.TipoDato == kTipoCantidadYValor;
  return &e.c.datos.Agregar(DatoDelMes{.id_Concepto = d.concepto,
                                       .valor = llena_cantidad ? cantidad : coeficiente,
                                       .id_Contrato = d.contrato,
                                       .idAgrupa = d.agrupa,
                                       .Coeficiente = coeficiente,
                                       .id_Encabezado = d.encabezado});
}

// The sum of what the header's datum holds and the line.
Cifras Actualizar(Escritura& e, std::int32_t id_Dato) {
  auto [cantidad, coeficiente] = e.dato.cifras;
  const std::int32_t empresa = e.c.entrada.sesion.idEmpresa;
  std::int64_t id_Pago = -1;
  DatoDelMes* fila = FilaDelDato(e, id_Dato);
  if (fila != nullptr) {
    coeficiente = fila->Coeficiente * fila->valor + cantidad * coeficiente;
    cantidad = fila->valor + cantidad;
    if (base::Round(static_cast<double>(cantidad), 5) != 0) coeficiente = coeficiente / cantidad;
    id_Pago = fila->id_Pago;
  }
  const std::string q = base::SqlSingle(cantidad);
  if (e.TipoDato == kTipoCantidadYValor)
    Escribir(e.c, sql::ActualizarDatoYCoeficiente(empresa, id_Dato, q, base::SqlSingle(coeficiente)));
  else
    Escribir(e.c, sql::ActualizarDato(empresa, id_Dato,
                                      e.TipoDato == kTipoCantidad ? "Cantidad" : "Coeficiente", q));
  if (fila != nullptr)
    e.c.datos.Cambiar(*fila, cantidad, coeficiente);
  else
    e.c.datos.Agregar(DatoDelMes{.id_Concepto = e.dato.concepto,
                                 .valor = cantidad,
                                 .id_Contrato = e.dato.contrato,
                                 .idAgrupa = e.dato.agrupa,
                                 .Coeficiente = coeficiente,
                                 .id_Encabezado = e.dato.encabezado});
  // Only data without instalments come here, so these two do not run; the guard is wanted as it stands.
  if (id_Pago != -1 && e.TipoCuota != 0) {
    sql::Cuota cuota;
    cuota.idEmpresa = empresa;
    cuota.id_Pago = static_cast<std::int32_t>(id_Pago);
    cuota.cantidad = q;
    Escribir(e.c, sql::ActualizarPago(cuota));
    Escribir(e.c, sql::ActualizarPagoDeta(cuota));
  }
  return {cantidad, coeficiente};
}

}  // namespace

Cifras EscribirDato(Corrida& c, const DatoALiquidar& dato, const importfile::ImportRow& fila) {
  Escritura e{c, dato, TipoDatoDe(fila), TipoCuotaDe(fila), {}};
  std::optional<std::int32_t> id_Dato;
  if (c.entrada.opciones.TotalizarConc) {
    const auto rs = c.entrada.sesion.conexion->Execute(sql::BuscarDato(e.Clave()));
    if (!rs.IsEmpty()) id_Dato = rs.At(0, 0).Integer();
  } else if (e.TipoDato != kTipoCantidadYValor) {
    Escribir(c, sql::BorrarDato(e.Clave()));
  }
  e.nombre_cuota = NombreDeCuota(c, e.TipoCuota, fila.campo);
  if (id_Dato && e.TipoCuota == 0) return Actualizar(e, *id_Dato);
  Insertar(e);
  return dato.cifras;
}

}  // namespace liquidation
