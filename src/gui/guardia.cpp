#include "gui/guardia.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>
#include <utility>

namespace gui {
namespace {

bool EsDelOperador(QEvent::Type tipo) {
  switch (tipo) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
      return true;
    default:
      return false;
  }
}

bool EsEscape(QEvent* evento) {
  return (evento->type() == QEvent::KeyPress || evento->type() == QEvent::ShortcutOverride) &&
         static_cast<QKeyEvent*>(evento)->key() == Qt::Key_Escape;
}

}  // namespace

Guardia::Guardia(QWidget* ventana, QWidget* cancelar, std::function<void()> al_cancelar)
    : QObject(ventana), ventana_(ventana), cancelar_(cancelar), al_cancelar_(std::move(al_cancelar)) {
  QCoreApplication::instance()->installEventFilter(this);
}

bool Guardia::EsDeLaVentana(const QObject* objeto) const {
  if (objeto->isWidgetType()) return static_cast<const QWidget*>(objeto)->window() == ventana_;
  return objeto->isWindowType() && objeto == ventana_->windowHandle();
}

bool Guardia::SobreElBoton(const QObject* objeto, const QEvent* evento) const {
  if (!cancelar_->isVisible() || !cancelar_->isEnabled()) return false;
  if (objeto == cancelar_) return true;
  if (!objeto->isWindowType() || !evento->isInputEvent()) return false;
  const auto* puntero = dynamic_cast<const QMouseEvent*>(evento);
  return puntero != nullptr &&
         cancelar_->rect().contains(cancelar_->mapFromGlobal(puntero->globalPosition().toPoint()));
}

bool Guardia::eventFilter(QObject* objeto, QEvent* evento) {
  if (tarea_ == app::Tarea::Ninguna || !EsDelOperador(evento->type()) || !EsDeLaVentana(objeto)) return false;
  if (EsEscape(evento)) {
    evento->accept();
    if (evento->type() == QEvent::KeyPress) al_cancelar_();
    return true;
  }
  return tarea_ == app::Tarea::Importacion && !SobreElBoton(objeto, evento);
}

}  // namespace gui
