// What the changes of a file's schema share: names, all-or-nothing, the rows of the system tables.
#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "mdb/catalog/catalog.h"
#include "mdb/schema/database.h"

namespace mdb::internal {

// The pages as they were when this was made come back at its end unless Cumplir was called; the catalog is
// read anew either way.
class Intento {
 public:
  Intento(Paginas& paginas, Catalogo& catalogo)
      : paginas_(paginas), catalogo_(catalogo), punto_(paginas.Guardar()) {}
  Intento(const Intento&) = delete;
  Intento& operator=(const Intento&) = delete;
  ~Intento() {
    if (!cumplido_) paginas_.Volver(std::move(punto_));
    catalogo_.Olvidar();
  }
  void Cumplir() { cumplido_ = true; }

 private:
  Paginas& paginas_;
  Catalogo& catalogo_;
  Paginas::Punto punto_;
  bool cumplido_ = false;
};

// Throws base::Error for a name that no object, column or index may have. `que`: "una tabla", "una columna"…
void ComprobarNombre(std::string_view nombre, const char* que);
// Tables, linked tables and queries share their names.
void ComprobarNombreLibre(const Catalogo& catalogo, std::string_view nombre);

// A local table that is no table of the system, read anew. Throws base::Error when there is none.
Definicion TablaParaCambiar(Paginas& paginas, const Catalogo& catalogo, std::string_view nombre);
// Position of a column in `columnas`; throws base::Error when there is none of that name.
std::size_t ColumnaDe(const Definicion& definicion, std::string_view columna);
// The index that has this name whatever its case; end() when there is none.
std::vector<IndiceLogico>::iterator LogicoDe(Definicion& definicion, std::string_view nombre);
// In the order of their names, as Access keeps them.
void InsertarLogico(Definicion& definicion, IndiceLogico logico);
std::uint32_t NumeroLibre(const Definicion& definicion);  // for a new logical index

// Adds a real index filled from the table's rows, with its map and its root; its number in `reales`. The
// definition itself is still to be written. `nombre` is for the message of a row that it refuses.
std::uint32_t AgregarReal(Paginas& paginas, Definicion& definicion, IndiceReal indice,
                          const std::string& nombre);
// Frees the index's pages and map, and renumbers what names the others.
void QuitarReal(Paginas& paginas, Definicion& definicion, std::uint32_t real);
// Checks it against the definition and adds it, real and logical; the definition is still to be written.
void AgregarIndice(Paginas& paginas, Definicion& definicion, const NuevoIndice& nuevo);

// The column that `nueva` describes, next in the definition, with the page maps of its long values.
void AgregarColumna(Paginas& paginas, Definicion& definicion, const NuevaColumna& nueva);
// What the column has in LvProp.
void AgregarPropiedades(Propiedades& propiedades, const NuevaColumna& columna);

// A system table by the page of its definition, with its name.
Definicion LeerTablaDelSistema(Paginas& paginas, NumPagina pagina);
// A row of a system table, put together by the names of its columns.
class FilaPorNombre {
 public:
  explicit FilaPorNombre(const Definicion& definicion)
      : definicion_(definicion), fila_(definicion.columnas.size()) {}
  FilaPorNombre& Poner(const char* columna, Dato dato);
  Fila Tomar() { return std::move(fila_); }

 private:
  const Definicion& definicion_;
  Fila fila_;
};

struct NuevoObjeto {
  std::int32_t id = 0, padre = 0;
  std::string nombre;
  std::int16_t tipo = 0;
  std::uint32_t banderas = 0;
  Propiedades propiedades;
};
// An identity for an object that is no table: 0x80000000 and the smallest number that none has.
std::int32_t IdLibre(const Catalogo& catalogo);
// Its row of MSysObjects, and those that say who may do what: whoever is named for its container.
void AgregarObjeto(Paginas& paginas, const Catalogo& catalogo, const NuevoObjeto& objeto, base::Fecha ahora);
void QuitarObjeto(Paginas& paginas, const Objeto& objeto);
void CambiarPropiedades(Paginas& paginas, const Objeto& objeto, const Propiedades& propiedades);
// Deletes the rows of a system table that have this value there.
void BorrarFilasDonde(Paginas& paginas, NumPagina tabla, const char* columna, const Dato& valor);

// The relationship's rows and object, and its logical indexes when it is enforced.
void QuitarRelacion(Paginas& paginas, const Catalogo& catalogo, const RelacionDeTablas& relacion);

}  // namespace mdb::internal
