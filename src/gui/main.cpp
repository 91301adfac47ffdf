// importdemarcas: the window.
#include <QSettings>

#include "app/carpeta_ajustes.h"
#include "app/programa.h"
#include "base/standard_streams.h"
#include "gui/aplicacion.h"
#include "gui/dialogos.h"
#include "gui/fin_de_sesion.h"
#include "gui/frm_principal2.h"
#include "ports/system_clock.h"

namespace {

constexpr int kNoSeLeen = 74;  // the settings, as the command line says it

}  // namespace

int main(int argc, char** argv) {
  base::OpenStandardStreams();
  gui::FinDeSesion fin_de_sesion;
  gui::Aplicacion aplicacion(argc, argv);
  const gui::Tema tema = gui::Tema::Segun(QApplication::palette());
  gui::Aplicacion::Vestir(tema);

  const ports::SystemClock reloj;
  gui::Bomba bomba;
  gui::Dialogos dialogos;
  app::Arranque arranque;
  arranque.carpeta = app::CarpetaDeAjustes();
  arranque.version = IDM_VERSION;
  arranque.proponer = true;
  app::Programa programa({dialogos, dialogos, reloj, &bomba}, arranque);
  gui::FrmPrincipal2 ventana(programa, tema, &bomba);
  dialogos.PonerVentana(&ventana);
  QSettings escritorio(QApplication::applicationName(), QStringLiteral("ventana"));
  ventana.Recordar(&escritorio);
  fin_de_sesion.Atender([&ventana] { ventana.Terminar(); });
  if (!ventana.Iniciar(gui::Aplicacion::LineaDeComandos()))
    return programa.Ver().motivo_fin.empty() ? 0 : kNoSeLeen;
  int codigo = 0;
  if (!ventana.Terminando()) {
    ventana.show();
    codigo = QApplication::exec();
  }
  // Ended without a close: the options are kept all the same.
  if (!ventana.Cerrada()) programa.Unload(ventana.Terminando());
  return codigo;
}
