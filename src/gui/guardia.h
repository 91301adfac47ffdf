// Who may get in while a load or an import runs.
#pragma once

#include <QObject>
#include <functional>

#include "app/estado.h"

class QWidget;

namespace gui {

// Esc, or the button, asks the command under way to stop. During an import nothing else of the operator's
// reaches the window: what is clicked or typed meanwhile is dropped, not kept for later. Boxes are other
// windows and answer as ever.
class Guardia final : public QObject {
 public:
  // The window owns it.
  Guardia(QWidget* ventana, QWidget* cancelar, std::function<void()> al_cancelar);
  void Poner(app::Tarea tarea) { tarea_ = tarea; }
  app::Tarea Tarea() const { return tarea_; }

 protected:
  bool eventFilter(QObject* objeto, QEvent* evento) override;

 private:
  bool EsDeLaVentana(const QObject* objeto) const;
  bool SobreElBoton(const QObject* objeto, const QEvent* evento) const;

  QWidget* ventana_;
  QWidget* cancelar_;
  std::function<void()> al_cancelar_;
  app::Tarea tarea_ = app::Tarea::Ninguna;
};

}  // namespace gui
