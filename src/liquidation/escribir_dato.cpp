#include <cmath>

#include "base/number.h"
#include "base/text.h"
#include "formula/line_formula.h"
#include "liquidation/liquidation_internal.h"

namespace liquidation {
namespace {

int Numero(const std::string& texto) {
  const double n = base::ValorNumerico(texto);
  return std::abs(n) < 1e9 ? static_cast<int>(std::lround(n)) : 0;
}

// What one datum needs on its way through the steps.
struct Escritura {
  Corrida& c;
  const DatoALiquidar& dato;
  int TipoDato;
  int TipoCuota;
  std::string nombre_cuota;
  ErrorPendiente error;

  sql::ClaveDato Clave() const { return {c.sesion->idEmpresa, dato.encabezado, dato.concepto, dato.agrupa}; }
  bool Ejecutar(const std::string& texto) {
    return error.Intentar([&] { c.sesion->conexion->Ejecutar(texto); });
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
  const std::string& plantilla = c.opciones->TextoTipoCuota;
  if (TipoCuota == 0 && !EvaluacionVisible(plantilla, campos)) return {};
  std::string nombre =
      formula::EvaluarTexto(*c.evaluador, "#" + formula::ReemplazaComodines(plantilla, campos) + "#");
  if (TipoCuota != 0 && c.evaluador->agotado != nullptr) throw base::Error(c.evaluador->agotado);
  return nombre;
}

void Insertar(Escritura& e, float cantidad, float coeficiente) {
  const std::string q = base::SqlDeSimple(cantidad), k = base::SqlDeSimple(coeficiente);
  std::int32_t id_Dato = 0;
  if (!e.error.Intentar([&] { id_Dato = IdentificadorNuevo(e.c, "Datos_Liquidacion", "id_Dato"); })) return;
  std::string par;
  if (e.TipoDato == 3)
    par = q + ",0";
  else if (e.TipoCuota != 0)
    par = "1," + q;
  else if (e.TipoDato == 5)
    par = q + "," + k;
  else
    par = "0," + q;
  const bool escrito = e.Ejecutar(sql::InsertarDato(id_Dato, e.Clave(), par));

  std::int32_t id_Pago = -1;
  if (e.TipoCuota != 0) {
    std::int32_t nuevo = 0;
    if (e.error.Intentar([&] { nuevo = IdentificadorNuevo(e.c, "PagosEnSueldo", "id_Pago"); })) {
      id_Pago = nuevo;
      const sql::Cuota cuota{e.c.sesion->idEmpresa, id_Pago, e.dato.contrato, e.dato.concepto, id_Dato, q,
                             e.nombre_cuota};
      e.Ejecutar(sql::InsertarPago(cuota, e.c.mes));
      e.Ejecutar(sql::InsertarPagoDeta(cuota, e.c.mes));
    }
  }
  // A datum that could not be written is not there for later lines to be added to.
  if (e.c.opciones->TotalizarConc && escrito)
    e.c.datos.Agregar(
        DatoDelMes{e.dato.concepto, cantidad, e.dato.contrato, id_Pago, e.dato.agrupa, coeficiente});
}

// The sum of what the month's table holds and the line. The table takes it only when the statement succeeded.
void Actualizar(Escritura& e, std::int32_t id_Dato, float& cantidad, float& coeficiente) {
  const std::int32_t empresa = e.c.sesion->idEmpresa;
  std::int64_t id_Pago = -1;
  DatoDelMes* fila = e.c.datos.Buscar(e.dato.concepto, e.dato.contrato, e.dato.agrupa);
  if (fila != nullptr) {
    coeficiente = fila->Coeficiente * fila->valor + cantidad * coeficiente;
    cantidad = fila->valor + cantidad;
    if (base::Redondear(static_cast<double>(cantidad), 5) != 0) coeficiente = coeficiente / cantidad;
    id_Pago = fila->id_Pago;
  }
  const std::string q = base::SqlDeSimple(cantidad), k = base::SqlDeSimple(coeficiente);
  const bool escrito =
      e.TipoDato != 5
          ? e.Ejecutar(sql::ActualizarDato(empresa, id_Dato, e.TipoDato == 3 ? "Cantidad" : "Coeficiente", q))
          : e.Ejecutar(sql::ActualizarDatoYCoeficiente(empresa, id_Dato, q, k));
  if (escrito && fila != nullptr) {
    fila->valor = cantidad;
    fila->Coeficiente = coeficiente;
  } else if (escrito) {
    e.c.datos.Agregar(DatoDelMes{e.dato.concepto, cantidad, e.dato.contrato, -1, e.dato.agrupa, coeficiente});
  }
  // Only data without instalments come here, so these two do not run; the guard is wanted as it stands.
  if (id_Pago != -1 && e.TipoCuota != 0) {
    sql::Cuota cuota;
    cuota.idEmpresa = empresa;
    cuota.id_Pago = static_cast<std::int32_t>(id_Pago);
    cuota.cantidad = q;
    e.Ejecutar(sql::ActualizarPago(cuota));
    e.Ejecutar(sql::ActualizarPagoDeta(cuota));
  }
}

}  // namespace

std::string EscribirDato(Corrida& c, const DatoALiquidar& dato, float& cantidad, float& coeficiente,
                         const importfile::ImportRow& fila) {
  Escritura e{c,  dato, Numero(fila.campo[importfile::kTipoDato]), Numero(fila.campo[importfile::kTipoCuota]),
              {}, {}};
  std::int32_t id_Dato = -1;
  if (c.opciones->TotalizarConc) {
    e.error.Intentar([&] {
      const auto rs = c.sesion->conexion->Ejecutar(sql::BuscarDato(e.Clave()));
      if (!rs.Vacio()) id_Dato = rs.En(0, 0).Entero();
    });
  } else if (e.TipoDato != 5) {
    e.Ejecutar(sql::BorrarDato(e.Clave()));
  }
  e.nombre_cuota = NombreDeCuota(c, e.TipoCuota, fila.campo);
  if (id_Dato == -1 || e.TipoCuota != 0)
    Insertar(e, cantidad, coeficiente);
  else
    Actualizar(e, id_Dato, cantidad, coeficiente);
  return e.error.Descripcion();
}

}  // namespace liquidation
