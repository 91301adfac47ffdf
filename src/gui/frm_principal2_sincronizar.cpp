#include <QCheckBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <algorithm>

#include "base/number.h"
#include "gui/estilo.h"
#include "gui/frm_principal2.h"
#include "gui/iconos.h"
#include "gui/texto.h"

namespace gui {
namespace {

void Poner(QLineEdit* caja, const std::string& texto) {
  const QString nuevo = De(texto);
  if (caja->text() != nuevo) caja->setText(nuevo);
}

void Poner(QLineEdit* caja, const app::TextBox& estado) {
  Poner(caja, estado.text);
  caja->setEnabled(estado.enabled);
}

void Poner(QCheckBox* tilde, const app::CheckBox& estado) {
  tilde->setChecked(estado.checked);
  tilde->setEnabled(estado.enabled);
}

void Elegir(QComboBox* combo, const formula::ListControl& estado) {
  if (combo->currentIndex() != estado.ListIndex) combo->setCurrentIndex(estado.ListIndex);
  combo->setEnabled(estado.enabled);
  combo->setVisible(estado.visible);
}

void Llenar(QComboBox* combo, const formula::ListControl& estado) {
  combo->clear();
  for (const formula::ItemLista& item : estado.items)
    combo->addItem(De(item.texto), QVariant::fromValue<qlonglong>(item.dato));
}

QString AvisoSinFilas(const app::Estado& e) {
  if (e.cargando) return QString();
  if (!e.motivo_base.empty()) return QStringLiteral("La base no está abierta.\n") + De(e.motivo_base);
  if (e.tarea == app::Tarea::Carga) return QStringLiteral("Cargando…");
  if (e.lineas == 0 && e.procedencia.cargada) return QStringLiteral("El archivo está vacío.");
  if (e.lineas == 0) return QStringLiteral("Elija un archivo con Buscar…, o suéltelo sobre esta ventana.");
  return QStringLiteral("Ninguna línea del archivo quedó en la grilla: vea el filtro y las relaciones.");
}

}  // namespace

void FrmPrincipal2::Sincronizar() {
  const app::Estado& e = programa_.Ver();
  if (e.cargando || sincronizando_) return;
  {
    const QScopedValueRollback<bool> guardia(sincronizando_, true);
    if (windowTitle() != De(e.caption)) setWindowTitle(De(e.caption));
    SincronizarGrillas(e);
    SincronizarFranja(e);
    SincronizarColumna(e);
    SincronizarFormato(e);
    SincronizarRelaciones(e);
    SincronizarPaneles(e);
    SincronizarCinta(e);
    vistas_ = e.revision;
    primera_vez_ = false;
  }
  VigilarTarea(e.tarea);
  // Edits within the interval cause one refresh: a timer that runs is left running.
  if (!e.Timer1_enabled)
    Timer1_.stop();
  else if (!Timer1_.isActive() && !cerrada_)
    Timer1_.start();
  CerrarSiTermino();
}

void FrmPrincipal2::SincronizarFranja(const app::Estado& e) {
  Franja& f = franja_;
  Poner(f.txtRuta, e.txtRuta);
  Poner(f.txtFiltro, e.txtFiltro);
  f.OptFiltro.at(static_cast<std::size_t>(e.OptFiltro))->setChecked(true);
  if (f.ObjSelMes->date() != DiaDe(e.mes)) f.ObjSelMes->setDate(DiaDe(e.mes));
  if (primera_vez_ || vistas_.tipos != e.revision.tipos) {
    Llenar(f.cmbLiquidaciones, e.tipos.cmbLiquidaciones);
    Llenar(f.cmbAgrupa, e.tipos.cmbAgrupa);
  }
  Elegir(f.cmbLiquidaciones, e.tipos.cmbLiquidaciones);
  Elegir(f.cmbAgrupa, e.tipos.cmbAgrupa);
  f.lblAgrupa->setText(De(e.tipos.lblAgrupa));
  f.lblAgrupa->setVisible(e.tipos.lblAgrupa_visible);
  f.PonerCentroDeCosto(e.tipos.cmbAgrupa.visible);
}

void FrmPrincipal2::SincronizarColumna(const app::Estado& e) {
  Columna& c = columna_;
  const QString empresa = De(e.LblEmpresa);
  if (c.LblEmpresa->text() != empresa) {
    c.LblEmpresa->setText(empresa);
    c.LblEmpresa->setToolTip(e.motivo_base.empty() ? empresa
                                                   : empresa + QLatin1Char('\n') + De(e.motivo_base));
    if (programa_.Sesion().Abierta()) recientes_.Anotar(De(e.referencia));
  }
  for (std::size_t i = 0; i < 2; ++i) c.cbConfigurar[i]->setChecked(e.AreConf_visible[i]);
  PonerOcupado(e.tarea != app::Tarea::Ninguna);
  PonerEstado(e);
  if (primera_vez_ || vistas_.filas != e.revision.filas || vistas_.relaciones != e.revision.relaciones)
    c.PonerCuentas(app::Contar(e), faltas_, e.revision.filas > 0);
  if (primera_vez_ || vistas_.filas != e.revision.filas) PonerTotales(e);
}

// What an import brought to each concept, until the rows are others.
void FrmPrincipal2::PonerTotales(const app::Estado& e) {
  QList<std::pair<QString, QString>> totales;
  const bool vigente =
      std::any_of(e.filas.begin(), e.filas.end(), [](const auto& f) { return f.resultado == "OK"; });
  if (vigente)
    for (const liquidation::TotalConcepto& t : e.importacion.totales)
      totales.emplaceBack(De(app::NombreDeTotal(e, t)), De(base::NumberText(base::Round(t.cantidad, 6))));
  columna_.totales->Poner(totales);
}

void FrmPrincipal2::SincronizarFormato(const app::Estado& e) {
  PanelFormato& f = formato_;
  f.optTipoArch.at(static_cast<std::size_t>(e.optTipoArch))->setChecked(true);
  Poner(f.txtSeparador, e.txtSeparador);
  f.cbTabulador->setEnabled(e.txtSeparador.enabled);
  for (std::size_t i = 0; i < e.txtAE.size(); ++i) {
    for (std::size_t j = 0; j < 2; ++j) Poner(f.txtAE[i][j], e.txtAE[i][j]);
    f.lblAE[i]->setEnabled(e.txtAE[i][0].enabled);
    const int campo = i < e.opciones.ConfDeAF.size() ? e.opciones.ConfDeAF[i].campo : 0;
    const bool hay = campo >= 1 && campo <= static_cast<int>(e.GridPVConf.columnas.size());
    f.lblAE[i]->setText(hay ? De(e.GridPVConf.columnas[static_cast<std::size_t>(campo - 1)].caption)
                            : QStringLiteral("(ninguno)"));
  }
  Poner(f.txtFormulaSGN, e.txtFormulaSGN);
  Poner(f.txtTextoTipoCuota, e.txtTextoTipoCuota);
  f.lblImpCuotas->setEnabled(e.txtTextoTipoCuota.enabled);
  if (primera_vez_) Llenar(f.cbTipoClave, e.cbTipoClave);
  Elegir(f.cbTipoClave, e.cbTipoClave);
  Poner(f.chkSoloDReloj, e.chkSoloDReloj);
  Poner(f.chkLiqHCaMensuales, e.chkLiqHCaMensuales);
  Poner(f.chkNoImpValEnCero, e.chkNoImpValEnCero);
  Poner(f.chkCodigoNumerico, e.chkCodigoNumerico);
  Poner(f.chkTotalizarConc, e.chkTotalizarConc);
  Poner(f.chkSumarAyaIng, e.chkSumarAyaIng);
  Poner(f.chkImportarCuotas, e.chkImportarCuotas);
  Poner(f.chkConCC, e.chkConCC);
  Poner(f.chkCCDefEnDatExt, e.chkCCDefEnDatExt);
}

void FrmPrincipal2::SincronizarRelaciones(const app::Estado& e) {
  PanelRelaciones& r = relaciones_;
  Poner(r.chkVincAutConOrsa, e.chkVincAutConOrsa);
  if (primera_vez_ || vistas_.conceptos != e.revision.conceptos)
    Llenar(r.cmbConceptos, e.conceptos.cmbConceptos);
  Elegir(r.cmbConceptos, e.conceptos.cmbConceptos);
  if (e.cmbConceptos_ancho > 0) r.cmbConceptos->view()->setMinimumWidth(e.cmbConceptos_ancho);
  r.lblConcepto->setText(De(e.lblConcepto));
  Poner(r.txtTipo, e.txtTipo);
  if (primera_vez_ || vistas_.tipos != e.revision.tipos) Llenar(r.cmbAgrupaDef, e.tipos.cmbAgrupaDef);
  Elegir(r.cmbAgrupaDef, e.tipos.cmbAgrupaDef);
  r.lblAgrupaDef->setText(De(e.tipos.lblAgrupaDef));
  r.lblAgrupaDef->setVisible(e.tipos.lblAgrupaDef_visible);
  r.lblAgrupaDef->setEnabled(e.tipos.cmbAgrupaDef.enabled);
  r.Colocar(programa_.Sesion().LiqAgrup && e.opciones.CCDefEnArch);
  const QColor color = ColorDe(e.cbColor);
  if (r.cbColor->palette().color(QPalette::Button) != color) {
    QPalette paleta = r.cbColor->palette();
    paleta.setColor(QPalette::Button, color);
    r.cbColor->setPalette(paleta);
  }
}

// The raised panel is the one that was asked for last.
void FrmPrincipal2::SincronizarPaneles(const app::Estado& e) {
  Panel* paneles[] = {formato_.AreConf, relaciones_.AreConf};
  for (std::size_t i = 0; i < 2; ++i) {
    if (paneles[i]->isHidden() != e.AreConf_visible[i]) continue;
    if (e.AreConf_visible[i]) {
      Disponer();
      paneles[i]->raise();
    }
    paneles[i]->setVisible(e.AreConf_visible[i]);
  }
}

void FrmPrincipal2::SincronizarGrillas(const app::Estado& e) {
  if (primera_vez_ || vistas_.relaciones != e.revision.relaciones) {
    modelo_relaciones_.Recargar();
    modelo_importar_.ColoresCambiados();
  }
  if (primera_vez_ || vistas_.filas != e.revision.filas || vistas_.relaciones != e.revision.relaciones)
    RehacerVista(e);
  if (primera_vez_ || vistas_.previa != e.revision.previa) modelo_previa_.Recargar();
  modelo_importar_.TitulosCambiados();
  GridAImportar_->PonerColumnas(e.GridAImportar);
  relaciones_.GridRelaciones->PonerColumnas(e.GridRelaciones);
  GridAImportar_->PonerAviso(
      e.filas.empty() ? AvisoSinFilas(e) : QStringLiteral("Ninguna línea es de las que se pidió mostrar."));
  Grilla* relaciones = relaciones_.GridRelaciones;
  if (relaciones->currentIndex().row() != e.fila_relacion)
    relaciones->setCurrentIndex(modelo_relaciones_.index(e.fila_relacion, 0));
  OrdenarPrevia(e);
  MostrarOrden(e);
}

// Without a base the grid says so by itself.
void FrmPrincipal2::SincronizarCinta(const app::Estado& e) {
  QStringList textos;
  const bool abierta = programa_.Sesion().Abierta();
  const QString motivo = abierta ? De(programa_.MotivoParaNoImportar()) : QString();
  const QString diferencias = De(app::TextoDeDiferencias(e));
  if (!motivo.isEmpty())
    textos << motivo << QStringLiteral("No se importa nada hasta leerla de nuevo con Actualizar.");
  else if (!diferencias.isEmpty())
    textos << diferencias + QStringLiteral(" Pulse Actualizar para leerlo con lo que dicen ahora.");
  if (motivo.isEmpty() && e.causas.graves)
    for (const std::string& causa : e.causas.causas) textos << De(causa) + QLatin1Char('.');
  if (motivo.isEmpty() && abierta && !e.solo_lectura.empty()) textos << De(e.solo_lectura);
  MarcarActualizar(diferencias);
  if (lblAviso_->Poner(textos.join(QLatin1Char('\n')))) Disponer();
}

// The way out of a grid that is not that of the controls.
void FrmPrincipal2::MarcarActualizar(const QString& diferencias) {
  QPushButton* boton = franja_.cbActualizar;
  boton->setToolTip(diferencias);
  const bool marcado = !diferencias.isEmpty();
  if (marcado == (boton->property(kPapel).toString() == QLatin1String(kPrimario))) return;
  boton->setProperty(kPapel, marcado ? QVariant(QLatin1String(kPrimario)) : QVariant());
  QPalette paleta = franja_.cbBuscar->palette();
  if (marcado) paleta.setColor(QPalette::Active, QPalette::ButtonText, tema_.sobre_acento);
  if (marcado) paleta.setColor(QPalette::Inactive, QPalette::ButtonText, tema_.sobre_acento);
  boton->setPalette(paleta);
  boton->setIcon(Icono(Dibujo::Actualizar, marcado ? tema_.sobre_acento : tema_.texto, tema_.apagado));
  boton->update();
}

void FrmPrincipal2::OrdenarPrevia(const app::Estado& e) {
  std::array<int, 5> campos{};  // in the order seen
  for (int i = 0; i < 5; ++i)
    campos.at(static_cast<std::size_t>(e.posicion_previa[static_cast<std::size_t>(i)])) = i;
  QHeaderView* cabecera = formato_.GridPVConf->horizontalHeader();
  for (int i = 0; i < 5; ++i) {
    const int desde = cabecera->visualIndex(campos[static_cast<std::size_t>(i)]);
    if (desde != i) cabecera->moveSection(desde, i);
  }
}

}  // namespace gui
