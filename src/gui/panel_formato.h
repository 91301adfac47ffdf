// AreConf(0): how the file is cut, its preview, and the options of the import.
#pragma once

#include <array>

#include "gui/grilla.h"
#include "gui/piezas.h"

class QCheckBox;
class QGridLayout;
class QRadioButton;

namespace gui {

struct PanelFormato {
  Panel* AreConf = nullptr;
  QWidget* contenido = nullptr;  // of the panel, which scrolls it
  std::array<QRadioButton*, 2> optTipoArch{};
  QLineEdit* txtSeparador = nullptr;
  QPushButton* cbTabulador = nullptr;                // puts the tab into that box, where the key cannot
  std::array<std::array<QLineEdit*, 2>, 5> txtAE{};  // txtA … txtE: start, length
  std::array<Etiqueta*, 5> lblAE{};                  // what the column fills
  Grilla* GridPVConf = nullptr;
  Etiqueta *Label3 = nullptr, *Label2 = nullptr, *lblImpCuotas = nullptr;
  Combo* cbTipoClave = nullptr;
  QLineEdit *txtFormulaSGN = nullptr, *txtTextoTipoCuota = nullptr;
  QCheckBox *chkSoloDReloj = nullptr, *chkLiqHCaMensuales = nullptr, *chkNoImpValEnCero = nullptr,
            *chkCodigoNumerico = nullptr, *chkTotalizarConc = nullptr, *chkSumarAyaIng = nullptr,
            *chkImportarCuotas = nullptr, *chkConCC = nullptr, *chkCCDefEnDatExt = nullptr;

  void Crear(const Tema& tema, QWidget* padre);

 private:
  QWidget* CrearArchivo(const Tema& tema);
  QGridLayout* CrearColumnas(QWidget* padre);
  QWidget* CrearOpciones();
};

// A check box with its caption and the letter of its access key ("" for none).
QCheckBox* CrearTilde(const char* nombre, const char* texto, const char* tecla, QWidget* padre);

}  // namespace gui
