#include "base/encoding.h"
#include "base/file.h"
#include "cli/consola.h"
#include "cli/salida.h"
#include "cli/verbos.h"
#include "settings/config_file.h"

namespace cli {
namespace {

int Exportar(app::Programa& programa, const OpcionesRelaciones& o, const std::string& ajustes, Flujos f) {
  const std::string motivo = programa.Informes().MotivoParaNoEscribir({o.archivo}, {ajustes});
  if (!motivo.empty()) {
    f.err << motivo << '\n';
    return kUso;
  }
  if (!base::WriteWholeFile(o.archivo, programa.Relaciones().Csv())) {
    f.err << "No se puede escribir el archivo '" << o.archivo << "'\n";
    return kEntradaSalida;
  }
  f.out << "Relaciones escritas en '" << o.archivo << "': " << programa.Ver().relaciones.Cantidad() << '\n';
  return Terminar(f, kTodo);
}

int Importar(app::Programa& programa, const OpcionesRelaciones& o, const std::string& ajustes, Flujos f) {
  const auto bytes = base::ReadWholeFile(o.archivo);
  if (!bytes) {
    const bool esta = base::FileExists(o.archivo);
    f.err << "El Archivo '" << o.archivo << (esta ? "' no se puede leer\n" : "' no existe\n");
    return esta ? kEntradaSalida : kSinArchivo;
  }
  const relations::LecturaDeRelaciones leidas = programa.Relaciones().LeerCsv(base::DecodeFile(*bytes));
  for (const auto& error : leidas.errores)
    f.err << o.archivo << ", línea " << error.linea << ": " << error.motivo << '\n';
  for (const auto& aviso : leidas.avisos)
    f.err << "Aviso: " << o.archivo << ", línea " << aviso.linea << ": " << aviso.motivo << '\n';
  if (!leidas.errores.empty()) {
    f.err << "No se cambió ninguna relación.\n";
    return kArchivoMalo;
  }
  std::string motivo = programa.Relaciones().Reemplazar(leidas.relaciones);
  if (motivo.empty()) motivo = programa.Relaciones().Guardar(ajustes);
  if (!motivo.empty()) {
    f.err << motivo << "\nNo se cambió ninguna relación.\n";
    return kEntradaSalida;
  }
  f.out << "Relaciones importadas de '" << o.archivo << "': " << leidas.relaciones.size() << '\n';
  return Terminar(f, kTodo);
}

}  // namespace

int Relaciones(const OpcionesRelaciones& o, const std::string& carpeta, const ports::Clock& reloj, Flujos f) {
  const std::string ruta = o.ajustes ? *o.ajustes : settings::RutaDeAjustes(carpeta);
  settings::Ajustes ajustes = settings::LeerAjustes(ruta);
  if (ajustes.estado == settings::EstadoAjustes::Ilegible) {
    f.err << "No se pueden leer los ajustes. " << ajustes.motivo << '\n';
    return kEntradaSalida;
  }
  if (o.ajustes && ajustes.estado == settings::EstadoAjustes::Falta) {
    f.err << "El Archivo '" << ruta << "' no existe\n";
    return kSinArchivo;
  }
  Consola consola(f.err);
  app::Arranque arranque;
  arranque.carpeta = carpeta;
  arranque.ajustes = std::move(ajustes.texto);
  arranque.una_transaccion = true;  // what starting writes is taken back
  app::Programa programa({consola, consola, reloj, nullptr}, arranque);
  programa.IniciarCon(o.base, "");
  if (!programa.Sesion().Abierta()) {
    f.err << programa.Ver().motivo_base << '\n';
    return kSinBase;
  }
  if (programa.Ver().relaciones.carga_fallida) {
    f.err << "No se pueden leer las relaciones: " << programa.Ver().relaciones.motivo_fallo << '\n';
    programa.Deshacer();
    return kEntradaSalida;
  }
  const int codigo = o.accion == "exportar" ? Exportar(programa, o, ruta, f) : Importar(programa, o, ruta, f);
  programa.Deshacer();
  return codigo;
}

}  // namespace cli
