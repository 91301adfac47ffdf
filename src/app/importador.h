// The import of the loaded lines: what is told and asked before, the run, and what is told after.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/lineas.h"
#include "corridas/testigo_de_cambios.h"
#include "liquidation/resumen.h"

namespace app {

class Importador {
 public:
  struct Partes {
    BaseDeDatos& base;
    Tareas& tareas;
    Lineas& lineas;
  };
  Importador(Contexto& contexto, const Partes& partes);

  // Only the primary button (1) imports; any other does nothing. A grid that is no longer that of the
  // controls is not imported: it asks to load it again.
  void cbImportar_Click(int boton);
  // The same without its question; `deshacer` ends with a rollback, to see what would come of it.
  void Importar(bool deshacer);
  std::string Confirmacion() const;
  // What the question is about; what stands under it.
  liquidation::ResumenDeImportacion Resumen();
  // Why the button rests, in Spanish: no base, no company, a base that may only be read, no row. "": it can
  // be pressed.
  std::string MotivoApagado() const;
  // The earlier runs that brought the file into the month, one text each; asked for the summary.
  std::function<std::vector<std::string>()> importado_antes;
  // What would be written and may not be meant, one text a kind.
  std::vector<std::string> Avisos();
  // Why that line of the grid's file ends as it does, one step a text; empty when the file has no such line.
  // The whole grid is tried for it and rolled back.
  std::vector<std::string> Explicar(std::size_t linea);
  // What may not be meant although nothing is wrong with it, one text a kind; stops nothing. Reads the base.
  std::vector<std::string> Verosimilitud();

 private:
  bool CorrespondeLaGrilla();
  liquidation::EntradaImportacion EntradaDeImportacion(const settings::Settings& opciones);
  corridas::Resumen DatosDeCorrida(const settings::Settings& opciones) const;
  void Correr(const liquidation::EntradaImportacion& entrada, corridas::TestigoDeCambios& testigo);
  void AnotarImportacion(bool deshacer);

  Contexto& c_;
  Estado& e_;
  Partes p_;
};

}  // namespace app
