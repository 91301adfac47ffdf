// The program without its window: start-up, the handler of every control, shutdown. The window and the
// command line are two faces of it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "app/barra.h"
#include "app/estado.h"
#include "db/db_session.h"
#include "formula/evaluator.h"
#include "ports/clock.h"
#include "ports/file_picker.h"
#include "ports/progress.h"
#include "ports/prompts.h"
#include "settings/config_file.h"

namespace app {

// Whom the program asks. All outlive it.
struct Puertos {
  ports::Prompts& prompts;
  ports::FilePicker& picker;
  const ports::Clock& reloj;
  ports::EventPump* eventos = nullptr;
};

struct Arranque {
  std::string carpeta;  // of ImportDeMarcas.ini; made when it is missing
  std::string version = "1.0.0";
  std::optional<std::string> ajustes;  // the settings text itself: then the file is neither read nor written
  std::optional<base::Fecha> mes;      // instead of the current month
  // Begin a transaction as soon as the base is open, before anything is written; a base that refuses it is
  // not opened.
  bool una_transaccion = false;
};

class Programa {
 public:
  Programa(const Puertos& puertos, Arranque arranque);
  Programa(const Programa&) = delete;
  Programa& operator=(const Programa&) = delete;

  const Estado& Ver() const { return e_; }
  db::DbSession& Sesion() { return sesion_; }
  formula::Evaluador& Evaluador() { return evaluador_; }
  Barra& BarraDeProgreso() { return barra_; }
  const base::SumideroErrores& Errores() const { return errores_; }
  // Called when anything that a window draws may have changed.
  std::function<void()> al_cambiar;

  // Start-up on a command line. False: the program is to end at once, with an error when motivo_fin says why.
  bool Iniciar(std::string_view linea_de_comandos);
  // Start-up on a reference and an import file already told apart.
  bool IniciarCon(std::string referencia, std::string archivo);
  void Activate();
  // Shutdown. False while a load runs: it is told to stop, and Unload is to be called again when PuedeCerrar.
  // What cannot be saved is written beside, and a box says where; `callado`: nobody is there to read boxes.
  bool Unload(bool callado = false);
  // The desktop session may be about to end: saves as closing does, without a word and without closing.
  void Resguardar();
  bool PuedeCerrar() const { return !en_curso_; }
  bool CierrePedido() const { return cierre_pedido_; }

  // File, month and filter.
  void cbBuscar_Click();
  void cbActualizar_Click() { CargarDatos(); }
  void txtRuta_Change(std::string texto) { e_.txtRuta.text = std::move(texto); }
  void txtRuta_KeyPress(int tecla);
  void txtFiltro_Change(std::string texto);
  void txtFiltro_KeyPress(int tecla);
  void OptFiltro_Click(int indice);
  void ObjSelMes_Change(base::Fecha fecha);  // any day: the picker yields the first of its month
  void cmbLiquidaciones_Click(int indice);
  void cmbAgrupa_Click(int indice);
  void GridAImportar_HeadClick(std::string_view columna);
  // Sends Tab instead of Enter: true when the key is to be swallowed.
  static bool EnterEsTab(int tecla) { return tecla == 13; }

  // File format panel.
  void optTipoArch_Click(int indice);
  void txtSeparador_Change(std::string texto);
  void txtAE_Change(int columna, int elemento, std::string texto);
  void GridPVConf_ColumnasMovidas(const std::array<int, 5>& posiciones);
  void txtFormulaSGN_Change(std::string texto);
  void Timer1_Timer();

  // Options.
  void chkSoloDReloj_Click(bool marcado);
  void chkLiqHCaMensuales_Click(bool marcado);
  void chkNoImpValEnCero_Click(bool marcado);
  void chkCodigoNumerico_Click(bool marcado);
  void chkTotalizarConc_Click(bool marcado);
  void chkSumarAyaIng_Click(bool marcado);
  void chkImportarCuotas_Click(bool marcado);
  void txtTextoTipoCuota_Change(std::string texto);
  void chkConCC_Click(bool marcado);
  void chkCCDefEnDatExt_Click(bool marcado);
  void chkVincAutConOrsa_Click(bool marcado);
  void cbTipoClave_Click(int indice);

