// Text of the dialect to tree, and back.
#pragma once

#include <string>
#include <string_view>

#include "jetsql/ast.h"
#include "jetsql/translate.h"

namespace jetsql {

// EnTexto: no literal has an index (a stored query). Those of CREATE, DROP and ALTER never have one.
enum class Literales { Numerados, EnTexto };

// One statement, with or without a ";" at its end. Throws ErrorSintaxis.
Sentencia Analizar(std::string_view sql, Literales literales = Literales::Numerados);

// The text of a tree before it is resolved: parsing it gives an equal tree.
std::string Imprimir(const Sentencia& sentencia);
std::string Imprimir(const Consulta& consulta);
std::string Imprimir(const Seleccion& seleccion);  // one SELECT of a union
std::string Imprimir(const Expr& expr);

}  // namespace jetsql
