// What the routines of the writer share among themselves.
#pragma once

#include <cstdint>
#include <string>

#include "liquidation/agregar_datos_a_liq.h"

namespace liquidation {

// Sets the savepoint of the line before the first thing that it writes.
void Marcar(Corrida& corrida);

// Runs a statement that writes. Throws db::Error.
void Escribir(Corrida& corrida, const std::string& sql);

// The identifier after the largest one. Throws base::Error 6 when it passes 32 bits.
std::int32_t IdentificadorNuevo(const Corrida& corrida, std::string_view tabla, std::string_view campo);

struct DatoALiquidar {
  std::int32_t concepto = 0;
  std::int32_t contrato = 0;
  std::int32_t encabezado = 0;
  std::int32_t agrupa = 0;
};

// Inserts, replaces or sums the datum. Throws base::Error.
void EscribirDato(Corrida& corrida, const DatoALiquidar& dato, float& cantidad, float& coeficiente,
                  const importfile::ImportRow& fila);

// Writes into the user table `concepto` - 1000. Throws base::Error.
void EscribirTablaUsuario(Corrida& corrida, std::int32_t concepto, std::int32_t contrato, float& cantidad,
                          float coeficiente);

}  // namespace liquidation
