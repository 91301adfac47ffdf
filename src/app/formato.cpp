#include "app/formato.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/number.h"
#include "importfile/line_formats.h"

namespace app {
namespace {

// The leading number of a box, rounded, within 16 bits.
std::int16_t EnteroDeCaja(std::string_view texto) {
  const double n = std::clamp(base::Parse(texto), -32768.0, 32767.0);
  return static_cast<std::int16_t>(base::BankersInteger(n));
}

// Where the preview shows the column of each field: at the layout column that fills it, those in use first;
// the columns of the other fields stand in what places remain. Always a rearrangement of 0 to 4, as a grid's
// columns are.
std::array<int, 5> LugaresDePrevia(const settings::FixedWidthLayout& layout) {
  std::array<int, 5> lugares;
  lugares.fill(-1);
  std::array<bool, 5> ocupado{};
  for (const bool en_uso : {true, false})
    for (std::size_t j = std::min(layout.size(), lugares.size());
         j-- > 0;) {  // of two the later fills the field
      const int campo = layout[j].campo;
      if (campo < 1 || campo > 5 || (layout[j].inicio >= 1) != en_uso) continue;
      int& lugar = lugares[static_cast<std::size_t>(campo - 1)];
      if (lugar >= 0) continue;
      lugar = static_cast<int>(j);
      ocupado[j] = true;
    }
  for (int& lugar : lugares) {
    if (lugar >= 0) continue;
    const auto libre = std::find(ocupado.begin(), ocupado.end(), false);
    lugar = static_cast<int>(libre - ocupado.begin());
    *libre = true;
  }
  return lugares;
}

}  // namespace

Formato::Formato(Contexto& contexto) : c_(contexto), e_(contexto.estado) {}

void Formato::optTipoArch_Click(int indice) {
  e_.optTipoArch = indice;
  e_.opciones.AnchoFijo = indice == 1;
  e_.txtSeparador.enabled = indice == 0;
  for (auto& par : e_.txtAE)
    for (TextBox& caja : par) caja.enabled = indice == 1;
  CargarDatosPrevisual();
}

void Formato::txtSeparador_Change(std::string texto) {
  e_.opciones.Separador = texto;
  e_.txtSeparador.text = std::move(texto);
  if (!e_.cargando && !e_.txtSeparador.text.empty()) e_.Timer1_enabled = true;
  c_.Cambio();
}

void Formato::PonerLayout() {
  const settings::FixedWidthLayout& layout = e_.opciones.ConfDeAF;
  for (std::size_t j = 0; j < layout.size() && j < e_.txtAE.size(); ++j) {
    e_.txtAE[j][0].text = std::to_string(layout[j].inicio);
    e_.txtAE[j][1].text = std::to_string(layout[j].largo);
  }
  e_.posicion_previa = LugaresDePrevia(layout);
  previa_movida_ = false;
}

void Formato::txtAE_Change(int columna, int elemento, const std::string& texto) {
  const auto j = static_cast<std::size_t>(columna);
  auto& par = e_.txtAE.at(j);
  par.at(static_cast<std::size_t>(elemento)).text = texto;
  if (texto.empty() || e_.cargando || j >= e_.opciones.ConfDeAF.size()) return;
  e_.opciones.ConfDeAF[j].inicio = EnteroDeCaja(par[0].text);
  e_.opciones.ConfDeAF[j].largo = EnteroDeCaja(par[1].text);
  e_.Timer1_enabled = true;
  c_.Cambio();
}

void Formato::GridPVConf_ColumnasMovidas(const std::array<int, 5>& posiciones) {
  if (e_.cargando) return;
  if (posiciones != e_.posicion_previa) previa_movida_ = true;
  e_.posicion_previa = posiciones;
  e_.Timer1_enabled = true;
}

void Formato::txtFormulaSGN_Change(std::string texto) {
  e_.opciones.FactMultiplica = texto;
  e_.txtFormulaSGN.text = std::move(texto);
}

// The preview's columns tell which field each piece of the line fills, once somebody has moved them: a layout
// need not be a rearrangement of the five fields, and theirs would then give a piece another field. A piece
// that fills none stays so.
void Formato::Timer1_Timer() {
  e_.Timer1_enabled = false;
  settings::FixedWidthLayout& layout = e_.opciones.ConfDeAF;
  for (std::size_t i = 0; previa_movida_ && i < e_.posicion_previa.size(); ++i) {
    const auto j = static_cast<std::size_t>(e_.posicion_previa[i]);
    if (j < layout.size() && layout[j].campo >= 1) layout[j].campo = static_cast<std::int16_t>(i + 1);
  }
  CargarDatosPrevisual();
}

void Formato::CargarDatosPrevisual() {
  // A layout that cannot be cut leaves the preview empty; the load says why.
  e_.filas_previa.clear();
  base::PassOverError("CargarDatosPrevisual", &c_.errores,
                      [&] { e_.filas_previa = importfile::CargarDatosPrevisual(e_.previa, e_.opciones); });
  ++e_.revision.previa;
  c_.Cambio();
}

}  // namespace app
