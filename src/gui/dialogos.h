// The ports made of dialogs.
#pragma once

#include <QWidget>

#include "ports/file_picker.h"
#include "ports/prompts.h"

namespace gui {

class Dialogos final : public ports::Prompts, public ports::FilePicker {
 public:
  // The window over which they stand; before it is shown they stand alone.
  void PonerVentana(QWidget* ventana) { ventana_ = ventana; }

  bool Show(const ports::Notice& aviso) override;
  ports::Reply ShowStoppable(const ports::Notice& aviso) override;
  // Only "Sí" is yes; Enter alone is not.
  bool Confirm(const std::string& texto) override;
  bool ConfirmWith(const std::string& texto, const std::string& detalle) override;
  std::string PickFile(const std::string& titulo, const std::string& filtro,
                       const std::string& inicial) override;
  std::int32_t PickColor(std::int32_t inicial) override;

  // "Bases de Access (*.mdb)|*.mdb" as the dialog takes it. Every file can be chosen besides: bases of other
  // engines and ConfBase.cfg have other names.
  static QString FiltroDeQt(const QString& filtro);

 private:
  QWidget* Padre() const { return ventana_ != nullptr && ventana_->isVisible() ? ventana_ : nullptr; }

  QWidget* ventana_ = nullptr;
};

}  // namespace gui
