#include "app/opciones.h"

namespace app {

Opciones::Opciones(Contexto& contexto, const BaseDeDatos& base, Tareas& tareas)
    : c_(contexto), e_(contexto.estado), base_(base), tareas_(tareas) {}

void Opciones::chkSoloDReloj_Click(bool marcado) {
  e_.chkSoloDReloj.checked = marcado;
  if (!e_.cargando) {
    e_.opciones.SoloDatosDeRel = marcado;
    tareas_.Pedir(kPersonas);
  }
  const bool si = e_.opciones.SoloDatosDeRel;
  e_.GridAImportar.Columna("Horas")->caption = si ? "Horas" : "Dato";
  e_.GridAImportar.Columna("A_Realizar")->visible = si;
  e_.GridAImportar.Columna("DatoExtra")->visible = !si;
  c_.Cambio();
}

void Opciones::chkLiqHCaMensuales_Click(bool marcado) {
  e_.opciones.LiqHCaMensuales = e_.chkLiqHCaMensuales.checked = marcado;
  c_.Cambio();
}

void Opciones::chkNoImpValEnCero_Click(bool marcado) {
  e_.opciones.NoImpCantEn0 = e_.chkNoImpValEnCero.checked = marcado;
  c_.Cambio();
}

void Opciones::chkCodigoNumerico_Click(bool marcado) {
  e_.opciones.CodTipoNumerico = e_.chkCodigoNumerico.checked = marcado;
  if (e_.chkVincAutConOrsa.checked) tareas_.Pedir(kRelaciones);
  c_.Cambio();
}

void Opciones::chkTotalizarConc_Click(bool marcado) {
  e_.opciones.TotalizarConc = e_.chkTotalizarConc.checked = marcado;
  c_.Cambio();
}

// Adding to what is already entered always implies totalising.
void Opciones::chkSumarAyaIng_Click(bool marcado) {
  e_.opciones.SumarAyaIng = e_.chkSumarAyaIng.checked = marcado;
  e_.chkTotalizarConc.enabled = !marcado;
  if (marcado) chkTotalizarConc_Click(true);
  c_.Cambio();
}

void Opciones::chkImportarCuotas_Click(bool marcado) {
  e_.txtTextoTipoCuota.enabled = marcado;
  e_.opciones.ImportarCuotas = e_.chkImportarCuotas.checked = marcado;
  tareas_.Pedir(kConceptos);
  c_.Cambio();
}

void Opciones::txtTextoTipoCuota_Change(std::string texto) {
  e_.opciones.TextoTipoCuota = texto;
  e_.txtTextoTipoCuota.text = std::move(texto);
  c_.Cambio();
}

void Opciones::chkConCC_Click(bool marcado) {
  e_.opciones.CCDefEnArch = e_.chkConCC.checked = marcado;
  e_.chkCCDefEnDatExt.enabled = marcado;
  if (base_.Sesion().LiqAgrup) tareas_.Pedir(kTipos);
  c_.Cambio();
}

void Opciones::chkCCDefEnDatExt_Click(bool marcado) {
  e_.opciones.CCEnDE = e_.chkCCDefEnDatExt.checked = marcado;
  if (base_.Sesion().LiqAgrup) tareas_.Pedir(kTipos);
  c_.Cambio();
}

void Opciones::chkVincAutConOrsa_Click(bool marcado) {
  e_.chkVincAutConOrsa.checked = marcado;
  if (!e_.cargando) {
    e_.opciones.MismoCodigoDeOrsa = marcado;
    tareas_.Pedir(kRelaciones);
  }
  c_.Cambio();
}

void Opciones::cbTipoClave_Click(int indice) {
  e_.cbTipoClave.ListIndex = indice;
  if (e_.cargando || indice < 0) return;
  e_.opciones.Configura = indice;
  tareas_.Pedir(kGrilla);
  c_.Cambio();
}

void Opciones::cbConfigurar_Click(int indice) {
  const auto i = static_cast<std::size_t>(indice);
  e_.AreConf_al_frente = indice;
  e_.AreConf_visible.at(i) = !e_.AreConf_visible.at(i);
  e_.AreConf_visible.at(1 - i) = false;
  c_.Cambio();
}

}  // namespace app
