// LIKE: patterns with wildcards, as the dialect and classic Basic match them.
#pragma once

#include <string_view>

#include "base/sort_order.h"

namespace base {

enum class Comodines {
  Ado,  // % any run, _ one character, [a-z] [^a] [!a]
  Dao   // * any run, ? one character, # one digit, [a-z] [!a]
};

// How characters are told apart: by their weights (case is nothing, accents count) or by their code points.
enum class Igualdad { Pesos, Exacta };

// Whether the whole text fits the pattern. "[]" stands for no character. Throws Error 93 for a "[" without
// "]" and for a range that goes down.
bool Parecido(std::string_view texto, std::string_view patron, Comodines comodines,
              Igualdad igualdad = Igualdad::Pesos, Orden orden = Orden::General);

}  // namespace base
