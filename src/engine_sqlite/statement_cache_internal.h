// Translated and prepared statements, so that a text of a known shape costs neither a translation nor a
// preparation.
#pragma once

#include <array>
#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "db/recordset.h"
#include "engine_sqlite/sqlite_internal.h"
#include "jetsql/translate.h"

namespace engine_sqlite {

// One translation, ready to run with the literals of any statement of its shape.
struct Preparada {
  jetsql::Traduccion traduccion;
  std::shared_ptr<const db::Columnas> columnas;
  std::vector<Sentencia> sentencias;       // one a step; null until it first runs
  std::vector<base::Valor> valores_fijos;  // of the literals that the translation depends on
};

// By shape; the shapes used longest ago are dropped first.
class CacheDeFormas {
 public:
  std::shared_ptr<Preparada> Buscar(const jetsql::Forma& forma);
  void Guardar(const jetsql::Forma& forma, std::shared_ptr<Preparada> preparada);
  void Vaciar();

 private:
  static constexpr std::size_t kFormas = 300;
  static constexpr std::size_t kVariantes = 16;  // of one shape, by the literals it depends on
  struct Entrada {
    std::string clave;
    std::vector<std::shared_ptr<Preparada>> variantes;
  };
  std::list<Entrada> entradas_;                                                   // the last used first
  std::unordered_map<std::string_view, std::list<Entrada>::iterator> por_clave_;  // views into the entries
};

// By the whole text, for texts that are run again unchanged. A text is kept from its second run on, so that a
// stream of texts that never return costs a hash each.
class CacheDeTextos {
 public:
  struct Ranura {
    std::size_t huella = 0;
    std::string texto;  // empty until the second run
    std::shared_ptr<Preparada> preparada;
    std::vector<base::Valor> literales;
  };
  // The slot of a text; null when it does not hold that text.
  const Ranura* Buscar(std::string_view sql);
  void Guardar(std::string_view sql, const std::shared_ptr<Preparada>& preparada,
               const std::vector<base::Valor>& literales);
  void Vaciar();

 private:
  static constexpr std::size_t kRanuras = 128;
  static constexpr std::size_t kTextoMasLargo = 1 << 16;
  std::array<Ranura, kRanuras> ranuras_;
};

}  // namespace engine_sqlite
