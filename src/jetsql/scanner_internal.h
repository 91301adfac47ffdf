// Cuts a statement into tokens without copying. Both the shape of a statement and its parser stand on it, so
// that they agree on what a literal is and on the literals' order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/valor.h"

namespace jetsql {

enum class ClaseToken : std::uint8_t {
  Fin,
  Nombre,     // a word, keywords included
  Corchetes,  // [name] or `name`, with its marks
  Entero,
  Real,
  Texto,  // with its quotes
  Fecha,  // with its #
  Signo,  // one or two characters
  Malo    // a literal or name without its end, or a character that means nothing
};

struct Token {
  ClaseToken clase = ClaseToken::Fin;
  std::size_t inicio = 0;  // bytes
  std::size_t fin = 0;
};

// Words that end an expression or a table, and so are names only in brackets.
bool PalabraReservada(std::string_view palabra);

class Escaner {
 public:
  // From byte `desde`, where a token starts that follows no name.
  explicit Escaner(std::string_view sql, std::size_t desde = 0) : sql_(sql), i_(desde) {}
  Token Siguiente() { return anterior_ = Cortar(); }

 private:
  Token Cortar();
  Token Hasta(char cierre, ClaseToken clase, std::size_t inicio);
  Token Cadena(char comilla, std::size_t inicio);
  Token Numero(std::size_t inicio);
  Token HexOctal(std::size_t inicio);
  Token Sign(std::size_t inicio);
  bool TrasOperando() const;

  std::string_view sql_;
  std::size_t i_;
  bool tras_nombre_ = false;  // the "." that follows separates names and starts no number
  Token anterior_;
};

constexpr bool EsLiteral(ClaseToken clase) {
  return clase >= ClaseToken::Entero && clase <= ClaseToken::Fecha;
}

// The value of a literal token; false for a date that cannot be read or that leaves its year open.
bool LeerLiteral(ClaseToken clase, std::string_view texto, base::Valor& valor);

}  // namespace jetsql
