// The pages of a file and the changes that wait for their commit.
//
// Changes stay in memory until Confirmar, which writes all of them or none; Deshacer drops them. An image
// handed out by Leer never changes: a page that is modified while somebody holds its image is copied first.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

#include "mdb/pages/header.h"

namespace mdb {

using Imagen = std::shared_ptr<const Bytes>;

// Why nothing may be written into a file.
enum class ReadOnlyCause : std::uint8_t {
  None,
  Asked,       // it was opened for reading
  Format,      // of a kind that is only read
  Incomplete,  // the end of the file is missing
  InUse,       // by a program that does not say who it is
  Denied,      // the system, or a program that says who it is, does not let us
  Broken       // a commit failed half-way
};

class Paginas {
 public:
  explicit Paginas(Cabecera cabecera, NumPagina cantidad)
      : cabecera_(std::move(cabecera)), guardadas_(cantidad), cantidad_(cantidad) {}
  Paginas(const Paginas&) = delete;
  Paginas& operator=(const Paginas&) = delete;
  virtual ~Paginas() = default;

  const Cabecera& Cab() const { return cabecera_; }
  std::size_t Tamano() const { return cabecera_.tamano_pagina; }
  NumPagina Cantidad() const { return cantidad_; }  // with the pages added since the last commit

  // The page as it is now, plain. Throws Danio for a number beyond the end, base::Error when the disk fails.
  Imagen Leer(NumPagina numero);
  // The page to write in. The reference holds until the next Modificar of the same page, Guardar, Volver,
  // Confirmar or Deshacer. Throws base::Error when the file is open for reading only.
  Bytes& Modificar(NumPagina numero);
  // A new page at the end, all zeros; the caller enters it in the page maps (see page_map.h). Throws
  // base::Error at the format's greatest size.
  NumPagina Agregar();

  // Why nothing may be written; empty when it may.
  const std::string& MotivoSoloLectura() const { return motivo_; }
  ReadOnlyCause WhyReadOnly() const { return cause_; }
  bool HayCambios() const { return !cambiadas_.empty(); }
  // Whether another program has committed into a file that is only read since it was opened, or has put
  // another file in its place: what was read from it is then of the past, and more may not be had.
  virtual bool CambioAfuera() const { return false; }

  // Writes all changes, or none (then throws base::Error with the reason and the changes are dropped).
  void Confirmar();
  void Deshacer();

  // A point inside a transaction to come back to.
  struct Punto {
    std::unordered_map<NumPagina, std::shared_ptr<Bytes>> cambiadas;
    NumPagina cantidad = 0;
  };
  Punto Guardar() const { return {cambiadas_, cantidad_}; }
  void Volver(Punto punto);

 protected:
  using Cambiadas = std::unordered_map<NumPagina, std::shared_ptr<Bytes>>;
  // The stored page, decrypted.
  virtual Bytes Traer(NumPagina numero) = 0;
  // Writes the pages (plain bytes) and makes the file `cantidad` pages long, all or nothing; throws
  // base::Error. `antes` is the length in pages at the last commit.
  virtual void Volcar(const Cambiadas& cambiadas, NumPagina antes, NumPagina cantidad) = 0;
  void PonerSoloLectura(ReadOnlyCause cause, std::string motivo) {
    cause_ = cause;
    motivo_ = std::move(motivo);
  }

 private:
  Cabecera cabecera_;
  ReadOnlyCause cause_ = ReadOnlyCause::None;
  std::string motivo_;
  Cambiadas cambiadas_;
  std::unordered_map<NumPagina, Imagen> limpias_;
  NumPagina guardadas_, cantidad_;
};

// A file in memory, for tests and for building a new file before it is written.
class PaginasEnMemoria final : public Paginas {
 public:
  PaginasEnMemoria(Cabecera cabecera, Bytes bytes);
  const Bytes& Guardado() const { return bytes_; }  // as stored, since the last commit

 private:
  Bytes Traer(NumPagina numero) override;
  void Volcar(const Cambiadas& cambiadas, NumPagina antes, NumPagina cantidad) override;
  Bytes bytes_;
};

}  // namespace mdb
