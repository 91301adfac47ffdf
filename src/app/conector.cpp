#include "app/conector.h"

#include "base/encoding.h"
#include "base/file.h"
#include "base/number.h"
#include "base/text.h"
#include "engine_sqlite/sqlite_connection.h"
#include "settings/config_file.h"

namespace app {
namespace {

constexpr std::string_view kMarcaSqlite{"SQLite format 3\0", 16};
constexpr std::string_view kMarcaJet{"Standard Jet DB"}, kMarcaAce{"Standard ACE DB"};

bool EsAccess(std::string_view bytes) {
  if (bytes.size() < 20) return false;
  bytes.remove_prefix(4);
  return base::EmpiezaCon(bytes, kMarcaJet) || base::EmpiezaCon(bytes, kMarcaAce);
}

Conexion Fallo(std::string motivo) { return {nullptr, 0, std::move(motivo)}; }

Conexion AbrirSqlite(const std::string& ruta, const ports::Clock& reloj) {
  Conexion c;
  try {
    engine_sqlite::Opciones opciones;
    opciones.reloj = &reloj;
    c.conexion = engine_sqlite::Abrir(ruta, opciones);
  } catch (const base::Error& e) {
    c.motivo = e.Descripcion();
  }
  return c;
}

Conexion AbrirArchivo(const std::string& ruta, const ports::Clock& reloj) {
  if (!base::ExisteArchivo(ruta)) return Fallo("El archivo '" + ruta + "' no existe");
  const auto cabecera = base::LeerPrincipio(ruta, 64);
  if (!cabecera) return Fallo("No se puede leer el archivo '" + ruta + "'");
  if (EsAccess(*cabecera))
    return Fallo("'" + ruta +
                 "' es una base de Access: esta versión abre solamente bases del motor propio (sqlite)");
  if (!base::EmpiezaCon(*cabecera, kMarcaSqlite))
    return Fallo("'" + ruta + "' no es una base de datos conocida");
  return AbrirSqlite(ruta, reloj);
}

bool EsRelativa(std::string_view ruta) {
  return !(base::EmpiezaCon(ruta, "/") || base::EmpiezaCon(ruta, "\\") ||
           (ruta.size() > 1 && ruta[1] == ':'));
}

// An identifier that 32 bits do not hold is none.
std::int32_t IdUsuario(std::string_view texto) {
  std::int32_t id = 0;
  base::ErrorIgnorado("ConfBase: Usuario", nullptr, [&] { id = base::Entero32(base::Parse(texto)); });
  return id;
}

Conexion AbrirConfBase(const std::string& ruta, const ports::Clock& reloj) {
  const auto bytes = base::LeerArchivo(ruta);
  if (!bytes) return Fallo("No se puede leer el archivo '" + ruta + "'");
  std::string texto = base::DecodificarArchivo(*bytes);
  if (!base::Contiene(texto, base::kCrLf)) texto = base::Reemplazar(texto, "\n", base::kCrLf);
  const auto valor = [&](const char* clave) { return base::Trim(settings::ValorDeTexto(texto, clave)); };
  const std::string motor = base::Minusculas(valor("Motor")), nombre = valor("Base");
  if (nombre.empty()) return Fallo("'" + ruta + "' no dice qué base abrir (falta la clave Base)");
  if (!motor.empty() && motor != "sqlite") return Fallo("'" + ruta + "' pide un motor desconocido: " + motor);
  Conexion c =
      AbrirArchivo(EsRelativa(nombre) ? base::UnirRuta(base::CarpetaDe(ruta), nombre) : nombre, reloj);
  c.id_Usuario = IdUsuario(valor("Usuario"));
  return c;
}

}  // namespace

Conexion AbrirReferencia(const std::string& referencia, const ports::Clock& reloj) {
  if (!base::IgualSinCaso(base::NombreDe(referencia), "ConfBase.cfg")) return AbrirArchivo(referencia, reloj);
  if (!base::ExisteArchivo(referencia)) return Fallo("El archivo '" + referencia + "' no existe");
  return AbrirConfBase(referencia, reloj);
}

}  // namespace app