  // Relations panel.
  void cmbConceptos_Click(int indice);
  void cmbAgrupaDef_Click(int indice);
  void txtTipo_Change(std::string texto) { e_.txtTipo.text = std::move(texto); }
  void GridRelaciones_RowChange(int fila) { e_.fila_relacion = fila; }
  void cbAgrQuit_Click(int indice);  // 0 adds, 1 removes
  void cbColor_Click();
  void cbConfigurar_Click(int indice);

  // The import. Only the primary button (1) imports; any other does nothing.
  void cbImportar_Click(int boton);
  // The same without its question; `deshacer` ends with a rollback, to see what would come of it.
  void Importar(bool deshacer);
  std::string Confirmacion() const;
  // What would be written and may not be meant, one text a kind.
  std::vector<std::string> Avisos();
  // Why nothing is imported for now, in Spanish: something that an import stands on could not be read. "": it
  // may be.
  std::string MotivoParaNoImportar() const;

  // Reads the file into the grid; first what could not be read from the base, when there is any.
  void CargarDatos();

 private:
  enum Recarga : unsigned {
    kEmpresa = 1,
    kTipos = 2,
    kTablas = 4,
    kPersonas = 8,
    kConceptos = 16,
    kRelaciones = 32,
    kGrilla = 64
  };

  bool PrepararVentana();
  void LeerOpciones();
  bool ElegirBase(std::string_view linea);
  void AbrirBase(std::string referencia);
  bool TerminarInicio();
  void Conectar(std::string& referencia);
  bool Comenzar();
  void LeerEmpresa();
  void LeerTablasUsuario();

  // Every step that touches the base runs in here: a fault of the storage or of the memory ends it, is told,
  // and stops all imports until everything has been read again. False: it was ended.
  bool ConLaBase(const std::function<void()>& paso);
  void FalloLaBase(std::string motivo);
  std::string MotivoDeLectura() const;  // the first of the tables that could not be read
  void VerSoloLectura();

  void PonerLayout();
  void Aplicar(std::string_view clave);
  settings::Ajustes LeerAjustes() const;
  // Why what they are about was not saved; "" when it was, or when nothing is lost by it.
  std::string GuardarOpciones();
  std::string GuardarRelaciones();
  void Guardar(bool callado);
  bool RelacionesDeLaOpcion() const;
  bool RelacionesEditadas() const { return e_.relaciones.Texto() != relaciones_leidas_; }
  std::optional<std::string> ConceptosAGuardar() const;
  std::string EscribirAparte() const;
  liquidation::EntradaImportacion EntradaDeImportacion();
  void AnotarImportacion(bool deshacer);

  // Reloads now, or when the load or import under way has ended.
  void Pedir(unsigned recargas);
  void Recargar(unsigned recargas);
  void LeerTablas(unsigned recargas);
  void CargarGrilla();
  void Empezar(Tarea tarea);
  void Terminado();  // of a load or an import
  void CargarVecDePersonas();
  void ActuLSTdeConceptos();
  void LevantarRelaciones();
  void CargarTiposLiquidacion();
  void CargarDatosPrevisual();
  void Actualizar();
  void OrdenarFilas();
  void MostrarConcepto();
  void AgregarRelacion();
  void QuitarRelacion();
  void Avisar(std::string texto);
  void Cambio();

  Puertos puertos_;
  Arranque arranque_;
  Estado e_;
  db::DbSession sesion_;
  formula::Evaluador evaluador_;
  Barra barra_;
  base::SumideroErrores errores_;
  std::string ajustes_;                          // the settings text of start-up
  std::string titulo_dialogo_, filtro_dialogo_;  // of ComDlg
  bool previa_movida_ = false;                   // the operator has rearranged the columns of GridPVConf
  // Of the relations as they were loaded: the option that decided where they came from (none: never loaded),
  // and their text.
  std::optional<bool> relaciones_automaticas_;
  std::string relaciones_leidas_;
  bool grilla_a_medias_ = false;  // loaded while something could not be read
  bool resguardo_pendiente_ = false;
  unsigned pendientes_ = 0;
  bool en_curso_ = false;
  bool cierre_pedido_ = false;
};

}  // namespace app
