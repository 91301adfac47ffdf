// How small and how large the window may be, and what it was when it was last closed, which the desktop's own
// settings keep: it belongs to the screen and not to the import.
#pragma once

#include <QSize>

class QSettings;
class QWidget;

namespace gui {

inline constexpr QSize kTamanoMinimo(1000, 620), kTamanoNormal(1280, 720);

// Never larger than what the screen offers beside the desktop's bars, which is `disponible`.
QSize TamanoMinimo(const QSize& disponible);
// Of a window that has none remembered; leaves room for the frame.
QSize TamanoInicial(const QSize& disponible);

// Size, place and whether it was maximized. False: nothing is remembered.
bool RecordarTamano(QWidget& ventana, const QSettings& ajustes);
void GuardarTamano(const QWidget& ventana, QSettings& ajustes);

}  // namespace gui
