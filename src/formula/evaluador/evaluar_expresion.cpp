#include "base/number.h"
#include "base/text.h"
#include "formula/evaluador/evaluator_internal.h"

namespace formula {
namespace {

void ReiniciarParametros(Evaluador& ev) {
  ev.TablaParametros.dimensiones = 2;
  ev.TablaParametros.registros.assign(1, {std::string(), std::string()});
}

// A name between brackets is replaced with them; only when it never stands so are its bare occurrences.
void ReemplazarParametros(Evaluador& ev, std::string& texto) {
  const Vector& tabla = ev.TablaParametros;
  for (std::size_t i = 0; i < tabla.Cantidad(); ++i) {
    const std::string& nombre = tabla.Campo(0, i);
    Gastar(ev, 8 * texto.size());  // several searches without regard to case
    const std::string con_corchetes = "[" + nombre + "]";
    const bool entre = base::Contains(texto, con_corchetes, base::Compare::IgnoringCase);
    texto = ReemplazarAcotado(texto, entre ? con_corchetes : nombre, tabla.Campo(1, i), true);
  }
}

void AplicarParametros(Evaluador& ev, std::string& texto, bool& usarParametros) {
  if (base::StartsWith(texto, "PAR(", base::Compare::IgnoringCase)) {
    if (!usarParametros) ReiniciarParametros(ev);
    ev.ParametrosActivos = usarParametros = true;
  } else if (usarParametros && ev.TablaParametros.dimensiones == 2) {
    base::PassOverError("TablaParametros", nullptr, [&] { ReemplazarParametros(ev, texto); });
  }
}

// Brackets are the grouping: the innermost pair first, its value in the place of all its occurrences.
void EvaluarCorchetes(Evaluador& ev, std::string& texto, bool& usarParametros) {
  do {
    Gastar(ev, texto.size());
    texto = base::Trim(texto);
    if (!EsNumero(ev, texto) && !EsLiteralFecha(texto)) AplicarParametros(ev, texto, usarParametros);
    const std::size_t primero = texto.find('[');
    if (primero == std::string::npos) return;
    const std::size_t cierra = texto.find(']', primero);
    if (cierra == std::string::npos) throw base::Error("Falta un )", 1);
    const std::size_t abre = texto.rfind('[', cierra);
    const std::string grupo = texto.substr(abre, cierra - abre + 1);
    const std::string valor = Evaluar(ev, std::string_view(grupo).substr(1, grupo.size() - 2));
    texto = ReemplazarAcotado(texto, grupo, valor, false);
  } while (texto.find(']') != std::string::npos && texto.find('[') != std::string::npos);
}

// "dd/MM/yyyy": with a year of four digits it is a date and not two divisions. "160/1,25" has none, and in
// "12,5/2024" the comma is that of a number.
bool EsFechaCompleta(const Evaluador& ev, std::string_view texto) {
  constexpr std::size_t kCifrasDelAnio = 4, kMenor = 8;
  const std::size_t barra = texto.rfind('/');
  if (barra == std::string_view::npos || texto.find(',') != std::string_view::npos) return false;
  const std::string_view anio = texto.substr(barra + 1);
  if (anio.size() != kCifrasDelAnio || anio.find_first_not_of("0123456789") != std::string_view::npos)
    return false;
  return base::Length(texto) >= kMenor && Fecha(ev, texto).has_value();
}

std::string ValorFinal(Evaluador& ev, const std::string& texto) {
  if (EsLiteralFecha(texto)) return std::string(SinAlmohadillas(texto));
  if (EsFechaCompleta(ev, texto)) return texto;
  if (!EsNumero(ev, texto)) return CalcularTerminos(ev, texto);
  // The leading number again: typed alone, "8,5" is 8, where "8,5*1" is 8,5.
  return TextoDeNumero(ev, base::Parse(texto));
}

void AvisarErrorEnFormula(Evaluador& ev, const std::string& descripcion) {
  Avisar(ev, "Error en formula" + std::string(base::kCrLf) + descripcion, ports::Icon::Exclamation);
}

// A step that fails shows the box and leaves the text to the next one. A fault of the storage is no failing
// step: nothing that came after it could be trusted.
template <typename Paso>
bool ConAviso(Evaluador& ev, Paso&& paso) {
  try {
    paso();
    return true;
  } catch (const base::Error& e) {
    if (e.IsStorageFault()) throw;
    AvisarErrorEnFormula(ev, e.Description());
    return false;
  }
}

std::string SinMenosCero(const Evaluador& ev, std::string valor) {
  if (!valor.empty() && valor.front() == '-') {
    const auto numero = Numero(ev, valor);
    if (numero && *numero == 0) return "0";
  }
  return valor;
}

}  // namespace

std::string EvaluarExpresion(Evaluador& ev, std::string& formula, bool& usarParametros) {
  std::string valor;
  bool con_valor = false;
  ConAviso(ev, [&] {
    const Nivel nivel(ev, formula.size());
    if (formula.empty()) formula.assign(1, '0');
    ev.ParametrosActivos = usarParametros;
    if (formula.find(base::kCrLf) != std::string::npos) formula = base::Replace(formula, base::kCrLf, {});
    ConAviso(ev, [&] { EvaluarCorchetes(ev, formula, usarParametros); });
    con_valor = ConAviso(ev, [&] { valor = ValorFinal(ev, formula); });
  });
  if (ev.profundidad == 0 && ev.agotado != nullptr) {
    AvisarErrorEnFormula(ev, ev.agotado);  // unless a level that was not silent has said so
    con_valor = false;
  }
  ev.sin_valor = !con_valor;
  return con_valor ? SinMenosCero(ev, std::move(valor)) : formula;
}

std::string EvaluarTexto(Evaluador& ev, std::string_view formula, bool usarParametros) {
  std::string texto(formula);
  return EvaluarExpresion(ev, texto, usarParametros);
}

std::string Evaluar(Evaluador& ev, std::string_view pieza) {
  std::string texto(pieza);
  return EvaluarExpresion(ev, texto, ev.ParametrosActivos);
}

std::string NumeroOValor(Evaluador& ev, std::string_view pieza) {
  return EsNumero(ev, pieza) ? std::string(pieza) : Evaluar(ev, pieza);
}

}  // namespace formula
