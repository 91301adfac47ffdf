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
  const EntradaImportacion& e = c.entrada;
  c.cache.tipo = -1;
  base::PassOverError("AgregarDatosALiq: tipo de liquidación", &c.errores, [&] {
    if (!c.consulta_tipos) c.consulta_tipos.emplace(e.sesion.idEmpresa, e.mes, e.condiciones);
    const auto rs = e.sesion.conexion->Execute(c.consulta_tipos->De(contrato));
    if (!rs.IsEmpty()) c.cache.tipo = rs.At(0, 0).Integer();
  });
  c.cache.contrato = contrato;
  return c.cache.tipo;
}

// An open header that the key search did not show (its person has no card, or a document stored in another
// form). Not knowing would make a second one: the line is refused when this cannot be read.
std::optional<std::int32_t> EncabezadoYaAbierto(const EntradaImportacion& e, std::int32_t contrato,
                                                std::int32_t tipo) {
  const auto rs =
      e.sesion.conexion->Execute(sql::EncabezadoDeContrato(e.sesion.idEmpresa, e.mes, contrato, tipo));
  if (rs.IsEmpty()) return std::nullopt;
  return rs.At(0, 0).Integer();
}

// The header that receives the datum, or the reason why there is none.
struct Eleccion {
  std::int32_t encabezado = 0;
  std::string motivo;
};

Eleccion ElegirEncabezado(Corrida& c, std::int32_t contrato, std::string_view clave) {
  const EntradaImportacion& e = c.entrada;
  const EncabezadoAbierto* hallado = c.encabezados.Buscar(clave, contrato);
  const std::int32_t tipo = TipoDeContrato(c, contrato);
  if (hallado != nullptr) {
    if (hallado->Terminado) return {0, "La Liquidación está terminada"};
    c.destino.por_clave = hallado->id_TipoLiq == tipo;
    if (c.destino.por_clave) return {hallado->id_Encabezado, {}};
  }
  if (tipo == -1) return {0, "La Liquidaciones de tipo " + e.texto_liquidacion + " estan terminadas"};
  if (const auto abierto = EncabezadoYaAbierto(e, contrato, tipo)) return {*abierto, {}};
  const std::int32_t nuevo = IdentificadorNuevo(c, "Encabezados", "id_Encabezado");
  Escribir(c, sql::InsertarEncabezado(e.sesion.idEmpresa, nuevo, e.mes, contrato, tipo, e.sesion.id_Usuario));
  c.encabezados.Reabrir(e.sesion, nuevo);
  c.destino.encabezado_nuevo = true;
  return {nuevo, {}};
}

}  // namespace

void Marcar(Corrida& c) {
  if (c.marcada) return;
  c.entrada.sesion.conexion->SetSavepoint();
  c.marcada = true;
}

void Escribir(Corrida& c, const std::string& sql) {
  Marcar(c);
  c.entrada.sesion.conexion->Execute(sql);
  c.escribio = true;
}

std::int32_t IdentificadorNuevo(const Corrida& corrida, std::string_view tabla, std::string_view campo) {
  const std::int32_t mayor = db::NextId(*corrida.entrada.sesion.conexion, tabla, campo);
  if (mayor == std::numeric_limits<std::int32_t>::max()) throw base::Error(base::ErrorDescription(6), 6);
  return mayor + 1;
}

std::string AgregarDatosALiq(Corrida& c, std::int32_t concepto, float& cantidad, std::size_t fila_persona,
                             const importfile::ImportRow& fila, std::int64_t centro_costo,
                             float& coeficiente) {
  const refdata::PersonsIndex& personas = c.entrada.personas;
  DatoALiquidar dato{concepto,
                     Identificador32(personas.Texto(refdata::kContrato, fila_persona)),
                     0,
                     0,
                     {cantidad, coeficiente}};
  c.destino = {.contrato = dato.contrato, .concepto = concepto};
  if (concepto >= 1000) {
    cantidad = EscribirTablaUsuario(c, dato);
    return {};
  }
  const Eleccion eleccion =
      ElegirEncabezado(c, dato.contrato, personas.Texto(c.entrada.opciones.Configura, fila_persona));
  if (!eleccion.motivo.empty()) return eleccion.motivo;
  dato.encabezado = eleccion.encabezado;
  dato.agrupa = Agrupacion(c.entrada.sesion, c.entrada.opciones, personas, fila_persona, fila, centro_costo);
  c.destino.encabezado = dato.encabezado;
  c.destino.agrupa = dato.agrupa;
  const Cifras escritas = EscribirDato(c, dato, fila);
  cantidad = escritas.cantidad;
  coeficiente = escritas.coeficiente;
  return {};
}

}  // namespace liquidation
