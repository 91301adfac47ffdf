#include "gui/franja.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "gui/estilo.h"
#include "gui/iconos.h"

namespace gui {

void Franja::Crear(const Tema& tema, QWidget* padre) {
  caja = new QWidget(padre);
  caja->setObjectName(QStringLiteral("franja"));
  plano_ = new QGridLayout(caja);
  plano_->setContentsMargins(0, 0, 0, 0);
  plano_->setHorizontalSpacing(10);
  plano_->setVerticalSpacing(8);
  plano_->setColumnStretch(3, 1);
  CrearFila1(tema);
  CrearFila2();
  CrearFila3();
}

void Franja::CrearFila1(const Tema& tema) {
  lblRuta = new Etiqueta(QStringLiteral("lblRuta"), QStringLiteral("Ruta"), caja);
  txtRuta = CrearCaja(QStringLiteral("txtRuta"), caja);
  txtRuta->setToolTip(QStringLiteral("Path de archivo a importar"));
  txtRuta->setPlaceholderText(QStringLiteral("Archivo de horas"));
  lblRuta->Acompanar(txtRuta, QStringLiteral("R"));
  cbBuscar = CrearBoton(QStringLiteral("cbBuscar"), QStringLiteral("Buscar…"), caja);
  cbBuscar->setToolTip(QStringLiteral("Buscar Archivo a importar"));
  cbBuscar->setIcon(Icono(Dibujo::Carpeta, tema.texto, tema.apagado));
  PonerTecla(cbBuscar, QStringLiteral("B"));
  cbActualizar = CrearBoton(QStringLiteral("cbActualizar"), QStringLiteral("Actualizar"), caja);
  cbActualizar->setIcon(Icono(Dibujo::Actualizar, tema.texto, tema.apagado));
  PonerTecla(cbActualizar, QStringLiteral("A"));
  plano_->addWidget(lblRuta, 0, 0);
  plano_->addWidget(txtRuta, 0, 1, 1, 3);
  plano_->addWidget(cbBuscar, 0, 4);
  plano_->addWidget(cbActualizar, 0, 5);
}

void Franja::CrearFila2() {
  lblMes = new Etiqueta(QStringLiteral("lblMes"), QStringLiteral("Importar en Mes:"), caja);
  ObjSelMes = new SelectorDeMes(QStringLiteral("ObjSelMes"), caja);
  lblMes->Acompanar(ObjSelMes, QStringLiteral("M"));
  lblImporEnTipoLiq =
      new Etiqueta(QStringLiteral("lblImporEnTipoLiq"), QStringLiteral("Importar en Tipo de Liq.:"), caja);
  cmbLiquidaciones = new Combo(QStringLiteral("cmbLiquidaciones"), caja);
  lblImporEnTipoLiq->Acompanar(cmbLiquidaciones, QStringLiteral("T"));
  plano_->addWidget(lblMes, 1, 0);
  plano_->addWidget(ObjSelMes, 1, 1);
  plano_->addWidget(lblImporEnTipoLiq, 1, 2);
  plano_->addWidget(cmbLiquidaciones, 1, 3, 1, 3);
}

void Franja::CrearFila3() {
  lblAgrupa = new Etiqueta(QStringLiteral("lblAgrupa"), QStringLiteral("C. de Costo:"), caja);
  cmbAgrupa = new Combo(QStringLiteral("cmbAgrupa"), caja);
  lblAgrupa->Acompanar(cmbAgrupa, QStringLiteral("O"));
  filtro_ = new QWidget(caja);
  Label1 = new Etiqueta(QStringLiteral("Label1"), QStringLiteral("Filtro"), filtro_);
  auto* fila = new QHBoxLayout(filtro_);
  fila->setContentsMargins(0, 0, 0, 0);
  fila->setSpacing(14);
  fila->addWidget(Label1);
  const char* textos[] = {"Por Texto", "Por Relación"};
  const char* teclas[] = {"X", "L"};
  for (const std::size_t i : {std::size_t{1}, std::size_t{0}}) {
    OptFiltro[i] = new QRadioButton(QString::fromUtf8(textos[i]), filtro_);
    OptFiltro[i]->setObjectName(QStringLiteral("OptFiltro_%1").arg(i));
    PonerTecla(OptFiltro[i], QString::fromUtf8(teclas[i]));
    fila->addWidget(OptFiltro[i]);
  }
  txtFiltro = CrearCaja(QStringLiteral("txtFiltro"), filtro_);
  txtFiltro->setPlaceholderText(QStringLiteral("condición, por ejemplo: Horas>0"));
  Label1->Acompanar(txtFiltro, QStringLiteral("F"));
  fila->addWidget(txtFiltro, 1);
  plano_->addWidget(lblAgrupa, 2, 0);
  plano_->addWidget(cmbAgrupa, 2, 1);
  plano_->addWidget(filtro_, 2, 2, 1, 4);
}

void Franja::PonerCentroDeCosto(bool visible) {
  if (visible == con_centro_) return;
  con_centro_ = visible;
  plano_->removeWidget(filtro_);
  plano_->addWidget(filtro_, 2, visible ? 2 : 0, 1, visible ? 4 : 6);
}

}  // namespace gui
