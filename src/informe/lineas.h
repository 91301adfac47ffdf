// What became of each line of a file: of those of the grid, and of those that are no rows.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "importfile/import_grid.h"

namespace informe {

enum class EstadoDeLinea { Importada, Rechazada, Filtrada, MalFormada };
// importada, rechazada, filtrada, mal_formada.
std::string_view TextoDe(EstadoDeLinea estado);

struct Linea {
  std::size_t numero = 0;
  EstadoDeLinea estado = EstadoDeLinea::Rechazada;
  std::string resultado;                          // "OK", or why it was not imported
  const formula::CamposDeLinea* campo = nullptr;  // never null
  const importfile::ImportRow* fila = nullptr;    // null when it is no row of the grid
  bool SinImportar() const {
    return estado == EstadoDeLinea::Rechazada || estado == EstadoDeLinea::MalFormada;
  }
};

// In the order of the file, each line once. Of a grid that has been imported or tried; the views live as long
// as both tables.
std::vector<Linea> LineasDe(const std::vector<importfile::ImportRow>& filas,
                            const std::vector<importfile::LineaAparte>& aparte);

struct Cuentas {
  std::size_t leidas = 0, importadas = 0, rechazadas = 0, filtradas = 0, mal_formadas = 0;
};
Cuentas Contar(const std::vector<Linea>& lineas);

// The text with every control character, a line end among them, made a blank.
std::string EnUnaLinea(std::string_view texto);

}  // namespace informe
