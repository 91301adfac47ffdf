// The statements written for Access name, outside of a derived table or of a table under an alias, the base
// table that it reads (`TiposLiquidacion.id_TipoLiq` where only TL, a SELECT from TiposLiquidacion, stands in
// the FROM). Drivers take such a name for a value that was not given; here it becomes the alias.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jetsql/ast.h"
#include "jetsql/catalog.h"

namespace engine_odbc {

class Calificadores {
 public:
  // The catalog is asked only when a qualifier names no table in scope. A table that it does not list, or
  // cannot, counts as having every column.
  explicit Calificadores(jetsql::Catalogo& catalogo) : catalogo_(catalogo) {}

  // Puts every such qualifier of the statement right; false when there was none and the tree is unchanged.
  bool Resolver(jetsql::Sentencia& sentencia);

 private:
  struct Ambito {
    const Ambito* padre = nullptr;
    std::vector<jetsql::Fuente*> fuentes;
  };
  void Ver(jetsql::Consulta& c, const Ambito* padre);
  void Ver(jetsql::Seleccion& s, const Ambito* padre);
  void Ver(jetsql::Actualizacion& s);
  void Ver(jetsql::Borrado& s);
  void Ver(const jetsql::ExprPtr& e, const Ambito& ambito);
  void Derivadas(const Ambito& ambito);
  void Condiciones(jetsql::Rama& rama, const Ambito* padre);
  void Poner(std::string& calificador, const std::string& nombre, const Ambito& ambito);
  static const std::string& AliasDe(jetsql::Fuente& f, int& sin_nombre);
  bool TieneColumna(const jetsql::Fuente& f, std::string_view nombre) const;

  jetsql::Catalogo& catalogo_;
  int sin_nombre_ = 0;  // derived tables that were given an alias
  bool cambiada_ = false;
};

}  // namespace engine_odbc
