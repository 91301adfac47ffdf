#include "gui/piezas.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QStyle>
#include <QWheelEvent>
#include <algorithm>

#include "app/programa.h"
#include "gui/estilo.h"
#include "gui/iconos.h"

namespace gui {
namespace {

constexpr int kPartida = Qt::AlignLeft | Qt::AlignTop | Qt::TextWrapAnywhere;

QKeySequence AltMas(const QString& tecla) { return QKeySequence(QStringLiteral("Alt+") + tecla); }

}  // namespace

Etiqueta::Etiqueta(const QString& nombre, const QString& texto, QWidget* padre) : QLabel(texto, padre) {
  setObjectName(nombre);
  setTextFormat(Qt::PlainText);
}

void Etiqueta::Acompanar(QWidget* control, const QString& tecla) {
  setBuddy(control);
  tecla_ = tecla;
  if (tecla.isEmpty()) return;
  auto* atajo = new QShortcut(AltMas(tecla), this);
  QObject::connect(atajo, &QShortcut::activated, this, [control] {
    control->setFocus(Qt::ShortcutFocusReason);
    if (auto* caja = qobject_cast<QLineEdit*>(control)) caja->selectAll();
  });
}

void Etiqueta::paintEvent(QPaintEvent*) {
  QPainter p(this);
  style()->drawItemText(&p, contentsRect(), static_cast<int>(alignment()) | Qt::TextShowMnemonic, palette(),
                        isEnabled(), ConTecla(text(), tecla_), foregroundRole());
}

EtiquetaRuta::EtiquetaRuta(const QString& nombre, int lineas, QWidget* padre)
    : QLabel(padre), lineas_(lineas) {
  setObjectName(nombre);
  setTextFormat(Qt::PlainText);
  QSizePolicy politica(QSizePolicy::Ignored, QSizePolicy::Preferred);
  politica.setHeightForWidth(true);
  setSizePolicy(politica);
}

int EtiquetaRuta::heightForWidth(int ancho) const {
  const int alto = fontMetrics().boundingRect(QRect(0, 0, ancho, 10000), kPartida, text()).height();
  return std::clamp(alto, fontMetrics().lineSpacing(), fontMetrics().lineSpacing() * lineas_);
}

QSize EtiquetaRuta::sizeHint() const { return {100, heightForWidth(std::max(100, width()))}; }

void EtiquetaRuta::paintEvent(QPaintEvent*) {
  QPainter p(this);
  QString visto = text();
  // Lines broken anywhere are not quite full: leave half of one.
  if (p.boundingRect(contentsRect(), kPartida, visto).height() > height())
    visto = fontMetrics().elidedText(visto, Qt::ElideMiddle, width() * lineas_ - width() / 2);
  p.setPen(palette().color(foregroundRole()));
  p.drawText(contentsRect(), kPartida, visto);
}

Combo::Combo(const QString& nombre, QWidget* padre) : QComboBox(padre) {
  setObjectName(nombre);
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(10);
  setMaxVisibleItems(16);
}

void Combo::wheelEvent(QWheelEvent* evento) { evento->ignore(); }

void Combo::keyPressEvent(QKeyEvent* evento) {
  const bool enter = evento->key() == Qt::Key_Return || evento->key() == Qt::Key_Enter;
  if (enter_es_tab && enter && app::Archivo::EnterEsTab('\r')) {
    focusNextPrevChild(true);
    return;
  }
  QComboBox::keyPressEvent(evento);
}

Panel::Panel(const QString& nombre, const QString& titulo, const Tema& tema, QWidget* padre)
    : QFrame(padre), titulo_(titulo), tema_(tema), cerrar_(new QPushButton(this)) {
  setObjectName(nombre);
  setAccessibleName(titulo);
  cerrar_->setObjectName(nombre + QStringLiteral("_cerrar"));
  cerrar_->setIcon(Icono(Dibujo::Cerrar, tema.tenue, tema.apagado));
  cerrar_->setToolTip(QStringLiteral("Cerrar este panel"));
  cerrar_->setAccessibleName(cerrar_->toolTip());
  cerrar_->setFocusPolicy(Qt::NoFocus);
  cerrar_->setIconSize(QSize(kAltoIcono, kAltoIcono));
  cerrar_->setFixedSize(26, 26);
}

void Panel::Contener(QWidget* contenido) {
  hoja_ = new QScrollArea(this);
  hoja_->setObjectName(objectName() + QStringLiteral("_hoja"));
  hoja_->setFrameShape(QFrame::NoFrame);
  hoja_->setFocusPolicy(Qt::NoFocus);
  hoja_->setWidgetResizable(true);
  hoja_->setWidget(contenido);
}

void Panel::paintEvent(QPaintEvent*) {
  QPainter p(this);
  const QRect r = rect();
  p.fillRect(r, tema_.ventana);
  p.fillRect(QRect(0, 0, r.width(), kTitulo), tema_.cabecera);
  p.fillRect(QRect(0, 0, r.width(), 3), tema_.acento);
  p.setPen(tema_.separador);
  p.drawLine(0, kTitulo, r.right(), kTitulo);
  p.setPen(tema_.borde_fuerte);
  p.drawRect(r.adjusted(0, 0, -1, -1));
  QFont letra = font();
  letra.setBold(true);
  p.setFont(letra);
  p.setPen(tema_.texto);
  p.drawText(QRect(kMargen, 3, r.width() - 80, kTitulo - 3), Qt::AlignVCenter | Qt::AlignLeft, titulo_);
}

void Panel::resizeEvent(QResizeEvent* evento) {
  QFrame::resizeEvent(evento);
  if (hoja_ != nullptr) hoja_->setGeometry(1, kTitulo + 1, width() - 2, height() - kTitulo - 2);
  cerrar_->move(width() - cerrar_->width() - 8, (kTitulo + 3 - cerrar_->height()) / 2);
}

QPushButton* CrearBoton(const QString& nombre, const QString& texto, QWidget* padre) {
  auto* boton = new QPushButton(texto, padre);
  boton->setObjectName(nombre);
  boton->setAutoDefault(false);
  boton->setIconSize(QSize(kAnchoIcono, kAltoIcono));
  return boton;
}

QLineEdit* CrearCaja(const QString& nombre, QWidget* padre) {
  auto* caja = new QLineEdit(padre);
  caja->setObjectName(nombre);
  caja->setAcceptDrops(false);  // a file dropped anywhere is the window's
  return caja;
}

void PonerTecla(QAbstractButton* boton, const QString& tecla) {
  boton->setProperty(kTecla, tecla);
  boton->setShortcut(AltMas(tecla));
}

}  // namespace gui
