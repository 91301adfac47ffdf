// The interpreter of formulas in Spanish words: text in, text out.
#pragma once

#include <string>
#include <string_view>

#include "base/locale.h"
#include "db/db_session.h"
#include "formula/vector.h"
#include "ports/prompts.h"

namespace formula {

// What one evaluator keeps between calls and whom it may ask.
struct Evaluador {
  db::DbSession* sesion = nullptr;      // SQL and LISTA run here; null or closed: they fail
  ports::Prompts* prompts = nullptr;    // the message boxes; null: none
  const ports::Clock* reloj = nullptr;  // HOY and dates without a year
  base::Locale locale = base::Locale::espanol();
  Vector TablaParametros;  // field 0 name, field 1 value
  bool ParametrosActivos = false;
  // After the second box of one load the operator may silence the following ones; the loader resets both.
  int avisos_mostrados = 0;
  bool avisos_callados = false;
  int profundidad = 0;  // of the recursion under way; limited, with an error
};

// Empty text is "0". May rewrite both arguments, as formula callers rely on.
std::string EvaluarExpresion(Evaluador& ev, std::string& formula, bool& usarParametros);
// The same for a text that the caller does not need back.
std::string EvaluarTexto(Evaluador& ev, std::string_view formula, bool usarParametros = false);

}  // namespace formula
