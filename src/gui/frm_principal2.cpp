#include "gui/frm_principal2.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QShowEvent>

#include "gui/tamano_de_ventana.h"
#include "gui/texto.h"

namespace gui {

FrmPrincipal2::FrmPrincipal2(app::Programa& programa, const Tema& tema, Bomba* bomba)
    : programa_(programa),
      tema_(tema),
      bomba_(bomba),
      modelo_importar_(programa.Ver(), nullptr),
      modelo_relaciones_(programa.Ver(), nullptr),
      modelo_previa_(programa.Ver(), nullptr) {
  setObjectName(QStringLiteral("FrmPrincipal2"));
  setAcceptDrops(true);
  Timer1_.setObjectName(QStringLiteral("Timer1"));
  Timer1_.setParent(this);
  Timer1_.setSingleShot(true);
  Timer1_.setInterval(kTimer1);
  Armar();
  ConectarFranja();
  ConectarColumna();
  ConectarFormato();
  ConectarOpciones();
  ConectarRelaciones();
  ConectarGrillas();
  ConectarSesion();
  ConectarTeclas();
  ConectarVista();
  programa_.AlCambiar([this] { Sincronizar(); });
  programa_.BarraDeProgreso().al_pintar = [this] { PintarBarra(); };
  resize(TamanoInicial(screen()->availableSize()));
  Sincronizar();
}

FrmPrincipal2::~FrmPrincipal2() {
  programa_.AlCambiar(nullptr);
  programa_.BarraDeProgreso().al_pintar = nullptr;
}

void FrmPrincipal2::Armar() {
  columna_.Crear(tema_, this);
  franja_.Crear(tema_, this);
  lblAviso_ = new Cinta(QStringLiteral("lblAviso"), tema_, this);
  barra_de_vista_.Crear(tema_, this);
  GridAImportar_ = new Grilla(QStringLiteral("GridAImportar"), tema_, this);
  GridAImportar_->setModel(&modelo_importar_);
  GridAImportar_->setAccessibleName(QStringLiteral("Líneas a importar"));
  GridAImportar_->horizontalHeader()->setSectionsClickable(true);
  GridAImportar_->horizontalHeader()->setSortIndicatorShown(true);
  GridAImportar_->PonerAnchos({{66, 56, 0},
                               {104, 70, 2},
                               {116, 80, 2},
                               {76, 64, 0},
                               {66, 56, 0},
                               {60, 44, 0},
                               {156, 96, 3},
                               {84, 76, 0},
                               {88, 60, 1},
                               {55, 55, 0},
                               {180, 110, 4}});
  formato_.Crear(tema_, this);
  formato_.GridPVConf->setModel(&modelo_previa_);
  formato_.GridPVConf->PonerAnchos(QList<Grilla::Ancho>(modelo_previa_.columnCount(), {90, 60, 1}));
  relaciones_.Crear(tema_, this);
  relaciones_.GridRelaciones->setModel(&modelo_relaciones_);
  relaciones_.GridRelaciones->PonerAnchos({{120, 90, 0}, {360, 160, 4}, {270, 120, 3}, {55, 55, 0}});
  ArmarTarea();
  ArmarBases();
  PonerOrdenDeTeclas();
}

bool FrmPrincipal2::Iniciar(const QString& linea_de_comandos) {
  const bool sigue = programa_.Iniciar(A(linea_de_comandos));
  Sincronizar();
  return sigue;
}

void FrmPrincipal2::Recordar(QSettings* ajustes) {
  ajustes_ = ajustes;
  recientes_.Guardar(ajustes);
  if (ajustes_ != nullptr) RecordarTamano(*this, *ajustes_);
}

void FrmPrincipal2::Hacer(const Evento& evento) {
  if (sincronizando_ || cerrada_) return;
  evento(programa_);
  if (!cerrada_) Sincronizar();
}

// The load of a file named on the command line. Not from inside the event itself: the window is to be seen
// first.
void FrmPrincipal2::Activarse() {
  if (!programa_.Ver().carga_pendiente || activacion_en_cola_) return;
  activacion_en_cola_ = true;
  QTimer::singleShot(0, this, [this] {
    activacion_en_cola_ = false;
    Hacer([](app::Programa& p) {
      if (p.PuedeCerrar()) p.Activate();
    });
  });
}

void FrmPrincipal2::changeEvent(QEvent* evento) {
  QWidget::changeEvent(evento);
  if (evento->type() != QEvent::ActivationChange || !isActiveWindow()) return;
  Activarse();
  if (!cerrada_) Sincronizar();  // the file may have been edited meanwhile
}

void FrmPrincipal2::showEvent(QShowEvent* evento) {
  QWidget::showEvent(evento);
  Disponer();
  if (isActiveWindow()) Activarse();
}

void FrmPrincipal2::resizeEvent(QResizeEvent* evento) {
  QWidget::resizeEvent(evento);
  Disponer();
}

// While a load runs it is told to stop, and the window closes when it has.
void FrmPrincipal2::closeEvent(QCloseEvent* evento) {
  if (!cerrada_ && !programa_.Unload(terminando_)) {
    evento->ignore();
    return;
  }
  cerrada_ = true;
  Timer1_.stop();
  if (ajustes_ != nullptr) GuardarTamano(*this, *ajustes_);
  evento->accept();
}

void FrmPrincipal2::Terminar() {
  terminando_ = true;
  if (isVisible()) close();
  QCoreApplication::exit(0);
}

void FrmPrincipal2::CerrarSiTermino() {
  if (cerrada_ || cierre_en_cola_ || !programa_.CierrePedido() || !programa_.PuedeCerrar()) return;
  cierre_en_cola_ = true;
  QTimer::singleShot(0, this, [this] {
    cierre_en_cola_ = false;
    close();
  });
}

void FrmPrincipal2::keyPressEvent(QKeyEvent* evento) {
  if (evento->key() == Qt::Key_Escape) {
    for (const int i : {0, 1})
      if (programa_.Ver().AreConf_visible[static_cast<std::size_t>(i)])
        return Hacer([i](app::Programa& p) { p.Opciones().cbConfigurar_Click(i); });
    if (vista_.Filtra()) return barra_de_vista_.cbMostrarTodas->click();
  }
  QWidget::keyPressEvent(evento);
}

void FrmPrincipal2::dragEnterEvent(QDragEnterEvent* evento) {
  const QList<QUrl> urls = evento->mimeData()->urls();
  if (!urls.isEmpty() && urls.front().isLocalFile()) evento->acceptProposedAction();
}

void FrmPrincipal2::dropEvent(QDropEvent* evento) {
  const QList<QUrl> urls = evento->mimeData()->urls();
  if (urls.isEmpty() || !urls.front().isLocalFile()) return;
  evento->acceptProposedAction();
  const std::string ruta = A(urls.front().toLocalFile());
  // Not from inside the drop: who dragged waits until it returns.
  QTimer::singleShot(0, this, [this, ruta] {
    Hacer([&ruta](app::Programa& p) {
      if (!p.PuedeCerrar()) return;  // a load or an import runs: the file is ignored like a second load
      p.Archivo().txtRuta_Change(ruta);
      p.Lineas().CargarDatos();
    });
  });
}

}  // namespace gui
