// The program without its window: its parts, each with the handlers of the controls that it serves, and what
// the two faces ask of the whole.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "app/archivo.h"
#include "app/cambio_de_base.h"
#include "app/cierre.h"
#include "app/historial.h"
#include "app/importador.h"
#include "app/informes.h"
#include "app/inicio.h"
#include "app/opciones.h"
#include "app/primer_uso.h"
#include "app/relaciones.h"

namespace app {

class Programa {
 public:
  Programa(const Puertos& puertos, Arranque arranque);
  Programa(const Programa&) = delete;
  Programa& operator=(const Programa&) = delete;

  const Estado& Ver() const { return c_.estado; }
  const sesion::DbSession& Sesion() const { return base_.Sesion(); }
  const base::ErrorSink& Errores() const { return c_.errores; }
  Barra& BarraDeProgreso() { return c_.barra; }
  // Called when anything that a window draws may have changed.
  void AlCambiar(std::function<void()> llamar) { c_.al_cambiar = std::move(llamar); }

  // Start-up and shutdown; see Inicio and Cierre.
  bool Iniciar(std::string_view linea_de_comandos) { return inicio_.Iniciar(linea_de_comandos); }
  bool IniciarCon(std::string referencia, std::string archivo) {
    return inicio_.IniciarCon(std::move(referencia), std::move(archivo));
  }
  // The base alone, with its company: for what loads no lines. Nothing is written.
  bool Abrir(const std::string& referencia) { return lecturas_.Abrir(referencia); }
  void Activate() { lineas_.Activate(); }
  bool Unload(bool callado = false) { return cierre_.Unload(callado); }
  void Resguardar() { cierre_.Resguardar(); }
  bool PuedeCerrar() const { return !tareas_.EnCurso(); }
  bool CierrePedido() const { return tareas_.CierrePedido(); }
  // The operator wants the load or the import under way to stop.
  void Cancelar() { tareas_.Cancelar(); }

  // The handlers, by what they serve.
  app::Archivo& Archivo() { return archivo_; }
  app::Formato& Formato() { return formato_; }
  app::Lineas& Lineas() { return lineas_; }
  app::Opciones& Opciones() { return opciones_; }
  app::Relaciones& Relaciones() { return relaciones_; }
  app::Importador& Importador() { return importador_; }
  app::Historial& Historial() { return historial_; }
  app::Informes& Informes() { return informes_; }
  app::CambioDeBase& CambioDeBase() { return cambio_de_base_; }

  // Why nothing is imported for now, in Spanish: something that an import stands on could not be read. "": it
  // may be.
  std::string MotivoParaNoImportar() const { return base_.MotivoParaNoImportar(); }
  // Takes back what was written since the base was opened, when the start asked for one transaction.
  void Deshacer() { base_.Deshacer(); }

 private:
  Contexto c_;
  BaseDeDatos base_;
  Lecturas lecturas_;
  Tareas tareas_;
  Cierre cierre_;
  app::Formato formato_;
  app::Lineas lineas_;
  app::Archivo archivo_;
  app::Opciones opciones_;
  app::Relaciones relaciones_;
  app::Importador importador_;
  app::Historial historial_;
  app::Informes informes_;
  app::CambioDeBase cambio_de_base_;
  PrimerUso primer_uso_;
  Inicio inicio_;
};

}  // namespace app
