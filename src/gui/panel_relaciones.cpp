#include "gui/panel_relaciones.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

#include "gui/estilo.h"
#include "gui/iconos.h"
#include "gui/panel_formato.h"

namespace gui {

void PanelRelaciones::Crear(const Tema& tema, QWidget* padre) {
  AreConf = new Panel(QStringLiteral("AreConf_1"),
                      QStringLiteral("Relaciones entre los códigos del reloj y los conceptos"), tema, padre);
  edicion = new QWidget(AreConf);
  CrearFilas(tema);
  GridRelaciones = new Grilla(QStringLiteral("GridRelaciones"), tema, AreConf);
  GridRelaciones->setSelectionMode(QAbstractItemView::SingleSelection);
  GridRelaciones->setAccessibleName(QStringLiteral("Relaciones"));
  GridRelaciones->PonerAviso(QStringLiteral("No hay relaciones"));
  AreConf->hide();
}

void PanelRelaciones::CrearFilas(const Tema& tema) {
  auto* plano = new QGridLayout(edicion);
  plano->setContentsMargins(0, 0, 0, 0);
  plano->setHorizontalSpacing(10);
  plano->setVerticalSpacing(8);
  lblCmbConceptos = new Etiqueta(QStringLiteral("lblCmbConceptos"), QStringLiteral("Concepto"), edicion);
  cmbConceptos = new Combo(QStringLiteral("cmbConceptos"), edicion);
  cmbConceptos->enter_es_tab = true;
  cmbConceptos->setMinimumWidth(170);
  cmbConceptos->setMaximumWidth(300);
  lblCmbConceptos->Acompanar(cmbConceptos, QStringLiteral("C"));
  lblConcepto = new Etiqueta(QStringLiteral("lblConcepto"), QString(), edicion);
  lblConcepto->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  chkVincAutConOrsa =
      CrearTilde("chkVincAutConOrsa", "Vincular Automaticamente con mismos código de Orsa", "V", edicion);
  lblTxtTipo = new Etiqueta(QStringLiteral("lblTxtTipo"), QStringLiteral("Códigos del reloj"), edicion);
  txtTipo = CrearCaja(QStringLiteral("txtTipo"), edicion);
  txtTipo->setPlaceholderText(QStringLiteral("por ejemplo: 07,HC"));
  txtTipo->setMinimumWidth(130);
  lblTxtTipo->Acompanar(txtTipo, QStringLiteral("D"));
  lblAgrupaDef = new Etiqueta(QStringLiteral("lblAgrupaDef"), QStringLiteral("C. de Costo:"), edicion);
  cmbAgrupaDef = new Combo(QStringLiteral("cmbAgrupaDef"), edicion);
  cmbAgrupaDef->enter_es_tab = true;
  lblAgrupaDef->Acompanar(cmbAgrupaDef, QStringLiteral("N"));
  lblColor = new Etiqueta(QStringLiteral("lblColor"), QStringLiteral("Color"), edicion);
  cbColor = CrearBoton(QStringLiteral("cbColor"), QString(), edicion);
  cbColor->setProperty(kPapel, QLatin1String(kMuestra));
  cbColor->setFixedWidth(44);
  cbColor->setAccessibleName(QStringLiteral("Color"));
  lblColor->Acompanar(cbColor);
  cbAgrQuit[0] = CrearBoton(QStringLiteral("cbAgrQuit_0"), QStringLiteral("Agregar"), edicion);
  cbAgrQuit[0]->setIcon(Icono(Dibujo::Mas, tema.texto, tema.apagado));
  PonerTecla(cbAgrQuit[0], QStringLiteral("G"));
  cbAgrQuit[1] = CrearBoton(QStringLiteral("cbAgrQuit_1"), QStringLiteral("Quitar"), edicion);
  cbAgrQuit[1]->setIcon(Icono(Dibujo::Menos, tema.texto, tema.apagado));
  PonerTecla(cbAgrQuit[1], QStringLiteral("Q"));

  auto* arriba = new QHBoxLayout;
  arriba->setSpacing(10);
  arriba->addWidget(cmbConceptos, 3);
  arriba->addWidget(lblConcepto, 2);
  arriba->addWidget(chkVincAutConOrsa);
  fila_ = new QHBoxLayout;
  fila_->setSpacing(10);
  for (QWidget* w :
       {static_cast<QWidget*>(txtTipo), static_cast<QWidget*>(lblAgrupaDef),
        static_cast<QWidget*>(cmbAgrupaDef), static_cast<QWidget*>(lblColor), static_cast<QWidget*>(cbColor),
        static_cast<QWidget*>(cbAgrQuit[0]), static_cast<QWidget*>(cbAgrQuit[1])})
    fila_->addWidget(w);
  plano->addWidget(lblCmbConceptos, 0, 0);
  plano->addLayout(arriba, 0, 1);
  plano->addWidget(lblTxtTipo, 1, 0);
  plano->addLayout(fila_, 1, 1);
  abajo_ = new QHBoxLayout;
  abajo_->setSpacing(10);
  plano->addLayout(abajo_, 2, 1);
  plano->setColumnStretch(1, 1);
}

void PanelRelaciones::Colocar(bool centro_por_linea) {
  fila_->setStretchFactor(txtTipo, centro_por_linea ? 1 : 4);
  fila_->setStretchFactor(cmbAgrupaDef, centro_por_linea ? 1 : 0);
}

void PanelRelaciones::Ajustar(int ancho) {
  const QList<QWidget*> finales = {lblColor, cbColor, cbAgrQuit[0], cbAgrQuit[1]};
  int necesario = 0;
  for (const QHBoxLayout* fila : {fila_, abajo_})
    for (int i = 0; i < fila->count(); ++i)
      if (const QWidget* w = fila->itemAt(i)->widget(); w != nullptr && !w->isHidden())
        necesario += fila->spacing() + w->minimumSizeHint().expandedTo(w->minimumSize()).width();
  const bool estrecho = necesario > ancho - lblTxtTipo->sizeHint().width();
  if (estrecho == estrecho_) return;
  estrecho_ = estrecho;
  for (QWidget* w : finales) (estrecho ? fila_ : abajo_)->removeWidget(w);
  while (QLayoutItem* hueco = abajo_->takeAt(0)) delete hueco;
  for (QWidget* w : finales) {
    (estrecho ? abajo_ : fila_)->addWidget(w);
    if (estrecho && w == cbColor) abajo_->addStretch(1);
  }
}

}  // namespace gui
