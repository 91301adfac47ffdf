#include "gui/estilo.h"

#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>
#include <QWidget>
#include <algorithm>

#include "gui/iconos.h"

namespace gui {
namespace {

constexpr double kRadio = 4;
constexpr double kAnchoFoco = 2;
constexpr int kRelleno = 4;  // between a cell's edge and its text

QString Papel(const QWidget* widget) {
  return widget != nullptr ? widget->property(kPapel).toString() : QString();
}

// An outline lies wholly inside its rectangle.
QRectF Trazo(const QRect& r, double ancho = 1) {
  return QRectF(r).adjusted(ancho / 2, ancho / 2, -ancho / 2, -ancho / 2);
}

void Caja(QPainter& p, const QRect& r, const QColor& fondo, const QColor& borde, double ancho = 1) {
  p.save();
  p.setRenderHint(QPainter::Antialiasing);
  p.setBrush(fondo);
  p.setPen(borde.isValid() ? QPen(borde, ancho) : QPen(Qt::NoPen));
  p.drawRoundedRect(Trazo(r, ancho), kRadio, kRadio);
  p.restore();
}

// A chevron, pointing up or down.
void Flecha(QPainter& p, const QPointF& c, bool arriba, const QColor& color) {
  const double alto = arriba ? -2 : 2;
  QPainterPath v;
  v.moveTo(c.x() - 4, c.y() - alto);
  v.lineTo(c.x(), c.y() + alto);
  v.lineTo(c.x() + 4, c.y() - alto);
  p.save();
  p.setRenderHint(QPainter::Antialiasing);
  p.setBrush(Qt::NoBrush);
  p.setPen(QPen(color, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  p.drawPath(v);
  p.restore();
}

bool Tiene(const QStyleOption& o, QStyle::StateFlag estado) { return (o.state & estado) != 0; }

}  // namespace

QString ConTecla(const QString& texto, const QString& tecla) {
  if (tecla.isEmpty()) return texto;
  const qsizetype donde = texto.indexOf(tecla, 0, Qt::CaseInsensitive);
  return donde < 0 ? texto : texto.left(donde) + QLatin1Char('&') + texto.mid(donde);
}

void Estilo::polish(QWidget* widget) {
  QProxyStyle::polish(widget);
  if (widget->inherits("QAbstractButton") || widget->inherits("QComboBox") || widget->inherits("QLineEdit") ||
      widget->inherits("QAbstractSpinBox") || widget->inherits("QScrollBar"))
    widget->setAttribute(Qt::WA_Hover);
  if (auto* caja = qobject_cast<QLineEdit*>(widget)) caja->setTextMargins(4, 0, 4, 0);
}

void Estilo::Boton(const QStyleOption& o, QPainter& p, const QWidget* widget) const {
  const QString papel = Papel(widget);
  const bool vivo = Tiene(o, State_Enabled), encima = vivo && Tiene(o, State_MouseOver),
             apretado = Tiene(o, State_Sunken), puesto = Tiene(o, State_On);
  if (papel == QLatin1String(kMuestra)) {
    Caja(p, o.rect, o.palette.color(QPalette::Active, QPalette::Button), tema_.borde_fuerte);
  } else if (papel == QLatin1String(kPrimario)) {
    const QColor fondo = apretado ? tema_.acento_apretado : encima ? tema_.acento_encima : tema_.acento;
    if (vivo)
      Caja(p, o.rect, fondo, QColor());
    else
      Caja(p, o.rect, tema_.columna_boton, tema_.columna_borde);
  } else if (papel == QLatin1String(kColumna)) {
    const QColor fondo = !vivo                ? tema_.columna_boton
                         : puesto || apretado ? tema_.acento_apretado
                         : encima             ? tema_.columna_encima
                                              : tema_.columna_boton;
    Caja(p, o.rect, fondo, puesto ? tema_.acento_encima : tema_.columna_borde);
  } else if (puesto && vivo) {
    Caja(p, o.rect, apretado ? tema_.acento_apretado : tema_.acento, tema_.foco, kAnchoFoco);
  } else {
    const QColor fondo = !vivo      ? tema_.ventana
                         : apretado ? tema_.boton_apretado
                         : encima   ? tema_.boton_encima
                                    : tema_.boton;
    Caja(p, o.rect, fondo, vivo ? (encima ? tema_.borde_fuerte : tema_.borde) : tema_.linea);
  }
}

void Estilo::Campo(const QStyleOption& o, QPainter& p) const {
  const bool vivo = Tiene(o, State_Enabled);
  const QColor borde = !vivo                       ? tema_.linea
                       : Tiene(o, State_HasFocus)  ? tema_.foco
                       : Tiene(o, State_MouseOver) ? tema_.borde_fuerte
                                                   : tema_.borde;
  Caja(p, o.rect, vivo ? tema_.base : tema_.ventana, borde,
       vivo && Tiene(o, State_HasFocus) ? kAnchoFoco : 1);
}

void Estilo::Marca(const QStyleOption& o, QPainter& p, bool redonda) const {
  const bool vivo = Tiene(o, State_Enabled), puesta = Tiene(o, State_On);
  const QColor lleno = vivo ? tema_.acento : tema_.apagado;
  const QColor borde = puesta                              ? lleno
                       : vivo && Tiene(o, State_MouseOver) ? tema_.acento
                       : vivo                              ? tema_.borde_fuerte
                                                           : tema_.borde;
  const QRectF r = Trazo(o.rect);
  p.save();
  p.setRenderHint(QPainter::Antialiasing);
  p.setPen(QPen(borde, 1.2));
  p.setBrush(puesta && !redonda ? lleno : vivo ? tema_.base : tema_.ventana);
  if (redonda) {
    p.drawEllipse(r);
    if (puesta) {
      p.setPen(Qt::NoPen);
      p.setBrush(lleno);
      p.drawEllipse(r.center(), r.width() * 0.27, r.height() * 0.27);
    }
  } else {
    p.drawRoundedRect(r, 3, 3);
    if (puesta) {
      QPainterPath tilde;
      tilde.moveTo(r.left() + r.width() * 0.22, r.top() + r.height() * 0.54);
      tilde.lineTo(r.left() + r.width() * 0.42, r.top() + r.height() * 0.73);
      tilde.lineTo(r.left() + r.width() * 0.79, r.top() + r.height() * 0.29);
      p.setBrush(Qt::NoBrush);
      p.setPen(
          QPen(vivo ? tema_.sobre_acento : tema_.ventana, 1.9, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
      p.drawPath(tilde);
    }
  }
  p.restore();
}

// Of who moves by mouse too: after a click the keyboard goes on from there. Fields show their focus by their
// border.
void Estilo::Foco(const QStyleOption& o, QPainter& p, const QWidget* widget) const {
  if (widget == nullptr) return;
  const QString papel = Papel(widget);
  if (papel == QLatin1String(kPrimario)) {
    Caja(p, widget->rect().adjusted(2, 2, -2, -2), Qt::transparent, tema_.sobre_acento, kAnchoFoco);
  } else if (papel == QLatin1String(kColumna)) {
    Caja(p, widget->rect(), Qt::transparent, tema_.columna_texto, kAnchoFoco);
  } else if (widget->inherits("QPushButton")) {
    // On a swatch or a chosen button it must show beside any colour.
    if (papel == QLatin1String(kMuestra) || Tiene(o, State_On))
      Caja(p, widget->rect().adjusted(2, 2, -2, -2), Qt::transparent, tema_.ventana, kAnchoFoco);
    Caja(p, widget->rect(), Qt::transparent, tema_.foco, kAnchoFoco);
  } else {
    Caja(p, o.rect.adjusted(-4, -1, 4, 1).intersected(widget->rect()), Qt::transparent, tema_.foco,
         kAnchoFoco);
  }
}

void Estilo::Marco(const QStyleOption& o, QPainter& p) const {
  const bool foco = Tiene(o, State_HasFocus) && Tiene(o, State_Enabled);
  p.save();
  p.setBrush(Qt::NoBrush);
  p.setPen(foco ? tema_.foco : tema_.base);
  p.drawRect(o.rect.adjusted(1, 1, -2, -2));
  p.setPen(foco ? tema_.foco : tema_.borde);
  p.drawRect(o.rect.adjusted(0, 0, -1, -1));
  p.restore();
}

void Estilo::drawPrimitive(PrimitiveElement elemento, const QStyleOption* opcion, QPainter* p,
                           const QWidget* widget) const {
  switch (elemento) {
    case PE_PanelButtonCommand:
      return Boton(*opcion, *p, widget);
    case PE_PanelButtonTool:
      if (opcion->state & (State_MouseOver | State_On | State_Sunken))
        Caja(*p, opcion->rect, opcion->state & State_On ? tema_.acento : tema_.boton_apretado, QColor());
      return;
    case PE_FrameFocusRect:
      return Foco(*opcion, *p, widget);
    case PE_PanelLineEdit:
      if (const auto* marco = qstyleoption_cast<const QStyleOptionFrame*>(opcion);
          marco && marco->lineWidth > 0)
        Campo(*opcion, *p);
      return;
    case PE_FrameLineEdit:
      return;  // drawn with its panel
    case PE_IndicatorCheckBox:
      return Marca(*opcion, *p, false);
    case PE_IndicatorRadioButton:
      return Marca(*opcion, *p, true);
    case PE_IndicatorHeaderArrow:
      if (const auto* titulo = qstyleoption_cast<const QStyleOptionHeader*>(opcion))
        Flecha(*p, QPointF(QRectF(titulo->rect).center().x(), widget != nullptr ? widget->height() / 2.0 : 0),
               titulo->sortIndicator == QStyleOptionHeader::SortDown, tema_.foco);
      return;
    case PE_Frame:
      return Marco(*opcion, *p);
    default:
      QProxyStyle::drawPrimitive(elemento, opcion, p, widget);
  }
}

// A title that is a little too long for its column is written smaller, a longer one is cut.
void Estilo::Titulo(const QStyleOptionHeader& o, QPainter& p, const QWidget* widget) const {
  QStyleOptionHeader titulo(o);
  p.save();
  QFont letra = p.font();
  const double minima = letra.pointSizeF() * 0.84;
  while (titulo.fontMetrics.horizontalAdvance(titulo.text) > titulo.rect.width() &&
         letra.pointSizeF() > minima) {
    letra.setPointSizeF(letra.pointSizeF() - 0.25);
    titulo.fontMetrics = QFontMetrics(letra);
  }
  p.setFont(letra);
  titulo.text = titulo.fontMetrics.elidedText(titulo.text, Qt::ElideRight, titulo.rect.width());
  QProxyStyle::drawControl(CE_HeaderLabel, &titulo, &p, widget);
  p.restore();
}

void Estilo::drawControl(ControlElement elemento, const QStyleOption* opcion, QPainter* p,
                         const QWidget* widget) const {
  switch (elemento) {
    case CE_PushButtonLabel:
    case CE_CheckBoxLabel:
    case CE_RadioButtonLabel:
      if (const auto* boton = qstyleoption_cast<const QStyleOptionButton*>(opcion); boton && widget) {
        QStyleOptionButton con_tecla(*boton);
        con_tecla.text = ConTecla(boton->text, widget->property(kTecla).toString());
        if (elemento == CE_PushButtonLabel && Tiene(*opcion, State_On) && Papel(widget).isEmpty())
          con_tecla.palette.setColor(QPalette::ButtonText, tema_.sobre_acento);
        return QProxyStyle::drawControl(elemento, &con_tecla, p, widget);
      }
      break;
    case CE_PushButton:
      QProxyStyle::drawControl(elemento, opcion, p, widget);
      if (Tiene(*opcion, State_HasFocus)) Foco(*opcion, *p, widget);
      return;
    case CE_HeaderLabel:
      if (const auto* titulo = qstyleoption_cast<const QStyleOptionHeader*>(opcion))
        return Titulo(*titulo, *p, widget);
      break;
    case CE_HeaderSection:
    case CE_HeaderEmptyArea: {
      const QRect r = opcion->rect;
      p->save();
      p->fillRect(r, tema_.cabecera);
      p->setPen(tema_.separador);
      p->drawLine(r.bottomLeft(), r.bottomRight());
      if (elemento == CE_HeaderSection) p->drawLine(r.right(), r.top() + 5, r.right(), r.bottom() - 5);
      p->restore();
      return;
    }
    default:
      break;
  }
  QProxyStyle::drawControl(elemento, opcion, p, widget);
}

void Estilo::Combo(const QStyleOption& o, QPainter& p, const QRect& flecha) const {
  Campo(o, p);
  Flecha(p, QRectF(flecha).center(), false, Tiene(o, State_Enabled) ? tema_.tenue : tema_.apagado);
}

void Estilo::BarraDeDesplazamiento(const QStyleOptionComplex& o, QPainter& p, const QWidget* widget) const {
  p.fillRect(o.rect, tema_.alterna);
  const QRect mango = proxy()->subControlRect(CC_ScrollBar, &o, SC_ScrollBarSlider, widget);
  if (!mango.isValid()) return;
  const bool tomado = (o.activeSubControls & SC_ScrollBarSlider) != 0;
  p.save();
  p.setRenderHint(QPainter::Antialiasing);
  p.setPen(Qt::NoPen);
  p.setBrush(tomado ? tema_.tenue : tema_.borde_fuerte);
  const QRectF r = QRectF(mango).adjusted(3, 3, -3, -3);
  p.drawRoundedRect(r, std::min(r.width(), r.height()) / 2, std::min(r.width(), r.height()) / 2);
  p.restore();
}

void Estilo::drawComplexControl(ComplexControl control, const QStyleOptionComplex* opcion, QPainter* p,
                                const QWidget* widget) const {
  switch (control) {
    case CC_ComboBox:
      return Combo(*opcion, *p, proxy()->subControlRect(CC_ComboBox, opcion, SC_ComboBoxArrow, widget));
    case CC_ScrollBar:
      return BarraDeDesplazamiento(*opcion, *p, widget);
    default:
      QProxyStyle::drawComplexControl(control, opcion, p, widget);
  }
}

QRect Estilo::subControlRect(ComplexControl control, const QStyleOptionComplex* opcion, SubControl sub,
                             const QWidget* widget) const {
  if (control == CC_ComboBox && sub == SC_ComboBoxEditField) {
    const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(opcion);
    const QRect r = QProxyStyle::subControlRect(control, opcion, sub, widget);
    return combo != nullptr && combo->editable ? r : r.adjusted(3, 0, 0, 0);
  }
  const auto* barra = qstyleoption_cast<const QStyleOptionSlider*>(opcion);
  if (control != CC_ScrollBar || barra == nullptr)
    return QProxyStyle::subControlRect(control, opcion, sub, widget);
  // No arrows: the groove is the whole bar.
  const QRect r = barra->rect;
  const bool echada = barra->orientation == Qt::Horizontal;
  const int largo = echada ? r.width() : r.height();
  const qint64 recorrido = qint64(barra->maximum) - barra->minimum;
  int mango = largo;
  if (recorrido > 0)
    mango = std::clamp(static_cast<int>(qint64(largo) * barra->pageStep / (recorrido + barra->pageStep)), 32,
                       std::max(32, largo));
  const int donde = sliderPositionFromValue(barra->minimum, barra->maximum, barra->sliderPosition,
                                            largo - mango, barra->upsideDown);
  const auto tramo = [&](int desde, int cuanto) {
    return echada ? QRect(r.x() + desde, r.y(), cuanto, r.height())
                  : QRect(r.x(), r.y() + desde, r.width(), cuanto);
  };
  switch (sub) {
    case SC_ScrollBarGroove:
      return r;
    case SC_ScrollBarSlider:
      return tramo(donde, mango);
    case SC_ScrollBarSubPage:
      return tramo(0, donde);
    case SC_ScrollBarAddPage:
      return tramo(donde + mango, largo - donde - mango);
    default:
      return {};
  }
}

QSize Estilo::sizeFromContents(ContentsType tipo, const QStyleOption* opcion, const QSize& tamano,
                               const QWidget* widget) const {
  QSize s = QProxyStyle::sizeFromContents(tipo, opcion, tamano, widget);
  const int alto = opcion != nullptr ? opcion->fontMetrics.height() + 11 : 0;
  switch (tipo) {
    case CT_PushButton:
      s.setWidth(s.width() + 4);
      s.setHeight(std::max(tamano.height() + 10, alto));
      break;
    case CT_LineEdit:
    case CT_ComboBox:
    case CT_SpinBox:
      s.setHeight(std::max(tamano.height(), alto));
      break;
    case CT_CheckBox:
    case CT_RadioButton:
      s.setHeight(std::max(s.height(), alto - 4));
      break;
    case CT_HeaderSection:
      s.setHeight(std::max(s.height(), alto + 1));
      break;
    default:
      break;
  }
  return s;
}

int Estilo::pixelMetric(PixelMetric medida, const QStyleOption* opcion, const QWidget* widget) const {
  switch (medida) {
    case PM_ScrollBarExtent:
      return 13;
    case PM_ScrollBarSliderMin:
      return 32;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
      return 16;
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
      return 7;
    case PM_DefaultFrameWidth:  // of a grid: room for its focus
      if (widget != nullptr && widget->inherits("QAbstractItemView")) return static_cast<int>(kAnchoFoco);
      break;
    case PM_HeaderMargin:
      return kRelleno;
    case PM_FocusFrameHMargin:
      return kRelleno;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
      return 0;
    default:
      break;
  }
  return QProxyStyle::pixelMetric(medida, opcion, widget);
}

QIcon Estilo::standardIcon(StandardPixmap cual, const QStyleOption* opcion, const QWidget* widget) const {
  if (cual == SP_MessageBoxWarning) return IconoDeAviso();
  return QProxyStyle::standardIcon(cual, opcion, widget);
}

int Estilo::styleHint(StyleHint dato, const QStyleOption* opcion, const QWidget* widget,
                      QStyleHintReturn* devuelto) const {
  switch (dato) {
    case SH_UnderlineShortcut:
      return 1;
    case SH_Table_GridLineColor:
      return static_cast<int>(tema_.linea.rgba());
    case SH_DialogButtonBox_ButtonsHaveIcons:
    case SH_ComboBox_Popup:
      return 0;
    default:
      return QProxyStyle::styleHint(dato, opcion, widget, devuelto);
  }
}

}  // namespace gui
