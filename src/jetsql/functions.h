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

#include "base/value.h"

namespace jetsql {

enum class TypeRule {
  Fixed,    // `type`
  OfFirst,  // the first argument's as a number: a boolean gives an integer, a text a number
  Common    // the common type of all arguments
};

struct Function {
  std::string_view name;  // upper case, without "$"
  int minimum;
  int maximum;  // -1: any number
  TypeRule rule;
  base::Type type;  // when rule is Fixed; Null: not known
  bool tagged;      // tagged
  // The same arguments always give the same value: false for the clock and for Rnd.
  bool deterministic = true;
};

// By name whatever its case, "$" at the end ignored; null when the dialect has no such function. IIF, SWITCH,
// CHOOSE, ISNULL and the aggregates are the translator's own and are not in this table.
const Function* FindFunction(std::string_view name);

// Whether the dialect has a function of that name, the translator's own and the aggregates included; DLookup
// and its kin, which hold statements of their own in texts, are not.
bool KnowsFunction(std::string_view name);

// All of them, by name.
std::span<const Function> Functions();

}  // namespace jetsql
