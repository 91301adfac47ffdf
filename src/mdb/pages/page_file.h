// The pages of a file on disk.
//
// One program writes, any number read. Who opens for writing has the writer's lock until it closes; a second
// one that asks for it gets the file for reading only. A program that reads need not close for another to
// write: each reading of pages and each commit take the commit lock (see lock.h), so that no reader sees half
// a commit. A reader goes on seeing the file as it was when opened, or nothing: once another program has
// committed, reading a page not read before throws ArchivoCambio, and the file must be opened anew. That is
// told by the file's date, which a commit always raises, and its length.
//
// A commit writes the journal (journal.h), the changed pages, and removes the journal, each synced before the
// next: a program killed anywhere leaves the file as before or, after the next opening, as before or as
// after. A disk that fails in between is answered by putting the old pages back at once; when that fails too,
// the journal stays for the next opening and nothing more is read from this one. A file in which nothing is
// written keeps its bytes and its date.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/disk_file.h"
#include "mdb/pages/journal.h"
#include "mdb/pages/pages.h"

namespace mdb {

// Another program changed the file since it was opened.
class ArchivoCambio : public base::StorageFault {
 public:
  ArchivoCambio() : base::StorageFault("Otro programa cambió la base desde que se abrió: ábrala de nuevo") {}
};

class PaginasDeArchivo final : public Paginas {
 public:
  // Rolls back what a cut commit left. When the file cannot be written it opens for reading:
  // MotivoSoloLectura says why. Throws base::Error: no such file, another kind of file, a journal that is not
  // of this file.
  static std::unique_ptr<PaginasDeArchivo> Abrir(std::string_view ruta, bool solo_lectura = false,
                                                 std::shared_ptr<base::Disco> disco = nullptr);

  bool CambioAfuera() const override;

 private:
  friend class Apertura;
  struct Abierto {
    std::shared_ptr<base::Disco> disco;
    std::string ruta;
    std::unique_ptr<base::ArchivoAbierto> archivo;
    ReadOnlyCause cause = ReadOnlyCause::None;
    std::string motivo;        // empty: open for writing
    bool hay_bloqueos = true;  // the disk has locks
    std::optional<LectorDeDiario>
        capa;                // a cut commit that could not be rolled back on disk: its pages count
    std::int64_t fecha = 0;  // of the file, when opened or at the last own commit
    std::uint64_t largo = 0;
  };
  PaginasDeArchivo(Cabecera cabecera, NumPagina cantidad, Abierto abierto);
  Bytes Traer(NumPagina numero) override;
  void Volcar(const Cambiadas& cambiadas, NumPagina antes, NumPagina cantidad) override;

  struct Cambio {
    NumPagina numero;
    const Bytes* plana;
    Bytes antes;  // as stored; empty for a page that is new
  };
  Bytes Guardada(const Cambio& cambio) const;
  std::vector<Cambio> Reunir(const Cambiadas& cambiadas, NumPagina antes);
  DatosDeDiario DatosDelDiario(const std::vector<Cambio>& cambios, NumPagina antes, NumPagina cantidad);
  EscritorDeDiario EscribirDiario(const std::vector<Cambio>& cambios, const DatosDeDiario& datos);
  void EscribirPaginas(const std::vector<Cambio>& cambios, NumPagina cantidad);
  [[noreturn]] void VolverAtras(const std::vector<Cambio>& cambios, NumPagina antes, EscritorDeDiario& diario,
                                const std::string& motivo);
  void FecharCommit();
  bool OtroEstado() const;
  void Comprobar();
  void LeerTramo(NumPagina primera, NumPagina cantidad);
  void PonerCapa(NumPagina primera, NumPagina cantidad);
  NumPagina PaginasEnDisco() const;

  Abierto a_;
  std::string rota_;  // why nothing more is read
  // The pages last read from the disk, as stored: whoever reads a table reads on.
  NumPagina tramo_desde_ = 0, tramo_cantidad_ = 0;
  Bytes tramo_;
};

}  // namespace mdb
