#include <QCheckBox>
#include <QGuiApplication>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "gui/frm_principal2.h"
#include "gui/texto.h"

namespace gui {
namespace {

constexpr int kEnter = 13;
constexpr const char* kYaElegida = "ya_elegida";  // when the click began

}  // namespace

// A click on the option that is chosen already is one too, and toggles nothing.
void FrmPrincipal2::ConectarOpcion(QRadioButton* boton, const Evento& elegida) {
  connect(boton, &QRadioButton::pressed, boton,
          [boton] { boton->setProperty(kYaElegida, boton->isChecked()); });
  connect(boton, &QRadioButton::toggled, this, [this, elegida](bool puesto) {
    if (puesto) Hacer(elegida);
  });
  connect(boton, &QRadioButton::clicked, this, [this, boton, elegida] {
    if (boton->property(kYaElegida).toBool()) Hacer(elegida);
  });
}

void FrmPrincipal2::ConectarFranja() {
  Franja& f = franja_;
  connect(f.txtRuta, &QLineEdit::textChanged, this,
          [this](const QString& t) { Hacer([&](app::Programa& p) { p.Archivo().txtRuta_Change(A(t)); }); });
  connect(f.txtRuta, &QLineEdit::returnPressed, this,
          [this] { Hacer([](app::Programa& p) { p.Archivo().txtRuta_KeyPress(kEnter); }); });
  connect(f.cbBuscar, &QPushButton::clicked, this,
          [this] { Hacer([](app::Programa& p) { p.Archivo().cbBuscar_Click(); }); });
  connect(f.cbActualizar, &QPushButton::clicked, this,
          [this] { Hacer([](app::Programa& p) { p.Archivo().cbActualizar_Click(); }); });
  connect(f.ObjSelMes, &QDateEdit::dateChanged, this, [this](QDate dia) {
    Hacer([&](app::Programa& p) { p.Archivo().ObjSelMes_Change(FechaDe(dia)); });
  });
  connect(f.cmbLiquidaciones, &QComboBox::currentIndexChanged, this,
          [this](int i) { Hacer([i](app::Programa& p) { p.Archivo().cmbLiquidaciones_Click(i); }); });
  connect(f.cmbAgrupa, &QComboBox::currentIndexChanged, this,
          [this](int i) { Hacer([i](app::Programa& p) { p.Archivo().cmbAgrupa_Click(i); }); });
  for (const int i : {0, 1})
    ConectarOpcion(f.OptFiltro[static_cast<std::size_t>(i)],
                   [i](app::Programa& p) { p.Archivo().OptFiltro_Click(i); });
  connect(f.txtFiltro, &QLineEdit::textChanged, this,
          [this](const QString& t) { Hacer([&](app::Programa& p) { p.Archivo().txtFiltro_Change(A(t)); }); });
  connect(f.txtFiltro, &QLineEdit::returnPressed, this,
          [this] { Hacer([](app::Programa& p) { p.Archivo().txtFiltro_KeyPress(kEnter); }); });
}

void FrmPrincipal2::ConectarColumna() {
  connect(columna_.cbSalir, &QPushButton::clicked, this, [this] { close(); });
  connect(columna_.cbImportar, &QPushButton::clicked, this,
          [this] { Hacer([](app::Programa& p) { p.Importador().cbImportar_Click(1); }); });
  for (const int i : {0, 1}) {
    const auto abrir = [this, i] { Hacer([i](app::Programa& p) { p.Opciones().cbConfigurar_Click(i); }); };
    connect(columna_.cbConfigurar[static_cast<std::size_t>(i)], &QPushButton::clicked, this, abrir);
    connect((i == 0 ? formato_.AreConf : relaciones_.AreConf)->Cerrar(), &QPushButton::clicked, this, abrir);
  }
}

void FrmPrincipal2::ConectarFormato() {
  PanelFormato& f = formato_;
  for (const int i : {0, 1})
    ConectarOpcion(f.optTipoArch[static_cast<std::size_t>(i)],
                   [i](app::Programa& p) { p.Formato().optTipoArch_Click(i); });
  connect(f.txtSeparador, &QLineEdit::textChanged, this, [this](const QString& t) {
    Hacer([&](app::Programa& p) { p.Formato().txtSeparador_Change(A(t)); });
  });
  for (int i = 0; i < 5; ++i)
    for (int j = 0; j < 2; ++j)
      connect(f.txtAE[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)], &QLineEdit::textChanged,
              this, [this, i, j](const QString& t) {
                Hacer([&](app::Programa& p) { p.Formato().txtAE_Change(i, j, A(t)); });
              });
  connect(f.txtFormulaSGN, &QLineEdit::textChanged, this, [this](const QString& t) {
    Hacer([&](app::Programa& p) { p.Formato().txtFormulaSGN_Change(A(t)); });
  });
  connect(f.txtTextoTipoCuota, &QLineEdit::textChanged, this, [this](const QString& t) {
    Hacer([&](app::Programa& p) { p.Opciones().txtTextoTipoCuota_Change(A(t)); });
  });
  connect(f.cbTipoClave, &QComboBox::currentIndexChanged, this,
          [this](int i) { Hacer([i](app::Programa& p) { p.Opciones().cbTipoClave_Click(i); }); });
  connect(&Timer1_, &QTimer::timeout, this,
          [this] { Hacer([](app::Programa& p) { p.Formato().Timer1_Timer(); }); });
}

