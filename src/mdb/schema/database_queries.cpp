#include <algorithm>
#include <array>

#include "mdb/schema/schema_internal.h"
#include "mdb/schema/system_definitions_internal.h"

namespace mdb {
namespace {

// A row each for the start and the end, and a counter of its own for each row within its attribute.
std::vector<FilaDeConsulta> FilasCompletas(const ConsultaGuardada& consulta) {
  std::vector<FilaDeConsulta> filas = consulta.filas;
  const auto asegurar = [&](std::uint8_t atributo, std::optional<std::int16_t> bandera) {
    if (std::any_of(filas.begin(), filas.end(), [&](const auto& f) { return f.atributo == atributo; }))
      return;
    FilaDeConsulta f;
    f.atributo = atributo;
    f.bandera = bandera;
    filas.push_back(std::move(f));
  };
  asegurar(query_codes::kStart, std::int16_t{0});
  asegurar(query_codes::kEnd, std::nullopt);
  std::array<std::uint32_t, 256> ultimo{};
  for (const auto& f : filas) ultimo[f.atributo] = std::max(ultimo[f.atributo], f.orden);
  for (auto& f : filas)
    if (f.orden == 0) f.orden = ++ultimo[f.atributo];
  return filas;
}

// The counter as the table keeps it: four bytes, highest first.
Bytes OrdenGuardado(std::uint32_t orden) {
  return {static_cast<std::uint8_t>(orden >> 24), static_cast<std::uint8_t>(orden >> 16),
          static_cast<std::uint8_t>(orden >> 8), static_cast<std::uint8_t>(orden)};
}

template <typename T, typename Valor>
Dato DatoDe(const std::optional<Valor>& valor) {
  if (!valor) return {};
  return T{*valor};
}

void AgregarFilas(Paginas& paginas, std::int32_t id, const ConsultaGuardada& consulta) {
  Definicion d = internal::LeerTablaDelSistema(paginas, paginas.Cab().consultas);
  Cambios cambios;
  for (const auto& f : FilasCompletas(consulta))
    cambios.nuevas.push_back(internal::FilaPorNombre(d)
                                 .Poner("ObjectId", std::int64_t{id})
                                 .Poner("Attribute", std::int64_t{f.atributo})
                                 .Poner("Order", OrdenGuardado(f.orden))
                                 .Poner("Name1", DatoDe<std::string>(f.nombre1))
                                 .Poner("Name2", DatoDe<std::string>(f.nombre2))
                                 .Poner("Expression", DatoDe<std::string>(f.expresion))
                                 .Poner("Flag", DatoDe<std::int64_t>(f.bandera))
                                 .Poner("LvExtra", DatoDe<std::int64_t>(f.extra))
                                 .Tomar());
  Aplicar(paginas, d, cambios);
}

}  // namespace

void Base::CrearConsulta(const ConsultaGuardada& consulta, base::Fecha ahora) {
  internal::ComprobarNombre(consulta.nombre, "una consulta");
  internal::ComprobarNombreLibre(catalogo_, consulta.nombre);
  internal::Intento intento(*paginas_, catalogo_);
  internal::NuevoObjeto objeto;
  objeto.id = internal::IdLibre(catalogo_);
  objeto.padre = kContenedorTablas;
  objeto.nombre = consulta.nombre;
  objeto.tipo = Objeto::Consulta;
  objeto.banderas = (consulta.banderas & ~kKindBits) | ObjectFlagsOf(ClaseDe(consulta));
  internal::AgregarObjeto(*paginas_, catalogo_, objeto, ahora);
  AgregarFilas(*paginas_, objeto.id, consulta);
  intento.Cumplir();
}

void Base::BorrarConsulta(std::string_view nombre) {
  const Objeto* objeto = catalogo_.Buscar(nombre);
  if (objeto == nullptr || objeto->tipo != Objeto::Consulta)
    throw base::Error("La base no tiene una consulta \"" + std::string(nombre) + "\"");
  internal::Intento intento(*paginas_, catalogo_);
  internal::BorrarFilasDonde(*paginas_, paginas_->Cab().consultas, "ObjectId", std::int64_t{objeto->id});
  internal::QuitarObjeto(*paginas_, *objeto);
  intento.Cumplir();
}

}  // namespace mdb
