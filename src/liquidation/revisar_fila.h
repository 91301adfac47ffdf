// What a row of the grid asks the import for, before anything is written: the run and the warnings before it
// read a row by the same rules.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "importfile/import_grid.h"
#include "liquidation/entrada_importacion.h"
#include "refdata/persons_index.h"
#include "relations/code_relations.h"
#include "sesion/db_session.h"
#include "settings/settings.h"

namespace liquidation {

// Data kinds that decide which columns a datum fills: quantity alone, or quantity and coefficient; any other
// fills the coefficient.
inline constexpr int kTipoCantidad = 3, kTipoCantidadYValor = 5;
int TipoDatoDe(const importfile::ImportRow& fila);
int TipoCuotaDe(const importfile::ImportRow& fila);

struct LineaAImportar {
  std::size_t persona = 0;   // row of the index of persons
  std::size_t relacion = 0;  // row of the relations
  std::int32_t concepto = 0;
  float cantidad = 0;
  float coeficiente = 0;    // 0 where the data kind does not use it
  bool mes_entero = false;  // common hours of who is paid by the month: one month of concept 1
};

// The checks of a line in their order: person, relation, number, zero. `motivo` says which one refused it.
struct FilaRevisada {
  std::optional<LineaAImportar> linea;
  std::string motivo;
};
FilaRevisada RevisarFila(const EntradaImportacion& entrada, const importfile::ImportRow& fila);

// The number of a quantity or a value as the import reads it; empty is 0. Throws base::Error 13 for any other
// text that is no number, 6 for one past what a single holds.
double NumeroDeLinea(std::string_view texto);

// The concept of a relation: a whole number of 32 bits other than -1, which stands for no concept.
std::optional<std::int32_t> ConceptoDeRelacion(std::string_view texto);

// An identifier as the base gives it. Throws base::Error 6 past 32 bits.
std::int32_t Identificador32(std::string_view texto);

// The cost centre that the datum stands under. Throws base::Error 6 past 32 bits.
std::int32_t Agrupacion(const sesion::DbSession& sesion, const settings::Settings& opciones,
                        const refdata::PersonsIndex& personas, std::size_t persona,
                        const importfile::ImportRow& fila, std::int64_t centro_costo);

}  // namespace liquidation
