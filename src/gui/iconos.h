// The small drawings on the buttons: lines on a grid of 16, sharp at any scale.
#pragma once

#include <QColor>
#include <QIcon>

namespace gui {

enum class Dibujo { Carpeta, Actualizar, Engranaje, Relaciones, Importar, Salir, Mas, Menos, Cerrar };

// Of 20 by 16: what stands at the right keeps the drawing off the caption.
QIcon Icono(Dibujo dibujo, const QColor& color, const QColor& apagado);
inline constexpr int kAnchoIcono = 20, kAltoIcono = 16;

// The exclamation of a message box.
QIcon IconoDeAviso();

}  // namespace gui
