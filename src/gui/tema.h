// The colours of the window, for a light and a dark desktop.
#pragma once

#include <QColor>
#include <QPalette>

namespace gui {

struct Tema {
  bool oscuro = false;
  QColor ventana, base, alterna, texto, tenue, apagado;  // ground, fields, letters
  QColor borde, borde_fuerte;  // of fields and buttons, and under the mouse; seen without looking for them
  QColor separador, linea;     // between titles, between rows
  QColor acento, acento_encima, acento_apretado, sobre_acento;  // the primary action, selection
  QColor foco;                                                  // the ring of what has the keyboard
  QColor boton, boton_encima, boton_apretado, cabecera;
  QColor columna, columna_texto, columna_tenue, columna_apagado, columna_boton, columna_encima,
      columna_borde;                       // Area1
  QColor bien, mal;                        // counts on the column
  QColor aviso, aviso_texto, aviso_borde;  // the band over the grid

  static Tema Claro();
  static Tema Oscuro();
  static Tema Segun(const QPalette& del_sistema);

  QPalette Paleta() const;
};

}  // namespace gui
