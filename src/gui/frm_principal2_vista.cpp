// Which of the lines the grid shows: sorted, found, picked by a count. What is imported stays what it is.
#include <QHeaderView>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <optional>
#include <utility>

#include "app/vista.h"
#include "gui/frm_principal2.h"
#include "gui/texto.h"

namespace gui {
namespace {

constexpr std::pair<std::size_t, app::Cuales> kCuentas[] = {{4, app::Cuales::Importadas},
                                                            {5, app::Cuales::Rechazadas},
                                                            {6, app::Cuales::SinContrato},
                                                            {7, app::Cuales::SinRelacion}};

QString Numero(std::size_t n) {
  return QLocale(QLocale::Spanish, QLocale::Uruguay).toString(static_cast<qulonglong>(n));
}

QString Lineas(std::size_t n) {
  return n == 1 ? QStringLiteral("1 línea") : QStringLiteral("%1 líneas").arg(Numero(n));
}

QString TextoDeFaltas(const app::CuentaDeFaltas& faltas) {
  QStringList textos;
  if (faltas.contrato > 0) textos << Lineas(faltas.contrato) + QStringLiteral(" sin contrato");
  if (faltas.relacion > 0) textos << Lineas(faltas.relacion) + QStringLiteral(" sin relación");
  return textos.isEmpty() ? QString() : textos.join(QStringLiteral(", ")) + QLatin1Char('.');
}

}  // namespace

void FrmPrincipal2::ConectarVista() {
  connect(barra_de_vista_.txtBuscarEnGrilla, &QLineEdit::textChanged, this, [this](const QString& texto) {
    app::VistaDeLineas vista = vista_;
    vista.texto = A(texto);
    PonerVista(std::move(vista));
  });
  connect(barra_de_vista_.cbMostrarTodas, &QPushButton::clicked, this, [this] {
    app::VistaDeLineas vista = vista_;
    vista.cuales = app::Cuales::Todas;
    vista.texto.clear();
    if (barra_de_vista_.cbMostrarTodas->hasFocus()) GridAImportar_->setFocus();
    PonerVista(std::move(vista));
  });
  for (const auto& [cuenta, cuales] : kCuentas)
    connect(columna_.cuentas[cuenta], &QAbstractButton::clicked, this, [this, c = cuales] {
      app::VistaDeLineas vista = vista_;
      vista.cuales = vista.cuales == c ? app::Cuales::Todas : c;
      PonerVista(std::move(vista));
    });
  connect(columna_.cuentas[1], &QAbstractButton::clicked, barra_de_vista_.cbMostrarTodas,
          &QPushButton::click);
  connect(columna_.cuentas[2], &QAbstractButton::clicked, this, [this] { AbrirAparte(false); });
  connect(columna_.cuentas[3], &QAbstractButton::clicked, this, [this] { AbrirAparte(true); });
}

// A column not sorted by yet: the lines are put in its order. The same once more: turned round, which only
// the eyes see. The outcome is no field of a line: its order is the eyes' alone too.
void FrmPrincipal2::OrdenarPor(int seccion) {
  const std::string columna = A(GridAImportar_->NombreDeColumna(seccion));
  const int campo = app::CampoDeColumna(columna);
  app::VistaDeLineas vista = vista_;
  const bool la_misma =
      campo < 0 ? vista.por_resultado : !vista.por_resultado && programa_.Ver().columna_orden == campo;
  vista.por_resultado = campo < 0;
  vista.descendente = la_misma && !vista.descendente;
  if (campo >= 0 && !la_misma) {
    if (!programa_.PuedeCerrar()) return MostrarVista(programa_.Ver());  // a load or an import runs
    vista_ = vista;
    return Hacer([&](app::Programa& p) { p.Lineas().GridAImportar_HeadClick(columna); });
  }
  PonerVista(std::move(vista));
}

void FrmPrincipal2::PonerVista(app::VistaDeLineas vista) {
  vista_ = std::move(vista);
  RehacerVista(programa_.Ver());
}

// The lines of a load have no outcome to be picked by.
void FrmPrincipal2::RehacerVista(const app::Estado& e) {
  if (!e.GridAImportar.columnas.back().visible) vista_.por_resultado = false;
  const bool resultados = !e.filas.empty() && !e.filas.front().resultado.empty();
  if (!resultados && (vista_.cuales == app::Cuales::Importadas || vista_.cuales == app::Cuales::Rechazadas))
    vista_.cuales = app::Cuales::Todas;
  if (vistas_.filas != e.revision.filas && aparte_ != nullptr) aparte_->close();
  faltas_ = app::ContarFaltas(e);
  modelo_importar_.PonerVista(vista_.Es() ? std::optional(programa_.Lineas().Vista(vista_)) : std::nullopt);
  modelo_importar_.Recargar();
  MostrarVista(e);
}

void FrmPrincipal2::MostrarVista(const app::Estado& e) {
  for (const auto& [cuenta, cuales] : kCuentas) columna_.cuentas[cuenta]->setChecked(vista_.cuales == cuales);
  {
    const QSignalBlocker callada(barra_de_vista_.txtBuscarEnGrilla);
    if (A(barra_de_vista_.txtBuscarEnGrilla->text()) != vista_.texto)
      barra_de_vista_.txtBuscarEnGrilla->setText(De(vista_.texto));
  }
  const bool filtra = vista_.Filtra() && !e.filas.empty();
  barra_de_vista_.Poner(
      filtra ? QStringLiteral("Se muestran %1 de %2; se importan todas.")
                   .arg(Numero(static_cast<std::size_t>(modelo_importar_.rowCount())), Numero(e.filas.size()))
             : TextoDeFaltas(faltas_),
      filtra);
  MostrarOrden(e);
}

void FrmPrincipal2::MostrarOrden(const app::Estado& e) {
  const int orden = vista_.por_resultado ? -1 : e.columna_orden;
  for (int i = 0; i < modelo_importar_.columnCount(); ++i)
    if (app::CampoDeColumna(e.GridAImportar.columnas[static_cast<std::size_t>(i)].nombre) == orden)
      GridAImportar_->horizontalHeader()->setSortIndicator(
          i, vista_.descendente ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void FrmPrincipal2::AbrirAparte(bool mal_formadas) {
  if (aparte_ != nullptr) aparte_->close();
  aparte_ = new ListaDeAparte(programa_.Ver(), mal_formadas, tema_, this);
  aparte_->show();
}

}  // namespace gui
