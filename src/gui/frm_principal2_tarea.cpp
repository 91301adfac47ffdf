// A load or an import under way: what rests meanwhile, how far it is, and how it is stopped.
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <algorithm>

#include "gui/estilo.h"
#include "gui/frm_principal2.h"
#include "gui/guardia.h"
#include "gui/texto.h"

namespace gui {
namespace {

QString TextoDeTarea(const app::Estado& e, const app::Barra& barra) {
  if (barra.IsCancelled()) return QStringLiteral("Cancelando…");
  if (!barra.Etapa().empty()) return De(barra.Etapa());
  const QString que = e.tarea == app::Tarea::Importacion
                          ? QStringLiteral("Importando…")
                          : QStringLiteral("Cargando %1…").arg(QFileInfo(De(e.txtRuta.text)).fileName());
  if (!barra.Visible()) return que;
  return que + QStringLiteral(" %1 %").arg(static_cast<int>(barra.Porcentaje()));
}

}  // namespace

void FrmPrincipal2::ArmarTarea() {
  ayuda_importar_ = columna_.cbImportar->toolTip();
  columna_.lblEstado->setWordWrap(true);
  columna_.lblEstado->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
  cbCancelar_ = CrearBoton(QStringLiteral("cbCancelar"), QStringLiteral("Cancelar"), columna_.Area1);
  cbCancelar_->setToolTip(QStringLiteral("Detener lo que se está haciendo (Esc)"));
  cbCancelar_->setFocusPolicy(Qt::NoFocus);
  cbCancelar_->hide();
  connect(cbCancelar_, &QPushButton::clicked, this, [this] { programa_.Cancelar(); });
  guardia_ = new Guardia(this, cbCancelar_, [this] { programa_.Cancelar(); });
}

void FrmPrincipal2::PonerEstado(const app::Estado& e) {
  const QString texto =
      e.tarea == app::Tarea::Ninguna ? motivo_apagado_ : TextoDeTarea(e, programa_.BarraDeProgreso());
  if (columna_.lblEstado->text() == texto) return;
  columna_.lblEstado->setText(texto);
  columna_.lblEstado->setToolTip(texto);
  if (AltoDeEstado() != columna_.lblEstado->height()) DisponerColumna();
}

// One line, or as many as the text needs, up to a few.
int FrmPrincipal2::AltoDeEstado() const {
  constexpr int kLineas = 5;
  const QLabel* l = columna_.lblEstado;
  const int linea = l->fontMetrics().lineSpacing();
  const int ancho = columna_.Area1->width() - 2 * Px(180);
  const int alto =
      l->fontMetrics().boundingRect(QRect(0, 0, ancho, 10000), Qt::TextWordWrap, l->text()).height();
  return std::clamp(alto, linea, kLineas * linea) + 4;
}

// A second load or import is ignored: while one runs its buttons say so. The focus waits on the grid, since
// Qt would hand it to the next button, and comes back. Importar rests, with its reason, when there is nothing
// to import or nowhere to.
void FrmPrincipal2::PonerOcupado(bool ocupado) {
  if (!ocupado) PonerMotivoApagado();
  QPushButton* botones[] = {columna_.cbImportar, franja_.cbActualizar, franja_.cbBuscar};
  if (ocupado_ != ocupado) {
    ocupado_ = ocupado;
    if (ocupado)
      setCursor(Qt::BusyCursor);
    else
      unsetCursor();
    if (ocupado) {
      foco_ = nullptr;
      for (QPushButton* boton : botones)
        if (boton == focusWidget()) foco_ = boton;
      if (foco_ != nullptr) GridAImportar_->setFocus();
    }
    for (QPushButton* boton : botones)
      boton->setEnabled(!ocupado && (boton != columna_.cbImportar || motivo_apagado_.isEmpty()));
    cbBases_->setEnabled(!ocupado);
    cbCancelar_->setVisible(ocupado);
    columna_.Barra->Reservar(ocupado ? cbCancelar_->width() + 2 : 0);
    if (!ocupado && foco_ != nullptr && focusWidget() == GridAImportar_) foco_->setFocus();
  }
  cbCancelar_->setEnabled(!programa_.BarraDeProgreso().IsCancelled());
}

void FrmPrincipal2::PonerMotivoApagado() {
  const QString motivo = De(programa_.Importador().MotivoApagado());
  if (!ocupado_) columna_.cbImportar->setEnabled(motivo.isEmpty());
  if (motivo == motivo_apagado_) return;
  motivo_apagado_ = motivo;
  columna_.cbImportar->setToolTip(motivo.isEmpty() ? ayuda_importar_
                                                   : ayuda_importar_ + QLatin1Char('\n') + motivo);
}

// At the end of an import what was clicked meanwhile and has not come yet is dropped too.
void FrmPrincipal2::VigilarTarea(app::Tarea tarea) {
  if (guardia_->Tarea() == tarea) return;
  if (guardia_->Tarea() == app::Tarea::Importacion && bomba_ != nullptr) bomba_->Vaciar();
  guardia_->Poner(tarea);
}

// A load runs the events by itself; an import is painted from here, and Esc and the button are heard.
void FrmPrincipal2::PintarBarra() {
  const app::Barra& barra = programa_.BarraDeProgreso();
  columna_.Barra->Poner(barra.Porcentaje());
  columna_.Barra->setVisible(barra.Visible());
  if (barra.Visible()) columna_.Barra->raise();
  cbCancelar_->raise();
  PonerEstado(programa_.Ver());
  if (bomba_ != nullptr && programa_.Ver().tarea == app::Tarea::Importacion) bomba_->DoEvents();
}

}  // namespace gui
