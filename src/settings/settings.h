// The options of the main window, one member a key of ImportDeMarcas.ini (plus what the program works out
// from them).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace settings {

// One layout column of a fixed-width line.
struct ColumnaAF {
  std::int16_t campo = 0;    // field number 1..5; 0 or less fills no field
  std::int16_t inicio = -1;  // character position from 1; less than 1: unused
  std::int16_t largo = 0;    // characters
  bool operator==(const ColumnaAF&) const = default;
};
// Columns 0 to 4 (a settings file may hold more; cutting with more than five is an error).
using FixedWidthLayout = std::vector<ColumnaAF>;

FixedWidthLayout LayoutPorDefecto();  // 1*1*6, 2*8*3, 3*12*9, 4*-1*0, 5*-1*0

struct Settings {
  bool SoloDatosDeRel = true;      // only clock data
  bool AnchoFijo = false;          // TipoArchivo: "AF" fixed width, "1" delimited
  bool CodTipoNumerico = true;     // type codes are numbers: 07 is 7
  bool TotalizarConc = true;       // totalise concepts
  bool SumarAyaIng = true;         // add to what is already entered; implies TotalizarConc
  bool MismoCodigoDeOrsa = false;  // relations built from the concepts' own codes
  bool ImportarCuotas = false;     // import instalment concepts
  bool CCDefEnArch = false;        // cost centre per line
  bool CCEnDE = false;             // cost centre in the extra datum
  bool LiqHCaMensuales = false;    // hours of hourly workers into monthly liquidations
  bool NoImpCantEn0 = false;       // do not import zero quantities
  std::string TextoTipoCuota = "Ref:[DatoExtra]";
  std::string Separador = " ";
  std::string FactMultiplica;  // line formula
  std::string TextoDeFiltro;   // filter text
  int Configura = 5;           // person key kind, 0..5
  FixedWidthLayout ConfDeAF = LayoutPorDefecto();
};

}  // namespace settings
