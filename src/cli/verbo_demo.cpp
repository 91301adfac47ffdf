#include "app/carpeta_demo.h"
#include "base/error.h"
#include "base/file.h"
#include "base/format.h"
#include "base/text.h"
#include "cli/salida.h"
#include "cli/verbos.h"

namespace cli {
namespace {

// As a shell takes it: bare when it is plain, else between quotes.
std::string Entrecomillada(const std::string& texto) {
  constexpr std::string_view kLlanas =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./:=+,@%";
  if (!texto.empty() && texto.find_first_not_of(kLlanas) == std::string::npos) return texto;
#ifdef _WIN32
  return "\"" + texto + "\"";
#else
  return "'" + base::Replace(texto, "'", "'\\''") + "'";
#endif
}

}  // namespace

int Demo(const OpcionesDemo& o, const ports::Clock& reloj, Flujos f) {
  app::CarpetaDemo demo;
  try {
    demo = app::CrearCarpetaDemo(o.carpeta, o.mes, reloj, o.sqlite ? demo::Motor::Sqlite : demo::Motor::Mdb);
  } catch (const base::Error& e) {
    f.err << e.Description() << '\n';
    return kEntradaSalida;
  }
  f.out << "Base, archivos y ajustes de muestra en '" << o.carpeta
        << "'. Para importar el archivo delimitado:\n"
        << Entrecomillada(o.programa) << " importar --base " << Entrecomillada(demo.referencia)
        << " --archivo " << Entrecomillada(demo.archivo) << " --mes " << base::IsoDate(o.mes).substr(0, 7)
        << " --ajustes " << Entrecomillada(demo.ajustes) << '\n';
  return Terminar(f, kTodo);
}

}  // namespace cli
