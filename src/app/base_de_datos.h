// The one connection of the program with its company and its evaluator, and what stands in the way of
// trusting it.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "app/contexto.h"
#include "base/disk_file.h"
#include "corridas/registro.h"
#include "formula/evaluador/evaluator.h"
#include "sesion/db_session.h"

namespace app {

// Only a base of the payroll system has the company row.
bool NombraBaseDeLaEmpresa(std::string_view referencia);

class BaseDeDatos {
 public:
  explicit BaseDeDatos(Contexto& contexto);

  BaseDeDatos(const BaseDeDatos&) = delete;
  BaseDeDatos& operator=(const BaseDeDatos&) = delete;

  const sesion::DbSession& Sesion() const { return sesion_; }
  formula::Evaluador& Evaluador() { return evaluador_; }
  // Closes what was open and opens the reference. False: it is not open, and motivo_base says why.
  bool Conectar(const std::string& referencia);
  // Runs a step that writes and takes back, on the base; or, when the base may not be written now, on a copy
  // in memory, which it leaves behind. False: neither could be had, and motivo says why.
  bool Probar(const std::function<void()>& paso, std::string& motivo);
  // Opens the reference and puts it in the place of what was open. "", or why it cannot be opened: then what
  // was open stays so, unless it is the same reference, which has to be let go first.
  std::string Cambiar(const std::string& referencia);
  // The company that every statement names. What cannot be read leaves motivo_empresa.
  void LeerEmpresa();
  // Every step that touches the base runs in here: a fault of the storage or of the memory ends it, is told,
  // and stops all imports until everything has been read again. False: it was ended.
  bool ConLaBase(const std::function<void()>& paso);
  void VerSoloLectura();
  // The ledger of the open base: beside its file, or in the program's folder for a base that is none.
  corridas::LugarDelRegistro LugarDelRegistro();
  // Of a run that begins now: moment and users.
  corridas::Resumen CorridaNueva() const;
  // Whether a base that could only be read can be written by now: another program may have let it go.
  void ProbarEscritura();
  // Why there is no company to import for, "" when there is one.
  std::string MotivoSinEmpresa() const;
  // What was begun and not committed stays as it was, the month parameter included.
  void Deshacer();

  std::string MotivoDeLectura() const;  // the first of the tables that could not be read
  std::string MotivoParaNoImportar() const;

 private:
  bool Comenzar();
  bool ComenzarEnCopia(const std::string& referencia, std::string motivo);
  void FalloLaBase(std::string motivo);

  Contexto& c_;
  Estado& e_;
  base::SystemDisk disco_;
  std::string origen_;
  sesion::DbSession sesion_;
  formula::Evaluador evaluador_;
};

}  // namespace app
