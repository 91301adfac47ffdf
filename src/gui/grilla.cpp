#include "gui/grilla.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QStyledItemDelegate>
#include <algorithm>

#include "gui/texto.h"

namespace gui {
namespace {

const QColor kBajoLaFila(0, 0, 0, 26);

// No box around the current cell, since rows are what is chosen; a hairline under each row that shows on any
// colour.
class Celda final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* p, const QStyleOptionViewItem& opcion, const QModelIndex& indice) const override {
    QStyleOptionViewItem o(opcion);
    o.state &= ~QStyle::State_HasFocus;
    QStyledItemDelegate::paint(p, o, indice);
    p->fillRect(QRect(o.rect.left(), o.rect.bottom(), o.rect.width(), 1), kBajoLaFila);
  }
};

// A cell that holds a tab or a line end would shift what follows it.
QString EnUnaCelda(QString texto) {
  for (QChar& c : texto)
    if (c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r')) c = QLatin1Char(' ');
  return texto;
}

}  // namespace

Grilla::Grilla(const QString& nombre, const Tema& tema, QWidget* padre)
    : QTableView(padre), tenue_(tema.tenue) {
  setObjectName(nombre);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setShowGrid(false);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  setItemDelegate(new Celda(this));
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setMinimumSectionSize(10);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  horizontalHeader()->setMinimumSectionSize(28);
}

void Grilla::PonerAviso(const QString& aviso) {
  if (aviso == aviso_) return;
  aviso_ = aviso;
  viewport()->update();
}

QString Grilla::NombreDeColumna(int columna) const {
  return model()->headerData(columna, Qt::Horizontal, kNombreDeColumna).toString();
}

void Grilla::PonerColumnas(const app::Grid& grid) {
  const auto n = static_cast<qsizetype>(grid.columnas.size());
  anchos_.resize(n, 0);
  for (qsizetype i = 0; i < n; ++i) {
    const app::GridColumn& columna = grid.columnas[static_cast<std::size_t>(i)];
    const int seccion = static_cast<int>(i);
    if (isColumnHidden(seccion) == columna.visible) setColumnHidden(seccion, !columna.visible);
    if (columna.ancho == 0 || columna.ancho == anchos_[i]) continue;
    anchos_[i] = columna.ancho;
    horizontalHeader()->resizeSection(seccion, Px(columna.ancho));
  }
}

QString Grilla::TextoDeSeleccion() const {
  if (selectionModel() == nullptr) return {};
  QList<int> columnas;
  for (int visual = 0; visual < horizontalHeader()->count(); ++visual) {
    const int logica = horizontalHeader()->logicalIndex(visual);
    if (!isColumnHidden(logica)) columnas << logica;
  }
  QList<int> filas;
  for (const QItemSelectionRange& tramo : selectionModel()->selection())
    for (int fila = tramo.top(); fila <= tramo.bottom(); ++fila) filas << fila;
  std::sort(filas.begin(), filas.end());
  filas.erase(std::unique(filas.begin(), filas.end()), filas.end());
  QString texto;
  for (const int fila : filas) {
    for (qsizetype i = 0; i < columnas.size(); ++i) {
      if (i > 0) texto += QLatin1Char('\t');
      texto += EnUnaCelda(model()->index(fila, columnas[i]).data().toString());
    }
    texto += QLatin1Char('\n');
  }
  return texto;
}

void Grilla::keyPressEvent(QKeyEvent* evento) {
  if (!evento->matches(QKeySequence::Copy)) return QTableView::keyPressEvent(evento);
  const QString texto = TextoDeSeleccion();
  if (!texto.isEmpty()) QGuiApplication::clipboard()->setText(texto);
}

void Grilla::PintarHastaElBorde() {
  const int x = horizontalHeader()->length() - horizontalHeader()->offset(), ancho = viewport()->width() - x;
  if (ancho <= 0 || model() == nullptr) return;
  QPainter p(viewport());
  for (int fila = rowAt(0); fila >= 0 && fila < model()->rowCount(); ++fila) {
    const QRect r(x, rowViewportPosition(fila), ancho, rowHeight(fila));
    if (r.top() > viewport()->height()) break;
    const bool elegida = selectionModel()->isRowSelected(fila);
    p.fillRect(
        r, elegida ? palette().brush(hasFocus() ? QPalette::Active : QPalette::Inactive, QPalette::Highlight)
                   : model()->index(fila, 0).data(Qt::BackgroundRole).value<QBrush>());
    p.fillRect(QRect(r.left(), r.bottom(), r.width(), 1), kBajoLaFila);
  }
}

void Grilla::paintEvent(QPaintEvent* evento) {
  QTableView::paintEvent(evento);
  PintarHastaElBorde();
  if (aviso_.isEmpty() || model() == nullptr || model()->rowCount() > 0) return;
  QPainter p(viewport());
  p.setPen(tenue_);
  p.drawText(viewport()->rect().adjusted(24, 0, -24, 0), Qt::AlignCenter | Qt::TextWordWrap, aviso_);
}

}  // namespace gui
