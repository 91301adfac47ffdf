// What the translator asks of a SQLite file: tables with typed columns, and saved queries.
//
// A saved query is a row (Nombre, Texto) of the table MSysConsultas, which the catalog hides. The list of
// names is read when the first name is asked, a table's columns when that table is; Olvidar makes both be
// read anew.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "jetsql/catalog.h"
#include "jetsql/translate.h"

namespace engine_sqlite {

inline constexpr std::string_view kTablaDeConsultas = "MSysConsultas";

class CatalogoSqlite final : public jetsql::Catalogo {
 public:
  explicit CatalogoSqlite(sqlite3* base) : base_(base) {}
  // The catalog of a mirror: the source answers alone.
  explicit CatalogoSqlite(jetsql::Catalogo& fuente) : fuente_(&fuente) {}

  const jetsql::TablaInfo* Tabla(std::string_view nombre) override;
  const std::string* Consulta(std::string_view nombre) override;

  void Olvidar();

  // Throws db::Error when the definition would take a name that is in use or ours.
  void VerificarNombreLibre(const jetsql::Definicion& definicion);
  // Throws db::Error when there is none to delete.
  void CrearConsulta(std::string_view nombre, std::string_view texto);
  void BorrarConsulta(std::string_view nombre);

 private:
  struct Entrada {
    std::string nombre;                                 // as it was created
    std::unique_ptr<const jetsql::TablaInfo> columnas;  // null until asked
  };
  struct Guardada {
    std::string nombre;  // as it was created
    std::string texto;
  };
  void Leer();
  void LeerConsultas();

  sqlite3* base_ = nullptr;
  jetsql::Catalogo* fuente_ = nullptr;
  bool leido_ = false;
  std::unordered_map<std::string, Entrada> tablas_;      // by name in lower case
  std::unordered_map<std::string, Guardada> consultas_;  // likewise
};

}  // namespace engine_sqlite
