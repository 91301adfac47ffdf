// The external codes of a file that no relation knows, and what each most likely stands for.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "importfile/import_grid.h"
#include "refdata/concepts_catalogue.h"
#include "relations/code_relations.h"

namespace informe {

// Why a concept is proposed, the surest first.
enum class Parecido {
  Ninguno,
  Relacion,        // a relation has that code as its name
  Codigo,          // the concept's own code
  Nombre,          // its name
  Numero,          // the number of its code: 07 and 7
  Id,              // its identifier
  NombreParecido,  // the initials, the beginning, or most of the letters of its name
};
std::string_view TextoDe(Parecido parecido);  // in Spanish, "" for none

struct Propuesta {
  Parecido por = Parecido::Ninguno;
  int relacion = -1;  // that already leads to the concept by its name; else -1
  int entrada = -1;   // of the catalogue; -1 when a relation's concept is not listed there
  std::string id_concepto, nombre;
};
// Letter case, accents and what is no letter or digit do not count. Of several that are as likely the first
// of the catalogue. `relaciones` and `conceptos` of the current options.
Propuesta ProponerConcepto(std::string_view codigo, const relations::CodeRelations& relaciones,
                           const refdata::ConceptsCatalogue& conceptos);

struct CodigoSinRelacion {
  std::string codigo;
  std::size_t lineas = 0;
  double horas = 0;         // the sum of the quantities that are numbers
  std::size_t primera = 0;  // line of the file
  Propuesta propuesta;
};
// Of every line that has a code, kept, filtered or refused. Those of most lines first, then as the file
// brings them.
std::vector<CodigoSinRelacion> CodigosSinRelacion(const std::vector<importfile::ImportRow>& filas,
                                                  const std::vector<importfile::LineaAparte>& aparte,
                                                  const relations::CodeRelations& relaciones,
                                                  const refdata::ConceptsCatalogue& conceptos);

}  // namespace informe
