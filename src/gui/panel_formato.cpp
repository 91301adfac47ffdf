#include "gui/panel_formato.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "gui/caja_de_separador.h"

namespace gui {

QCheckBox* CrearTilde(const char* nombre, const char* texto, const char* tecla, QWidget* padre) {
  auto* tilde = new QCheckBox(QString::fromUtf8(texto), padre);
  tilde->setObjectName(QLatin1String(nombre));
  if (*tecla != '\0') PonerTecla(tilde, QLatin1String(tecla));
  return tilde;
}

void PanelFormato::Crear(const Tema& tema, QWidget* padre) {
  AreConf =
      new Panel(QStringLiteral("AreConf_0"), QStringLiteral("Formato del archivo y opciones"), tema, padre);
  contenido = new QWidget;
  auto* plano = new QHBoxLayout(contenido);
  plano->setContentsMargins(Panel::kMargen, 12, Panel::kMargen, Panel::kMargen);
  plano->setSpacing(16);
  plano->addWidget(CrearArchivo(tema), 1);
  plano->addWidget(CrearOpciones(), 1);
  AreConf->Contener(contenido);
  AreConf->hide();
}

QWidget* PanelFormato::CrearArchivo(const Tema& tema) {
  auto* caja = new QWidget(contenido);
  caja->setObjectName(QStringLiteral("formato"));
  auto* plano = new QVBoxLayout(caja);
  plano->setContentsMargins(0, 0, 0, 0);
  plano->setSpacing(8);
  const char* textos[] = {"Delimitado Por", "De Ancho Fijo"};
  const char* teclas[] = {"D", "H"};
  for (std::size_t i = 0; i < 2; ++i) {
    optTipoArch[i] = new QRadioButton(QString::fromUtf8(textos[i]), caja);
    optTipoArch[i]->setObjectName(QStringLiteral("optTipoArch_%1").arg(i));
    PonerTecla(optTipoArch[i], QLatin1String(teclas[i]));
  }
  txtSeparador = new CajaDeSeparador(QStringLiteral("txtSeparador"), caja);
  txtSeparador->setAccessibleName(QStringLiteral("Separador"));
  cbTabulador = CrearBoton(QStringLiteral("cbTabulador"), QStringLiteral("Tabulador"), caja);
  cbTabulador->setToolTip(QStringLiteral("Separar por el tabulador, que no se puede escribir en la casilla"));
  QObject::connect(cbTabulador, &QPushButton::clicked, txtSeparador,
                   [this] { txtSeparador->setText(QStringLiteral("\t")); });
  auto* fila = new QHBoxLayout;
  fila->setSpacing(10);
  fila->addWidget(optTipoArch[0]);
  fila->addWidget(txtSeparador);
  fila->addWidget(cbTabulador);
  fila->addStretch(1);
  plano->addLayout(fila);
  plano->addWidget(optTipoArch[1], 0, Qt::AlignLeft);
  plano->addLayout(CrearColumnas(caja));
  GridPVConf = new Grilla(QStringLiteral("GridPVConf"), tema, caja);
  GridPVConf->horizontalHeader()->setSectionsMovable(true);
  GridPVConf->setAccessibleName(QStringLiteral("Primeras líneas del archivo"));
  GridPVConf->PonerAviso(QStringLiteral("Aquí se ven las primeras líneas del archivo"));
  plano->addWidget(GridPVConf, 1);
  auto* pie =
      new Etiqueta(QStringLiteral("lblPVConf"),
                   QStringLiteral("Arrastre los títulos para decir qué dato trae cada columna."), caja);
  pie->setForegroundRole(QPalette::PlaceholderText);
  plano->addWidget(pie);
  return caja;
}

// One column a piece of the line, over the preview's.
QGridLayout* PanelFormato::CrearColumnas(QWidget* padre) {
  auto* plano = new QGridLayout;
  plano->setHorizontalSpacing(6);
  plano->setVerticalSpacing(4);
  plano->addWidget(new Etiqueta(QStringLiteral("lblComienzo"), QStringLiteral("Comienzo"), padre), 1, 0);
  plano->addWidget(new Etiqueta(QStringLiteral("lblLargo"), QStringLiteral("Largo"), padre), 2, 0);
  for (std::size_t i = 0; i < txtAE.size(); ++i) {
    const QChar letra = QChar(static_cast<char16_t>(u'A' + i));
    const int columna = static_cast<int>(i) + 1;
    lblAE[i] = new Etiqueta(QStringLiteral("lbl") + letra, QString(letra), padre);
    plano->addWidget(lblAE[i], 0, columna);
    for (std::size_t j = 0; j < 2; ++j) {
      txtAE[i][j] = CrearCaja(QStringLiteral("txt%1_%2").arg(letra).arg(j), padre);
      txtAE[i][j]->setAccessibleName((j == 0 ? QStringLiteral("Comienzo ") : QStringLiteral("Largo ")) +
                                     letra);
      txtAE[i][j]->setMinimumWidth(36);
      txtAE[i][j]->setMaxLength(6);
      txtAE[i][j]->setAlignment(Qt::AlignRight);
      plano->addWidget(txtAE[i][j], static_cast<int>(j) + 1, columna);
    }
    lblAE[i]->Acompanar(txtAE[i][0]);
    plano->setColumnStretch(columna, 1);
  }
  return plano;
}

QWidget* PanelFormato::CrearOpciones() {
  auto* caja = new QWidget(contenido);
  caja->setObjectName(QStringLiteral("opciones"));
  auto* plano = new QVBoxLayout(caja);
  plano->setContentsMargins(0, 0, 0, 0);
  plano->setSpacing(2);
  Label3 = new Etiqueta(QStringLiteral("Label3"), QStringLiteral("Clave de relación con el contrato"), caja);
  cbTipoClave = new Combo(QStringLiteral("cbTipoClave"), caja);
  Label3->Acompanar(cbTipoClave, QStringLiteral("V"));
  Label2 = new Etiqueta(QStringLiteral("Label2"), QStringLiteral("Aplicar Formula a cada linea"), caja);
  txtFormulaSGN = CrearCaja(QStringLiteral("txtFormulaSGN"), caja);
  Label2->Acompanar(txtFormulaSGN, QStringLiteral("U"));
  auto* arriba = new QGridLayout;
  arriba->setHorizontalSpacing(10);
  arriba->setVerticalSpacing(6);
  cbTipoClave->setMinimumContentsLength(4);
  arriba->addWidget(Label3, 0, 0);
  arriba->addWidget(cbTipoClave, 0, 1);
  arriba->addWidget(Label2, 1, 0);
  arriba->addWidget(txtFormulaSGN, 1, 1);
  arriba->setColumnStretch(1, 1);
  plano->addLayout(arriba);
  plano->addSpacing(8);
  chkSoloDReloj = CrearTilde("chkSoloDReloj", "Solo Datos de Reloj", "J", caja);
  chkCodigoNumerico = CrearTilde("chkCodigoNumerico", "Codigo de Dato Numérico", "G", caja);
  chkNoImpValEnCero = CrearTilde("chkNoImpValEnCero", "No Importar Cantidades en 0", "0", caja);
  chkLiqHCaMensuales = CrearTilde("chkLiqHCaMensuales", "Liquidar Hs Com. a Mensuales", "Q", caja);
  chkSumarAyaIng = CrearTilde("chkSumarAyaIng", "Sumar a concepto ya ingresado", "Y", caja);
  chkTotalizarConc = CrearTilde("chkTotalizarConc", "Totalizar Conceptos", "Z", caja);
  chkConCC = CrearTilde("chkConCC", "Con Centro de Costo por Linea a importar", "N", caja);
  chkCCDefEnDatExt = CrearTilde("chkCCDefEnDatExt", "Centro de Costo definido en dato extra", "", caja);
  chkImportarCuotas = CrearTilde("chkImportarCuotas", "Importar Cuotas", "C", caja);
  for (QCheckBox* tilde : {chkSoloDReloj, chkCodigoNumerico, chkNoImpValEnCero, chkLiqHCaMensuales,
                           chkSumarAyaIng, chkTotalizarConc, chkConCC, chkCCDefEnDatExt, chkImportarCuotas})
    plano->addWidget(tilde);
  lblImpCuotas = new Etiqueta(QStringLiteral("lblImpCuotas"),
                              QStringLiteral("Texto para Conceptos \"Tipo Cuota\""), caja);
  txtTextoTipoCuota = CrearCaja(QStringLiteral("txtTextoTipoCuota"), caja);
  lblImpCuotas->Acompanar(txtTextoTipoCuota);
  auto* abajo = new QHBoxLayout;
  abajo->setSpacing(10);
  abajo->addWidget(lblImpCuotas);
  abajo->addWidget(txtTextoTipoCuota, 1);
  plano->addLayout(abajo);
  plano->addStretch(1);
  return caja;
}

}  // namespace gui
