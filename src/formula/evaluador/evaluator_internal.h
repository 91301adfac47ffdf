// The levels of the evaluator. Each takes a text and gives a text; there are no tokens and no tree.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "base/error.h"
#include "formula/evaluador/evaluator.h"

namespace formula {

// --- limits (limites.cpp)

// Counts one call of a level over a text of that length, and its depth while it lives. Throws base::Error
// when the evaluation has gone too deep or has worked too much; from then on every call of it throws.
class Nivel {
 public:
  Nivel(Evaluador& ev, std::size_t largo);
  ~Nivel() { --ev_.profundidad; }
  Nivel(const Nivel&) = delete;
  Nivel& operator=(const Nivel&) = delete;

 private:
  Evaluador& ev_;
};
void Gastar(Evaluador& ev, std::size_t trabajo);
// Gives the evaluation under way up. `motivo` outlives it.
[[noreturn]] void Abandonar(Evaluador& ev, const char* motivo);
inline constexpr std::size_t kTrabajoDeConsulta = 25'000;  // a statement, in bytes of text gone over
inline constexpr std::size_t kTrabajoPorByteDeConsulta = 16;
inline constexpr std::size_t kTextoMaximo = std::size_t{1} << 22;

// base::Replace, with an error instead of a text beyond all measure.
std::string ReemplazarAcotado(std::string_view texto, std::string_view de, std::string_view por,
                              bool sin_caso);

// Shows a box, unless the operator silenced them or it only echoes that the evaluation was given up.
void Avisar(Evaluador& ev, const std::string& texto, ports::Icon icono);

// --- kinds of text (comparable.cpp)

// The number of a text, when it is one.
std::optional<double> Numero(const Evaluador& ev, std::string_view texto);
inline bool EsNumero(const Evaluador& ev, std::string_view texto) { return Numero(ev, texto).has_value(); }
// Without an exponent ever: the levels read one another's texts, and an exponent would be cut off.
std::string TextoDeNumero(const Evaluador& ev, double numero);

// Wrapped in "#" on both sides. Two dates in one text look the same from outside, and are taken the same.
bool EsLiteralFecha(std::string_view texto);
std::string_view SinAlmohadillas(std::string_view texto);
base::Date Hoy(const Evaluador& ev);
std::optional<base::Date> Fecha(const Evaluador& ev, std::string_view texto);

// One side of a comparison: a number if it is one, else a date if it is one, else a text.
struct Comparable {
  enum class Clase { Numero, Fecha, Texto } clase = Clase::Texto;
  double valor = 0;
  std::string texto;
};
Comparable Clasificar(const Evaluador& ev, std::string texto);
// <0, 0, >0. Sides of different kinds compare as text.
int Comparar(const Comparable& a, const Comparable& b);
// A side as it stands when it is a number, else its value in upper case.
std::string TextoDeLado(Evaluador& ev, std::string_view texto);
Comparable EvaluarLado(Evaluador& ev, std::string_view texto);

// --- levels

std::string CalcularTerminos(Evaluador& ev, std::string_view termino);

// True when the text falls into more than one piece at the operator. Empty pieces go; a leading or doubled
// minus becomes the sign of what follows it, and a minus behind another operator does not split. When it does
// not split the text is to be used as it stands, an operator at an end with it.
bool SepararPorOperador(std::string_view texto, char operador, std::vector<std::string>& piezas);
// Split where the separator stands outside parentheses: where no more of them have opened than closed so far.
std::vector<std::string_view> SepararFueraDeParentesis(std::string_view texto, char separador);

std::string EvaluarFuncion(Evaluador& ev, std::string_view argumento, std::string_view nombre);
// "OR" and "AND" split inside words too; formula authors avoid such words in conditions.
bool EvaluarLogica(Evaluador& ev, std::string_view condicion, std::string_view operador = {});
bool EvaluarComparacion(Evaluador& ev, std::string_view comparacion);

// The value of a piece inside a formula, with the parameters as they are now.
std::string Evaluar(Evaluador& ev, std::string_view pieza);
// The piece's own text when it is a number, else its value.
std::string NumeroOValor(Evaluador& ev, std::string_view pieza);

// --- functions, by name. They get the trimmed argument text and throw base::Error.

std::string FuncionPA(Evaluador& ev, std::string_view x);
std::string FuncionP(Evaluador& ev, std::string_view x);
std::string FuncionEntero(Evaluador& ev, std::string_view x);
std::string FuncionMod(Evaluador& ev, std::string_view x);
std::string FuncionRedondeo(Evaluador& ev, std::string_view x);
std::string FuncionProm(Evaluador& ev, std::string_view x);
std::string FuncionHoy(Evaluador& ev, std::string_view x);
std::string FuncionCFecha(Evaluador& ev, std::string_view x);
std::string FuncionAnio(Evaluador& ev, std::string_view x);
std::string FuncionMes(Evaluador& ev, std::string_view x);
std::string FuncionSi(Evaluador& ev, std::string_view x);
std::string FuncionCond(Evaluador& ev, std::string_view x);
std::string FuncionEntre(Evaluador& ev, std::string_view x);
std::string FuncionEval(Evaluador& ev, std::string_view x);
std::string FuncionSql(Evaluador& ev, std::string_view x);
std::string FuncionLista(Evaluador& ev, std::string_view x);

}  // namespace formula
