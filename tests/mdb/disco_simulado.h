// A disk in memory that can be cut, fail or be full at any call, and forgets what was not synced.
//
// Each call that changes something counts. What a file was written since its last sync is kept apart, in
// sectors, as are the names created and removed since the last sync of the folder: after a cut any of it may
// be lost.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "base/disk_file.h"
#include "mdb/pages/bytes.h"

namespace mdb_test {

// The current goes, or the program is killed: no code of the program sees it as an error.
struct Corte {};

class DiscoSimulado : public base::Disco {
 public:
  DiscoSimulado();
  ~DiscoSimulado() override;

  // The call of that number (from 1) ends in a Corte; a write is then half done.
  void CortarEn(int llamada) { cortar_en_ = llamada; }
  // The call of that number, or all from it on, throw an ErrorDeDisco; a write is then half done.
  void FallarEn(int llamada, bool siempre = false) {
    fallar_en_ = llamada;
    fallar_siempre_ = siempre;
  }
  // The same for calls that only look: reading, asking for the length or the date, locking.
  void FailLookAt(int call, bool always = false) {
    fail_look_at_ = call;
    fail_looks_always_ = always;
    looks_ = failed_looks_ = 0;
  }
  int FailedLooks() const { return failed_looks_; }
  void Sanar() { fallar_en_ = cortar_en_ = fail_look_at_ = 0; }
  // No more bytes than these in all files.
  void Llenar(std::optional<std::uint64_t> lugar) { lugar_ = lugar; }
  void DetenerElReloj() { detenido_ = true; }  // all that happens falls in one tick
  void PonerSoloLectura(bool si) { solo_lectura_ = si; }
  void QuitarBloqueos() { sin_bloqueos_ = true; }  // a disk that has none
  int Llamadas() const { return llamadas_; }
  void ContarDeNuevo() { llamadas_ = 0; }
  const std::vector<std::string>& Diario() const { return hechas_; }  // the calls, for messages

  enum class Perdida { Nada, Todo, AlAzar };  // of what was not synced
  // The disk as found after a cut; all who had files open are gone.
  std::shared_ptr<DiscoSimulado> Despues(Perdida perdida, std::mt19937& azar) const;

  void Poner(const std::string& ruta, const mdb::Bytes& bytes);  // there since long ago
  mdb::Bytes Contenido(const std::string& ruta) const;
  std::uint64_t Ocupado() const;

  std::unique_ptr<base::ArchivoAbierto> Abrir(std::string_view ruta, base::ModoArchivo modo) override;
  bool Existe(std::string_view ruta) override;
  void Borrar(std::string_view ruta) override;
  void Mover(std::string_view de, std::string_view a) override;
  void SincronizarCarpetaDe(std::string_view ruta) override;
  bool CarpetaAdmiteNuevos(std::string_view) override { return true; }
  std::string RutaReal(std::string_view ruta) override { return std::string(ruta); }
  bool BloqueosObligan() override { return false; }
  std::int64_t Ahora() override { return detenido_ ? reloj_ : ++reloj_; }
  std::int64_t Microsegundo() override { return 1; }
  void Esperar(int) override {}

 private:
  friend class ArchivoSimulado;
  struct Nodo;
  using Nombres = std::map<std::string, std::shared_ptr<Nodo>>;
  // True when the call must be done by half and then fail.
  bool Contar(const std::string& que);
  [[noreturn]] void Romper(const std::string& ruta) const;
  void Look(const std::string& what, const std::string& path);

  Nombres nombres_, nombres_durables_;
  int llamadas_ = 0, cortar_en_ = 0, fallar_en_ = 0;
  int looks_ = 0, fail_look_at_ = 0, failed_looks_ = 0;
  bool fail_looks_always_ = false;
  bool fallar_siempre_ = false, solo_lectura_ = false, detenido_ = false, sin_bloqueos_ = false;
  std::optional<std::uint64_t> lugar_;
  std::int64_t reloj_ = 1000;
  std::vector<std::string> hechas_;
};

}  // namespace mdb_test
