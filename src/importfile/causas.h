// The likeliest reason why lines of a file found nobody or nothing, in Spanish, for the operator.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "importfile/import_grid.h"

namespace importfile {

// The names of the six key kinds as cbTipoClave shows them.
inline constexpr std::size_t kTiposDeClave = 6;
std::string_view NombreDeTipoDeClave(int tipo);

// How many of a file's different keys name a contract of the month, by key kind.
struct ConteoDeClaves {
  std::size_t claves = 0;  // different ones, as the loader writes them
  std::array<std::size_t, kTiposDeClave> halladas{};
  // The kind that most keys match; of several the chosen one, then the first of the kinds that a file
  // usually brings. -1 when no key matches any.
  int Mejor(int elegido) const;
};
ConteoDeClaves ContarClaves(std::span<const std::string_view> claves, const refdata::PersonsIndex& personas);

// Why rows of the grid have no contract: "la clave elegida es …; 52 de 54 claves coinciden con …". "" when
// each has one.
std::string CausaSinContrato(const std::vector<ImportRow>& filas, const refdata::PersonsIndex& personas,
                             int clave_elegida);

// What a load is judged by once it has ended; `carga.filas` of a refused load is empty.
struct CargaTerminada {
  const EntradaCarga& entrada;
  FinDeCarga fin = FinDeCarga::Completa;
  const std::vector<ImportRow>& filas;
  const std::vector<LineaAparte>& aparte;
  std::size_t lineas = 0;
  std::string_view previa;  // the first lines, as they are
};
struct CausasDe {
  std::vector<std::string> causas;  // the most general first; a sentence each, without a final point
  bool graves =
      false;  // less than half of the lines became a row with a contract: the options, not the lines
};
// No cause when every line became a row with a contract.
CausasDe CausasDeCarga(const CargaTerminada& carga);

}  // namespace importfile
