#include "gui/barra_de_vista.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>

#include "gui/piezas.h"

namespace gui {
namespace {

class EtiquetaDeVista final : public QLabel {
 public:
  EtiquetaDeVista(const Tema& tema, QWidget* padre) : QLabel(padre), tema_(tema) {
    setObjectName(QStringLiteral("lblVista"));
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  }
  bool destacado = false;

 protected:
  void paintEvent(QPaintEvent*) override {
    if (text().isEmpty()) return;
    constexpr int kMargen = 8;
    QPainter p(this);
    if (destacado) {
      p.fillRect(rect(), tema_.aviso);
      p.fillRect(QRect(0, 0, kMargen / 2, height()), tema_.aviso_borde);
    }
    p.setPen(destacado ? tema_.aviso_texto : tema_.tenue);
    const QRect dentro = rect().adjusted(kMargen, 0, -kMargen / 2, 0);
    p.drawText(dentro, Qt::AlignVCenter | Qt::AlignLeft,
               fontMetrics().elidedText(text(), Qt::ElideRight, dentro.width()));
  }

 private:
  Tema tema_;
};

}  // namespace

void BarraDeVista::Crear(const Tema& tema, QWidget* padre) {
  caja = new QWidget(padre);
  caja->setObjectName(QStringLiteral("barra_de_vista"));
  auto* plano = new QHBoxLayout(caja);
  plano->setContentsMargins(0, 0, 0, 0);
  plano->setSpacing(10);
  txtBuscarEnGrilla = CrearCaja(QStringLiteral("txtBuscarEnGrilla"), caja);
  txtBuscarEnGrilla->setPlaceholderText(QStringLiteral("Buscar en la grilla (Ctrl+F)"));
  txtBuscarEnGrilla->setAccessibleName(QStringLiteral("Buscar en la grilla"));
  txtBuscarEnGrilla->setClearButtonEnabled(true);
  txtBuscarEnGrilla->setFixedWidth(240);
  lblVista = new EtiquetaDeVista(tema, caja);
  cbMostrarTodas = CrearBoton(QStringLiteral("cbMostrarTodas"), QStringLiteral("Mostrar todas"), caja);
  cbMostrarTodas->setToolTip(QStringLiteral("Mostrar todas las líneas otra vez (Esc)"));
  cbMostrarTodas->hide();
  plano->addWidget(txtBuscarEnGrilla);
  plano->addWidget(lblVista, 1);
  plano->addWidget(cbMostrarTodas);
}

void BarraDeVista::Poner(const QString& texto, bool destacado) {
  auto* etiqueta = static_cast<EtiquetaDeVista*>(lblVista);
  if (etiqueta->text() == texto && etiqueta->destacado == destacado) return;
  etiqueta->destacado = destacado;
  etiqueta->setText(texto);
  etiqueta->setToolTip(texto);
  etiqueta->update();
  cbMostrarTodas->setVisible(destacado);
}

}  // namespace gui
