// importdemarcas: the window.
#include "app/carpeta_ajustes.h"
#include "app/programa.h"
#include "app/reloj_sistema.h"
#include "base/standard_streams.h"
#include "gui/aplicacion.h"
#include "gui/dialogos.h"
#include "gui/frm_principal2.h"

int main(int argc, char** argv) {
  base::OpenStandardStreams();
  gui::Aplicacion aplicacion(argc, argv);
  const gui::Tema tema = gui::Tema::Segun(QApplication::palette());
  gui::Aplicacion::Vestir(tema);

  const app::RelojSistema reloj;
  gui::Bomba bomba;
  gui::Dialogos dialogos;
  app::Arranque arranque;
  arranque.carpeta = app::CarpetaDeAjustes();
  arranque.version = IDM_VERSION;
  app::Programa programa({dialogos, dialogos, reloj, &bomba}, arranque);
  gui::FrmPrincipal2 ventana(programa, tema, &bomba);
  dialogos.PonerVentana(&ventana);
  if (!ventana.Iniciar(gui::Aplicacion::LineaDeComandos())) return 0;
  ventana.show();
  const int codigo = QApplication::exec();
  if (!ventana.Cerrada()) programa.Unload();  // ended without a close: the options are kept all the same
  return codigo;
}
