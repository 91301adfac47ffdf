// The runs of the open base: what the ledger beside it tells, and the way back.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/base_de_datos.h"
#include "app/tareas.h"
#include "corridas/anular.h"
#include "corridas/repetidas.h"

namespace app {

class Historial {
 public:
  struct Partes {
    BaseDeDatos& base;
    Tareas& tareas;
  };
  Historial(Contexto& contexto, const Partes& partes);

  struct Lista {
    std::vector<corridas::Resumen> corridas;  // of the company, oldest first
    std::string motivo;                       // why there is none, in Spanish; "" when it was read
  };
  // A run that a crash left pending is decided by the base. Writes nothing that the base does not prove.
  Lista Listar();

  struct Deshecha {
    corridas::Anulacion anulacion;
    std::string motivo;  // why nothing was undone; "" when it was, or when all its rows stay
  };
  // The run of that number, or the last that stands. Not while a load or an import runs. The user tables are
  // read again after it.
  Deshecha Deshacer(std::optional<std::uint32_t> numero);

  // The runs that brought the loaded file, or a good part of its lines, into the month. What keeps the ledger
  // from being read is a reason not to import: it goes into `motivo`.
  std::vector<corridas::ImportadaAntes> YaImportado(std::string& motivo);

  // What becomes of a run, in a word or two: "hecha", "deshecha por la 3", …
  static std::string EstadoDe(const corridas::Resumen& corrida);
  // A row that was kept, for a person to find.
  static std::string TextoDe(const corridas::FilaConservada& fila);

 private:
  std::vector<corridas::Resumen> Leer();

  Contexto& c_;
  Estado& e_;
  Partes p_;
};

}  // namespace app
