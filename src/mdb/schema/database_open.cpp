#include "base/file.h"
#include "mdb/pages/page_file.h"
#include "mdb/schema/database.h"
#include "mdb/schema/new_file.h"

namespace mdb {
namespace {

// All of it or no file; never over one that is there.
void CrearArchivo(base::Disco& disco, const std::string& ruta, Vista bytes) {
  if (disco.Existe(ruta)) throw base::ErrorDeDisco("No se puede crear", ruta, base::FallaDisco::YaExiste, {});
  // A new base would be taken for the one that this journal is of.
  if (disco.Existe(RutaDeDiario(ruta)))
    throw base::StorageFault("No se puede crear " + base::NombreDe(ruta) + ": en la carpeta quedó " +
                             base::NombreDe(RutaDeDiario(ruta)) + ", el diario de otra base de ese nombre");
  const std::string nueva = ruta + "-nueva";
  base::AnyErrorNoted("CrearArchivo", nullptr, [&] { disco.Borrar(nueva); });  // of a run that was cut
  try {
    const auto archivo = disco.Abrir(nueva, base::ModoArchivo::Nuevo);
    archivo->Escribir(0, bytes);
    archivo->Sincronizar();
  } catch (const base::Error&) {
    base::AnyErrorNoted("CrearArchivo", nullptr, [&] { disco.Borrar(nueva); });
    throw;
  }
  disco.Mover(nueva, ruta);
  disco.SincronizarCarpetaDe(ruta);
}

}  // namespace

std::unique_ptr<Base> Base::Abrir(std::string_view ruta, const OpcionesBase& opciones) {
  auto paginas = PaginasDeArchivo::Abrir(ruta, opciones.solo_lectura);
  const Cabecera& c = paginas->Cab();
  if (c.cifrado_ajeno)
    throw base::StorageFault(
        "La base está cifrada con una contraseña de Access 2007 o posterior: no se puede leer");
  if (!c.contrasena.empty() && c.contrasena != opciones.contrasena)
    throw base::StorageFault(opciones.contrasena.empty() ? "La base tiene contraseña y no se dio ninguna"
                                                         : "La contraseña de la base no es la que se dio");
  return std::make_unique<Base>(std::move(paginas));
}

std::unique_ptr<Base> Base::Crear(std::string_view ruta, std::uint16_t orden, base::Fecha ahora) {
  base::DiscoDelSistema disco;
  CrearArchivo(disco, std::string(ruta), NuevaBase(orden, ahora));
  auto base = Abrir(ruta);
  if (!base->MotivoSoloLectura().empty()) throw base::StorageFault(base->MotivoSoloLectura());
  return base;
}

}  // namespace mdb
