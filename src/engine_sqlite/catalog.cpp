#include "engine_sqlite/catalog_internal.h"

#include "base/text.h"
#include "engine_sqlite/sqlite_internal.h"
#include "jetsql/runtime.h"

namespace engine_sqlite {
namespace {

std::string Texto(sqlite3_stmt* s, int columna) { return std::string(TextOf(s, columna)); }

// Calls `fila` for each row.
template <typename Fila>
void Recorrer(sqlite3* base, const Sentencia& s, Fila&& fila) {
  int rc = SQLITE_OK;
  while ((rc = sqlite3_step(s.get())) == SQLITE_ROW) fila(s.get());
  if (rc != SQLITE_DONE) LanzarError(base);
}

void LigarTexto(const Sentencia& s, int indice, std::string_view texto) {
  sqlite3_bind_text64(s.get(), indice, texto.data(), texto.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

}  // namespace

void CatalogoSqlite::Leer() {
  if (leido_) return;
  bool hay_consultas = false;
  const Sentencia s =
      Preparar(base_,
               "SELECT name FROM sqlite_schema WHERE type IN ('table','view') AND name NOT LIKE 'sqlite\\_%' "
               "ESCAPE '\\'");
  Recorrer(base_, s, [&](sqlite3_stmt* f) {
    std::string nombre = Texto(f, 0);
    if (nombre == kTablaDeConsultas) {
      hay_consultas = true;
      return;
    }
    std::string clave = base::Minusculas(nombre);
    tablas_[std::move(clave)].nombre = std::move(nombre);
  });
  if (hay_consultas) LeerConsultas();
  leido_ = true;
}

void CatalogoSqlite::LeerConsultas() {
  const Sentencia s = Preparar(base_, "SELECT Nombre, Texto FROM MSysConsultas");
  Recorrer(base_, s, [&](sqlite3_stmt* f) {
    std::string nombre = Texto(f, 0);
    std::string clave = base::Minusculas(nombre);
    consultas_[std::move(clave)] = {std::move(nombre), Texto(f, 1)};
  });
}

const jetsql::TablaInfo* CatalogoSqlite::Tabla(std::string_view nombre) {
  if (fuente_ != nullptr) return fuente_->Tabla(nombre);
  Leer();
  const auto it = tablas_.find(base::Minusculas(nombre));
  if (it == tablas_.end()) return nullptr;
  Entrada& entrada = it->second;
  if (entrada.columnas == nullptr) {
    auto info = std::make_unique<jetsql::TablaInfo>();
    info->nombre = entrada.nombre;
    const Sentencia s = Preparar(base_, "SELECT name, type FROM pragma_table_info(?1) ORDER BY cid");
    LigarTexto(s, 1, entrada.nombre);
    Recorrer(base_, s, [&](sqlite3_stmt* f) {
      info->columnas.push_back({Texto(f, 0), jetsql::TipoDeDeclaracion(Texto(f, 1))});
    });
    entrada.columnas = std::move(info);
  }
  return entrada.columnas.get();
}

const std::string* CatalogoSqlite::Consulta(std::string_view nombre) {
  if (fuente_ != nullptr) return fuente_->Consulta(nombre);
  Leer();
  const auto it = consultas_.find(base::Minusculas(nombre));
  return it == consultas_.end() ? nullptr : &it->second.texto;
}

void CatalogoSqlite::Olvidar() {
  leido_ = false;
  tablas_.clear();
  consultas_.clear();
}

void CatalogoSqlite::VerificarNombreLibre(const jetsql::Definicion& definicion) {
  using Que = jetsql::Definicion::Que;
  const bool tabla = definicion.que == Que::CrearTabla, vista = definicion.que == Que::CrearVista;
  if (!tabla && !vista) return;
  if (base::IgualSinCaso(definicion.nombre, kTablaDeConsultas))
    throw db::Error("El nombre " + definicion.nombre + " está reservado.");
  if (Consulta(definicion.nombre) != nullptr)
    throw db::Error("Ya existe una consulta con el nombre " + definicion.nombre + ".");
  if (vista && Tabla(definicion.nombre) != nullptr)
    throw db::Error("Ya existe una tabla con el nombre " + definicion.nombre + ".");
}

void CatalogoSqlite::CrearConsulta(std::string_view nombre, std::string_view texto) {
  EjecutarPropio(
      base_,
      "CREATE TABLE IF NOT EXISTS MSysConsultas (Nombre TEXT PRIMARY KEY NOT NULL, Texto TEXT NOT NULL)");
  const Sentencia s = Preparar(base_, "INSERT INTO MSysConsultas (Nombre, Texto) VALUES (?1, ?2)");
  LigarTexto(s, 1, nombre);
  LigarTexto(s, 2, texto);
  Recorrer(base_, s, [](sqlite3_stmt*) {});
}

void CatalogoSqlite::BorrarConsulta(std::string_view nombre) {
  if (Consulta(nombre) == nullptr) throw db::Error("No existe la consulta " + std::string(nombre) + ".");
  const Sentencia s = Preparar(base_, "DELETE FROM MSysConsultas WHERE Nombre = ?1");
  LigarTexto(s, 1, consultas_.at(base::Minusculas(nombre)).nombre);
  Recorrer(base_, s, [](sqlite3_stmt*) {});
}

}  // namespace engine_sqlite
