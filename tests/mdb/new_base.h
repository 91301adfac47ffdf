// A base made by our own code, in memory, with short ways to fill it.
#pragma once

#include "mdb/corpus.h"
#include "mdb/outside.h"
#include "mdb/schema/database.h"
#include "mdb/schema/new_file.h"
#include "mdb/verify/verify.h"

namespace mdb_test {

inline mdb::NuevaColumna Columna(std::string nombre, mdb::TipoColumna tipo, std::uint16_t largo = 0) {
  mdb::NuevaColumna c;
  c.nombre = std::move(nombre);
  c.tipo = tipo;
  c.largo = largo;
  return c;
}

inline mdb::CambioDeFila Cambio(mdb::IdFila fila, std::vector<std::pair<std::size_t, mdb::Dato>> valores) {
  return {fila, std::move(valores)};
}

// The findings of our own check, one a line; notes are what files of Access have too.
inline std::string Hallazgos(mdb::Paginas& paginas, bool con_notas) {
  std::string texto;
  for (const auto& h : mdb::Verificar(paginas).hallazgos)
    if (con_notas || h.grado == mdb::Hallazgo::Grado::Error) texto += h.texto + "\n";
  return texto;
}

class BaseNueva {
 public:
  explicit BaseNueva(std::uint16_t orden = 3082) {
    mdb::Bytes bytes = mdb::NuevaBase(orden, kAhora);
    const mdb::Cabecera cabecera = mdb::LeerCabecera(bytes);
    auto paginas = std::make_unique<mdb::PaginasEnMemoria>(cabecera, std::move(bytes));
    paginas_ = paginas.get();
    base_ = std::make_unique<mdb::Base>(std::move(paginas));
  }
  mdb::Base* operator->() { return base_.get(); }
  mdb::Paginas& Hojas() { return *paginas_; }
  mdb::Definicion Crear(const mdb::NuevaTabla& tabla) {
    base_->CrearTabla(tabla, kAhora);
    return *base_->Indice().Tabla(tabla.nombre);
  }
  const mdb::Bytes& Guardado() {
    base_->Confirmar();
    return paginas_->Guardado();
  }
  // What the independent checker, or our own, finds wrong with the file as it is. Not `estricto`: the other
  // one counts the bitmap pages of an index's map as lost, which only big files have.
  std::string Control(bool estricto = true) {
    return Controlar(Guardado(), estricto) + Hallazgos(*paginas_, true);
  }

 private:
  const base::Fecha kAhora{46347};  // 21 November 2026
  mdb::PaginasEnMemoria* paginas_ = nullptr;
  std::unique_ptr<mdb::Base> base_;
};

}  // namespace mdb_test
