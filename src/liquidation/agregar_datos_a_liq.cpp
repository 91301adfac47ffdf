#include "liquidation/agregar_datos_a_liq.h"

#include <limits>

#include "base/number.h"
#include "db/next_id.h"
#include "liquidation/liquidation_internal.h"
#include "liquidation/revisar_fila.h"

namespace liquidation {
namespace {

// The type for the contract, remembered while the contract stays the same.
std::int32_t TipoDeContrato(Corrida& c, std::int32_t contrato) {
  if (contrato == c.cache.contrato) return c.cache.tipo;
  c.cache.tipo = -1;
  base::ErrorIgnorado("AgregarDatosALiq: tipo de liquidación", c.errores, [&] {
    if (!c.consulta_tipos) c.consulta_tipos.emplace(c.sesion->idEmpresa, c.mes, c.condiciones);
    const auto rs = c.sesion->conexion->Ejecutar(c.consulta_tipos->De(contrato));
    if (!rs.Vacio()) c.cache.tipo = rs.En(0, 0).Entero();
  });
  c.cache.contrato = contrato;
  return c.cache.tipo;
}

// An open header that the key search did not show (its person has no card, or a document stored in another
// form). Not knowing would make a second one: the line is refused when this cannot be read.
std::optional<std::int32_t> EncabezadoYaAbierto(Corrida& c, std::int32_t contrato, std::int32_t tipo) {
  const auto rs =
      c.sesion->conexion->Ejecutar(sql::EncabezadoDeContrato(c.sesion->idEmpresa, c.mes, contrato, tipo));
  if (rs.Vacio()) return std::nullopt;
  return rs.En(0, 0).Entero();
}

// The header that receives the datum, or the reason why there is none.
struct Eleccion {
  std::int32_t encabezado = 0;
  std::string motivo;
};

Eleccion ElegirEncabezado(Corrida& c, std::int32_t contrato, std::string_view clave) {
  const EncabezadoAbierto* hallado = c.encabezados.Find(clave, contrato);
  const std::int32_t tipo = TipoDeContrato(c, contrato);
  if (hallado != nullptr) {
    if (hallado->Terminado) return {0, "La Liquidación está terminada"};
    if (hallado->id_TipoLiq == tipo) return {hallado->id_Encabezado, {}};
  }
  if (tipo == -1) return {0, "La Liquidaciones de tipo " + c.texto_liquidacion + " estan terminadas"};
  if (const auto abierto = EncabezadoYaAbierto(c, contrato, tipo)) return {*abierto, {}};
  const std::int32_t nuevo = IdentificadorNuevo(c, "Encabezados", "id_Encabezado");
  Escribir(c,
           sql::InsertarEncabezado(c.sesion->idEmpresa, nuevo, c.mes, contrato, tipo, c.sesion->id_Usuario));
  c.encabezados.Reabrir(*c.sesion, nuevo);
  return {nuevo, {}};
}

}  // namespace

void Marcar(Corrida& c) {
  if (c.marcada) return;
  c.sesion->conexion->SetSavepoint();
  c.marcada = true;
}

void Escribir(Corrida& c, const std::string& sql) {
  Marcar(c);
  c.sesion->conexion->Ejecutar(sql);
  c.escribio = true;
}

std::int32_t IdentificadorNuevo(const Corrida& corrida, std::string_view tabla, std::string_view campo) {
  const std::int32_t mayor = db::NextId(*corrida.sesion->conexion, tabla, campo);
  if (mayor == std::numeric_limits<std::int32_t>::max()) throw base::Error(base::DescripcionDeError(6), 6);
  return mayor + 1;
}

std::string AgregarDatosALiq(Corrida& c, std::int32_t concepto, float& cantidad, std::size_t fila_persona,
                             const importfile::ImportRow& fila, std::int64_t centro_costo,
                             float& coeficiente) {
  const std::int32_t contrato = Identificador32(c.personas->Texto(refdata::kContrato, fila_persona));
  if (concepto >= 1000) {
    EscribirTablaUsuario(c, concepto, contrato, cantidad, coeficiente);
    return {};
  }
  const Eleccion eleccion =
      ElegirEncabezado(c, contrato, c.personas->Texto(c.opciones->Configura, fila_persona));
  if (!eleccion.motivo.empty()) return eleccion.motivo;
  const DatoALiquidar dato{concepto, contrato, eleccion.encabezado,
                           Agrupacion(*c.sesion, *c.opciones, *c.personas, fila_persona, fila, centro_costo)};
  EscribirDato(c, dato, cantidad, coeficiente, fila);
  return {};
}

}  // namespace liquidation
