// The keyboard: the order of Tab, and the keys of the whole window.
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QToolButton>

#include "gui/frm_principal2.h"

namespace gui {

// As one reads: the strip, the grid, the open panel (how the file is cut before the options), the column; in
// each by rows, and in a row from the left.
void FrmPrincipal2::PonerOrdenDeTeclas() {
  const PanelFormato& f = formato_;
  const PanelRelaciones& r = relaciones_;
  QList<QWidget*> orden = {franja_.txtRuta,
                           franja_.cbBuscar,
                           franja_.cbActualizar,
                           franja_.ObjSelMes,
                           franja_.cmbLiquidaciones,
                           franja_.cmbAgrupa,
                           franja_.OptFiltro[1],
                           franja_.OptFiltro[0],
                           franja_.txtFiltro,
                           barra_de_vista_.txtBuscarEnGrilla,
                           barra_de_vista_.cbMostrarTodas,
                           GridAImportar_,
                           f.optTipoArch[0],
                           f.txtSeparador,
                           f.cbTabulador,
                           f.optTipoArch[1]};
  for (const std::size_t j : {std::size_t{0}, std::size_t{1}})
    for (const auto& columna : f.txtAE) orden << columna[j];
  orden << QList<QWidget*>{
      f.GridPVConf,        f.cbTipoClave,        f.txtFormulaSGN,    f.chkSoloDReloj,    f.chkCodigoNumerico,
      f.chkNoImpValEnCero, f.chkLiqHCaMensuales, f.chkSumarAyaIng,   f.chkTotalizarConc, f.chkConCC,
      f.chkCCDefEnDatExt,  f.chkImportarCuotas,  f.txtTextoTipoCuota};
  orden << QList<QWidget*>{r.cmbConceptos, r.chkVincAutConOrsa, r.txtTipo,      r.cmbAgrupaDef,
                           r.cbColor,      r.cbAgrQuit[0],      r.cbAgrQuit[1], r.GridRelaciones};
  orden << cbBases_;
  for (const std::size_t i : {1, 6, 7, 2, 3, 4, 5}) orden << columna_.cuentas[i];
  orden << QList<QWidget*>{columna_.cbConfigurar[0], columna_.cbSalir, columna_.cbConfigurar[1],
                           columna_.cbImportar};
  for (qsizetype i = 1; i < orden.size(); ++i) setTabOrder(orden[i - 1], orden[i]);
  franja_.txtRuta->setFocus();
}

// What a key does its button does, and a button that rests does nothing.
void FrmPrincipal2::ConectarTeclas() {
  const std::pair<QKeySequence, QPushButton*> teclas[] = {
      {QKeySequence(Qt::Key_F5), franja_.cbActualizar}, {QKeySequence(QKeySequence::Open), franja_.cbBuscar}};
  for (const auto& [tecla, boton] : teclas) {
    auto* atajo = new QShortcut(tecla, this);
    connect(atajo, &QShortcut::activated, boton, &QPushButton::click);
  }
  auto* buscar = new QShortcut(QKeySequence(QKeySequence::Find), this);
  connect(buscar, &QShortcut::activated, this, [this] {
    barra_de_vista_.txtBuscarEnGrilla->setFocus(Qt::ShortcutFocusReason);
    barra_de_vista_.txtBuscarEnGrilla->selectAll();
  });
}

}  // namespace gui
