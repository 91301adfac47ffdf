#include "gui/lista_de_aparte.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "base/encoding.h"
#include "gui/grilla.h"
#include "gui/piezas.h"
#include "gui/texto.h"

namespace gui {

ModeloDeAparte::ModeloDeAparte(const app::Estado& estado, bool mal_formadas, QObject* padre)
    : QAbstractTableModel(padre), estado_(estado) {
  for (const importfile::LineaAparte& linea : estado.aparte)
    if (linea.mal_formada == mal_formadas) lineas_.push_back(linea.linea);
}

int ModeloDeAparte::rowCount(const QModelIndex& padre) const {
  return padre.isValid() ? 0 : static_cast<int>(lineas_.size());
}

QVariant ModeloDeAparte::headerData(int seccion, Qt::Orientation orientacion, int rol) const {
  if (orientacion != Qt::Horizontal || rol != Qt::DisplayRole) return {};
  return seccion == 0 ? QStringLiteral("Línea") : QStringLiteral("Texto");
}

QVariant ModeloDeAparte::data(const QModelIndex& indice, int rol) const {
  const auto i = static_cast<std::size_t>(indice.row());
  if (!indice.isValid() || i >= lineas_.size()) return {};
  if (rol == Qt::TextAlignmentRole && indice.column() == 0)
    return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
  if (rol != Qt::DisplayRole) return {};
  if (indice.column() == 0) return static_cast<qulonglong>(lineas_[i]);
  const importfile::ArchivoLeido& archivo = estado_.archivo;
  if (lineas_[i] < 1 || lineas_[i] > archivo.Lineas()) return {};
  std::string texto = base::DecodeFile(std::string(archivo.Marca()) + std::string(archivo.Linea(lineas_[i])));
  while (!texto.empty() && (texto.back() == '\r' || texto.back() == '\n')) texto.pop_back();
  return De(texto);
}

ListaDeAparte::ListaDeAparte(const app::Estado& estado, bool mal_formadas, const Tema& tema, QWidget* padre)
    : QDialog(padre), lista_(new Grilla(QStringLiteral("GridAparte"), tema, this)) {
  setObjectName(mal_formadas ? QStringLiteral("lista_mal_formadas") : QStringLiteral("lista_filtradas"));
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(mal_formadas ? QStringLiteral("Líneas mal formadas")
                              : QStringLiteral("Líneas descartadas por el filtro"));
  lista_->setModel(new ModeloDeAparte(estado, mal_formadas, this));
  lista_->PonerAnchos({{70, 60, 0}, {520, 200, 1}});
  auto* que =
      new QLabel(mal_formadas ? QStringLiteral("Traen menos de tres datos: no se importan. Ctrl+C copia "
                                               "las elegidas.")
                              : QStringLiteral("No cumplen el filtro: no se importan. Ctrl+C copia las "
                                               "elegidas."),
                 this);
  que->setWordWrap(true);
  auto* cerrar = CrearBoton(QStringLiteral("cbCerrarLista"), QStringLiteral("Cerrar"), this);
  connect(cerrar, &QPushButton::clicked, this, &QDialog::close);
  auto* plano = new QVBoxLayout(this);
  plano->addWidget(que);
  plano->addWidget(lista_, 1);
  plano->addWidget(cerrar, 0, Qt::AlignRight);
  resize(640, 420);
  lista_->setFocus();
}

}  // namespace gui
