// The journal of a commit: the pages as they were, in a file of its own beside the base ("<base>-diario").
//
// It is written and on the disk before the first byte of the base changes, and removed when the commit is on
// the disk. Whoever opens the base and finds a complete one puts the old pages back; one without its end was
// being written when its program was cut, and the base is as it was. docs/formats/mdb.md has its layout.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "base/disk_file.h"
#include "mdb/pages/bytes.h"

namespace mdb {

std::string RutaDeDiario(std::string_view ruta_de_base);

struct DatosDeDiario {
  std::uint32_t tamano_pagina = 4096;
  NumPagina antes = 0, despues = 0;  // pages of the base before and after the commit
  std::uint32_t cantidad = 0;        // pages kept
  std::uint64_t marca = 0;           // tells this commit's records from those of any other
  std::uint64_t suma_primera = 0;    // of page 0 before the commit
  std::int64_t fecha = 0;            // of the base before the commit
};

// Sums of stored bytes, to find out a torn or foreign page; no protection against a forger.
std::uint64_t Suma(Vista bytes, std::uint64_t desde = 0);

class EscritorDeDiario {
 public:
  // Creates the file; whoever holds it open has it locked. Throws base::Error when there is one.
  EscritorDeDiario(base::Disco& disco, std::string_view ruta_de_base, const DatosDeDiario& datos);
  // The stored bytes of a page before and after; `datos.cantidad` times.
  void Agregar(NumPagina numero, Vista antes, Vista despues);
  // After this it is complete and on the disk.
  void Sellar();
  // After this it is gone, or at least of no effect. Throws base::Error when neither could be done.
  void Quitar();

 private:
  base::Disco& disco_;
  std::string ruta_;
  std::unique_ptr<base::ArchivoAbierto> archivo_;
  DatosDeDiario datos_;
  std::uint64_t pos_ = 0, suma_ = 0;
  Bytes tramo_;  // what waits to be written
  void Vaciar();
};

class LectorDeDiario {
 public:
  enum class Estado {
    NoHay,
    Incompleto,  // the base was not touched
    Vivo,        // its writer has it open
    Completo,
    Danado,  // sealed, and yet not what was sealed: `motivo`
  };
  LectorDeDiario(base::Disco& disco, std::string_view ruta_de_base);
  Estado Cual() const { return estado_; }
  const std::string& Motivo() const { return motivo_; }
  const DatosDeDiario& Datos() const { return datos_; }
  bool Tiene(NumPagina numero) const { return lugares_.count(numero) != 0; }
  // The stored bytes of a page before the commit. Throws base::Error when they are not what was sealed.
  Bytes Imagen(NumPagina numero) const;

  // Throws base::Error unless every byte of the base is one that this commit, cut anywhere, may have left:
  // then the base is another one, or was changed since.
  void CompararCon(base::ArchivoAbierto& archivo) const;
  // Puts the pages, the length and the date back, and syncs. May be done again after being cut anywhere.
  void Restaurar(base::ArchivoAbierto& archivo) const;
  // Closes and removes it.
  void Quitar();
  // Closes it; Imagen opens it again each time and throws when it is another one by then.
  void Cerrar() { archivo_.reset(); }

 private:
  base::Disco& disco_;
  std::string ruta_;
  std::unique_ptr<base::ArchivoAbierto> archivo_;
  Estado estado_ = Estado::NoHay;
  std::string motivo_;
  DatosDeDiario datos_;
  std::map<NumPagina, std::uint64_t> lugares_;  // of the records
  void Examinar();
  bool ExaminarRegistros(std::uint64_t suma_final);
  Bytes Registro(base::ArchivoAbierto& archivo, NumPagina numero, std::uint64_t pos) const;
  void CompararPagina(base::ArchivoAbierto& archivo, NumPagina numero, std::uint64_t pos) const;
};

}  // namespace mdb
