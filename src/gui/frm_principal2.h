// The one window. It draws the state and hands events on: every rule is the program's.
#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <functional>

#include "app/programa.h"
#include "gui/barra_de_vista.h"
#include "gui/bases_recientes.h"
#include "gui/bomba.h"
#include "gui/cinta.h"
#include "gui/columna.h"
#include "gui/franja.h"
#include "gui/lista_de_aparte.h"
#include "gui/modelos.h"
#include "gui/panel_formato.h"
#include "gui/panel_relaciones.h"
#include "gui/tema.h"

class QMenu;
class QRadioButton;
class QSettings;
class QToolButton;

namespace gui {

class Guardia;

class FrmPrincipal2 final : public QWidget {
 public:
  // The program outlives the window, and belongs to it meanwhile. `bomba` may be null: then an import does
  // not paint.
  FrmPrincipal2(app::Programa& programa, const Tema& tema, Bomba* bomba);
  ~FrmPrincipal2() override;

  // Start-up. False: the program is to end at once, without a window.
  bool Iniciar(const QString& linea_de_comandos);
  bool Cerrada() const { return cerrada_; }
  // Takes its size from there, and leaves it there when it closes, with the bases opened last; null: of no
  // other run.
  void Recordar(QSettings* ajustes);
  // The system wants the program to end: everything is saved without a box, and all event loops end.
  void Terminar();
  bool Terminando() const { return terminando_; }

  static constexpr int kTimer1 = 400;  // milliseconds

 protected:
  void resizeEvent(QResizeEvent* evento) override;
  void changeEvent(QEvent* evento) override;
  void showEvent(QShowEvent* evento) override;
  void closeEvent(QCloseEvent* evento) override;
  void keyPressEvent(QKeyEvent* evento) override;
  void dragEnterEvent(QDragEnterEvent* evento) override;
  void dropEvent(QDropEvent* evento) override;

 private:
  using Evento = std::function<void(app::Programa&)>;

  void Armar();
  void ArmarTarea();
  void ArmarBases();
  void LlenarMenuDeBases();
  void PonerOrdenDeTeclas();
  void ConectarFranja();
  void ConectarColumna();
  void ConectarFormato();
  void ConectarOpciones();
  void ConectarRelaciones();
  void ConectarGrillas();
  void ConectarSesion();
  void ConectarTeclas();
  void ConectarVista();

  void ConectarOpcion(QRadioButton* boton, const Evento& elegida);

  // An event of the operator: handed to the program, and what came of it drawn. Nothing while the window
  // itself sets its controls, and nothing once it is closed.
  void Hacer(const Evento& evento);
  void PreviaMovida();
  void Activarse();

  void Sincronizar();
  void SincronizarFranja(const app::Estado& e);
  void SincronizarColumna(const app::Estado& e);
  void PonerTotales(const app::Estado& e);
  void PonerOcupado(bool ocupado);
  void PonerMotivoApagado();
  void PonerEstado(const app::Estado& e);
  int AltoDeEstado() const;
  void VigilarTarea(app::Tarea tarea);
  void SincronizarFormato(const app::Estado& e);
  void SincronizarRelaciones(const app::Estado& e);
  void SincronizarPaneles(const app::Estado& e);
  void SincronizarGrillas(const app::Estado& e);
  void SincronizarCinta(const app::Estado& e);
  // Which of the lines the grid shows: see VistaDeLineas.
  void PonerVista(app::VistaDeLineas vista);
  void RehacerVista(const app::Estado& e);
  void MostrarVista(const app::Estado& e);
  void OrdenarPor(int seccion);
  void AbrirAparte(bool mal_formadas);
  void MarcarActualizar(const QString& diferencias);
  void OrdenarPrevia(const app::Estado& e);
  void MostrarOrden(const app::Estado& e);
  void PintarBarra();
  void CerrarSiTermino();

  // The resize rules.
  void Disponer();
  void DisponerColumna();
  void DisponerPaneles();

  app::Programa& programa_;
  Tema tema_;
  Bomba* bomba_;
  Columna columna_;
  Franja franja_;
  PanelFormato formato_;
  PanelRelaciones relaciones_;
  Grilla* GridAImportar_ = nullptr;
  Cinta* lblAviso_ = nullptr;
  BarraDeVista barra_de_vista_;
  app::VistaDeLineas vista_;
  QPointer<ListaDeAparte> aparte_;
  app::CuentaDeFaltas faltas_;  // of the rows as they were last looked at
  ModeloImportar modelo_importar_;
  ModeloRelaciones modelo_relaciones_;
  ModeloPrevia modelo_previa_;
  QTimer Timer1_;
  QSettings* ajustes_ = nullptr;  // of the desktop
  QPushButton* cbCancelar_ = nullptr;
  QToolButton* cbBases_ = nullptr;
  QMenu* menuBases_ = nullptr;
  Guardia* guardia_ = nullptr;
  BasesRecientes recientes_;
  QString ayuda_importar_;   // the tooltip of Importar while it can be pressed
  QString motivo_apagado_;   // why it cannot, ""
  app::Revisiones vistas_;   // of the state, as drawn
  QWidget* foco_ = nullptr;  // whose focus waits for the end of a load or an import
  bool primera_vez_ = true, sincronizando_ = false, cerrada_ = false, activacion_en_cola_ = false,
       cierre_en_cola_ = false, terminando_ = false, ocupado_ = false;
};

}  // namespace gui
