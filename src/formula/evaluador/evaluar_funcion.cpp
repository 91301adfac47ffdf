#include <algorithm>
#include <array>

#include "base/text.h"
#include "formula/evaluador/evaluator_internal.h"

namespace formula {
namespace {

using Cuerpo = std::string (*)(Evaluador&, std::string_view);
struct Funcion {
  std::string_view nombre;
  Cuerpo cuerpo;
};

constexpr std::array<Funcion, 16> kFunciones = {{{"PA", FuncionPA},
                                                 {"P", FuncionP},
                                                 {"ENTERO", FuncionEntero},
                                                 {"MOD", FuncionMod},
                                                 {"REDONDEO", FuncionRedondeo},
                                                 {"HOY", FuncionHoy},
                                                 {"CFECHA", FuncionCFecha},
                                                 {"ANIO", FuncionAnio},
                                                 {"MES", FuncionMes},
                                                 {"SI", FuncionSi},
                                                 {"LISTA", FuncionLista},
                                                 {"PROM", FuncionProm},
                                                 {"COND", FuncionCond},
                                                 {"ENTRE", FuncionEntre},
                                                 {"SQL", FuncionSql},
                                                 {"EVAL", FuncionEval}}};

struct Llamada {
  std::string_view nombre, argumento;
};

// The name before the first "(" and what stands between it and its ")": the last of the text, unless one
// closes before another opens. What follows the ")" is ignored.
Llamada Partir(std::string_view texto) {
  const std::size_t abre = texto.find('(');
  const std::size_t primero = texto.find(')', abre);
  if (primero == std::string_view::npos) throw base::Error("Falta un )", 1);
  const std::size_t siguiente = texto.find('(', abre + 1);
  const bool cierra_antes = siguiente != std::string_view::npos && primero < siguiente;
  const std::size_t cierra = cierra_antes ? primero : texto.rfind(')');
  return {texto.substr(0, abre), texto.substr(abre + 1, cierra - abre - 1)};
}

std::string Aplicar(Evaluador& ev, std::string_view texto, std::string_view nombre) {
  if (nombre.empty() && texto.find('(') != std::string_view::npos) {
    const Llamada llamada = Partir(texto);
    return EvaluarFuncion(ev, llamada.argumento, llamada.nombre);
  }
  if (nombre.empty()) return std::string(texto);
  const std::string buscado = base::UpperCase(base::TrimView(nombre));
  const auto f = std::find_if(kFunciones.begin(), kFunciones.end(),
                              [&](const Funcion& candidata) { return candidata.nombre == buscado; });
  if (f != kFunciones.end()) return f->cuerpo(ev, texto);
  std::string literal(1, '#');
  literal.append(texto).append(1, '#');
  return Evaluar(ev, literal);
}

}  // namespace

std::string EvaluarFuncion(Evaluador& ev, std::string_view argumento, std::string_view nombre) {
  try {
    const Nivel nivel(ev, 0);
    return Aplicar(ev, base::TrimView(argumento), nombre);
  } catch (const base::Error& e) {
    if (e.IsStorageFault()) throw;
    Avisar(ev, e.Description(), ports::Icon::None);
    return {};
  }
}

}  // namespace formula
