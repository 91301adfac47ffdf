#include "app/primer_uso.h"

#include "app/lineas.h"
#include "base/text.h"

namespace app {
namespace {

constexpr std::size_t kComienzo = std::size_t{1} << 16;  // bytes of the file that are looked at

bool Iguales(const settings::Settings& a, const settings::Settings& b) {
  return a.AnchoFijo == b.AnchoFijo && a.Separador == b.Separador && a.ConfDeAF == b.ConfDeAF &&
         a.Configura == b.Configura && a.CodTipoNumerico == b.CodTipoNumerico &&
         a.MismoCodigoDeOrsa == b.MismoCodigoDeOrsa;
}

std::string Detalle(const importfile::PropuestaDeFormato& propuesta) {
  std::string texto = "Propuesta:";
  for (const std::string& razon : propuesta.razones) texto.append(base::kCrLf).append("• " + razon);
  texto.append(base::kCrLf)
      .append(base::kCrLf)
      .append("Las primeras líneas, cortadas así (clave | código | cantidad):");
  for (const auto& fila : propuesta.cortadas)
    texto.append(base::kCrLf).append("   " + base::Join(fila, " | "));
  return texto;
}

}  // namespace

PrimerUso::PrimerUso(Contexto& contexto, const Partes& partes)
    : c_(contexto), e_(contexto.estado), p_(partes) {}

void PrimerUso::Mirar() {
  if (!c_.arranque.proponer || !p_.base.Sesion().Abierta()) return;
  const auto archivo = base::StampOf(e_.txtRuta.text);
  if (!archivo || (archivo == archivo_ && ruta_ == e_.txtRuta.text)) return;
  const auto bytes = base::ReadBeginning(e_.txtRuta.text, kComienzo);
  if (!bytes) return;
  const settings::Settings actuales = e_.opciones;
  const importfile::EntradaCarga entrada = EntradaDeCarga(e_, actuales);
  if (importfile::ElFormatoSirve(*bytes, entrada)) return;
  const importfile::PropuestaDeFormato propuesta = importfile::ProponerFormato(*bytes, entrada);
  if (!propuesta.hay || Iguales(propuesta.opciones, actuales)) return;
  ruta_ = e_.txtRuta.text;
  archivo_ = archivo;
  if (c_.puertos.prompts.ConfirmWith(
          "Con el formato y las opciones que están puestos no se entiende el archivo, o no se "
          "reconoce a nadie en él.\r\n¿Usar lo que el archivo parece?",
          Detalle(propuesta)))
    Aplicar(propuesta.opciones);
}

// Each through its control's handler; the kind of key alone not, whose handler would load the grid.
void PrimerUso::Aplicar(const settings::Settings& propuestas) {
  p_.formato.optTipoArch_Click(propuestas.AnchoFijo ? 1 : 0);
  if (propuestas.Separador != e_.opciones.Separador) p_.formato.txtSeparador_Change(propuestas.Separador);
  e_.opciones.ConfDeAF = propuestas.ConfDeAF;
  p_.formato.PonerLayout();
  e_.opciones.Configura = propuestas.Configura;
  e_.cbTipoClave.ListIndex = propuestas.Configura;
  if (propuestas.CodTipoNumerico != e_.opciones.CodTipoNumerico)
    p_.opciones.chkCodigoNumerico_Click(propuestas.CodTipoNumerico);
  if (propuestas.MismoCodigoDeOrsa != e_.opciones.MismoCodigoDeOrsa)
    p_.opciones.chkVincAutConOrsa_Click(propuestas.MismoCodigoDeOrsa);
}

}  // namespace app
