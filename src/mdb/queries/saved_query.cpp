#include "mdb/queries/saved_query.h"

#include "base/error.h"

namespace mdb {
namespace {

struct Kind {
  ClaseConsulta kind;
  std::int16_t code;
  std::uint32_t flags;
};
constexpr Kind kKinds[] = {
    {ClaseConsulta::Seleccion, 1, 0},     {ClaseConsulta::CrearTabla, 2, 0x50},
    {ClaseConsulta::Agregar, 3, 0x40},    {ClaseConsulta::Actualizar, 4, 0x30},
    {ClaseConsulta::Eliminar, 5, 0x20},   {ClaseConsulta::Cruzada, 6, 0x10},
    {ClaseConsulta::Definicion, 7, 0x60}, {ClaseConsulta::Directa, 8, 0x70},
    {ClaseConsulta::Union, 9, 0x80},
};

const Kind& Of(ClaseConsulta kind) { return kKinds[static_cast<std::size_t>(kind)]; }

}  // namespace

std::int16_t CodeOf(ClaseConsulta kind) { return Of(kind).code; }

std::uint32_t ObjectFlagsOf(ClaseConsulta kind) { return Of(kind).flags; }

ClaseConsulta ClaseDe(const ConsultaGuardada& consulta) {
  for (const auto& f : consulta.filas) {
    if (f.atributo != query_codes::kKind || !f.bandera) continue;
    for (const Kind& k : kKinds)
      if (k.code == *f.bandera) return k.kind;
    throw base::Error("La consulta \"" + consulta.nombre + "\" es de una clase que no se conoce");
  }
  for (const Kind& k : kKinds)
    if (k.flags == (consulta.banderas & kKindBits)) return k.kind;
  return ClaseConsulta::Seleccion;
}

}  // namespace mdb
