#include "gui/modelos.h"

#include <QIcon>
#include <QPainter>
#include <QPixmap>

#include "app/vista_de_lineas.h"
#include "gui/grilla.h"
#include "gui/iconos.h"
#include "gui/planilla.h"
#include "gui/texto.h"

namespace gui {
namespace {

bool EsNumero(int campo) {
  return campo == importfile::kCantidad || campo == importfile::kValor || campo == importfile::kHorasMes;
}

// A selected row does not tint it.
QIcon Muestra(const QColor& color) {
  constexpr int kLado = 14;
  QPixmap imagen(kLado, kLado);
  imagen.fill(Qt::transparent);
  QPainter p(&imagen);
  p.setPen(QColor(0, 0, 0, 110));
  p.setBrush(color);
  p.drawRect(0, 0, kLado - 1, kLado - 1);
  p.end();
  QIcon icono(imagen);
  icono.addPixmap(imagen, QIcon::Selected);
  return icono;
}

}  // namespace

QVariant ModeloDeGrilla::headerData(int seccion, Qt::Orientation orientacion, int rol) const {
  if (orientacion != Qt::Horizontal || seccion < 0 || seccion >= columnCount()) return {};
  const app::GridColumn& columna = grid_.columnas[static_cast<std::size_t>(seccion)];
  if (rol == Qt::DisplayRole || rol == Qt::ToolTipRole) return De(columna.caption);
  if (rol == kNombreDeColumna) return De(columna.nombre);
  return {};
}

void ModeloDeGrilla::Recargar() {
  beginResetModel();
  filas_ = static_cast<int>(Cantidad());
  endResetModel();
}

void ModeloDeGrilla::TitulosCambiados() {
  std::vector<std::string> titulos;
  for (const app::GridColumn& columna : grid_.columnas) titulos.push_back(columna.caption);
  if (titulos == titulos_) return;
  titulos_ = std::move(titulos);
  Q_EMIT headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
}

ModeloImportar::ModeloImportar(const app::Estado& estado, QObject* padre)
    : ModeloDeGrilla(estado.GridAImportar, padre), estado_(estado), falta_(IconoDeAviso()) {
  for (const app::GridColumn& columna : estado.GridAImportar.columnas)
    campo_.push_back(app::CampoDeColumna(columna.nombre));
  Preparar();
}

QVariant ModeloImportar::headerData(int seccion, Qt::Orientation orientacion, int rol) const {
  if (rol == Qt::TextAlignmentRole && orientacion == Qt::Horizontal && seccion >= 0 &&
      seccion < columnCount() && EsNumero(campo_[static_cast<std::size_t>(seccion)]))
    return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
  return ModeloDeGrilla::headerData(seccion, orientacion, rol);
}

void ModeloImportar::Preparar() {
  pinturas_.clear();
  for (int i = -1; i < static_cast<int>(estado_.relaciones.Cantidad()); ++i) {
    const app::EstiloDeFila estilo = app::EstiloDeRelacion(estado_.relaciones, i);
    pinturas_.push_back({De(estilo.nombre), ColorDe(estilo.fondo), ColorDe(estilo.texto)});
  }
}

void ModeloImportar::ColoresCambiados() {
  Preparar();
  if (rowCount() > 0) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

const ModeloImportar::Pintura& ModeloImportar::PinturaDe(const importfile::ImportRow& fila) const {
  const auto i = static_cast<std::size_t>(app::RelacionDeEstilo(estado_.relaciones, fila) + 1);
  return pinturas_[i < pinturas_.size() ? i : 0];
}

std::size_t ModeloImportar::FilaDeEstado(int fila) const {
  const auto i = static_cast<std::size_t>(fila);
  if (!vista_) return i;
  return i < vista_->size() ? (*vista_)[i] : estado_.filas.size();
}

QString ModeloImportar::Falta(const importfile::ImportRow& fila, int campo) const {
  if (campo == importfile::kClave && app::FaltasDe(estado_, fila).contrato)
    return QStringLiteral("Sin contrato: ninguno del mes tiene esta clave");
  if (campo == importfile::kTipo && app::FaltasDe(estado_, fila).relacion)
    return QStringLiteral("Sin relación: el código no está en ninguna");
  return {};
}

QVariant ModeloImportar::data(const QModelIndex& indice, int rol) const {
  const std::size_t i = FilaDeEstado(indice.row());
  if (!indice.isValid() || i >= estado_.filas.size()) return {};
  const importfile::ImportRow& fila = estado_.filas[i];
  const int campo = campo_[static_cast<std::size_t>(indice.column())];
  switch (rol) {
    case Qt::DisplayRole:
      if (campo < 0) return De(fila.resultado);
      return EsNumero(campo) ? ConComa(De(fila.campo[static_cast<std::size_t>(campo)]))
                             : De(fila.campo[static_cast<std::size_t>(campo)]);
    case Qt::ToolTipRole:
      if (campo < 0 && fila.resultado != "OK") return De(fila.resultado);
      return Falta(fila, campo);
    case Qt::DecorationRole:
      return Falta(fila, campo).isEmpty() ? QVariant() : falta_;
    case Qt::BackgroundRole:
      return PinturaDe(fila).fondo;
    case Qt::ForegroundRole:
      return PinturaDe(fila).texto;
    case Qt::TextAlignmentRole:
      return static_cast<int>(Qt::AlignVCenter | (EsNumero(campo) ? Qt::AlignRight : Qt::AlignLeft));
    case kEstiloDeFila:
      return PinturaDe(fila).nombre;
    default:
      return {};
  }
}

QVariant ModeloRelaciones::data(const QModelIndex& indice, int rol) const {
  const auto& grid = estado_.relaciones.Grid();
  const auto i = static_cast<std::size_t>(indice.row());
  if (!indice.isValid() || i >= grid.size()) return {};
  if (rol == Qt::DecorationRole && indice.column() == 0)
    return Muestra(ColorDe(app::EstiloDeRelacion(estado_.relaciones, indice.row()).fondo));
  if (rol != Qt::DisplayRole) return {};
  switch (indice.column()) {
    case 0:
      return De(grid[i].Codigo);
    case 1:
      return De(grid[i].Nombre);
    case 2:
      return De(grid[i].CodigosVincConReloj);
    default:
      return De(grid[i].CC);
  }
}

QVariant ModeloPrevia::data(const QModelIndex& indice, int rol) const {
  const auto i = static_cast<std::size_t>(indice.row()), j = static_cast<std::size_t>(indice.column());
  if (!indice.isValid() || rol != Qt::DisplayRole || i >= estado_.filas_previa.size()) return {};
  const auto& celdas = estado_.filas_previa[i];
  return j < celdas.size() ? De(celdas[j]) : QVariant();
}

}  // namespace gui
