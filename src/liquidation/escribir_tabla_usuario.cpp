#include "base/number.h"
#include "formula/tablas_usuario/user_tables.h"
#include "liquidation/liquidation_internal.h"

namespace liquidation {
namespace {

constexpr std::size_t kCampoFecha = 4;  // of a series: id, id_Tabla, Codigo, Valor, Fecha

base::Date FechaDeRegistro(const formula::Vector& serie, std::size_t registro, base::Date hoy) {
  return base::DateFromText(serie.Campo(kCampoFecha, registro), hoy).value_or(base::Date{});
}

// True when what holds at the month is the last value, or the next one starts more than a month later: then a
// 0 must follow, so that the imported value holds for its month alone.
bool DebeCerrarse(const formula::Vector& serie, base::Date mes, base::Date hoy) {
  const int vigente = formula::PosicionFecha(serie, mes, kCampoFecha, hoy);
  const auto siguiente = static_cast<std::size_t>(vigente + 1);
  if (siguiente >= serie.Cantidad()) return true;
  return base::DateDiff("m", mes, FechaDeRegistro(serie, siguiente, hoy)) > 1;
}

}  // namespace

float EscribirTablaUsuario(Corrida& c, const DatoALiquidar& dato) {
  const EntradaImportacion& e = c.entrada;
  const std::int32_t tabla = dato.concepto - 1000;
  const std::string codigo = std::to_string(dato.contrato);
  float cantidad = dato.cifras.cantidad;
  const base::Date hoy = e.sesion.reloj->Today();
  const base::Date mes_siguiente = base::DateAdd("m", 1, e.mes);
  const bool tenia_valores = e.tablas.TieneValores(tabla, codigo);
  Marcar(c);
  c.escribio = true;  // a value takes several statements

  if (!e.opciones.TotalizarConc) {
    // The 0 at the month is replaced by the quantity: it stands for clearing what the month had. Tables of
    // every kind are dated at the month.
    if (tenia_valores) formula::GuardarValorTablaUsuario(e.sesion, tabla, codigo, "0", e.mes);
    formula::GuardarValorTablaUsuario(e.sesion, tabla, codigo, base::SqlSingle(cantidad), e.mes);
    if (tenia_valores) formula::CerrarValorTablaUsuario(e.sesion, tabla, codigo, mes_siguiente);
    return cantidad;
  }

  DatoDelMes* previo = c.datos.BuscarDeTabla(dato.concepto, dato.contrato);
  if (previo != nullptr) cantidad = previo->valor + cantidad;
  formula::GuardarValorTablaUsuario(e.sesion, tabla, codigo,
                                    base::SqlNumber(base::DoubleOfSingle(cantidad) + 200.0), e.mes, true);
  if (previo != nullptr)
    c.datos.Cambiar(*previo, cantidad, previo->Coeficiente);
  else
    c.datos.Agregar(DatoDelMes{.id_Concepto = dato.concepto,
                               .valor = cantidad,
                               .id_Contrato = dato.contrato,
                               .Coeficiente = dato.cifras.coeficiente,
                               .id_Encabezado = kSinEncabezado});
  if (tenia_valores && DebeCerrarse(e.tablas.Serie(tabla, codigo), e.mes, hoy))
    formula::CerrarValorTablaUsuario(e.sesion, tabla, codigo, mes_siguiente);
  return cantidad;
}

}  // namespace liquidation
