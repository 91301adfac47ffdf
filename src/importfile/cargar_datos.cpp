#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "base/encoding.h"
#include "base/file.h"
#include "base/number.h"
#include "base/text.h"
#include "formula/vectores/vector_utils.h"
#include "importfile/importfile_internal.h"

namespace importfile {
namespace {

constexpr std::size_t kLineasDePrevia = 4;
constexpr std::size_t kReservaMaxima = 1U << 21;  // rows; a larger file grows the table as it goes

// The boxes of one load. They share their count with the evaluator's, so that silencing either silences the
// load.
class Avisador {
 public:
  Avisador(ports::Prompts* prompts, formula::Evaluador& evaluador)
      : prompts_(prompts), evaluador_(evaluador) {
    evaluador_.avisos_mostrados = 0;
    evaluador_.avisos_callados = false;
  }
  void Mostrar(std::string texto) {
    if (prompts_ == nullptr || evaluador_.avisos_callados) return;
    const bool ofrece_callar = ++evaluador_.avisos_mostrados > 1;
    if (prompts_->Show({std::move(texto), ports::Icon::Exclamation, ofrece_callar}))
      evaluador_.avisos_callados = true;
  }

 private:
  ports::Prompts* prompts_;
  formula::Evaluador& evaluador_;
};

// A result that no single holds stays one: the import refuses it, where 0 would be written.
std::string TextoDeResultado(float cantidad) {
  constexpr double kNoCabe = 1e39;
  if (std::isfinite(cantidad)) return base::PlainSingle(cantidad);
  return base::PlainNumber(cantidad < 0 ? -kNoCabe : kNoCabe);
}

base::Date Hoy(const formula::Evaluador& evaluador) {
  return evaluador.reloj != nullptr ? evaluador.reloj->Today() : base::Date{};
}

void Ordenar(std::vector<ImportRow>& filas, int columna, base::Date hoy) {
  if (columna < kClave || columna > kValor) columna = kClave;
  std::vector<std::string_view> valores;
  valores.reserve(filas.size());
  for (const ImportRow& fila : filas) valores.push_back(fila.campo[static_cast<std::size_t>(columna)]);
  std::vector<std::size_t> orden = formula::OrdenDeColumna(valores, hoy);
  // In place, cycle by cycle: a second table of rows would cost more than the sort.
  for (std::size_t inicio = 0; inicio < orden.size(); ++inicio) {
    if (orden[inicio] == inicio) continue;
    ImportRow apartada = std::move(filas[inicio]);
    std::size_t hueco = inicio;
    for (std::size_t viene = orden[hueco]; viene != inicio; viene = orden[hueco]) {
      filas[hueco] = std::move(filas[viene]);
      orden[hueco] = hueco;
      hueco = viene;
    }
    filas[hueco] = std::move(apartada);
    orden[hueco] = hueco;
  }
}

class Cargador {
 public:
  explicit Cargador(const EntradaCarga& entrada)
      : entrada_(entrada),
        opciones_(*entrada.opciones),
        evaluador_(entrada.evaluador != nullptr ? *entrada.evaluador : evaluador_propio_),
        progreso_(entrada.progreso != nullptr ? *entrada.progreso : sin_progreso_),
        avisador_(entrada.prompts, evaluador_),
        emparejador_(entrada, opciones_),
        con_formula_(FormulaEnUso(opciones_.FactMultiplica)),
        con_filtro_(entrada.filtro == FiltroPor::Relacion ||
                    !base::TrimView(opciones_.TextoDeFiltro).empty()) {}

  Carga Cargar() {
    carga_.fin = CargarArchivo();
    return std::move(carga_);
  }

 private:
  FinDeCarga CargarArchivo();
  FinDeCarga CargarTexto(std::string_view texto);
  bool FormatoCorrecto(std::string_view texto);
  void CargarLinea(std::size_t numero, std::string_view linea);
  void CargarPiezas(std::size_t numero, std::string_view linea, std::span<const std::string_view> piezas);
  void AnotarPiezas(std::string_view linea, std::span<const std::string_view> piezas);
  std::span<const std::string_view> Cortar(std::string_view linea);
  void ApartarMalFormada(std::size_t numero, std::span<const std::string_view> piezas);
  bool PasaElFiltro(ImportRow& fila, int relacion);
  void RechazarSiSeAbandono(ImportRow& fila) const;

