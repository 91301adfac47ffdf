// How the controls are drawn: Fusion underneath, with flat fields and buttons in the theme's colours, thin
// scroll bars, and the underline of access keys for controls whose caption has no "&" of its own.
#pragma once

#include <QProxyStyle>

#include "gui/tema.h"

class QStyleOptionHeader;

namespace gui {

// A button's part in the window: its dynamic property kPapel.
inline constexpr const char* kPapel = "papel";
inline constexpr const char* kPrimario = "primario";  // the one primary action
inline constexpr const char* kColumna = "columna";    // on the dark column
inline constexpr const char* kMuestra = "muestra";    // a colour swatch: filled with its palette's Button
// The letter of a control's access key: its dynamic property kTecla (a QString of one letter).
inline constexpr const char* kTecla = "tecla";

// The text with "&" before its first letter `tecla` (any case); doubled "&" stay what they are.
QString ConTecla(const QString& texto, const QString& tecla);

class Estilo final : public QProxyStyle {
 public:
  explicit Estilo(const Tema& tema) : QProxyStyle(QStringLiteral("Fusion")), tema_(tema) {}

  using QProxyStyle::polish;
  void polish(QWidget* widget) override;
  QPalette standardPalette() const override { return tema_.Paleta(); }
  void drawPrimitive(PrimitiveElement elemento, const QStyleOption* opcion, QPainter* p,
                     const QWidget* widget) const override;
  void drawControl(ControlElement elemento, const QStyleOption* opcion, QPainter* p,
                   const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* opcion, QPainter* p,
                          const QWidget* widget) const override;
  QRect subControlRect(ComplexControl control, const QStyleOptionComplex* opcion, SubControl sub,
                       const QWidget* widget) const override;
  QSize sizeFromContents(ContentsType tipo, const QStyleOption* opcion, const QSize& tamano,
                         const QWidget* widget) const override;
  int pixelMetric(PixelMetric medida, const QStyleOption* opcion, const QWidget* widget) const override;
  QIcon standardIcon(StandardPixmap cual, const QStyleOption* opcion, const QWidget* widget) const override;
  int styleHint(StyleHint dato, const QStyleOption* opcion, const QWidget* widget,
                QStyleHintReturn* devuelto) const override;

 private:
  void Boton(const QStyleOption& o, QPainter& p, const QWidget* widget) const;
  void Titulo(const QStyleOptionHeader& o, QPainter& p, const QWidget* widget) const;
  void Campo(const QStyleOption& o, QPainter& p) const;
  void Marca(const QStyleOption& o, QPainter& p, bool redonda) const;
  void Marco(const QStyleOption& o, QPainter& p) const;
  void Foco(const QStyleOption& o, QPainter& p, const QWidget* widget) const;
  void Combo(const QStyleOption& o, QPainter& p, const QRect& flecha) const;
  void BarraDeDesplazamiento(const QStyleOptionComplex& o, QPainter& p, const QWidget* widget) const;

  Tema tema_;
};

}  // namespace gui
