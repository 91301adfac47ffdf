#include "base/text.h"
#include "relations/code_relations.h"
#include "relations/sql.h"

namespace relations {
namespace {

// The first and the last character go whatever they are; a list of fewer than two has no codes.
std::string CodigosAGuardar(std::string_view externos) {
  return base::Mid(externos, 2, static_cast<std::ptrdiff_t>(base::Length(externos)) - 2);
}

void Guardar(db::Connection& conexion, const CodeRelations& relaciones) {
  const std::int32_t tipo = relaciones.tipo_dato_externo;
  conexion.Execute(sql::BorrarDatosExternos(tipo));
  for (std::size_t i = 0; i < relaciones.Cantidad(); ++i) {
    const auto id = IdentificadorDe(relaciones.Campo(kConcepto, i));
    if (!id)
      throw db::Error("La relación '" + relaciones.Campo(kCodigo, i) + "' no tiene un concepto: '" +
                      relaciones.Campo(kConcepto, i) + "'");
    conexion.Execute(sql::InsertarDatoExterno(tipo, *id, CodigosAGuardar(relaciones.Campo(kExternos, i))));
  }
}

// Inside a caller's transaction what came before stays the caller's.
template <typename Paso>
void TodoONada(db::Connection& conexion, Paso&& paso) {
  const bool propia = !conexion.InTransaction();
  propia ? conexion.BeginTrans() : conexion.SetSavepoint();
  try {
    paso();
    propia ? conexion.CommitTrans() : conexion.ReleaseSavepoint();
  } catch (const base::Error&) {
    if (!propia)
      conexion.RollbackToSavepoint();
    else if (conexion.InTransaction())
      conexion.RollbackTrans();
    throw;
  }
}

}  // namespace

std::string GuardarRelacionesEnBase(const sesion::DbSession& sesion, const CodeRelations& relaciones,
                                    base::ErrorSink* errores) {
  if (relaciones.tipo_dato_externo == 0 || relaciones.carga_fallida) return {};
  std::string motivo;
  base::PassOverError("GuardarRelacionesEnBase", errores, [&] {
    try {
      if (!sesion.Abierta()) throw db::Error("La Base no está Abierta");
      TodoONada(*sesion.conexion, [&] { Guardar(*sesion.conexion, relaciones); });
    } catch (const base::Error& e) {
      motivo = e.Description();
      throw;
    }
  });
  return motivo;
}

}  // namespace relations
