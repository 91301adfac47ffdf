// One relation as a line of the text form, and cut from a row of the two queries.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "relations/code_relations.h"

namespace relations {

Relacion RelacionDeLinea(std::string_view linea);
std::string LineaDeRelacion(const std::vector<std::string>& campos);

// What the list of a row holds: codes that somebody stored, the id alone, or the code alone (of a user table,
// whose id is above 1000, the id).
enum class Lista { Guardada, Numero, Codigo };

// From "Codigo*16777215*,list,*id*Nombre", whose code, list and name may hold anything. Throws db::Error when
// the row can be cut in more than one way: a guess could send hours to another concept.
Relacion RelacionDeFila(std::string_view fila, Lista lista);

}  // namespace relations
