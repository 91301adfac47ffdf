// The bases that were opened last.
#pragma once

#include <QStringList>

class QSettings;

namespace gui {

// Newest first, five at most, each once; kept in the desktop's settings of the user when there are any.
class BasesRecientes {
 public:
  void Guardar(QSettings* ajustes);  // from now on there, with what they hold; null: nowhere
  const QStringList& Lista() const { return lista_; }
  void Anotar(const QString& referencia);

  static constexpr int kMaximo = 5;

 private:
  QSettings* ajustes_ = nullptr;
  QStringList lista_;
};

}  // namespace gui
