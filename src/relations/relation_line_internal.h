// One relation as a line of the text form, and cut from a row of the two queries.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "relations/code_relations.h"

namespace relations {

Relacion RelacionDeLinea(std::string_view linea);
std::string LineaDeRelacion(const std::vector<std::string>& campos);

// From "Codigo*16777215*,codes,*id*Nombre", whose code, codes and name may hold anything. `automatica`: the
// codes are the id or the code itself. Throws base::Error when the row can be cut in more than one way: a
// guess could send hours to another concept.
Relacion RelacionDeFila(std::string_view fila, bool automatica);

}  // namespace relations
