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
#include "jetsql/mould.h"
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

// The last texts that ran, as moulds for those to come: a text that differs from one of them in literals
// alone is not even cut into tokens. Looked for by how the text begins, up to its first digit or quote.
class CacheDeMoldes {
 public:
  struct Ranura {
    jetsql::Molde molde;
    std::shared_ptr<Preparada> preparada;
  };
  struct Hallado {
    Ranura* ranura = nullptr;
    bool igual = false;  // the text itself was there
  };
  // The slot whose mould the text fits, holding the text's literals; none when there is no such slot.
  Hallado Buscar(std::string_view sql);
  void Guardar(std::string_view sql, const jetsql::Forma& forma, const std::shared_ptr<Preparada>& preparada);
  void Vaciar();

 private:
  static constexpr std::size_t kGrupos = 64;
  static constexpr std::size_t kTextoMasLargo = 1 << 16;  // a longer one is not kept
  static constexpr std::size_t kPorGrupo = 4;
  struct Grupo {
    std::array<Ranura, kPorGrupo> ranuras;
    std::size_t siguiente = 0;  // the slot to be given up next
  };
  Grupo& GrupoDe(std::string_view sql);

  std::array<Grupo, kGrupos> grupos_;
};

}  // namespace engine_sqlite
