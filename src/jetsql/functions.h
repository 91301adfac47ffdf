// The functions of the dialect: what the translator must know of each. The engine implements them.
//
// A function that must know whether an argument is a date, a boolean, a number or a text (SQLite holds dates
// and booleans as numbers) is *tagged*: the translator writes an extra first argument, a text with one letter
// an argument from its static type: D date, B boolean, I integer, N number, S single, C currency, T text, ?
// unknown (then the storage class decides at run time). Every function is called jet_<name in lower case> in
// the SQLite text.
#pragma once

#include <span>
#include <string_view>

#include "base/valor.h"

namespace jetsql {

enum class ReglaTipo {
  Fijo,        // `tipo`
  DelPrimero,  // the first argument's as a number: a boolean gives an integer, a text a number
  Comun        // the common type of all arguments
};

struct Funcion {
  std::string_view nombre;  // upper case, without "$"
  int minimo;
  int maximo;  // -1: any number
  ReglaTipo regla;
  base::Tipo tipo;  // when regla is Fijo; Nulo: not known
  bool etiquetada;  // tagged
  // The same arguments always give the same value: false for the clock and for Rnd.
  bool determinista = true;
};

// By name whatever its case, "$" at the end ignored; null when the dialect has no such function. IIF, SWITCH,
// CHOOSE, ISNULL and the aggregates are the translator's own and are not in this table.
const Funcion* BuscarFuncion(std::string_view nombre);

// Whether the dialect has a function of that name, the translator's own and the aggregates included; DLookup
// and its kin, which hold statements of their own in texts, are not.
bool ConoceFuncion(std::string_view nombre);

// All of them, by name.
std::span<const Funcion> Funciones();

}  // namespace jetsql
