// Tables that live in another file.
#include "base/file.h"
#include "base/text.h"
#include "engine_mdb/source_internal.h"

namespace engine_mdb {
namespace {

// The last part of a path of any system.
std::string_view NombreDeArchivo(std::string_view ruta) {
  const std::size_t barra = ruta.find_last_of("/\\");
  return barra == std::string_view::npos ? ruta : ruta.substr(barra + 1);
}

// A value of a text "KEY=value;KEY=value", or nothing.
std::string Valor(std::string_view texto, std::string_view clave) {
  for (const std::string& pieza : base::Split(texto, ";")) {
    const std::size_t igual = pieza.find('=');
    if (igual != std::string::npos && base::IgualSinCaso(base::Trim(pieza.substr(0, igual)), clave))
      return pieza.substr(igual + 1);
  }
  return {};
}

bool EsDeAccess(std::string_view conexion) {
  return conexion.empty() || conexion.front() == ';' ||
         base::EmpiezaCon(conexion, "MS Access", base::Comparar::SinCaso);
}

}  // namespace

std::shared_ptr<mdb::Base> Vinculos::Abrir(const mdb::Objeto& objeto) {
  const std::string quien = "La tabla vinculada " + objeto.nombre;
  if (!EsDeAccess(objeto.conexion))
    throw base::Error(quien + " no es de otra base de Access (" +
                      std::string(base::Split(objeto.conexion, ";").front()) +
                      "): no se puede leer desde aquí.");
  const std::string guardada = objeto.base.empty() ? Valor(objeto.conexion, "DATABASE") : objeto.base;
  if (guardada.empty()) throw base::Error(quien + " no dice de qué archivo es.");
  auto& base = abiertos_[guardada];
  if (base != nullptr) return base;
  // The path is that of the machine where the link was made; the file often travels with ours.
  std::string ruta = guardada;
  if (!base::ExisteArchivo(ruta)) ruta = base::UnirRuta(base::CarpetaDe(ruta_), NombreDeArchivo(guardada));
  if (!base::ExisteArchivo(ruta))
    throw base::StorageFault(quien + " es del archivo " + guardada +
                             ", que no existe, ni está junto a la base.");
  try {
    base = mdb::Base::Abrir(ruta, {true, Valor(objeto.conexion, "PWD")});
  } catch (const base::Error& e) {
    abiertos_.erase(guardada);
    throw base::StorageFault(quien + " no se puede leer: " + e.Descripcion());
  }
  return base;
}

}  // namespace engine_mdb
