// The reference tables of the program: texts addressed (field, record).
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace formula {

// dimensiones 0: not an array yet. 1: items (each record has one field). 2: records of several fields; a
// record may have been given more fields than the first one, reading a field that it lacks gives "".
struct Vector {
  int dimensiones = 0;
  std::vector<std::vector<std::string>> registros;

  std::size_t Cantidad() const { return registros.size(); }
  const std::string& Campo(std::size_t campo, std::size_t registro) const {
    static const std::string vacio;
    const auto& r = registros[registro];
    return campo < r.size() ? r[campo] : vacio;
  }
};

}  // namespace formula
