#include <algorithm>

#include "base/text.h"
#include "mdb/indexes/index_key.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/rows/table.h"
#include "mdb/schema/schema_internal.h"
#include "mdb/schema/system_definitions_internal.h"

namespace mdb {
namespace {

struct Par {  // positions in `columnas` of the child and of the parent
  std::size_t hijo, padre;
};

// The two tables of a relationship. One definition serves both when a table refers to itself.
struct Extremos {
  Definicion padre, otra;
  bool misma = false;
  Definicion& Padre() { return padre; }
  Definicion& Hijo() { return misma ? padre : otra; }
};

Extremos AbrirExtremos(Paginas& paginas, const Catalogo& catalogo, const RelacionDeTablas& r) {
  Extremos e;
  e.padre = internal::TablaParaCambiar(paginas, catalogo, r.tabla_referida);
  e.misma = base::IgualSinCaso(r.tabla, r.tabla_referida);
  if (!e.misma) e.otra = internal::TablaParaCambiar(paginas, catalogo, r.tabla);
  return e;
}

std::vector<Par> ParesDe(Extremos& e, const RelacionDeTablas& r) {
  if (r.columnas.empty() || r.columnas.size() > 10 || r.columnas.size() != r.columnas_referidas.size())
    throw base::Error("La relación \"" + r.nombre + "\" debe unir de 1 a 10 columnas con otras tantas");
  std::vector<Par> pares;
  for (std::size_t i = 0; i < r.columnas.size(); ++i) {
    pares.push_back({internal::ColumnaDe(e.Hijo(), r.columnas[i]),
                     internal::ColumnaDe(e.Padre(), r.columnas_referidas[i])});
    const Columna& hijo = e.Hijo().columnas[pares.back().hijo];
    const Columna& padre = e.Padre().columnas[pares.back().padre];
    if (r.Exigida() && (hijo.tipo != padre.tipo || hijo.escala != padre.escala))
      throw base::Error("La relación \"" + r.nombre + "\" une columnas de tipos distintos: \"" + hijo.nombre +
                        "\" y \"" + padre.nombre + "\"");
  }
  return pares;
}

// The unique index over exactly the referenced columns; the pairs are put in its order.
std::uint32_t IndiceReferido(const Definicion& padre, const RelacionDeTablas& r, std::vector<Par>& pares) {
  for (std::size_t i = 0; i < padre.reales.size(); ++i) {
    const auto& real = padre.reales[i];
    if (!real.Unico() || real.partes.size() != pares.size()) continue;
    std::vector<Par> en_orden;
    for (const auto& parte : real.partes)
      for (const auto& par : pares)
        if (padre.columnas[par.padre].numero == parte.columna) en_orden.push_back(par);
    if (en_orden.size() != pares.size()) continue;
    pares = std::move(en_orden);
    return static_cast<std::uint32_t>(i);
  }
  throw base::Error("La relación \"" + r.nombre + "\" necesita en la tabla \"" + padre.nombre +
                    "\" un índice sin repetidos sobre las columnas a las que se refiere");
}

// An index of the child over these columns in this order, shared when it has one that lists all its rows.
std::uint32_t IndiceDelHijo(Paginas& paginas, Definicion& hijo, const RelacionDeTablas& r,
                            const std::vector<Par>& pares) {
  const bool unico = (r.banderas & RelacionDeTablas::kUnoAUno) != 0;
  IndiceReal nuevo;
  for (const auto& par : pares) nuevo.partes.push_back({hijo.columnas[par.hijo].numero, false});
  const auto iguales = [](const IndiceReal::Parte& a, const IndiceReal::Parte& b) {
    return a.columna == b.columna && a.descendente == b.descendente;
  };
  for (std::size_t i = 0; i < hijo.reales.size(); ++i) {
    const auto& real = hijo.reales[i];
    if (std::equal(real.partes.begin(), real.partes.end(), nuevo.partes.begin(), nuevo.partes.end(),
                   iguales) &&
        !real.IgnoraNulos() && (real.Unico() || !unico))
      return static_cast<std::uint32_t>(i);
  }
  if (unico) nuevo.banderas |= IndiceReal::kUnico;
  return internal::AgregarReal(paginas, hijo, std::move(nuevo), r.nombre);
}

// Every row of the child has its parent, but for those whose columns are all Null.
void ComprobarFilas(Paginas& paginas, Extremos& e, std::uint32_t indice, const RelacionDeTablas& r,
                    const std::vector<Par>& pares) {
  const Definicion& padre = e.Padre();
  const IndiceReal& real = padre.reales.at(indice);
  const ArbolDeIndice arbol(paginas, padre.Pagina(), real);
  std::vector<std::size_t> leidas;
  for (const auto& par : pares) leidas.push_back(par.hijo);
  Fila buscada(padre.columnas.size());
  Bytes clave;
  RecorrerFilas(
      paginas, e.Hijo(),
      [&](IdFila, const Fila& fila) {
        for (const auto& par : pares) buscada[par.padre] = fila[par.hijo];
        if (TodosNulos(padre, real, buscada)) return true;
        ClaveDeFila(paginas.Cab(), padre, real, buscada, clave);
        if (!arbol.Hay(clave))
          throw base::Error("La relación \"" + r.nombre + "\" no se puede exigir: la tabla \"" +
                            e.Hijo().nombre + "\" tiene filas que no están en \"" + padre.nombre + "\"");
        return true;
      },
      leidas);
}

// Access names the parent's side after its number: ".rA" for 0, ".rB" for 1.
std::string NombreDelPadre(Definicion& padre, std::uint32_t numero) {
  std::string letras(1, static_cast<char>('A' + numero % 26));
  if (numero >= 26) letras.insert(letras.begin(), static_cast<char>('A' + numero / 26 % 26));
  std::string nombre = ".r" + letras;
  while (internal::LogicoDe(padre, nombre) != padre.logicos.end()) nombre += 'A';
  return nombre;
}

void PonerLogicos(Extremos& e, const RelacionDeTablas& r, std::uint32_t real_padre, std::uint32_t real_hijo) {
  Definicion &padre = e.Padre(), &hijo = e.Hijo();
  if (internal::LogicoDe(hijo, r.nombre) != hijo.logicos.end())
    throw base::Error("La tabla \"" + hijo.nombre + "\" ya tiene un índice \"" + r.nombre + "\"");
  IndiceLogico p, h;
  p.clase = h.clase = IndiceLogico::Foraneo;
  p.actualiza_en_cascada = h.actualiza_en_cascada =
      (r.banderas & RelacionDeTablas::kActualizaEnCascada) != 0 ? 1 : 0;
  p.borra_en_cascada = h.borra_en_cascada = (r.banderas & RelacionDeTablas::kBorraEnCascada) != 0 ? 1
                                            : (r.banderas & RelacionDeTablas::kPoneNulo) != 0     ? 2
                                                                                                  : 0;
  p.lado = IndiceLogico::Padre;
  p.real = real_padre;
  p.otra_tabla = hijo.Pagina();
  p.numero = internal::NumeroLibre(padre);
  p.nombre = NombreDelPadre(padre, p.numero);
  h.lado = IndiceLogico::Hijo;
  h.real = real_hijo;
  h.otra_tabla = padre.Pagina();
  h.nombre = r.nombre;
  h.otro_indice = static_cast<std::int32_t>(p.numero);
  internal::InsertarLogico(padre, p);
  h.numero = internal::NumeroLibre(hijo);
  internal::LogicoDe(padre, p.nombre)->otro_indice = static_cast<std::int32_t>(h.numero);
  internal::InsertarLogico(hijo, std::move(h));
}

void Guardar(Paginas& paginas, Extremos& e) {
  EscribirDefinicion(paginas, e.padre);
  if (!e.misma) EscribirDefinicion(paginas, e.otra);
}

void AgregarFilas(Paginas& paginas, Extremos& e, const RelacionDeTablas& r, const std::vector<Par>& pares) {
  Definicion d = internal::LeerTablaDelSistema(paginas, paginas.Cab().relaciones);
  Cambios cambios;
  for (std::size_t i = 0; i < pares.size(); ++i)
    cambios.nuevas.push_back(internal::FilaPorNombre(d)
                                 .Poner("szRelationship", r.nombre)
                                 .Poner("grbit", std::int64_t{static_cast<std::int32_t>(r.banderas)})
                                 .Poner("ccolumn", static_cast<std::int64_t>(pares.size()))
                                 .Poner("icolumn", static_cast<std::int64_t>(i))
                                 .Poner("szObject", e.Hijo().nombre)
                                 .Poner("szColumn", e.Hijo().columnas[pares[i].hijo].nombre)
                                 .Poner("szReferencedObject", e.Padre().nombre)
                                 .Poner("szReferencedColumn", e.Padre().columnas[pares[i].padre].nombre)
                                 .Tomar());
  Aplicar(paginas, d, cambios);
}

const Objeto* ObjetoDeRelacion(const Catalogo& catalogo, std::string_view nombre) {
  for (const auto& o : catalogo.Objetos())
    if (o.tipo == Objeto::Relacion && base::IgualSinCaso(o.nombre, nombre)) return &o;
  return nullptr;
}

// Takes the two logical indexes away, and the child's real one when nothing else stands on it.
void QuitarLogicos(Paginas& paginas, Extremos& e, const std::string& nombre) {
  Definicion& hijo = e.Hijo();
  const auto h = internal::LogicoDe(hijo, nombre);
  if (h == hijo.logicos.end() || h->clase != IndiceLogico::Foraneo || h->lado != IndiceLogico::Hijo) return;
  const IndiceLogico suyo = *h;
  hijo.logicos.erase(h);
  std::erase_if(e.Padre().logicos, [&](const IndiceLogico& l) {
    return l.clase == IndiceLogico::Foraneo && l.lado == IndiceLogico::Padre &&
           static_cast<std::int32_t>(l.numero) == suyo.otro_indice && l.otra_tabla == hijo.Pagina();
  });
  const bool compartido = std::any_of(hijo.logicos.begin(), hijo.logicos.end(),
                                      [&](const IndiceLogico& l) { return l.real == suyo.real; });
  if (!compartido) internal::QuitarReal(paginas, hijo, suyo.real);
}

}  // namespace

namespace internal {

void QuitarRelacion(Paginas& paginas, const Catalogo& catalogo, const RelacionDeTablas& relacion) {
  if (relacion.Exigida()) {
    Extremos e = AbrirExtremos(paginas, catalogo, relacion);
    QuitarLogicos(paginas, e, relacion.nombre);
    Guardar(paginas, e);
  }
  BorrarFilasDonde(paginas, paginas.Cab().relaciones, "szRelationship", relacion.nombre);
  if (const Objeto* objeto = ObjetoDeRelacion(catalogo, relacion.nombre)) QuitarObjeto(paginas, *objeto);
}

}  // namespace internal

void Base::CrearRelacion(const RelacionDeTablas& relacion, base::Fecha ahora) {
  internal::ComprobarNombre(relacion.nombre, "una relación");
  if (ObjetoDeRelacion(catalogo_, relacion.nombre) != nullptr)
    throw base::Error("La base ya tiene una relación \"" + relacion.nombre + "\"");
  internal::Intento intento(*paginas_, catalogo_);
  Extremos e = AbrirExtremos(*paginas_, catalogo_, relacion);
  auto pares = ParesDe(e, relacion);
  if (relacion.Exigida()) {
    const std::uint32_t real_padre = IndiceReferido(e.Padre(), relacion, pares);
    ComprobarFilas(*paginas_, e, real_padre, relacion, pares);
    const std::uint32_t real_hijo = IndiceDelHijo(*paginas_, e.Hijo(), relacion, pares);
    PonerLogicos(e, relacion, real_padre, real_hijo);
    Guardar(*paginas_, e);
  }
  AgregarFilas(*paginas_, e, relacion, pares);
  internal::NuevoObjeto objeto;
  objeto.id = internal::IdLibre(catalogo_);
  objeto.padre = kContenedorRelaciones;
  objeto.nombre = relacion.nombre;
  objeto.tipo = Objeto::Relacion;
  internal::AgregarObjeto(*paginas_, catalogo_, objeto, ahora);
  intento.Cumplir();
}

void Base::BorrarRelacion(std::string_view nombre) {
  internal::Intento intento(*paginas_, catalogo_);
  const auto& relaciones = catalogo_.Relaciones();
  const auto r = std::find_if(relaciones.begin(), relaciones.end(),
                              [&](const auto& otra) { return base::IgualSinCaso(otra.nombre, nombre); });
  if (r == relaciones.end())
    throw base::Error("La base no tiene una relación \"" + std::string(nombre) + "\"");
  internal::QuitarRelacion(*paginas_, catalogo_, *r);
  intento.Cumplir();
}

}  // namespace mdb