  const EntradaCarga& entrada_;
  // Of its own: an option that the operator changes while events are pumped must not split one load in two.
  const settings::Settings opciones_;
  formula::Evaluador evaluador_propio_;
  ports::NoProgress sin_progreso_;
  formula::Evaluador& evaluador_;
  ports::Progress& progreso_;
  Avisador avisador_;
  RowMatcher emparejador_;
  bool con_formula_;
  bool con_filtro_;
  std::vector<std::string_view> piezas_;
  CorteAF corte_;
  Carga carga_;
  PasosDeLinea* pasos_ = nullptr;  // of the line under way, when somebody wants to be told
};

FinDeCarga Cargador::CargarArchivo() {
  if (entrada_.leido != nullptr) {
    const std::string texto = base::DecodeFile(entrada_.leido->Bytes());
    return CargarTexto(texto);
  }
  if (!base::FileExists(entrada_.txtRuta)) {
    avisador_.Mostrar("El Archivo '" + entrada_.txtRuta + "' no existe");
    return FinDeCarga::SinArchivo;
  }
  std::optional<std::string> bytes = base::ReadWholeFile(entrada_.txtRuta);
  if (!bytes) {
    // Taking it for an empty file would clear the grid without a word.
    avisador_.Mostrar("El Archivo '" + entrada_.txtRuta + "' no se puede leer");
    return FinDeCarga::SinArchivo;
  }
  carga_.archivo = ArchivoLeido(*std::move(bytes));
  const std::string texto = base::DecodeFile(carga_.archivo.Bytes());
  return CargarTexto(texto);
}

bool Cargador::FormatoCorrecto(std::string_view texto) {
  if (opciones_.AnchoFijo) {
    if (SePuedeCortar(opciones_.ConfDeAF)) return true;
    avisador_.Mostrar(
        "El diseño de ancho fijo (clave ConfDeAF del archivo de configuración) tiene más de cinco columnas o "
        "campos: no se puede leer el archivo");
    return false;
  }
  // A line end ends the line before any separator is looked for in it.
  const bool en_una_linea = opciones_.Separador.find_first_of(base::kCrLf) == std::string::npos;
  if (en_una_linea && base::Contains(texto, opciones_.Separador)) return true;
  avisador_.Mostrar("Formato incorrecto");
  return false;
}

FinDeCarga Cargador::CargarTexto(std::string_view texto) {
  if (texto.empty()) return FinDeCarga::Completa;
  if (!FormatoCorrecto(texto)) return FinDeCarga::FormatoIncorrecto;

  const std::vector<std::string_view> lineas = base::SplitLines(texto);
  // What follows the last line end is shown and complained of like a line, but it is none: no row, no count.
  carga_.lineas = lineas.size() - (lineas.back().empty() ? 1 : 0);
  carga_.filas.reserve(std::min(carga_.lineas, kReservaMaxima));
  progreso_.ActuBarra(100.0F / (2.0F * static_cast<float>(lineas.size())));
  for (std::size_t i = 0; i < lineas.size() && !progreso_.IsCancelled(); ++i) {
    if (i < kLineasDePrevia) {
      if (i > 0) carga_.previa += base::kCrLf;
      carga_.previa += lineas[i];
    }
    CargarLinea(i + 1, lineas[i]);
  }
  if (progreso_.IsCancelled()) {
    progreso_.ActuBarra(0);
    return FinDeCarga::Cancelada;
  }
  Ordenar(carga_.filas, entrada_.columna_orden, Hoy(evaluador_));
  progreso_.ActuBarra(-1);
  progreso_.ActuBarra(0);
  return FinDeCarga::Completa;
}

std::span<const std::string_view> Cargador::Cortar(std::string_view linea) {
  if (opciones_.AnchoFijo) {
    corte_ = CortarAF(linea, opciones_.ConfDeAF);
    return corte_.campos;
  }
  base::SplitViews(linea, opciones_.Separador, piezas_);
  return piezas_;
}

void Cargador::ApartarMalFormada(std::size_t numero, std::span<const std::string_view> piezas) {
  avisador_.Mostrar("Formato incorrecto en la linea " + std::to_string(numero));
  if (numero > carga_.lineas) return;
  LineaAparte& aparte = carga_.aparte.emplace_back();
  aparte.linea = numero;
  aparte.mal_formada = true;
  aparte.campo[kClave] = piezas[0];  // a line has at least one
  if (piezas.size() > 1) aparte.campo[kTipo] = piezas[1];
}

// Where each field stands in its line; a field without a column stands nowhere.
void Cargador::AnotarPiezas(std::string_view linea, std::span<const std::string_view> piezas) {
  for (const std::string_view pieza : piezas) {
    PasosDeLinea::Pieza& p = pasos_->piezas.emplace_back();
    p.texto = pieza;
    if (pieza.data() == nullptr) continue;
    p.inicio = base::Length(linea.substr(0, static_cast<std::size_t>(pieza.data() - linea.data()))) + 1;
    p.largo = base::Length(pieza);
  }
}

void Cargador::CargarLinea(std::size_t numero, std::string_view linea) {
  const bool se_cuenta = entrada_.al_cargar && numero <= carga_.lineas &&
                         (entrada_.solo_linea == 0 || entrada_.solo_linea == numero);
  PasosDeLinea pasos;
  pasos_ = se_cuenta ? &pasos : nullptr;
  pasos.linea = numero;
  CargarPiezas(numero, linea, Cortar(linea));
  if (se_cuenta) entrada_.al_cargar(pasos);
}

void Cargador::CargarPiezas(std::size_t numero, std::string_view linea,
                            std::span<const std::string_view> piezas) {
  if (pasos_ != nullptr) {
    AnotarPiezas(linea, piezas);
    pasos_->mal_formada = piezas.size() < kCamposNecesarios;
  }
  if (piezas.size() < kCamposNecesarios) {
    ApartarMalFormada(numero, piezas);
    return;
  }
  if (numero > carga_.lineas) return;

  ImportRow& fila = carga_.filas.emplace_back();
  fila.linea = numero;
  formula::CamposDeLinea& campo = fila.campo;
  LlenarDeLaLinea(piezas, opciones_, fila);
  if (!ValeCero(campo[kValor])) carga_.hay_valor = true;
  progreso_.ActuBarra(-1);
  const int relacion = emparejador_.Emparejar(campo);
  if (pasos_ != nullptr) {
    pasos_->relacion = relacion;
    pasos_->campo = campo;
    pasos_->con_formula = con_formula_;
    pasos_->con_filtro = con_filtro_ && entrada_.filtro == FiltroPor::Texto;
  }
  if (con_formula_) {
    campo[kCantidad] = TextoDeResultado(formula::CalcularFormula(
        evaluador_, opciones_.FactMultiplica, campo, pasos_ != nullptr ? &pasos_->formula : nullptr));
    RechazarSiSeAbandono(fila);
  }
  progreso_.DoEvents();
  if (pasos_ != nullptr) pasos_->cantidad = campo[kCantidad];
  const bool pasa = PasaElFiltro(fila, relacion);
  if (pasos_ != nullptr) {
    pasos_->pasa = pasa;
    pasos_->rechazo = fila.rechazo;
  }
  if (!pasa) {
    carga_.aparte.push_back({numero, false, std::move(campo)});
    carga_.filas.pop_back();
  }
  progreso_.ActuBarra(-1);
}

// What was given up has no value: neither its 0 nor a condition that "does not hold" may pass for one.
void Cargador::RechazarSiSeAbandono(ImportRow& fila) const {
  if (evaluador_.agotado != nullptr && fila.rechazo.empty()) fila.rechazo = evaluador_.agotado;
}

// A line whose condition could not be decided is kept, and refused.
bool Cargador::PasaElFiltro(ImportRow& fila, int relacion) {
  if (!con_filtro_) return true;
  // "Tipo EnList " + all external codes, in closed form: evaluated, a code with "-" or "OR" in it would lose
  // its lines.
  if (entrada_.filtro == FiltroPor::Relacion) return relacion >= 0;
  formula::PasosDeFormula* pasos = pasos_ != nullptr ? &pasos_->filtro : nullptr;
  const std::string condicion =
      "EVAL(" + formula::ReemplazaComodines(opciones_.TextoDeFiltro, fila.campo, pasos) + ")";
  const std::string valor = formula::EvaluarTexto(evaluador_, condicion);
  if (pasos != nullptr) {
    pasos->expresion = condicion;
    pasos->valor = valor;
    pasos->sin_valor = evaluador_.sin_valor;
  }
  const bool cumple = base::Parse(valor) != 0;
  RechazarSiSeAbandono(fila);
  return cumple || evaluador_.agotado != nullptr;
}

}  // namespace

Carga CargarDatos(const EntradaCarga& entrada) { return Cargador(entrada).Cargar(); }

}  // namespace importfile
