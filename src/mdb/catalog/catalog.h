// The objects of a file: tables, saved queries, linked tables, relationships, properties.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "mdb/definitions/definition.h"
#include "mdb/queries/saved_query.h"
#include "mdb/rows/value.h"

namespace mdb {

struct Objeto {
  enum Tipo : std::int16_t {
    Tabla = 1,
    Base = 2,
    Contenedor = 3,
    VinculadaOdbc = 4,
    Consulta = 5,
    Vinculada = 6,
    Relacion = 8
  };
  std::int32_t id = 0;  // of a table, the page of its definition
  std::int32_t padre = 0;
  std::string nombre;
  std::int16_t tipo = 0;
  std::uint32_t banderas = 0;
  std::string base, conexion, nombre_externo;  // Database, Connect and ForeignName of a linked table
  Bytes propiedades;                           // LvProp as stored
  IdFila fila;                                 // in MSysObjects
  bool DeSistema() const { return (banderas & 0x80000002U) != 0; }
};

struct Propiedad {
  std::string nombre;
  std::uint8_t tipo = 0;  // of TipoColumna
  bool ddl = false;       // defined with the table
  Dato valor;
};
// By owner: "" for the table itself, else a column's name.
using Propiedades = std::map<std::string, std::vector<Propiedad>>;
Propiedades LeerPropiedades(const Cabecera& cabecera, Vista bytes);
Bytes SerializarPropiedades(const Propiedades& propiedades);  // Jet 4
// By owner and name whatever their case; null when there is none.
const Dato* Buscar(const Propiedades& propiedades, std::string_view dueno, std::string_view nombre);

struct RelacionDeTablas {
  static constexpr std::uint32_t kUnoAUno = 0x1, kNoExigida = 0x2, kActualizaEnCascada = 0x100,
                                 kBorraEnCascada = 0x1000, kPoneNulo = 0x2000;
  std::string nombre;
  std::string tabla;  // the "many" side
  std::vector<std::string> columnas;
  std::string tabla_referida;  // the "one" side
  std::vector<std::string> columnas_referidas;
  std::uint32_t banderas = 0;
  bool Exigida() const { return (banderas & kNoExigida) == 0; }
};

// Read once; Olvidar after a change of the catalog. Pointers hold until then.
class Catalogo {
 public:
  explicit Catalogo(Paginas& paginas) : paginas_(paginas) {}
  const std::vector<Objeto>& Objetos() const;
  // A table, linked table or query by name whatever its case; null when there is none.
  const Objeto* Buscar(std::string_view nombre) const;
  // Definition of a local table, with its name; null for another name. Throws Danio.
  std::shared_ptr<const Definicion> Tabla(std::string_view nombre) const;
  const Propiedades& PropiedadesDe(std::string_view tabla) const;
  const std::vector<RelacionDeTablas>& Relaciones() const;
  // The rows of a saved query (see saved_query.h); throws base::Error when there is none of that name.
  ConsultaGuardada ConsultaDe(std::string_view nombre) const;
  void Olvidar();

 private:
  Paginas& paginas_;
  struct Leido;
  mutable std::shared_ptr<Leido> leido_;
  Leido& Leer() const;
  NumPagina SystemTablePage(std::string_view name, NumPagina of_the_header) const;
};

}  // namespace mdb
