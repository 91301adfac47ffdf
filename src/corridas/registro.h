// The ledger beside a base: one file, one record a run, added at the end. docs/formats/corridas.md has its
// bytes.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/disk_file.h"
#include "corridas/corrida.h"

namespace corridas {

struct LugarDelRegistro {
  base::Disk* disco = nullptr;
  std::string ruta;
  // Makes the empty file, for those alone who may read the base; without it the disk makes one. False: it
  // could not.
  std::function<bool()> crear;
};

// All runs with what became of them, oldest first; none when there is no file. A record that was cut off at
// the end of the file never counted: its run had not been committed. Throws base::Error when the file cannot
// be read, or is damaged before its end.
std::vector<Resumen> LeerRegistro(const LugarDelRegistro& lugar);
// The same run with its lines and rows. Throws base::Error.
Corrida LeerCorrida(const LugarDelRegistro& lugar, std::uint32_t numero);

// Fills `anulada_por` and `conservadas` of the runs that an undoing among them undid.
void VerAnulaciones(std::vector<Resumen>& corridas);

// The ledger, held for writing: nobody else writes in it while this lives.
class Apunte {
 public:
  // Waits a few seconds for another program. `crear`: make the file when there is none. Throws base::Error.
  Apunte(const LugarDelRegistro& lugar, bool crear);
  Apunte(const Apunte&) = delete;
  Apunte& operator=(const Apunte&) = delete;
  ~Apunte();

  const std::vector<Resumen>& Corridas() const { return corridas_; }
  Corrida Leer(std::uint32_t numero);
  // Adds the run as pending, and returns its number once it is safe on the disk.
  std::uint32_t Anotar(Corrida corrida);
  // Says what became of a run. A file that holds nothing but one run that never was goes again.
  void Marcar(std::uint32_t numero, EstadoCorrida estado);

 private:
  void CrearSiFalta();
  void Bloquear();
  void Agregar(const std::string& bytes);

  LugarDelRegistro lugar_;
  std::unique_ptr<base::OpenFile> archivo_;
  std::vector<Resumen> corridas_;
  std::uint64_t fin_ = 0;  // of what is whole
  bool creado_ = false, borrar_ = false;
};

}  // namespace corridas
