// The models of the three grids: they show the tables of the state and hold none of it. Reload them when the
// part of the state that they show was replaced.
#pragma once

#include <QAbstractTableModel>
#include <QBrush>
#include <QList>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "app/estado.h"
#include "app/vista.h"

namespace gui {

class ModeloDeGrilla : public QAbstractTableModel {
 public:
  int rowCount(const QModelIndex& padre = {}) const override { return padre.isValid() ? 0 : filas_; }
  int columnCount(const QModelIndex& padre = {}) const override {
    return padre.isValid() ? 0 : static_cast<int>(grid_.columnas.size());
  }
  QVariant headerData(int seccion, Qt::Orientation orientacion, int rol) const override;

  void Recargar();
  void TitulosCambiados();  // tells the view when a caption is another than before

 protected:
  ModeloDeGrilla(const app::Grid& grid, QObject* padre) : QAbstractTableModel(padre), grid_(grid) {}
  virtual std::size_t Cantidad() const = 0;

 private:
  const app::Grid& grid_;
  std::vector<std::string> titulos_;
  int filas_ = 0;  // as the view knows them: the state may have changed since
};

// GridAImportar: each row in the colours of its style.
class ModeloImportar final : public ModeloDeGrilla {
 public:
  ModeloImportar(const app::Estado& estado, QObject* padre);
  QVariant headerData(int seccion, Qt::Orientation orientacion, int rol) const override;
  QVariant data(const QModelIndex& indice, int rol) const override;
  void ColoresCambiados();  // the relations are others
  // Shows these rows of the state in this order, instead of all as they stand: a number a row. Reload after
  // it.
  void PonerVista(std::optional<std::vector<std::uint32_t>> filas) { vista_ = std::move(filas); }
  // The row of the state that the grid's row shows; beyond the last when the state has fewer by now.
  std::size_t FilaDeEstado(int fila) const;

 protected:
  std::size_t Cantidad() const override { return vista_ ? vista_->size() : estado_.filas.size(); }

 private:
  struct Pintura {
    QString nombre;
    QBrush fondo, texto;
  };
  void Preparar();
  const Pintura& PinturaDe(const importfile::ImportRow& fila) const;

  // What would keep the row of that cell from being imported, told in the cell that is to blame.
  QString Falta(const importfile::ImportRow& fila, int campo) const;

  const app::Estado& estado_;
  std::optional<std::vector<std::uint32_t>> vista_;
  std::vector<int> campo_;         // of each column
  QVariant falta_;                 // the mark of a line that lacks something
  std::vector<Pintura> pinturas_;  // 0: "Otras"; then one a relation
};

// GridRelaciones: each row with a patch of its colour.
class ModeloRelaciones final : public ModeloDeGrilla {
 public:
  ModeloRelaciones(const app::Estado& estado, QObject* padre)
      : ModeloDeGrilla(estado.GridRelaciones, padre), estado_(estado) {}
  QVariant data(const QModelIndex& indice, int rol) const override;

 protected:
  std::size_t Cantidad() const override { return estado_.relaciones.Grid().size(); }

 private:
  const app::Estado& estado_;
};

// GridPVConf: the first lines of the file, cut.
class ModeloPrevia final : public ModeloDeGrilla {
 public:
  ModeloPrevia(const app::Estado& estado, QObject* padre)
      : ModeloDeGrilla(estado.GridPVConf, padre), estado_(estado) {}
  QVariant data(const QModelIndex& indice, int rol) const override;

 protected:
  std::size_t Cantidad() const override { return estado_.filas_previa.size(); }

 private:
  const app::Estado& estado_;
};

}  // namespace gui
