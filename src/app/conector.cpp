#include "app/conector.h"

#include "app/conector_internal.h"
#include "base/encoding.h"
#include "base/file.h"
#include "base/number.h"
#include "base/text.h"
#include "engine_mdb/mdb_connection.h"
#include "engine_odbc/odbc_connection.h"
#include "engine_sqlite/sqlite_connection.h"
#include "relations/code_relations.h"
#include "settings/config_file.h"

namespace app {
namespace {

constexpr std::string_view kMarcaSqlite{"SQLite format 3\0", 16};
constexpr std::string_view kMarcaJet{"Standard Jet DB"}, kMarcaAce{"Standard ACE DB"};

struct Modo {
  const ports::Clock& reloj;
  bool copia = false;  // in memory
};

bool EsAccess(std::string_view bytes) {
  if (bytes.size() < 20) return false;
  bytes.remove_prefix(4);
  return base::StartsWith(bytes, kMarcaJet) || base::StartsWith(bytes, kMarcaAce);
}

Conexion AbrirSqlite(const std::string& ruta, const Modo& modo) {
  Conexion c;
  c.archivo = ruta;
  try {
    engine_sqlite::Options opciones;
    opciones.clock = &modo.reloj;
    opciones.private_copy = modo.copia;
    c.conexion = engine_sqlite::Open(ruta, opciones);
  } catch (const base::Error& e) {
    c.motivo = e.Description();
  }
  return c;
}

// The file is opened for writing: it stays ours until it is closed. One that cannot be written opens all the
// same, and says so when something is written.
Conexion AbrirMdb(const std::string& ruta, const std::string& contrasena, const Modo& modo) {
  Conexion c;
  c.archivo = ruta;
  try {
    engine_mdb::Options opciones;
    opciones.clock = &modo.reloj;
    opciones.private_copy = modo.copia;
    opciones.password = contrasena;
    c.conexion = engine_mdb::Open(ruta, opciones);
  } catch (const base::Error& e) {
    c.motivo = e.Description();
  }
  return c;
}

// `motor`: what ConfBase.cfg asks for, or empty.
Conexion AbrirArchivo(const std::string& ruta, const std::string& motor, const std::string& contrasena,
                      const Modo& modo) {
  if (!base::FileExists(ruta)) return Fallo("El archivo '" + ruta + "' no existe");
  const auto cabecera = base::ReadBeginning(ruta, 64);
  if (!cabecera) return Fallo("No se puede leer el archivo '" + ruta + "'");
  const bool access = EsAccess(*cabecera), propia = base::StartsWith(*cabecera, kMarcaSqlite);
  if (!access && !propia) return Fallo("'" + ruta + "' no es una base de datos conocida");
  if (access && motor == "sqlite") return Fallo("'" + ruta + "' es una base de Access: pide el motor mdb");
  if (propia && motor == "mdb") return Fallo("'" + ruta + "' no es una base de Access: pide el motor sqlite");
  if (propia) return AbrirSqlite(ruta, modo);
  // Other programs may have the file open: where there is a driver that shares it with them, it is used.
  if (motor.empty() && !modo.copia && engine_odbc::HasAccessDriver())
    return AbrirOdbc({ruta, ruta, contrasena, {}});
  return AbrirMdb(ruta, contrasena, modo);
}

bool EsRelativa(std::string_view ruta) {
  return !(base::StartsWith(ruta, "/") || base::StartsWith(ruta, "\\") ||
           (ruta.size() > 1 && ruta[1] == ':'));
}

// Of the database; its blanks count.
std::string Contrasena(const std::string& texto) {
  std::string contrasena = settings::ValorDeTexto(texto, "Contraseña");
  return contrasena.empty() ? settings::ValorDeTexto(texto, "Contrasena") : contrasena;
}

Conexion AbrirConfBase(const std::string& ruta, const Modo& modo) {
  const auto bytes = base::ReadWholeFile(ruta);
  if (!bytes) return Fallo("No se puede leer el archivo '" + ruta + "'");
  std::string texto = base::DecodeFile(*bytes);
  if (!base::Contains(texto, base::kCrLf)) texto = base::Replace(texto, "\n", base::kCrLf);
  const auto valor = [&](const char* clave) { return base::Trim(settings::ValorDeTexto(texto, clave)); };
  const std::string motor = base::LowerCase(valor("Motor")), nombre = valor("Base");
  if (nombre.empty()) return Fallo("'" + ruta + "' no dice qué base abrir (falta la clave Base)");
  const std::string en_disco = EsRelativa(nombre) ? base::JoinPath(base::FolderOf(ruta), nombre) : nombre;
  Conexion c;
  if (motor == "odbc" && modo.copia)
    return Fallo("De una base que abre un controlador no se puede hacer una copia en memoria");
  if (motor == "odbc")
    c = AbrirOdbc({nombre, en_disco, Contrasena(texto), valor("Driver")});
  else if (motor.empty() || motor == "sqlite" || motor == "mdb")
    c = AbrirArchivo(en_disco, motor, Contrasena(texto), modo);
  else
    return Fallo("'" + ruta + "' pide un motor desconocido: " + motor);
  c.id_Usuario = relations::IdentificadorDe(valor("Usuario")).value_or(0);
  return c;
}

Conexion Abrir(const std::string& referencia, const Modo& modo) {
  if (!base::EqualIgnoringCase(base::NameOf(referencia), "ConfBase.cfg"))
    return AbrirArchivo(referencia, {}, {}, modo);
  if (!base::FileExists(referencia)) return Fallo("El archivo '" + referencia + "' no existe");
  return AbrirConfBase(referencia, modo);
}

}  // namespace

std::string MotivoSoloLectura(const db::Connection* conexion) {
  return conexion == nullptr || !conexion->IsOpen() ? std::string() : engine_mdb::ReadOnlyReason(*conexion);
}

Conexion Fallo(std::string motivo) {
  Conexion c;
  c.motivo = std::move(motivo);
  return c;
}

Conexion AbrirReferencia(const std::string& referencia, const ports::Clock& reloj) {
  return Abrir(referencia, {reloj, false});
}

Conexion AbrirCopia(const std::string& referencia, const ports::Clock& reloj) {
  return Abrir(referencia, {reloj, true});
}

}  // namespace app
