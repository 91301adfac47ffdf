#include "mdb/catalog/catalog.h"

#include <optional>
#include <unordered_map>

#include "base/text.h"
#include "mdb/catalog/catalog_internal.h"
#include "mdb/rows/table.h"

namespace mdb {
namespace {

// Of several objects of one name the one that users see, then the first.
bool Preferible(const Objeto& a, const Objeto& b) { return !a.DeSistema() && b.DeSistema(); }

bool EsTablaOConsulta(const Objeto& o) {
  return o.tipo == Objeto::Tabla || o.tipo == Objeto::VinculadaOdbc || o.tipo == Objeto::Vinculada ||
         o.tipo == Objeto::Consulta;
}

}  // namespace

struct Catalogo::Leido {
  std::vector<Objeto> objetos;
  std::unordered_map<std::string, std::size_t> por_nombre;  // lower case; what Buscar finds
  std::unordered_map<std::string, std::shared_ptr<const Definicion>> tablas;
  std::unordered_map<std::string, Propiedades> propiedades;
  std::optional<std::vector<RelacionDeTablas>> relaciones;
  std::optional<std::unordered_map<std::int32_t, std::vector<FilaDeConsulta>>> consultas;
};

Catalogo::Leido& Catalogo::Leer() const {
  if (leido_) return *leido_;
  auto nuevo = std::make_shared<Leido>();
  nuevo->objetos = internal::LeerObjetos(paginas_);
  for (std::size_t i = 0; i < nuevo->objetos.size(); ++i) {
    const Objeto& o = nuevo->objetos[i];
    if (!EsTablaOConsulta(o)) continue;
    const auto [it, es_nuevo] = nuevo->por_nombre.emplace(base::Minusculas(o.nombre), i);
    if (!es_nuevo && Preferible(o, nuevo->objetos[it->second])) it->second = i;
  }
  leido_ = std::move(nuevo);
  return *leido_;
}

const std::vector<Objeto>& Catalogo::Objetos() const { return Leer().objetos; }

const Objeto* Catalogo::Buscar(std::string_view nombre) const {
  const Leido& leido = Leer();
  const auto it = leido.por_nombre.find(base::Minusculas(nombre));
  return it == leido.por_nombre.end() ? nullptr : &leido.objetos[it->second];
}

std::shared_ptr<const Definicion> Catalogo::Tabla(std::string_view nombre) const {
  const Objeto* objeto = Buscar(nombre);
  if (objeto == nullptr || objeto->tipo != Objeto::Tabla) return nullptr;
  auto& guardada = Leer().tablas[base::Minusculas(nombre)];
  if (!guardada) {
    auto d = LeerDefinicion(paginas_, static_cast<NumPagina>(objeto->id));
    d.nombre = objeto->nombre;
    guardada = std::make_shared<const Definicion>(std::move(d));
  }
  return guardada;
}

const Propiedades& Catalogo::PropiedadesDe(std::string_view tabla) const {
  Leido& leido = Leer();
  const auto clave = base::Minusculas(tabla);
  const auto it = leido.propiedades.find(clave);
  if (it != leido.propiedades.end()) return it->second;
  const Objeto* objeto = Buscar(tabla);
  Propiedades propiedades;
  if (objeto != nullptr) propiedades = LeerPropiedades(paginas_.Cab(), objeto->propiedades);
  return leido.propiedades.emplace(clave, std::move(propiedades)).first->second;
}

// Some files of Access 97 have these tables on other pages than their header says; the catalog tells.
NumPagina Catalogo::SystemTablePage(std::string_view name, NumPagina of_the_header) const {
  const Objeto* object = Buscar(name);
  const bool told = object != nullptr && object->tipo == Objeto::Tabla && object->DeSistema();
  return told ? static_cast<NumPagina>(object->id) : of_the_header;
}

const std::vector<RelacionDeTablas>& Catalogo::Relaciones() const {
  auto& relaciones = Leer().relaciones;
  if (!relaciones)
    relaciones =
        internal::LeerRelaciones(paginas_, SystemTablePage("MSysRelationships", paginas_.Cab().relaciones));
  return *relaciones;
}

ConsultaGuardada Catalogo::ConsultaDe(std::string_view nombre) const {
  const Objeto* objeto = Buscar(nombre);
  if (objeto == nullptr || objeto->tipo != Objeto::Consulta)
    throw base::Error("La base no tiene una consulta \"" + std::string(nombre) + "\"");
  auto& consultas = Leer().consultas;
  if (!consultas)
    consultas =
        internal::LeerFilasDeConsultas(paginas_, SystemTablePage("MSysQueries", paginas_.Cab().consultas));
  ConsultaGuardada consulta{objeto->nombre, objeto->banderas, {}};
  if (const auto it = consultas->find(objeto->id); it != consultas->end()) consulta.filas = it->second;
  return consulta;
}

void Catalogo::Olvidar() { leido_.reset(); }

}  // namespace mdb
