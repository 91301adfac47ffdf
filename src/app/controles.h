// What each control of the main window holds, without drawing it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace app {

struct CheckBox {
  bool checked = false;
  bool enabled = true;
};

struct TextBox {
  std::string text;
  bool enabled = true;
};

struct GridColumn {
  std::string nombre;  // the column's own name
  std::string caption;
  bool visible = true;
  int ancho = 0;  // twips; 0: the grid's own width
};

struct Grid {
  std::vector<GridColumn> columnas;

  GridColumn* Columna(std::string_view nombre) {
    for (GridColumn& c : columnas)
      if (c.nombre == nombre) return &c;
    return nullptr;
  }
};

}  // namespace app
