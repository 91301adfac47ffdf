#include "base/number.h"
#include "formula/user_tables.h"
#include "liquidation/liquidation_internal.h"

namespace liquidation {
namespace {

constexpr std::size_t kCampoFecha = 4;  // of a series: id, id_Tabla, Codigo, Valor, Fecha

base::Fecha FechaDeRegistro(const formula::Vector& serie, std::size_t registro, base::Fecha hoy) {
  return base::FechaDeTexto(serie.Campo(kCampoFecha, registro), hoy).value_or(base::Fecha{});
}

// True when what holds at the month is the last value, or the next one starts more than a month later: then a
// 0 must follow, so that the imported value holds for its month alone.
bool DebeCerrarse(const formula::Vector& serie, base::Fecha mes, base::Fecha hoy) {
  const int vigente = formula::PosicionFecha(serie, mes, kCampoFecha, hoy);
  const auto siguiente = static_cast<std::size_t>(vigente + 1);
  if (vigente < 0 || siguiente >= serie.Cantidad()) return true;
  return base::DateDiff("m", mes, FechaDeRegistro(serie, siguiente, hoy)) > 1;
}

}  // namespace

std::string EscribirTablaUsuario(Corrida& c, std::int32_t concepto, std::int32_t contrato, float& cantidad,
                                 float coeficiente) {
  const std::int32_t tabla = concepto - 1000;
  const std::string codigo = std::to_string(contrato);
  const base::Fecha hoy = c.sesion->reloj->Hoy();
  const base::Fecha mes_siguiente = base::DateAdd("m", 1, c.mes);
  ErrorPendiente error;
  const auto guardar = [&](const std::string& valor, base::Fecha fecha, bool sumado) {
    return error.Intentar(
        [&] { formula::GuardarValorTablaUsuario(*c.sesion, tabla, codigo, valor, fecha, sumado); });
  };
  const bool tenia_valores = c.tablas->TieneValores(tabla, codigo);

  if (!c.opciones->TotalizarConc) {
    // The 0 at the month is replaced by the quantity: it stands for clearing what the month had. Tables of
    // every kind are dated at the month.
    const bool escrito =
        (!tenia_valores || guardar("0", c.mes, false)) && guardar(base::SqlDeSimple(cantidad), c.mes, false);
    if (escrito && tenia_valores) guardar("0", mes_siguiente, false);
    return error.Descripcion();
  }

  DatoDelMes* previo = c.datos.Buscar(concepto, contrato);
  if (previo != nullptr) cantidad = previo->valor + cantidad;
  const bool escrito = guardar(base::SqlDeNumero(base::DobleDeSimple(cantidad) + 200.0), c.mes, true);
  if (!escrito) return error.Descripcion();  // nor is what the contract had closed
  if (previo != nullptr)
    previo->valor = cantidad;
  else
    c.datos.Agregar(DatoDelMes{concepto, cantidad, contrato, -1, 0, coeficiente});
  if (tenia_valores && DebeCerrarse(c.tablas->Serie(tabla, codigo), c.mes, hoy))
    guardar("0", mes_siguiente, false);
  return error.Descripcion();
}

}  // namespace liquidation
