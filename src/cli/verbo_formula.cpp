#include <string>

#include "app/conector.h"
#include "base/text.h"
#include "cli/consola.h"
#include "cli/salida.h"
#include "cli/verbos.h"
#include "formula/evaluador/evaluator.h"
#include "sesion/db_session.h"

namespace cli {

int Formula(const OpcionesFormula& o, const ports::Clock& reloj, Flujos f) {
  sesion::DbSession sesion;
  sesion.reloj = &reloj;
  if (!o.base.empty()) {
    app::Conexion c = app::AbrirReferencia(o.base, reloj);
    if (c.conexion == nullptr) {
      f.err << c.motivo << '\n';
      return kSinBase;
    }
    sesion.conexion = std::move(c.conexion);
  }
  Consola consola(f.err);
  formula::Evaluador ev;
  ev.sesion = &sesion;
  ev.prompts = &consola;
  ev.reloj = &reloj;
  if (o.expresion != "-") {
    f.out << formula::EvaluarTexto(ev, o.expresion) << '\n';
  } else {
    for (std::string linea; std::getline(f.in, linea);) {
      if (!linea.empty() && linea.back() == '\r') linea.pop_back();
      const std::string resultado = formula::EvaluarTexto(ev, base::Replace(linea, "\\r\\n", base::kCrLf));
      f.out << base::Replace(base::Replace(resultado, base::kCrLf, "\\r\\n"), "\n", "\\n") << '\n';
    }
  }
  return Terminar(f, kTodo);
}

}  // namespace cli
