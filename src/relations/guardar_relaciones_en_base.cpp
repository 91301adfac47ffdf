#include "base/text.h"
#include "relations/code_relations.h"
#include "relations/sql.h"

namespace relations {
namespace {

// The first and the last character go whatever they are; a shorter list has no codes.
std::string CodigosAGuardar(std::string_view externos) {
  const auto largo = static_cast<std::ptrdiff_t>(base::Longitud(externos));
  return largo < 2 ? std::string() : base::Mid(externos, 2, largo - 2);
}

}  // namespace

void GuardarRelacionesEnBase(const db::DbSession& sesion, const CodeRelations& relaciones,
                             base::SumideroErrores* errores) {
  const std::int32_t tipo = relaciones.tipo_dato_externo;
  if (tipo == 0 || relaciones.carga_fallida) return;
  constexpr std::string_view donde = "GuardarRelacionesEnBase";
  if (!sesion.Abierta()) {
    base::ErrorIgnorado(donde, errores, [] { throw db::Error("La Base no está Abierta"); });
    return;
  }
  db::Connection& conexion = *sesion.conexion;
  const auto paso = [&](auto&& hacer) { return base::ErrorIgnorado(donde, errores, hacer); };

  const bool propia = !conexion.EnTransaccion() && paso([&] { conexion.BeginTrans(); });
  paso([&] { conexion.Ejecutar(sql::BorrarDatosExternos(tipo)); });
  for (std::size_t i = 0; i < relaciones.Cantidad(); ++i)
    paso([&] {
      conexion.Ejecutar(sql::InsertarDatoExterno(tipo, relaciones.Campo(kConcepto, i),
                                                 CodigosAGuardar(relaciones.Campo(kExternos, i))));
    });
  if (propia && !paso([&] { conexion.CommitTrans(); })) paso([&] { conexion.RollbackTrans(); });
}

}  // namespace relations
