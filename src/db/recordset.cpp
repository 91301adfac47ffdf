#include "db/recordset.h"

#include <utility>

#include "base/text.h"
#include "db/connection.h"

namespace db {

Recordset::Recordset(std::shared_ptr<const Columnas> columnas, std::vector<base::Valor> celdas,
                     std::string fuente)
    : columnas_(std::move(columnas)), celdas_(std::move(celdas)), fuente_(std::move(fuente)) {
  ancho_ = columnas_ == nullptr ? 0 : columnas_->size();
  if (ancho_ == 0 ? !celdas_.empty() : celdas_.size() % ancho_ != 0)
    throw Error("La base respondió con filas incompletas: " + std::to_string(celdas_.size()) +
                " valores para " + std::to_string(ancho_) + " campos");
  filas_ = ancho_ == 0 ? 0 : celdas_.size() / ancho_;
}

void Recordset::ThrowOutside(std::size_t campo, std::size_t fila) const {
  if (fila >= filas_)
    throw Error("No existe la fila " + std::to_string(fila) + " en el resultado, que tiene " +
                std::to_string(filas_));
  // -1: a name that was looked for and not found.
  const std::string cual = campo == static_cast<std::size_t>(-1) ? "pedido" : std::to_string(campo);
  throw Error("No existe el campo " + cual + " en el resultado, que tiene " + std::to_string(ancho_));
}

const Columnas& Recordset::Campos() const {
  static const Columnas kNinguna;
  return columnas_ == nullptr ? kNinguna : *columnas_;
}

int Recordset::Posicion(std::string_view nombre) const {
  for (std::size_t i = 0; i < ancho_; ++i)
    if (base::IgualSinCaso((*columnas_)[i].nombre, nombre)) return static_cast<int>(i);
  return -1;
}

const base::Valor& Recordset::Campo(std::size_t campo) const {
  if (Vacio()) throw Error("No hay ningún registro activo");
  return En(campo, 0);
}

const base::Valor& Recordset::Campo(std::string_view nombre) const {
  const int posicion = Posicion(nombre);
  if (posicion < 0) throw Error("No existe el campo \"" + std::string(nombre) + "\" en el resultado");
  return Campo(static_cast<std::size_t>(posicion));
}

}  // namespace db
