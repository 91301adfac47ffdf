#include "app/programa.h"
#include "base/number.h"
#include "base/text.h"
#include "settings/config_file.h"

namespace app {

settings::Ajustes Programa::LeerAjustes() const {
  if (arranque_.ajustes) return {settings::EstadoAjustes::Leido, *arranque_.ajustes, {}};
  return settings::LeerAjustes(settings::RutaDeAjustes(arranque_.carpeta));
}

void Programa::Aplicar(std::string_view clave) {
  settings::AplicarValor(e_.opciones, clave, settings::ValorDeTexto(ajustes_, clave));
}

// The order matters: a control that is set fires its handler, which may look at the options read so far.
void Programa::LeerOpciones() {
  settings::Settings& o = e_.opciones;
  Aplicar("SoloDatosDeRel");
  chkSoloDReloj_Click(o.SoloDatosDeRel);
  Aplicar("TipoArchivo");
  optTipoArch_Click(o.AnchoFijo ? 1 : 0);
  Aplicar("CodTipoNumerico");
  chkCodigoNumerico_Click(o.CodTipoNumerico);
  Aplicar("TotalizarConc");
  chkTotalizarConc_Click(o.TotalizarConc);
  Aplicar("SumarAyaIng");
  chkSumarAyaIng_Click(o.SumarAyaIng);
  Aplicar("MismoCodigoDeOrsa");
  chkVincAutConOrsa_Click(o.MismoCodigoDeOrsa);
  Aplicar("TextoTipoCuota");
  txtTextoTipoCuota_Change(o.TextoTipoCuota);
  Aplicar("ImportarCuotas");
  chkImportarCuotas_Click(o.ImportarCuotas);
  Aplicar("Separador");
  txtSeparador_Change(o.Separador);
  Aplicar("CCDefEnArch");
  chkConCC_Click(o.CCDefEnArch);
  Aplicar("CCEnDE");
  chkCCDefEnDatExt_Click(o.CCEnDE);
  Aplicar("ConfDeAF");
  PonerLayout();
  Aplicar("FactMultiplica");
  txtFormulaSGN_Change(o.FactMultiplica);
  Aplicar("TextoDeFiltro");
  txtFiltro_Change(o.TextoDeFiltro);
  Aplicar("Configura");
  e_.cbTipoClave.ListIndex = o.Configura;
  Aplicar("LiqHCaMensuales");
  chkLiqHCaMensuales_Click(o.LiqHCaMensuales);
  Aplicar("NoImpCantEn0");
  chkNoImpValEnCero_Click(o.NoImpCantEn0);
}

void Programa::chkSoloDReloj_Click(bool marcado) {
  e_.chkSoloDReloj.checked = marcado;
  if (!e_.cargando) {
    e_.opciones.SoloDatosDeRel = marcado;
    Pedir(kPersonas);
  }
  const bool si = e_.opciones.SoloDatosDeRel;
  e_.GridAImportar.Columna("Horas")->caption = si ? "Horas" : "Dato";
  e_.GridAImportar.Columna("A_Realizar")->visible = si;
  e_.GridAImportar.Columna("DatoExtra")->visible = !si;
  Cambio();
}

void Programa::chkLiqHCaMensuales_Click(bool marcado) {
  e_.opciones.LiqHCaMensuales = e_.chkLiqHCaMensuales.checked = marcado;
  Cambio();
}

void Programa::chkNoImpValEnCero_Click(bool marcado) {
  e_.opciones.NoImpCantEn0 = e_.chkNoImpValEnCero.checked = marcado;
  Cambio();
}

void Programa::chkCodigoNumerico_Click(bool marcado) {
  e_.opciones.CodTipoNumerico = e_.chkCodigoNumerico.checked = marcado;
  if (e_.chkVincAutConOrsa.checked) Pedir(kRelaciones);
  Cambio();
}

void Programa::chkTotalizarConc_Click(bool marcado) {
  e_.opciones.TotalizarConc = e_.chkTotalizarConc.checked = marcado;
  Cambio();
}

// Adding to what is already entered always implies totalising.
void Programa::chkSumarAyaIng_Click(bool marcado) {
  e_.opciones.SumarAyaIng = e_.chkSumarAyaIng.checked = marcado;
  e_.chkTotalizarConc.enabled = !marcado;
  if (marcado) chkTotalizarConc_Click(true);
  Cambio();
}

void Programa::chkImportarCuotas_Click(bool marcado) {
  e_.txtTextoTipoCuota.enabled = marcado;
  e_.opciones.ImportarCuotas = e_.chkImportarCuotas.checked = marcado;
  Pedir(kConceptos);
  Cambio();
}

void Programa::txtTextoTipoCuota_Change(std::string texto) {
  e_.opciones.TextoTipoCuota = texto;
  e_.txtTextoTipoCuota.text = std::move(texto);
  Cambio();
}

void Programa::chkConCC_Click(bool marcado) {
  e_.opciones.CCDefEnArch = e_.chkConCC.checked = marcado;
  e_.chkCCDefEnDatExt.enabled = marcado;
  if (sesion_.LiqAgrup) Pedir(kTipos);
  Cambio();
}

void Programa::chkCCDefEnDatExt_Click(bool marcado) {
  e_.opciones.CCEnDE = e_.chkCCDefEnDatExt.checked = marcado;
  if (sesion_.LiqAgrup) Pedir(kTipos);
  Cambio();
}

void Programa::chkVincAutConOrsa_Click(bool marcado) {
  e_.chkVincAutConOrsa.checked = marcado;
  if (!e_.cargando) {
    e_.opciones.MismoCodigoDeOrsa = marcado;
    Pedir(kRelaciones);
  }
  Cambio();
}

void Programa::cbTipoClave_Click(int indice) {
  e_.cbTipoClave.ListIndex = indice;
  if (e_.cargando || indice < 0) return;
  e_.opciones.Configura = indice;
  Pedir(kGrilla);
  Cambio();
}

}  // namespace app
