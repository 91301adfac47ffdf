// The pieces of the loader that a load of 100,000 lines runs for each of them.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "importfile/import_grid.h"
#include "importfile/line_formats.h"

namespace importfile {

inline constexpr std::size_t kCamposDeLinea = 5;     // that a line can have
inline constexpr std::size_t kCamposNecesarios = 3;  // key, type code, quantity

// Views into the line, by field number and by layout column. The layout is one that can be cut.
struct CorteAF {
  std::array<std::string_view, kCamposDeLinea> campos, piezas;
};
CorteAF CortarAF(std::string_view linea, const settings::FixedWidthLayout& layout);

// The text of the number of a plain decimal ("000123", "8.50"), of fifteen digits at most; none for any other
// text. It is what the general conversion there and back gives, for a fraction of the time: nearly all
// numbers of a file are of this kind.
std::optional<std::string> TextoDeDecimal(std::string_view texto);
bool ValeCero(std::string_view texto);  // the numeric value is 0

// The numeric value of a text as the rows hold it: "." form, "0" when it has none; the text itself when it is
// too large for a number.
std::string TextoDelValor(std::string_view texto);
std::string NormalizarClave(std::string_view clave);
// The quantity as the row holds it, "." for the decimal sign, and whether the file's text was none.
struct CantidadDeFila {
  std::string texto;
  bool no_numerica = false;  // neither empty nor a number
};
CantidadDeFila NormalizarCantidad(std::string_view cantidad);
std::string NormalizarTipo(std::string_view tipo, bool numerico);

// What the pieces of a line say by themselves. At least three pieces.
void LlenarDeLaLinea(std::span<const std::string_view> piezas, const settings::Settings& opciones,
                     ImportRow& fila);

// Finds contract, relation and concept of one row after the other, remembering what each relation leads to.
class RowMatcher {
 public:
  RowMatcher(const EntradaCarga& entrada, const settings::Settings& opciones);
  // Fills the fields that come from the tables. Returns the relation of the row's type code, -1 without one.
  int Emparejar(formula::CamposDeLinea& fila);

 private:
  struct DatosDeConcepto {
    bool buscado = false;
    std::string tipo_dato, operacion, cuota;
  };
  const DatosDeConcepto& ConceptoDe(int relacion);
  DatosDeConcepto BuscarConcepto(std::string_view id_concepto) const;
  void PonerContrato(formula::CamposDeLinea& fila, std::size_t contrato, int relacion) const;

  const EntradaCarga& entrada_;
  const settings::Settings& opciones_;
  std::vector<DatosDeConcepto> por_relacion_;
  const DatosDeConcepto sin_concepto_{true, "3", "S", "0"};
};

}  // namespace importfile
