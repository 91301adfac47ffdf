// Values as bytes: equal values, and nothing else, give equal bytes. The same on every machine.
//
//   value  := type byte (base::Type), then
//             Boolean 1 byte | Integer, Currency 8 bytes | Single 4 | Number, Date 8 | Text length (4), UTF-8
//   numbers lie with their lowest byte first; a float by its bits, -0 as 0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/value.h"

namespace corridas {

using Fila = std::vector<base::Value>;

void Codificar(const base::Value& valor, std::string& bytes);
void CodificarEntero(std::uint64_t numero, int octetos, std::string& bytes);
void CodificarTexto(std::string_view texto, std::string& bytes);
// A number for the bytes; not one that withstands who wants two alike.
std::uint64_t Picada(std::string_view bytes, std::uint64_t semilla);

// Reads from the front of a text of bytes. Each throws base::Error when the bytes end too soon or are none of
// the above.
class Lector {
 public:
  explicit Lector(std::string_view bytes) : resto_(bytes) {}
  std::size_t Quedan() const { return resto_.size(); }  // bytes
  std::uint64_t Entero(int octetos);
  std::string_view Texto();
  base::Value Valor();
  Fila Valores(std::size_t cuantos);

 private:
  std::string_view Tomar(std::size_t octetos);
  std::string_view resto_;
};

}  // namespace corridas
