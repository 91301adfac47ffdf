#include "gui/columna.h"

#include <QCoreApplication>
#include <QIcon>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "gui/estilo.h"
#include "gui/iconos.h"

namespace gui {
namespace {

constexpr const char* kAImportar = "Importar los datos Cargados en la grilla";

void Pintar(QWidget* widget, const QColor& color) {
  QPalette p = widget->palette();
  p.setColor(QPalette::WindowText, color);
  widget->setPalette(p);
}

void PintarBoton(QPushButton* boton, const char* papel, const Tema& tema) {
  boton->setProperty(kPapel, QLatin1String(papel));
  QPalette p = boton->palette();
  const bool primario = QLatin1String(papel) == QLatin1String(kPrimario);
  p.setColor(QPalette::ButtonText, primario ? tema.sobre_acento : tema.columna_texto);
  p.setColor(QPalette::Disabled, QPalette::ButtonText, tema.columna_apagado);
  boton->setPalette(p);
}

QLabel* Texto(const QString& texto, const QColor& color, QWidget* padre) {
  auto* etiqueta = new QLabel(texto, padre);
  etiqueta->setTextFormat(Qt::PlainText);
  Pintar(etiqueta, color);
  return etiqueta;
}

}  // namespace

ListaDeTotales::ListaDeTotales(const Tema& tema, QWidget* padre)
    : QWidget(padre), texto_(tema.columna_texto), tenue_(tema.columna_tenue) {
  setObjectName(QStringLiteral("totales"));
}

void ListaDeTotales::Poner(const QList<std::pair<QString, QString>>& totales) {
  if (totales == totales_) return;
  totales_ = totales;
  QStringList todos;
  for (const auto& [nombre, cantidad] : totales) todos << nombre + QStringLiteral(": ") + cantidad;
  setToolTip(todos.join(QLatin1Char('\n')));
  update();
}

void ListaDeTotales::paintEvent(QPaintEvent*) {
  if (totales_.isEmpty()) return;
  QPainter p(this);
  const int alto = fontMetrics().height() + 7;
  const int caben = std::max(0, height() / alto - 1);  // below the heading
  QFont negrita = font();
  negrita.setBold(true);
  p.setFont(negrita);
  p.setPen(texto_);
  p.drawText(QRect(0, 0, width(), alto), Qt::AlignVCenter, QStringLiteral("Importado por concepto"));
  p.setFont(font());
  const bool sobran = totales_.size() > caben;
  for (int i = 0; i < std::min(caben, static_cast<int>(totales_.size())); ++i) {
    const QRect r(0, (i + 1) * alto, width(), alto);
    if (sobran && i == caben - 1) {
      p.setPen(tenue_);
      p.drawText(r, Qt::AlignVCenter, QStringLiteral("y %1 más…").arg(totales_.size() - i));
      break;
    }
    const auto& [nombre, cantidad] = totales_[i];
    const int ancho = fontMetrics().horizontalAdvance(cantidad) + 10;
    p.setPen(tenue_);
    p.drawText(r, Qt::AlignVCenter, fontMetrics().elidedText(nombre, Qt::ElideRight, width() - ancho));
    p.setPen(texto_);
    p.drawText(r, Qt::AlignVCenter | Qt::AlignRight, cantidad);
  }
}

void Columna::Crear(const Tema& tema, QWidget* padre) {
  Area1 = new QWidget(padre);
  Area1->setObjectName(QStringLiteral("Area1"));
  Area1->setAutoFillBackground(true);
  QPalette p = Area1->palette();
  p.setColor(QPalette::Window, tema.columna);
  p.setColor(QPalette::WindowText, tema.columna_texto);
  Area1->setPalette(p);
  CrearCabeza(tema);
  lblEstado = Texto(QString(), tema.columna_tenue, Area1);
  lblEstado->setObjectName(QStringLiteral("lblEstado"));
  CrearBotones(tema);
  Barra = new BarraDeProgreso(Area1);
  Barra->hide();
}

void Columna::CrearCabeza(const Tema& tema) {
  cabeza = new QWidget(Area1);
  auto* plano = new QVBoxLayout(cabeza);
  plano->setContentsMargins(12, 14, 12, 0);
  plano->setSpacing(10);

  auto* titulo = new QHBoxLayout;
  titulo->setSpacing(10);
  auto* icono = new QLabel(cabeza);
  icono->setPixmap(QIcon(QStringLiteral(":/importdemarcas.png")).pixmap(QSize(32, 32)));
  auto* nombre = Texto(QStringLiteral("ImportDeMarcas"), tema.columna_texto, cabeza);
  QFont letra = nombre->font();
  letra.setPointSizeF(letra.pointSizeF() * 1.25);
  letra.setBold(true);
  nombre->setFont(letra);
  titulo->addWidget(icono);
  titulo->addWidget(nombre, 1);
  plano->addLayout(titulo);

  LblEmpresa = new EtiquetaRuta(QStringLiteral("LblEmpresa"), 4, cabeza);
  Pintar(LblEmpresa, tema.columna_tenue);
  plano->addWidget(LblEmpresa);

  auto* raya = new QFrame(cabeza);
  raya->setFixedHeight(1);
  raya->setAutoFillBackground(true);
  QPalette p = raya->palette();
  p.setColor(QPalette::Window, tema.columna_borde);
  raya->setPalette(p);
  plano->addWidget(raya);

  auto* tabla = new QVBoxLayout;
  tabla->setSpacing(1);
  struct Cuenta {
    std::size_t cual;
    const char *nombre, *texto, *ayuda;
  };
  const Cuenta filas[] = {
      {0, "lineas", "Líneas del archivo", ""},
      {1, "en_grilla", "En la grilla", "Mostrar todas"},
      {6, "sin_contrato", "Sin contrato",
       "Mostrar solo las líneas cuya clave no es de ningún contrato del mes"},
      {7, "sin_relacion", "Sin relación", "Mostrar solo las líneas cuyo código no está en ninguna relación"},
      {2, "filtradas", "Descartadas por el filtro", "Ver las líneas que el filtro descartó"},
      {3, "mal_formadas", "Mal formadas", "Ver las líneas mal formadas"},
      {4, "importadas", "Importadas", "Mostrar solo las importadas"},
      {5, "rechazadas", "Rechazadas", "Mostrar solo las rechazadas"}};
  for (const Cuenta& c : filas) {
    auto* fila = new FilaDeCuenta(QLatin1String(c.nombre), QString::fromUtf8(c.texto), tema, cabeza);
    fila->setToolTip(QString::fromUtf8(c.ayuda));
    fila->setEnabled(false);
    Pintar(fila->Cuenta(), c.cual == 4 ? tema.bien : c.cual >= 5 ? tema.mal : tema.columna_texto);
    tabla->addWidget(fila);
    cuentas[c.cual] = fila;
  }
  for (const std::size_t i : {4, 5, 6, 7}) cuentas[i]->setCheckable(true);
  cuentas[0]->setFocusPolicy(Qt::NoFocus);
  plano->addLayout(tabla);
  plano->addSpacing(6);
  totales = new ListaDeTotales(tema, cabeza);
  plano->addWidget(totales, 1);
}

void Columna::CrearBotones(const Tema& tema) {
  const QColor apagado = tema.columna_apagado;
  // Both carry the tooltip of the import; it is meant to be the same text.
  cbConfigurar[0] = CrearBoton(QStringLiteral("cbConfigurar_0"), QStringLiteral("Formato y opciones"), Area1);
  cbConfigurar[1] = CrearBoton(QStringLiteral("cbConfigurar_1"), QStringLiteral("Relaciones"), Area1);
  cbConfigurar[0]->setIcon(Icono(Dibujo::Engranaje, tema.columna_texto, apagado));
  for (QPushButton* boton : cbConfigurar) {
    boton->setToolTip(QString::fromUtf8(kAImportar));
    boton->setCheckable(true);
    PintarBoton(boton, kColumna, tema);
  }
  cbSalir = CrearBoton(QStringLiteral("cbSalir"), QStringLiteral("Salir"), Area1);
  PintarBoton(cbSalir, kColumna, tema);
  cbImportar = CrearBoton(QStringLiteral("cbImportar"), QStringLiteral("Importar"), Area1);
  cbImportar->setToolTip(QString::fromUtf8(kAImportar));
  cbImportar->setIcon(Icono(Dibujo::Importar, tema.sobre_acento, apagado));
  PintarBoton(cbImportar, kPrimario, tema);
  QFont negrita = cbImportar->font();
  negrita.setBold(true);
  cbImportar->setFont(negrita);
  PonerTecla(cbConfigurar[0], QStringLiteral("P"));
  PonerTecla(cbConfigurar[1], QStringLiteral("E"));
  PonerTecla(cbSalir, QStringLiteral("S"));
  PonerTecla(cbImportar, QStringLiteral("I"));
}

void Columna::PonerCuentas(const app::Cuentas& c, const app::CuentaDeFaltas& faltas, bool hay_archivo) {
  const std::size_t valores[] = {c.lineas,     c.en_grilla,  c.filtradas,     c.mal_formadas,
                                 c.importadas, c.rechazadas, faltas.contrato, faltas.relacion};
  const QLocale locale(QLocale::Spanish, QLocale::Uruguay);
  for (std::size_t i = 0; i < cuentas.size(); ++i) {
    const bool importada = i == 4 || i == 5;
    const bool hay = importada ? c.importadas + c.rechazadas > 0 : hay_archivo;
    cuentas[i]->Cuenta()->setText(hay ? locale.toString(static_cast<qulonglong>(valores[i]))
                                      : QStringLiteral("–"));
    cuentas[i]->setEnabled(i > 0 && hay && valores[i] > 0);
  }
}

}  // namespace gui
