// The tables of a data source and their columns, as the driver lists them; read when first asked.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "engine_odbc/odbc_internal.h"
#include "jetsql/catalog.h"

namespace engine_odbc {

class CatalogoOdbc final : public jetsql::Catalogo {
 public:
  // `enlace` is open whenever something is asked, and outlives the catalog.
  explicit CatalogoOdbc(const Enlace& enlace) : enlace_(enlace) {}

  // Tables, views and saved queries alike: to the driver all have columns. Throws db::Error.
  const jetsql::TablaInfo* Tabla(std::string_view nombre) override;
  // A driver does not tell the text of a saved query.
  const std::string* Consulta(std::string_view) override { return nullptr; }

  void Olvidar();

 private:
  struct Entrada {
    std::string nombre;  // as it was created
    std::unique_ptr<const jetsql::TablaInfo> columnas;
  };
  void LeerTablas();
  void LeerColumnas(Entrada& entrada);

  const Enlace& enlace_;
  bool leido_ = false;
  std::unordered_map<std::string, Entrada> tablas_;  // by name in lower case
};

}  // namespace engine_odbc
