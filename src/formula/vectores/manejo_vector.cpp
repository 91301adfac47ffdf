#include <utility>

#include "base/text.h"
#include "formula/vectores/vector_utils.h"

namespace formula {
namespace {

using Registro = std::vector<std::string>;

// A part that is exactly "^" keeps what the place held before.
Registro PartirRegistro(std::string_view valor, const Registro* anterior) {
  Registro registro = base::Split(valor, "*");
  for (std::size_t i = 0; i < registro.size(); ++i)
    if (registro[i] == "^") registro[i] = anterior != nullptr && i < anterior->size() ? (*anterior)[i] : "";
  return registro;
}

void Insertar(Vector& vector, std::string_view valor, std::ptrdiff_t& posicion) {
  auto& registros = vector.registros;
  const bool con_campos = base::Contains(valor, "*");
  const bool primero = registros.empty();  // wherever it was to go
  if (primero) vector.dimensiones = con_campos ? 2 : 1;
  const bool al_final = posicion == -1;
  const std::size_t donde = al_final || primero ? registros.size() : static_cast<std::size_t>(posicion);
  if (donde > registros.size()) return;
  Registro nuevo;
  if (vector.dimensiones == 2 && con_campos) {
    nuevo = PartirRegistro(valor, donde < registros.size() ? &registros[donde] : nullptr);
  } else {
    nuevo.emplace_back(valor);
  }
  registros.insert(registros.begin() + static_cast<std::ptrdiff_t>(donde), std::move(nuevo));
  if (al_final) posicion = static_cast<std::ptrdiff_t>(donde);
}

}  // namespace

void ManejoVector(Vector& vector, std::string_view valor, std::ptrdiff_t& posicion, bool insertar) {
  if (insertar) {
    Insertar(vector, valor, posicion);
  } else if (posicion >= 0 && static_cast<std::size_t>(posicion) < vector.registros.size()) {
    vector.registros.erase(vector.registros.begin() + posicion);
  }
}

void AgregarRegistro(Vector& vector, std::string_view valor) {
  std::ptrdiff_t posicion = -1;
  ManejoVector(vector, valor, posicion, true);
}

void AgregarRegistro(Vector& vector, std::string_view valor, const FormaDeRegistro& forma) {
  Registro registro = base::Split(valor, "*");
  // The pieces that are too many belong to the free field.
  while (registro.size() > forma.campos) {
    const auto libre = registro.begin() + static_cast<std::ptrdiff_t>(forma.libre);
    libre->append("*").append(*(libre + 1));
    registro.erase(libre + 1);
  }
  vector.dimensiones = 2;
  vector.registros.push_back(std::move(registro));
}

void QuitarRegistro(Vector& vector, std::ptrdiff_t posicion) { ManejoVector(vector, {}, posicion, false); }

}  // namespace formula
