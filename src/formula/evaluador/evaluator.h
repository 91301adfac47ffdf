// The interpreter of formulas in Spanish words: text in, text out.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/locale.h"
#include "formula/vectores/vector.h"
#include "ports/clock.h"
#include "ports/prompts.h"
#include "sesion/db_session.h"

namespace formula {

// What one evaluator keeps between calls and whom it may ask.
struct Evaluador {
  const sesion::DbSession* sesion = nullptr;  // SQL and LISTA run here; null or closed: they fail
  ports::Prompts* prompts = nullptr;          // the message boxes; null: none
  const ports::Clock* reloj = nullptr;        // HOY and dates without a year; the session's when null
  base::Locale locale = base::Locale::spanish();
  Vector TablaParametros;  // field 0 name, field 1 value
  bool ParametrosActivos = false;

  // From the second box of one load on the operator may silence the following ones; the loader resets both.
  int avisos_mostrados = 0;
  bool avisos_callados = false;

  // Of the evaluation under way. No text may exhaust the stack, the memory or the operator's patience: past a
  // depth of calls or an amount of work the evaluation is given up with one box.
  int profundidad = 0;
  std::size_t esfuerzo = 0;
  db::QueryBudget consultas;      // what its statements may still take together
  const char* agotado = nullptr;  // why it was given up; stays until the next one starts
  bool agotado_avisado = false;
  // The last step of the last evaluation failed, or it was given up: its result is the text itself.
  bool sin_valor = false;
};

// The value of a formula. An error in it shows a box and the evaluation goes on after the failing step; only
// a fault of the storage under SQL and LISTA travels out, as base::Error, and the evaluator can be used again
// after it. Empty text is "0". Rewrites the text (trimmed, brackets and parameters replaced) and switches
// usarParametros on when it meets "PAR(".
std::string EvaluarExpresion(Evaluador& ev, std::string& formula, bool& usarParametros);
// The same for a text that the caller does not need back.
std::string EvaluarTexto(Evaluador& ev, std::string_view formula, bool usarParametros = false);

}  // namespace formula
