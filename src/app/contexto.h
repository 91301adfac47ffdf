// What the parts of the program share: whom they ask, how it was started, and its state.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/barra.h"
#include "app/conector.h"
#include "app/estado.h"
#include "base/disk_file.h"
#include "base/error.h"
#include "ports/clock.h"
#include "ports/file_picker.h"
#include "ports/progress.h"
#include "ports/prompts.h"
#include "settings/config_file.h"

namespace app {

// Whom the program asks. All outlive it.
struct Puertos {
  ports::Prompts& prompts;
  ports::FilePicker& picker;
  const ports::Clock& reloj;
  ports::EventPump* eventos = nullptr;
  // From a reference to an open base.
  std::function<Conexion(const std::string&, const ports::Clock&)> conectar = AbrirReferencia;
  std::function<Conexion(const std::string&, const ports::Clock&)> conectar_copia = AbrirCopia;
  base::Disk* disco = nullptr;  // of the ledger; the system's when null
};

struct Arranque {
  std::string carpeta;  // of ImportDeMarcas.ini; made when it is missing
  std::string version = "1.0.0";
  std::optional<std::string> ajustes;  // the settings text itself: then the file is neither read nor written
  std::optional<base::Date> mes;       // instead of the current month
  // Begin a transaction as soon as the base is open, before anything is written; a base that refuses it is
  // not opened.
  bool una_transaccion = false;
  bool solo_prueba = false;  // nothing will be written: a base that gives no transaction is tried in a copy
  std::optional<std::string> usuario = {};  // who runs the program, instead of the system's user
  // Look at a file that the options make nothing of, and propose others; see PrimerUso.
  bool proponer = false;
};

struct Contexto {
  Contexto(const Puertos& puertos_, Arranque arranque_);
  Contexto(const Contexto&) = delete;
  Contexto& operator=(const Contexto&) = delete;

  Puertos puertos;
  Arranque arranque;
  Estado estado;
  Barra barra;
  base::ErrorSink errores;
  std::function<void()> al_cambiar;

  void Avisar(std::string texto);
  void Cambio();  // anything that a window draws may have changed
  // The settings as they stand now: another window may have written them.
  settings::Ajustes LeerAjustes() const;
};

}  // namespace app
