#include "gui/aplicacion.h"

#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QToolTip>
#include <QTranslator>
#include <cstdlib>
#include <exception>

#include "gui/estilo.h"

// The macro names a function of the global namespace.
static void CargarRecursos() { Q_INIT_RESOURCE(importdemarcas); }

namespace gui {

Aplicacion::Aplicacion(int& argc, char** argv) : QApplication(argc, argv) {
  CargarRecursos();
  setApplicationName(QStringLiteral("ImportDeMarcas"));
  setApplicationVersion(QStringLiteral(IDM_VERSION));
  setDesktopFileName(QStringLiteral("importdemarcas"));
  setWindowIcon(QIcon(QStringLiteral(":/importdemarcas.png")));
  QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Uruguay));
  // The captions of Qt's own dialogs; without the file they stay in English.
  auto* traduccion = new QTranslator(this);
  if (traduccion->load(QStringLiteral("qtbase_es"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
    installTranslator(traduccion);
}

void Aplicacion::Vestir(const Tema& tema) {
  setStyle(new Estilo(tema));
  setPalette(tema.Paleta());
  QToolTip::setPalette(tema.Paleta());
}

QString Aplicacion::LineaDeComandos() { return arguments().mid(1).join(QLatin1Char(' ')); }

bool Aplicacion::notify(QObject* objeto, QEvent* evento) {
  try {
    return QApplication::notify(objeto, evento);
  } catch (const std::exception& defecto) {
    QMessageBox::critical(nullptr, applicationName(),
                          QStringLiteral("Error inesperado: ") + QString::fromUtf8(defecto.what()));
    std::_Exit(EXIT_FAILURE);
  }
}

}  // namespace gui
