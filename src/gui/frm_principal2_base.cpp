// The menu at the company line: another base, and those that were opened last.
#include <QBoxLayout>
#include <QMenu>
#include <QToolButton>

#include "gui/estilo.h"
#include "gui/frm_principal2.h"
#include "gui/texto.h"

namespace gui {
namespace {

constexpr qsizetype kLargo = 60;  // characters of a path in the menu

// The end of a path tells more than its beginning.
QString Recortada(const QString& ruta) {
  const QString corta = ruta.size() <= kLargo ? ruta : QStringLiteral("…") + ruta.right(kLargo - 1);
  return QString(corta).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

}  // namespace

void FrmPrincipal2::ArmarBases() {
  menuBases_ = new QMenu(this);
  menuBases_->setObjectName(QStringLiteral("menuBases"));
  menuBases_->setToolTipsVisible(true);
  cbBases_ = new QToolButton(columna_.cabeza);
  cbBases_->setObjectName(QStringLiteral("cbBases"));
  cbBases_->setAccessibleName(QStringLiteral("Abrir otra base"));
  cbBases_->setToolTip(QStringLiteral("Abrir otra base"));
  cbBases_->setArrowType(Qt::DownArrow);
  cbBases_->setProperty(kPapel, QLatin1String(kColumna));
  cbBases_->setFocusPolicy(Qt::TabFocus);
  QPalette paleta = cbBases_->palette();
  for (const QPalette::ColorRole papel : {QPalette::ButtonText, QPalette::WindowText, QPalette::Text})
    paleta.setColor(papel, tema_.columna_texto);
  cbBases_->setPalette(paleta);
  if (auto* plano = qobject_cast<QBoxLayout*>(columna_.cabeza->layout())) {
    const int donde = plano->indexOf(columna_.LblEmpresa);
    plano->removeWidget(columna_.LblEmpresa);
    auto* fila = new QHBoxLayout;
    fila->setSpacing(4);
    fila->addWidget(columna_.LblEmpresa, 1);
    fila->addWidget(cbBases_, 0, Qt::AlignTop);
    plano->insertLayout(donde, fila);
  }
  columna_.LblEmpresa->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(columna_.LblEmpresa, &QWidget::customContextMenuRequested, this, [this](const QPoint& donde) {
    if (cbBases_->isEnabled()) menuBases_->popup(columna_.LblEmpresa->mapToGlobal(donde));
  });
  connect(cbBases_, &QToolButton::clicked, this,
          [this] { menuBases_->popup(cbBases_->mapToGlobal(QPoint(0, cbBases_->height()))); });
  connect(menuBases_, &QMenu::aboutToShow, this, [this] { LlenarMenuDeBases(); });
}

void FrmPrincipal2::LlenarMenuDeBases() {
  menuBases_->clear();
  connect(menuBases_->addAction(QStringLiteral("Abrir otra base…")), &QAction::triggered, this,
          [this] { Hacer([](app::Programa& p) { p.CambioDeBase().Elegir(); }); });
  if (!recientes_.Lista().isEmpty()) menuBases_->addSeparator();
  for (const QString& ruta : recientes_.Lista()) {
    QAction* accion = menuBases_->addAction(Recortada(ruta));
    accion->setToolTip(ruta);
    connect(accion, &QAction::triggered, this,
            [this, ruta] { Hacer([&](app::Programa& p) { p.CambioDeBase().Abrir(A(ruta)); }); });
  }
}

}  // namespace gui
