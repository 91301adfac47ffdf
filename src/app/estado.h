// All that the main window shows, and what it keeps between events. The window draws it; the command line
// reads it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/controles.h"
#include "app/procedencia.h"
#include "base/date.h"
#include "corridas/cantidades.h"
#include "formula/vectores/list_control.h"
#include "importfile/causas.h"
#include "importfile/import_grid.h"
#include "liquidation/importar.h"
#include "refdata/concepts_catalogue.h"
#include "refdata/liquidation_types.h"
#include "refdata/persons_index.h"
#include "relations/code_relations.h"
#include "settings/settings.h"

namespace app {

enum class Tarea { Ninguna, Carga, Importacion };

// Each goes up when its part of the state was replaced or put in another order: a window compares a number
// instead of 100,000 rows.
struct Revisiones {
  unsigned filas = 0, relaciones = 0, previa = 0, conceptos = 0, tipos = 0;
};

struct Estado {
  bool cargando = false;         // the loading flag of start-up
  bool carga_pendiente = false;  // a file named on the command line waits for the first activation
  std::string caption = "Datos A Importar";
  std::string referencia;    // of the database, as Conectar left it
  std::string archivo_base;  // the file of the open base; "" when it is none
  std::string motivo_base;   // why the base is not open; empty when it is
  // The base cannot be trusted, in Spanish; each is empty when there is nothing to say. See
  // MotivoParaNoImportar.
  std::string fallo_de_base;     // a fault of the storage or of the memory since all of it was last read
  std::string motivo_empresa;    // the company row could not be read
  std::string motivo_tablas;     // the user tables could not
  std::string solo_lectura;      // it is open for reading only, and why
  std::string motivo_fin;        // why the program must end at once: its settings cannot be read
  bool grilla_a_medias = false;  // the grid was loaded while something could not be read
  std::string LblEmpresa;
  base::Date mes;  // first day of the month of ObjSelMes

  settings::Settings opciones;
  refdata::PersonsIndex personas;
  refdata::ConceptsCatalogue conceptos;  // with cmbConceptos
  refdata::LiquidationTypes tipos;       // with cmbLiquidaciones, cmbAgrupa, cmbAgrupaDef
  relations::CodeRelations relaciones;   // with the rows of GridRelaciones
  formula::TablasUsuario tablas;

  // Of the relations as they were loaded: the option that decided where they came from (none: never loaded),
  // and their text.
  std::optional<bool> relaciones_automaticas;
  std::string relaciones_leidas;

  // File and filter.
  std::string titulo_dialogo;  // of ComDlg
  TextBox txtRuta, txtFiltro, txtFormulaSGN, txtSeparador, txtTextoTipoCuota, txtTipo;
  std::array<std::array<TextBox, 2>, 5> txtAE;  // txtA … txtE: start, length
  int OptFiltro = 1;                            // 0 "Por Texto", 1 "Por Relación"
  int optTipoArch = 0;                          // 0 "Delimitado Por", 1 "De Ancho Fijo"
  formula::ListControl cbTipoClave;

  CheckBox chkSoloDReloj, chkLiqHCaMensuales, chkNoImpValEnCero, chkCodigoNumerico, chkTotalizarConc,
      chkSumarAyaIng, chkImportarCuotas, chkConCC, chkCCDefEnDatExt, chkVincAutConOrsa;

  // Relations panel.
  std::string lblConcepto;
  std::int32_t cbColor = 0xFFFFFF;  // 0xBBGGRR
  int fila_relacion = -1;           // current row of GridRelaciones
  int cmbConceptos_ancho = 0;       // pixels of its drop-down

  std::array<bool, 2> AreConf_visible{};
  int AreConf_al_frente = 0;
  bool Timer1_enabled = false;

  // GridAImportar, GridRelaciones, GridPVConf.
  Grid GridAImportar, GridRelaciones, GridPVConf;
  std::vector<importfile::ImportRow> filas;
  std::vector<importfile::LineaAparte> aparte;  // lines of the file that are no rows
  std::size_t lineas = 0;                       // of the file
  importfile::ArchivoLeido archivo;             // the file of the grid, as it was read
  Procedencia procedencia;                      // of those rows
  importfile::CausasDe causas;                  // why lines of the last load found nobody or nothing
  bool hay_valor = false;
  int columna_orden = 0;  // row field of the sort
  std::string previa;     // the first four lines of the last file
  std::vector<std::vector<std::string>> filas_previa;
  // Where GridPVConf shows its column of field i + 1: the layout column that fills it. A rearrangement of 0
  // to 4.
  std::array<int, 5> posicion_previa{0, 1, 2, 3, 4};

  Tarea tarea = Tarea::Ninguna;  // what is under way
  Revisiones revision;
  importfile::FinDeCarga fin_de_carga = importfile::FinDeCarga::Completa;  // of the last load
  liquidation::Importacion importacion;                                    // the last one
  // What the last import, or trial of one, made of the quantities of the month; empty when nothing was
  // written.
  std::vector<corridas::CambioDeCantidad> cantidades;
  bool simulada = false;  // the last import was a trial
  std::uint32_t corrida =
      0;  // its number in the ledger; 0: it is not there (a trial, or nothing was written)
};

}  // namespace app
