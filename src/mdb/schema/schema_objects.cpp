#include <algorithm>
#include <set>

#include "mdb/rows/table.h"
#include "mdb/schema/schema_internal.h"
#include "mdb/schema/system_definitions_internal.h"

namespace mdb::internal {
namespace {

constexpr std::int64_t kTodoPermitido = 0xFFFFF;

// The SID that owns what the file's user makes: that of the database's own object.
Dato Propietario(Paginas& paginas, const Catalogo& catalogo, const Definicion& objetos) {
  for (const auto& o : catalogo.Objetos()) {
    if (o.id != kObjetoBase) continue;
    const auto fila = LeerFila(paginas, objetos, o.fila);
    const auto posicion = objetos.PorNombre("Owner");
    if (fila && posicion) return (*fila)[*posicion];
  }
  return {};
}

// Whoever has a row for the container, once each, in the order in which they stand.
std::vector<Dato> SidsDe(Paginas& paginas, const Definicion& permisos, std::int32_t contenedor) {
  std::vector<Dato> sids;
  const auto objeto = permisos.PorNombre("ObjectId"), sid = permisos.PorNombre("SID");
  if (!objeto || !sid) return sids;
  RecorrerFilas(paginas, permisos,
                [&](IdFila, const Fila& fila) {
                  if (fila[*objeto] == Dato(std::int64_t{contenedor}) &&
                      std::find(sids.begin(), sids.end(), fila[*sid]) == sids.end())
                    sids.push_back(fila[*sid]);
                  return true;
                },
                {*objeto, *sid});
  return sids;
}

void AgregarPermisos(Paginas& paginas, const NuevoObjeto& objeto) {
  Definicion permisos = LeerTablaDelSistema(paginas, paginas.Cab().permisos);
  Cambios cambios;
  for (auto& sid : SidsDe(paginas, permisos, objeto.padre))
    cambios.nuevas.push_back(FilaPorNombre(permisos)
                                 .Poner("ObjectId", std::int64_t{objeto.id})
                                 .Poner("SID", std::move(sid))
                                 .Poner("ACM", kTodoPermitido)
                                 .Poner("FInheritable", false)
                                 .Tomar());
  Aplicar(paginas, permisos, cambios);
}

Dato DatoDePropiedades(const Propiedades& propiedades) {
  if (propiedades.empty()) return {};
  return SerializarPropiedades(propiedades);
}

}  // namespace

Definicion LeerTablaDelSistema(Paginas& paginas, NumPagina pagina) {
  const Cabecera& c = paginas.Cab();
  Definicion d = LeerDefinicion(paginas, pagina);
  d.nombre = pagina == c.objetos     ? "MSysObjects"
             : pagina == c.permisos  ? "MSysACEs"
             : pagina == c.consultas ? "MSysQueries"
                                     : "MSysRelationships";
  return d;
}

FilaPorNombre& FilaPorNombre::Poner(const char* columna, Dato dato) {
  const auto posicion = definicion_.PorNombre(columna);
  if (!posicion)
    DanioEnPagina(definicion_.Pagina(), "la tabla de sistema no tiene la columna " + std::string(columna));
  fila_[*posicion] = std::move(dato);
  return *this;
}

std::int32_t IdLibre(const Catalogo& catalogo) {
  std::set<std::int32_t> tomados;
  for (const auto& o : catalogo.Objetos())
    if (o.id < 0) tomados.insert(o.id);
  std::int32_t id = INT32_MIN;
  while (tomados.contains(id)) ++id;
  return id;
}

void AgregarObjeto(Paginas& paginas, const Catalogo& catalogo, const NuevoObjeto& objeto, base::Fecha ahora) {
  Definicion objetos = LeerTablaDelSistema(paginas, paginas.Cab().objetos);
  Cambios cambios;
  cambios.nuevas.push_back(FilaPorNombre(objetos)
                               .Poner("Id", std::int64_t{objeto.id})
                               .Poner("ParentId", std::int64_t{objeto.padre})
                               .Poner("Name", objeto.nombre)
                               .Poner("Type", std::int64_t{objeto.tipo})
                               .Poner("DateCreate", ahora)
                               .Poner("DateUpdate", ahora)
                               .Poner("Owner", Propietario(paginas, catalogo, objetos))
                               .Poner("Flags", std::int64_t{static_cast<std::int32_t>(objeto.banderas)})
                               .Poner("LvProp", DatoDePropiedades(objeto.propiedades))
                               .Tomar());
  Aplicar(paginas, objetos, cambios);
  AgregarPermisos(paginas, objeto);
}

void QuitarObjeto(Paginas& paginas, const Objeto& objeto) {
  Definicion objetos = LeerTablaDelSistema(paginas, paginas.Cab().objetos);
  Cambios cambios;
  cambios.borradas.push_back(objeto.fila);
  Aplicar(paginas, objetos, cambios);
  BorrarFilasDonde(paginas, paginas.Cab().permisos, "ObjectId", std::int64_t{objeto.id});
}

void CambiarPropiedades(Paginas& paginas, const Objeto& objeto, const Propiedades& propiedades) {
  Definicion objetos = LeerTablaDelSistema(paginas, paginas.Cab().objetos);
  const auto posicion = objetos.PorNombre("LvProp");
  if (!posicion) DanioEnPagina(objetos.Pagina(), "la tabla de sistema no tiene la columna LvProp");
  CambioDeFila cambio;
  cambio.fila = objeto.fila;
  cambio.valores.emplace_back(*posicion, DatoDePropiedades(propiedades));
  Cambios cambios;
  cambios.cambiadas.push_back(std::move(cambio));
  Aplicar(paginas, objetos, cambios);
}

void BorrarFilasDonde(Paginas& paginas, NumPagina tabla, const char* columna, const Dato& valor) {
  Definicion d = LeerTablaDelSistema(paginas, tabla);
  const auto posicion = d.PorNombre(columna);
  if (!posicion) DanioEnPagina(tabla, "la tabla de sistema no tiene la columna " + std::string(columna));
  Cambios cambios;
  RecorrerFilas(paginas, d,
                [&](IdFila id, const Fila& fila) {
                  if (fila[*posicion] == valor) cambios.borradas.push_back(id);
                  return true;
                },
                {*posicion});
  if (!cambios.borradas.empty()) Aplicar(paginas, d, cambios);
}

}  // namespace mdb::internal
