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

struct Cifras {
  float cantidad = 0;
  float coeficiente = 0;
};

struct DatoALiquidar {
  std::int32_t concepto = 0;
  std::int32_t contrato = 0;
  std::int32_t encabezado = 0;  // 0, and so the next, for a user table
  std::int32_t agrupa = 0;
  Cifras cifras;  // of the line
};

// Inserts, replaces or sums the datum of the line, and returns what the header's datum now holds. Throws
// base::Error.
Cifras EscribirDato(Corrida& corrida, const DatoALiquidar& dato, const importfile::ImportRow& fila);

// Writes into the user table `concepto` - 1000, and returns the quantity that the run now has there. Throws
// base::Error.
float EscribirTablaUsuario(Corrida& corrida, const DatoALiquidar& dato);

}  // namespace liquidation
