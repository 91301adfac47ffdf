#include "base/format.h"
#include "base/text.h"
#include "liquidation/importar.h"

namespace liquidation {
namespace {

// After the first "-": "0 - Sueldos" gives SUELDOS; the whole text when it has none (npos + 1 is 0).
std::string TipoEnMayusculas(std::string_view texto) {
  return base::Trim(base::UpperCase(texto.substr(texto.find('-') + 1)));
}

// The first entry whole, the others from their fourth character, whatever the length of their number.
std::string CentroEnMayusculas(const formula::ListControl* combo) {
  const formula::ItemLista* elegido = combo == nullptr ? nullptr : combo->Elegido();
  if (elegido == nullptr) return {};
  return base::UpperCase(base::Trim(base::Mid(elegido->texto, combo->ListIndex == 0 ? 1 : 4)));
}

}  // namespace

std::string TextoConfirmacion(const DatosConfirmacion& d) {
  std::string grupo;
  if (d.LiqAgrup && !d.CCDefEnArch)
    grupo = std::string(d.TipoConstruccion ? "-> Asociado a la Obra '" : "-> Asociado al Centro de Costo '") +
            CentroEnMayusculas(d.cmbAgrupa) + "'." + std::string(base::kCrLf);
  return "Asegúrese que el mes que esta marcado para importar los datos (" +
         base::FormatDate(d.mes, "MM - yyyy") + "), es el correcto." + std::string(base::kCrLf) +
         "Se importarán los datos en las liquidaciones de tipo '" + TipoEnMayusculas(d.cmbLiquidaciones) +
         "'" + std::string(base::kCrLf) + grupo + "¿Confirma importar los datos?";
}

std::string TypeFilterDe(const formula::ListControl& combo) {
  if (combo.ListIndex == 0) return "TiposLiquidacion.Salarial and (Not ParaEmp)";
  const formula::ItemLista* elegido = combo.Elegido();
  return "TiposLiquidacion.id_TipoLiq=" +
         (elegido == nullptr ? std::string() : std::to_string(elegido->dato));
}

}  // namespace liquidation
