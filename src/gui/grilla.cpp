#include "gui/grilla.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <algorithm>

#include "gui/planilla.h"
#include "gui/texto.h"

namespace gui {
namespace {

const QColor kBajoLaFila(0, 0, 0, 26);

// No box around the current cell, since rows are what is chosen; a hairline under each row that shows on any
// colour.
class Celda final : public QStyledItemDelegate {
 public:
  explicit Celda(Grilla* grilla) : QStyledItemDelegate(grilla), grilla_(*grilla) {}

  void paint(QPainter* p, const QStyleOptionViewItem& opcion, const QModelIndex& indice) const override {
    QStyleOptionViewItem o(opcion);
    o.state &= ~QStyle::State_HasFocus;
    QStyledItemDelegate::paint(p, o, indice);
    p->fillRect(QRect(o.rect.left(), o.rect.bottom(), o.rect.width(), 1), kBajoLaFila);
    grilla_.PintarFilaActual(*p, o.rect, indice.row());
  }

  // A text that is cut is its own tooltip.
  bool helpEvent(QHelpEvent* evento, QAbstractItemView* vista, const QStyleOptionViewItem& opcion,
                 const QModelIndex& indice) override {
    if (evento->type() != QEvent::ToolTip || !indice.data(Qt::ToolTipRole).toString().isEmpty())
      return QStyledItemDelegate::helpEvent(evento, vista, opcion, indice);
    QStyleOptionViewItem o(opcion);
    initStyleOption(&o, indice);
    const bool cortado = sizeHint(o, indice).width() > opcion.rect.width();
    QToolTip::showText(evento->globalPos(), cortado ? o.text : QString(), vista);
    return true;
  }

 private:
  const Grilla& grilla_;
};

}  // namespace

Grilla::Grilla(const QString& nombre, const Tema& tema, QWidget* padre)
    : QTableView(padre), tenue_(tema.tenue), foco_(tema.foco), sobre_acento_(tema.sobre_acento) {
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
  twips_.resize(n, 0);
  for (qsizetype i = 0; i < n; ++i) {
    const app::GridColumn& columna = grid.columnas[static_cast<std::size_t>(i)];
    const int seccion = static_cast<int>(i);
    if (isColumnHidden(seccion) == columna.visible) setColumnHidden(seccion, !columna.visible);
    if (columna.ancho == 0 || columna.ancho == twips_[i]) continue;
    twips_[i] = columna.ancho;
    horizontalHeader()->resizeSection(seccion, Px(columna.ancho));
  }
  Repartir();
}

void Grilla::PonerAnchos(const QList<Ancho>& anchos) {
  anchos_ = anchos;
  connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this](int seccion, int antes, int ahora) {
    // Not what hides and shows it.
    if (repartiendo_ || antes == 0 || ahora == 0) return;
    anchos_[seccion] = {ahora, ahora, 0};
  });
  Repartir();
}

// What is left over goes to those that have a part in it; what is missing they give, down to their fewest.
void Grilla::Repartir() {
  if (anchos_.isEmpty()) return;
  int falta = -viewport()->width(), partes = 0, pueden = 0;
  for (int i = 0; i < anchos_.size(); ++i) {
    if (isColumnHidden(i)) continue;
    falta += anchos_[i].base;
    partes += anchos_[i].parte;
    pueden += anchos_[i].base - anchos_[i].minimo;
  }
  const QScopedValueRollback<bool> guardia(repartiendo_, true);
  int sobra = std::max(-falta, 0), quitar = std::clamp(falta, 0, pueden);
  for (int i = 0; i < anchos_.size(); ++i) {
    if (isColumnHidden(i)) continue;
    const auto& [base, minimo, parte] = anchos_[i];
    const int mas = partes > 0 ? sobra * parte / partes : 0;
    const int menos = pueden > 0 ? quitar * (base - minimo) / pueden : 0;
    sobra -= mas;
    partes -= parte;
    quitar -= menos;
    pueden -= base - minimo;
    horizontalHeader()->resizeSection(i, base + mas - menos);
  }
}

void Grilla::resizeEvent(QResizeEvent* evento) {
  QTableView::resizeEvent(evento);
  Repartir();
}

QRect Grilla::HastaElBorde() const {
  const int x = horizontalHeader()->length() - horizontalHeader()->offset();
  return {x, 0, viewport()->width() - x, viewport()->height()};
}

// Qt redraws the cells that changed, and knows nothing of what is painted beside them.
void Grilla::selectionChanged(const QItemSelection& elegido, const QItemSelection& dejado) {
  QTableView::selectionChanged(elegido, dejado);
  viewport()->update(HastaElBorde());
}

void Grilla::dataChanged(const QModelIndex& desde, const QModelIndex& hasta, const QList<int>& roles) {
  QTableView::dataChanged(desde, hasta, roles);
  viewport()->update(HastaElBorde());
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
      texto += CeldaDePlanilla(model()->index(fila, columnas[i]).data().toString());
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

// The row that the keyboard stands on, between two lines; on a selected row in the colour of its letters.
void Grilla::PintarFilaActual(QPainter& p, const QRect& r, int fila) const {
  if (!hasFocus() || fila != currentIndex().row()) return;
  const QColor& color = selectionModel()->isRowSelected(fila) ? sobre_acento_ : foco_;
  p.fillRect(QRect(r.left(), r.top(), r.width(), 2), color);
  p.fillRect(QRect(r.left(), r.bottom() - 1, r.width(), 2), color);
}

// The frame shows the focus too, and Qt redraws only the cells.
void Grilla::focusInEvent(QFocusEvent* evento) {
  QTableView::focusInEvent(evento);
  update();
}

void Grilla::focusOutEvent(QFocusEvent* evento) {
  QTableView::focusOutEvent(evento);
  update();
}

void Grilla::currentChanged(const QModelIndex& actual, const QModelIndex& anterior) {
  QTableView::currentChanged(actual, anterior);
  viewport()->update();
}

void Grilla::PintarHastaElBorde() {
  const QRect resto = HastaElBorde();
  const int x = resto.x(), ancho = resto.width();
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
    PintarFilaActual(p, r, fila);
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
