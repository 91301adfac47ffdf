#include "base/number.h"
#include "base/text.h"
#include "formula/evaluador/evaluator_internal.h"
#include "formula/evaluador/sql.h"

namespace formula {
namespace {

constexpr const char* kDemasiadoTrabajo =
    "La consulta de la fórmula se interrumpió: da demasiado trabajo a la base";
constexpr const char* kDemasiadoGrande =
    "La consulta de la fórmula se interrumpió: su resultado es demasiado grande";

// A line of an import file reaches this text: only what reads may run, and only for so long. An interrupted
// query has no value, not even the default of one that fails: a quantity of 0 would look like one.
db::Recordset Consultar(Evaluador& ev, std::string_view texto) {
  Gastar(ev, kTrabajoDeConsulta + kTrabajoPorByteDeConsulta * texto.size());
  if (ev.sesion == nullptr || !ev.sesion->Abierta())
    throw db::Error("No se ha conectado con la base de datos");
  try {
    return ev.sesion->conexion->QueryBounded(sql::DeFormula(texto), ev.consultas);
  } catch (const db::QueryInterrupted& e) {
    Abandonar(ev, e.Reason() == db::QueryInterrupted::By::Work ? kDemasiadoTrabajo : kDemasiadoGrande);
  }
}

}  // namespace

std::string FuncionSql(Evaluador& ev, std::string_view x) {
  std::string valor = "0";
  base::PassOverError("SQL", nullptr, [&] {
    const db::Recordset filas = Consultar(ev, x);
    if (filas.IsEmpty()) return;
    valor = TextoDeNumero(ev, base::Round(filas.At(0, 0).Number(ev.locale), 15));
  });
  return valor;
}

std::string FuncionLista(Evaluador& ev, std::string_view x) {
  const auto partes = SepararFueraDeParentesis(x, ';');
  if (partes.size() < 2) throw base::Error("Falta uno de los parametros", 3);
  std::string lista;
  base::PassOverError("LISTA", nullptr, [&] {
    const db::Recordset filas = Consultar(ev, partes[0]);
    for (std::size_t fila = 0; fila < filas.Count(); ++fila) {
      if (fila > 0) lista += partes[1];
      if (lista.size() > kTextoMaximo) Abandonar(ev, kDemasiadoGrande);
      for (std::size_t campo = 0; campo < filas.Fields().size(); ++campo)
        lista += filas.At(campo, fila).Text(ev.locale);
    }
  });
  return lista;
}

}  // namespace formula
