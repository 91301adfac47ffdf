// One file on disk, read and written in place: what a database file needs and whole-file calls do not give.
//
// Interfaces, so that tests can put a disk that fails or loses what was not synced below the code that must
// survive it; DiscoDelSistema is the real one. Positions and lengths are bytes, 64 bits wide; paths are
// UTF-8. Every failure is an ErrorDeDisco whose text names the file and the system's reason in Spanish.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/error.h"

namespace base {

enum class FallaDisco {
  NoExiste,
  YaExiste,
  SinPermiso,
  SoloLectura,  // read-only media
  EnUso,        // another program keeps it from us
  DiscoLleno,
  NoAdmitido,  // the file system does not do this
  Otra
};

class ErrorDeDisco : public StorageFault {
 public:
  // `accion` is what could not be done: "No se puede abrir".
  ErrorDeDisco(std::string_view accion, std::string_view ruta, FallaDisco falla, std::string_view motivo);
  FallaDisco Falla() const { return falla_; }

 private:
  FallaDisco falla_;
};

enum class ModoArchivo {
  Lectura,
  Escritura,  // an existing file; on Windows it denies writing to others
  Nuevo       // created for reading and writing; fails when there is one
};

class ArchivoAbierto {
 public:
  virtual ~ArchivoAbierto() = default;
  // Fewer bytes than asked for only at the end of the file.
  virtual std::size_t Leer(std::uint64_t pos, std::span<std::uint8_t> destino) = 0;
  virtual void Escribir(std::uint64_t pos, std::span<const std::uint8_t> bytes) = 0;
  virtual std::uint64_t Largo() = 0;
  virtual void CambiarLargo(std::uint64_t largo) = 0;  // what is added is zeros
  // Returns when everything written is on the disk.
  virtual void Sincronizar() = 0;

  // The date of the last change, in a unit of the system's own (nanoseconds or better on most); it only
  // serves to be compared and set again.
  virtual std::int64_t Fecha() = 0;
  virtual void PonerFecha(std::int64_t fecha) = 0;
  // Whether the path still leads to this file, not to one that was put in its place.
  virtual bool SigueEnSuLugar() = 0;

  // Locks of bytes, which need not be inside the file. They belong to this opening of the file and end with
  // it, also when the process is killed. False when another one holds them; never waits. Throws NoAdmitido
  // where the file system has no locks.
  virtual bool Bloquear(std::uint64_t desde, std::uint64_t cantidad, bool exclusivo) = 0;
  virtual void Desbloquear(std::uint64_t desde, std::uint64_t cantidad) = 0;
  // The first byte of the range that somebody else has locked.
  virtual std::optional<std::uint64_t> PrimerBloqueado(std::uint64_t desde, std::uint64_t cantidad) = 0;
};

class Disco {
 public:
  virtual ~Disco() = default;
  virtual std::unique_ptr<ArchivoAbierto> Abrir(std::string_view ruta, ModoArchivo modo) = 0;
  virtual bool Existe(std::string_view ruta) = 0;
  virtual void Borrar(std::string_view ruta) = 0;
  // Never over a file that is there: YaExiste.
  virtual void Mover(std::string_view de, std::string_view a) = 0;
  // Makes what was created, removed or moved in the file's folder safe. Where the system does that by itself,
  // or cannot, it does nothing.
  virtual void SincronizarCarpetaDe(std::string_view ruta) = 0;
  // Whether files may be created beside this one, as far as can be told without trying.
  virtual bool CarpetaAdmiteNuevos(std::string_view ruta) = 0;
  // The path with its links followed, so that all who open a file find what lies beside it.
  virtual std::string RutaReal(std::string_view ruta) = 0;
  // Whether bytes that one has locked cannot be read by another; else locks bind only those who ask for them.
  virtual bool BloqueosObligan() = 0;
  // The present moment in the unit of ArchivoAbierto::Fecha, and how much of it a microsecond is.
  virtual std::int64_t Ahora() = 0;
  virtual std::int64_t Microsegundo() = 0;
  // The wait between two tries for a lock.
  virtual void Esperar(int milisegundos) = 0;
};

class DiscoDelSistema final : public Disco {
 public:
  std::unique_ptr<ArchivoAbierto> Abrir(std::string_view ruta, ModoArchivo modo) override;
  bool Existe(std::string_view ruta) override;
  void Borrar(std::string_view ruta) override;
  void Mover(std::string_view de, std::string_view a) override;
  void SincronizarCarpetaDe(std::string_view ruta) override;
  bool CarpetaAdmiteNuevos(std::string_view ruta) override;
  std::string RutaReal(std::string_view ruta) override;
  bool BloqueosObligan() override;
  std::int64_t Ahora() override;
  std::int64_t Microsegundo() override;
  void Esperar(int milisegundos) override;
};

}  // namespace base
