// The lines of the file in GridAImportar: loaded and sorted.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "app/base_de_datos.h"
#include "app/formato.h"
#include "app/lecturas.h"
#include "app/tareas.h"
#include "app/vista_de_lineas.h"
#include "explicacion/probar.h"

namespace app {

// A load as the controls stand, without whom it may ask. `opciones` must outlive it.
importfile::EntradaCarga EntradaDeCarga(const Estado& estado, const settings::Settings& opciones);

class Lineas {
 public:
  struct Partes {
    BaseDeDatos& base;
    Lecturas& lecturas;
    Tareas& tareas;
    Formato& formato;
  };
  Lineas(Contexto& contexto, const Partes& partes);

  void GridAImportar_HeadClick(std::string_view columna);
  // Reads the file into the grid; first what could not be read from the base, when there is any.
  void CargarDatos();
  // The tables that are asked for, and then the grid when it is among them.
  void Recargar(unsigned recargas);
  // The load of a file named on the command line.
  void Activate();
  // Called before a file is read that the operator asked for.
  std::function<void()> antes_de_leer;
  void Actualizar();
  // What a load of the lines of the grid takes, but for the options and the prompts.
  importfile::EntradaCarga EntradaDeCarga(const settings::Settings& opciones);
  // A formula and a filter tried on the lines of the grid, whatever their boxes hold; "" is none. Changes
  // nothing.
  explicacion::Prueba Probar(const std::string& formula, const std::string& filtro, std::size_t cuantas);
  // The rows that a view shows; see FilasDe.
  std::vector<std::uint32_t> Vista(const VistaDeLineas& vista) const;

 private:
  void CargarGrilla();
  void VerCausas(const importfile::EntradaCarga& entrada);
  void OrdenarFilas();

  Contexto& c_;
  Estado& e_;
  Partes p_;
};

}  // namespace app
