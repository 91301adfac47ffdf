// Area1: the dark column at the left with the company, the counts of the file, and the commands.
#pragma once

#include <QWidget>
#include <array>

#include "app/vista.h"
#include "app/vista_de_lineas.h"
#include "gui/barra_de_progreso.h"
#include "gui/fila_de_cuenta.h"
#include "gui/piezas.h"
#include "gui/tema.h"

class QLabel;
class QPushButton;

namespace gui {

// Names with their quantities, as many as there is room for; the tooltip has them all.
class ListaDeTotales final : public QWidget {
 public:
  ListaDeTotales(const Tema& tema, QWidget* padre);
  void Poner(const QList<std::pair<QString, QString>>& totales);
  const QList<std::pair<QString, QString>>& Totales() const { return totales_; }

 protected:
  void paintEvent(QPaintEvent* evento) override;

 private:
  QList<std::pair<QString, QString>> totales_;
  QColor texto_, tenue_;
};

struct Columna {
  QWidget* Area1 = nullptr;
  QWidget* cabeza = nullptr;  // title, company and counts, from the top down
  EtiquetaRuta* LblEmpresa = nullptr;
  // Lines, in the grid, filtered, malformed, imported, refused, without a contract, without a relation.
  std::array<FilaDeCuenta*, 8> cuentas{};
  ListaDeTotales* totales = nullptr;
  QLabel* lblEstado = nullptr;  // what the program is doing
  std::array<QPushButton*, 2> cbConfigurar{};
  QPushButton* cbImportar = nullptr;
  QPushButton* cbSalir = nullptr;
  BarraDeProgreso* Barra = nullptr;

  void Crear(const Tema& tema, QWidget* padre);
  // Dashes where there is nothing to count yet: before a load, and before an import of its lines.
  void PonerCuentas(const app::Cuentas& cuentas, const app::CuentaDeFaltas& faltas, bool hay_archivo);

 private:
  void CrearCabeza(const Tema& tema);
  void CrearBotones(const Tema& tema);
};

}  // namespace gui
