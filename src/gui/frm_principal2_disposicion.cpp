// Where everything stands. Lengths are twips; what would not fit leaves the controls where they were.
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <algorithm>

#include "gui/frm_principal2.h"
#include "gui/tamano_de_ventana.h"
#include "gui/texto.h"

namespace gui {
namespace {

constexpr int kAnchoArea1 = 3960;
constexpr int kAnchoPanel = 13200;
constexpr int kMargen = 180;         // around the strip and the grid
constexpr int kBajoLosBotones = 80;  // from the bottom row to the window's edge
constexpr int kAltoMinimoGrilla = 1200;

constexpr int kSeparacion = 8;  // pixels between the buttons of the column

int AnchoDe(const QPushButton* boton) {
  const int icono = boton->icon().isNull() ? 0 : boton->iconSize().width();
  return boton->fontMetrics().horizontalAdvance(boton->text()) + icono + 22;
}

// Wider than its rule where the desktop's letters are: the bottom row must fit.
int AnchoDeColumna(const Columna& c) {
  return std::max(Px(kAnchoArea1), 2 * Px(kMargen) + AnchoDe(c.cbSalir) + AnchoDe(c.cbConfigurar[1]) +
                                       AnchoDe(c.cbImportar) + 2 * kSeparacion);
}

}  // namespace

void FrmPrincipal2::Disponer() {
  const int ancho_columna = AnchoDeColumna(columna_), margen = Px(kMargen);
  const int x = ancho_columna + margen, ancho = width() - x - margen;
  const int alto_franja = franja_.caja->sizeHint().height();
  // The band stands between the strip and the grid, closer to the grid that it speaks of.
  const int alto_cinta = lblAviso_->AltoPara(ancho);
  const int y_cinta = margen + alto_franja + margen;
  const int y_vista = y_cinta + (alto_cinta > 0 ? alto_cinta + margen / 2 : 0),
            alto_vista = barra_de_vista_.caja->sizeHint().height();
  const int y_grilla = y_vista + alto_vista + margen / 2, alto_grilla = height() - y_grilla - margen;
  setMinimumSize(TamanoMinimo(screen()->availableSize() - (frameGeometry().size() - size())));
  if (ancho < franja_.caja->minimumSizeHint().width() || alto_grilla < Px(kAltoMinimoGrilla)) return;
  columna_.Area1->setGeometry(0, 0, ancho_columna, height());
  DisponerColumna();
  franja_.caja->setGeometry(x, margen, ancho, alto_franja);
  lblAviso_->setGeometry(x, y_cinta, ancho, alto_cinta);
  barra_de_vista_.caja->setGeometry(x, y_vista, ancho, alto_vista);
  GridAImportar_->setGeometry(x, y_grilla, ancho, alto_grilla);
  DisponerPaneles();
}

void FrmPrincipal2::DisponerColumna() {
  Columna& c = columna_;
  const int ancho = c.Area1->width(), margen = Px(kMargen);
  const int alto = c.cbConfigurar[0]->sizeHint().height() + 6;
  const int ancho_salir = AnchoDe(c.cbSalir), ancho_relaciones = AnchoDe(c.cbConfigurar[1]);
  // The bottom row. The second settings button stands by the height of the first.
  const auto arriba = [this](int alto_boton) { return height() - (alto_boton + Px(kBajoLosBotones)); };
  int x = margen;
  c.cbSalir->setGeometry(x, arriba(alto), ancho_salir, alto);
  x += ancho_salir + kSeparacion;
  c.cbConfigurar[1]->setGeometry(x, arriba(alto), ancho_relaciones, alto);
  x += ancho_relaciones + kSeparacion;
  c.cbImportar->setGeometry(x, arriba(alto), ancho - margen - x, alto);
  c.cbConfigurar[0]->setGeometry(margen, arriba(alto) - kSeparacion - alto, ancho - 2 * margen, alto);
  // The bar covers that button while it shows.
  const int y_configurar = c.cbConfigurar[0]->y();
  c.Barra->setGeometry(Px(60), y_configurar - Px(30), ancho - Px(120), alto + 2 * Px(30));
  const int ancho_cancelar = AnchoDe(cbCancelar_);
  cbCancelar_->setGeometry(c.Barra->geometry().right() - ancho_cancelar - 2, y_configurar, ancho_cancelar,
                           alto);
  const int alto_estado = AltoDeEstado();
  c.lblEstado->setGeometry(margen, y_configurar - alto_estado - 6, ancho - 2 * margen, alto_estado);
  c.cabeza->setGeometry(0, 0, ancho, c.lblEstado->y() - 4);
}

// Both panels have the height that the relations need: from the bottom of their grid 250 twips more. They
// stand on the bottom edge of the import grid and cover its lower part; what a small window has no room for
// is scrolled.
void FrmPrincipal2::DisponerPaneles() {
  PanelRelaciones& r = relaciones_;
  const QRect grilla = GridAImportar_->geometry();
  const QSize formato = formato_.contenido->minimumSizeHint();
  const int ancho = std::min(std::max(Px(kAnchoPanel), formato.width() + 2), grilla.width());
  const int dentro = ancho - 2 * Panel::kMargen, y_edicion = Panel::kTitulo + 12;
  r.Ajustar(dentro);
  r.edicion->setGeometry(Panel::kMargen, y_edicion, dentro, r.edicion->sizeHint().height());
  const int y = y_edicion + r.edicion->height() + 10;
  const int minimo = Panel::kTitulo + formato.height() + 3 - y - Px(250);
  const int deseado = grilla.height() * 3 / 5 - y - Px(250);
  const int maximo = std::max(grilla.height() - y - Px(250), r.GridRelaciones->minimumSizeHint().height());
  r.GridRelaciones->setGeometry(Panel::kMargen, y, dentro, std::min(std::max(minimo, deseado), maximo));
  const int alto = r.GridRelaciones->geometry().bottom() + 1 + Px(250);
  for (Panel* panel : {formato_.AreConf, r.AreConf})
    panel->setGeometry(grilla.x(), grilla.y() + grilla.height() - alto, ancho, alto);
}

}  // namespace gui