void FrmPrincipal2::ConectarOpciones() {
  using Manejador = void (app::Opciones::*)(bool);
  const PanelFormato& f = formato_;
  const std::pair<QCheckBox*, Manejador> tildes[] = {
      {f.chkSoloDReloj, &app::Opciones::chkSoloDReloj_Click},
      {f.chkLiqHCaMensuales, &app::Opciones::chkLiqHCaMensuales_Click},
      {f.chkNoImpValEnCero, &app::Opciones::chkNoImpValEnCero_Click},
      {f.chkCodigoNumerico, &app::Opciones::chkCodigoNumerico_Click},
      {f.chkTotalizarConc, &app::Opciones::chkTotalizarConc_Click},
      {f.chkSumarAyaIng, &app::Opciones::chkSumarAyaIng_Click},
      {f.chkImportarCuotas, &app::Opciones::chkImportarCuotas_Click},
      {f.chkConCC, &app::Opciones::chkConCC_Click},
      {f.chkCCDefEnDatExt, &app::Opciones::chkCCDefEnDatExt_Click},
      {relaciones_.chkVincAutConOrsa, &app::Opciones::chkVincAutConOrsa_Click}};
  for (const auto& [tilde, manejador] : tildes)
    connect(tilde, &QCheckBox::toggled, this, [this, m = manejador](bool puesta) {
      Hacer([&](app::Programa& p) { (p.Opciones().*m)(puesta); });
    });
}

void FrmPrincipal2::ConectarRelaciones() {
  PanelRelaciones& r = relaciones_;
  connect(r.cmbConceptos, &QComboBox::currentIndexChanged, this,
          [this](int i) { Hacer([i](app::Programa& p) { p.Relaciones().cmbConceptos_Click(i); }); });
  connect(r.cmbAgrupaDef, &QComboBox::currentIndexChanged, this,
          [this](int i) { Hacer([i](app::Programa& p) { p.Relaciones().cmbAgrupaDef_Click(i); }); });
  connect(r.txtTipo, &QLineEdit::textChanged, this, [this](const QString& t) {
    Hacer([&](app::Programa& p) { p.Relaciones().txtTipo_Change(A(t)); });
  });
  connect(r.cbColor, &QPushButton::clicked, this,
          [this] { Hacer([](app::Programa& p) { p.Relaciones().cbColor_Click(); }); });
  for (const int i : {0, 1})
    connect(r.cbAgrQuit[static_cast<std::size_t>(i)], &QPushButton::clicked, this,
            [this, i] { Hacer([i](app::Programa& p) { p.Relaciones().cbAgrQuit_Click(i); }); });
  connect(r.GridRelaciones->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          [this](const QModelIndex& actual) {
            Hacer([&](app::Programa& p) { p.Relaciones().GridRelaciones_RowChange(actual.row()); });
          });
}

void FrmPrincipal2::ConectarGrillas() {
  connect(GridAImportar_->horizontalHeader(), &QHeaderView::sectionClicked, this,
          [this](int seccion) { OrdenarPor(seccion); });
  const QHeaderView* cabecera = formato_.GridPVConf->horizontalHeader();
  connect(cabecera, &QHeaderView::sectionMoved, this, [this] { PreviaMovida(); });
  // Only the operator's: the last column also stretches by itself.
  connect(cabecera, &QHeaderView::sectionResized, this, [this] {
    if (QGuiApplication::mouseButtons() & Qt::LeftButton) PreviaMovida();
  });
}

// The desktop asks before it ends its session, and may then go on with it: everything is saved and nothing
// closed.
void FrmPrincipal2::ConectarSesion() {
  const auto guardar = [this] {
    if (!cerrada_) programa_.Resguardar();
  };
  connect(qGuiApp, &QGuiApplication::commitDataRequest, this, guardar, Qt::DirectConnection);
  connect(qGuiApp, &QGuiApplication::saveStateRequest, this, guardar, Qt::DirectConnection);
}

// Where each field's column stands now: the piece of the line that fills it.
void FrmPrincipal2::PreviaMovida() {
  std::array<int, 5> posiciones{};
  for (int i = 0; i < 5; ++i)
    posiciones[static_cast<std::size_t>(i)] = formato_.GridPVConf->horizontalHeader()->visualIndex(i);
  Hacer([&](app::Programa& p) { p.Formato().GridPVConf_ColumnasMovidas(posiciones); });
}

}  // namespace gui
