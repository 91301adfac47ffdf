#include <algorithm>

#include "base/text.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/pages/data_page_internal.h"
#include "mdb/pages/page_map.h"
#include "mdb/rows/table.h"
#include "mdb/schema/schema_internal.h"
#include "mdb/schema/system_definitions_internal.h"

namespace mdb {
namespace {

// Frees the data pages that a map names. In a damaged file one may be another table's: then nothing goes.
void LiberarMapa(Paginas& paginas, Puntero mapa, std::uint32_t dueno) {
  for (const NumPagina p : LeerMapa(paginas, mapa)) {
    const Imagen imagen = paginas.Leer(p);
    if (U8(*imagen, 0) != internal::kPaginaDeDatos || U32(*imagen, 4) != dueno)
      DanioEnPagina(p, "está en el mapa de una tabla y no es de ella");
    LiberarPagina(paginas, p);
  }
}

void LiberarValoresLargos(Paginas& paginas, const Columna& columna) {
  LiberarMapa(paginas, columna.lv_propias, internal::kLval);
  for (const Puntero mapa : {columna.lv_propias, columna.lv_libres})
    if (mapa.pagina != 0) BorrarMapa(paginas, mapa);
}

void LiberarTabla(Paginas& paginas, Definicion& d) {
  while (!d.reales.empty()) internal::QuitarReal(paginas, d, static_cast<std::uint32_t>(d.reales.size() - 1));
  for (const auto& c : d.columnas)
    if (c.EsLarga()) LiberarValoresLargos(paginas, c);
  LiberarMapa(paginas, d.propias, d.Pagina());
  for (const Puntero mapa : {d.propias, d.libres})
    if (mapa.pagina != 0) BorrarMapa(paginas, mapa);
  for (const NumPagina p : d.paginas) LiberarPagina(paginas, p);
}

bool Nombra(const RelacionDeTablas& relacion, const std::string& tabla) {
  return base::IgualSinCaso(relacion.tabla, tabla) || base::IgualSinCaso(relacion.tabla_referida, tabla);
}

// An autonumber in a table with rows: each gets the next number, in the order of the pages.
void Numerar(Paginas& paginas, Definicion& d, std::size_t columna) {
  Cambios cambios;
  RecorrerFilas(paginas, d,
                [&](IdFila id, const Fila&) {
                  d.ultimo_automatico =
                      static_cast<std::int32_t>(static_cast<std::uint32_t>(d.ultimo_automatico) +
                                                static_cast<std::uint32_t>(d.incremento));
                  CambioDeFila cambio;
                  cambio.fila = id;
                  cambio.valores.emplace_back(columna, std::int64_t{d.ultimo_automatico});
                  cambios.cambiadas.push_back(std::move(cambio));
                  return true;
                },
                {columna});
  if (cambios.cambiadas.empty()) return;
  const std::int32_t ultimo = d.ultimo_automatico;
  Aplicar(paginas, d, cambios);
  d.ultimo_automatico = ultimo;  // with a step below 0 the last number is the smallest
  EscribirContadores(paginas, d);
}

// Rows from before a table had columns of variable length have no place for their count, and readers that
// know only the definition would look for it. Such rows are written anew.
void DarParteVariable(Paginas& paginas, Definicion& d) {
  Cambios cambios;
  const std::size_t columna = d.columnas.size() - 1;
  RecorrerFilas(paginas, d,
                [&](IdFila id, const Fila&) {
                  CambioDeFila cambio;
                  cambio.fila = id;
                  cambio.valores.emplace_back(columna, Dato());
                  cambios.cambiadas.push_back(std::move(cambio));
                  return true;
                },
                {columna});
  if (!cambios.cambiadas.empty()) Aplicar(paginas, d, cambios);
}

void ComprobarQueNadieLaUse(const Catalogo& catalogo, const Definicion& d, const Columna& columna) {
  const std::string comienzo = "La columna \"" + columna.nombre + "\" no se puede quitar: la usa ";
  for (const auto& l : d.logicos)
    for (const auto& parte : d.reales.at(l.real).partes)
      if (parte.columna == columna.numero && l.clase != IndiceLogico::Foraneo)
        throw base::Error(comienzo + "el índice \"" + l.nombre + "\"");
  const auto nombra = [&](const std::string& tabla, const std::vector<std::string>& columnas) {
    return base::IgualSinCaso(tabla, d.nombre) &&
           std::any_of(columnas.begin(), columnas.end(),
                       [&](const auto& c) { return base::IgualSinCaso(c, columna.nombre); });
  };
  for (const auto& r : catalogo.Relaciones())
    if (nombra(r.tabla, r.columnas) || nombra(r.tabla_referida, r.columnas_referidas))
      throw base::Error(comienzo + "la relación \"" + r.nombre + "\"");
  for (const auto& real : d.reales)  // of a relationship that the catalog no longer tells
    for (const auto& parte : real.partes)
      if (parte.columna == columna.numero) throw base::Error(comienzo + "un índice");
}

}  // namespace

void Base::CrearTabla(const NuevaTabla& tabla, base::Fecha ahora) {
  internal::ComprobarNombre(tabla.nombre, "una tabla");
  internal::ComprobarNombreLibre(catalogo_, tabla.nombre);
  if (tabla.columnas.empty()) throw base::Error("La tabla \"" + tabla.nombre + "\" no tiene columnas");
  internal::Intento intento(*paginas_, catalogo_);
  Definicion d;
  d.nombre = tabla.nombre;
  d.paginas = {ReservarPagina(*paginas_)};
  d.propias = NuevoMapa(*paginas_);
  d.libres = NuevoMapa(*paginas_);
  internal::NuevoObjeto objeto;
  for (const auto& c : tabla.columnas) {
    internal::AgregarColumna(*paginas_, d, c);
    internal::AgregarPropiedades(objeto.propiedades, c);
  }
  for (const auto& i : tabla.indices) internal::AgregarIndice(*paginas_, d, i);
  EscribirDefinicion(*paginas_, d);
  objeto.id = static_cast<std::int32_t>(d.Pagina());
  objeto.padre = kContenedorTablas;
  objeto.nombre = tabla.nombre;
  objeto.tipo = Objeto::Tabla;
  internal::AgregarObjeto(*paginas_, catalogo_, objeto, ahora);
  intento.Cumplir();
}

void Base::BorrarTabla(std::string_view tabla) {
  const Objeto* objeto = catalogo_.Buscar(tabla);
  internal::Intento intento(*paginas_, catalogo_);
  if (objeto != nullptr && (objeto->tipo == Objeto::Vinculada || objeto->tipo == Objeto::VinculadaOdbc)) {
    internal::QuitarObjeto(*paginas_, *objeto);  // the link goes, the table that it names stays
    intento.Cumplir();
    return;
  }
  Definicion d = internal::TablaParaCambiar(*paginas_, catalogo_, tabla);
  for (const auto& r : catalogo_.Relaciones())
    if (r.Exigida() && Nombra(r, d.nombre))
      throw base::Error("La tabla \"" + d.nombre + "\" no se puede borrar: está en la relación \"" +
                        r.nombre + "\"");
  for (const auto& r : catalogo_.Relaciones())
    if (Nombra(r, d.nombre)) internal::QuitarRelacion(*paginas_, catalogo_, r);
  LiberarTabla(*paginas_, d);
  internal::QuitarObjeto(*paginas_, *objeto);
  intento.Cumplir();
}

void Base::AgregarColumna(std::string_view tabla, const NuevaColumna& columna) {
  internal::Intento intento(*paginas_, catalogo_);
  Definicion d = internal::TablaParaCambiar(*paginas_, catalogo_, tabla);
  if (columna.autonumerica && columna.tipo == TipoColumna::Guid && !LeerMapa(*paginas_, d.propias).empty())
    throw base::Error("Una columna autonumérica de identificadores solo se agrega a una tabla nueva");
  const bool sin_variables = d.variables == 0;
  internal::AgregarColumna(*paginas_, d, columna);
  EscribirDefinicion(*paginas_, d);
  if (sin_variables && d.variables != 0) DarParteVariable(*paginas_, d);
  if (columna.autonumerica && columna.tipo == TipoColumna::Largo)
    Numerar(*paginas_, d, d.columnas.size() - 1);
  Propiedades propiedades = catalogo_.PropiedadesDe(tabla);
  const std::size_t antes = propiedades.size();
  internal::AgregarPropiedades(propiedades, columna);
  if (propiedades.size() != antes)
    internal::CambiarPropiedades(*paginas_, *catalogo_.Buscar(tabla), propiedades);
  intento.Cumplir();
}

void Base::QuitarColumna(std::string_view tabla, std::string_view columna) {
  internal::Intento intento(*paginas_, catalogo_);
  Definicion d = internal::TablaParaCambiar(*paginas_, catalogo_, tabla);
  const std::size_t posicion = internal::ColumnaDe(d, columna);
  const Columna quitada = d.columnas[posicion];
  if (d.columnas.size() == 1)
    throw base::Error("La columna \"" + quitada.nombre + "\" es la única de la tabla \"" + d.nombre + "\"");
  ComprobarQueNadieLaUse(catalogo_, d, quitada);
  if (quitada.EsLarga()) LiberarValoresLargos(*paginas_, quitada);
  d.columnas.erase(d.columnas.begin() + static_cast<std::ptrdiff_t>(posicion));
  EscribirDefinicion(*paginas_, d);
  Propiedades propiedades = catalogo_.PropiedadesDe(tabla);
  if (std::erase_if(propiedades, [&](const auto& p) { return base::IgualSinCaso(p.first, quitada.nombre); }) >
      0)
    internal::CambiarPropiedades(*paginas_, *catalogo_.Buscar(tabla), propiedades);
  intento.Cumplir();
}

}  // namespace mdb
