// The sheet of the twelve months that the month picker opens.
#pragma once

#include <QDate>
#include <QFrame>
#include <array>
#include <functional>

class QLabel;
class QPushButton;

namespace gui {

// A popup, gone once it is closed. The chosen month is marked and has the keyboard: arrows move by months and
// rows, also into the years beside, page keys by years; Enter and the blank choose, Esc closes.
class HojaDeMeses final : public QFrame {
 public:
  struct Limites {
    QDate primero, ultimo;
  };
  // `al_elegir` gets the first of the month that was chosen, when the sheet has closed.
  HojaDeMeses(const QDate& elegido, const Limites& limites, std::function<void(QDate)> al_elegir,
              QWidget* padre);

 protected:
  bool eventFilter(QObject* objeto, QEvent* evento) override;

 private:
  void CrearTitulo();
  void CrearMeses();
  void IrAlAnio(int anio);
  void Mover(int meses);  // the keyboard
  void Elegir(int mes);

  QDate elegido_;
  Limites limites_;
  std::function<void(QDate)> al_elegir_;
  int anio_ = 0;
  QLabel* titulo_ = nullptr;
  std::array<QPushButton*, 12> meses_{};
};

}  // namespace gui
