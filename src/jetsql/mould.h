// A statement as a mould for the next: programs send the same statement over and over with other values, and
// a text that differs from the last one in its literals alone need not be cut into tokens to be known for one
// of its shape.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "jetsql/translate.h"

namespace jetsql {

class Molde {
 public:
  enum class Hallazgo { Otra, Igual, MismaForma };

  bool Vacio() const { return texto_.empty(); }
  // The text that SepararLiterales made `forma` of.
  void Tomar(std::string_view sql, const Forma& forma);
  // Whether the text is the mould's own (Igual) or has its shape (MismaForma: the mould then holds that
  // text). With Otra the mould is as it was. Some texts of the same shape are not known for it (another
  // spelling, other blanks). Costs about a comparison of the two texts.
  Hallazgo Reconocer(std::string_view sql);
  // Of the text that the mould holds.
  const std::vector<base::Valor>& Literales() const { return literales_; }

 private:
  // The literal of the text at `desde`, in the place of the mould's literal i; where it ends, or npos.
  std::size_t Literal(std::string_view sql, std::size_t desde, std::size_t i);
  void Correr(std::size_t i, std::size_t aqui, std::size_t alla);

  std::string texto_;
  std::vector<Forma::Lugar> lugares_, nuevos_;
  std::vector<base::Valor> literales_;
  struct Cambio {
    std::size_t literal = 0;
    base::Valor valor;
  };
  std::vector<Cambio> cambios_;  // of the text under way
};

}  // namespace jetsql
