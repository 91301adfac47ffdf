#include "db/recordset.h"

#include <utility>

#include "base/text.h"
#include "db/connection.h"

namespace db {

Recordset::Recordset(std::shared_ptr<const Columnas> columnas, std::vector<base::Valor> celdas,
                     std::string fuente)
    : columnas_(std::move(columnas)), celdas_(std::move(celdas)), fuente_(std::move(fuente)) {
  ancho_ = columnas_ == nullptr ? 0 : columnas_->size();
  filas_ = ancho_ == 0 ? 0 : celdas_.size() / ancho_;
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
  if (Eof()) throw Error("No hay ningún registro activo");
  if (campo >= ancho_) throw Error("No existe el campo " + std::to_string(campo) + " en el resultado");
  return En(campo, cursor_);
}

const base::Valor& Recordset::Campo(std::string_view nombre) const {
  const int posicion = Posicion(nombre);
  if (posicion < 0) throw Error("No existe el campo \"" + std::string(nombre) + "\" en el resultado");
  return Campo(static_cast<std::size_t>(posicion));
}

std::vector<std::vector<base::Valor>> Recordset::GetRows() const {
  std::vector<std::vector<base::Valor>> campos(ancho_);
  for (std::size_t c = 0; c < ancho_; ++c) {
    campos[c].reserve(filas_);
    for (std::size_t f = 0; f < filas_; ++f) campos[c].push_back(En(c, f));
  }
  return campos;
}

}  // namespace db
