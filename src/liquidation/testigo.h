// Who watches a run from inside its transaction.
#pragma once

#include <vector>

#include "importfile/import_grid.h"

namespace liquidation {

struct Importacion;

class Testigo {
 public:
  virtual ~Testigo() = default;
  // The transaction has begun and nothing is written. What this or the next throws (base::Error) undoes the
  // run, and its description is the reason that is told.
  virtual void AntesDeEscribir() = 0;
  // Around each row, which holds its result after it.
  virtual void AntesDeFila(const importfile::ImportRow&) {}
  virtual void DespuesDeFila(const importfile::ImportRow&) {}
  // The last update has run; the rows hold their results and `importacion` its totals. What follows is the
  // commit, or the rollback of a run that ends with one.
  virtual void AntesDeTerminar(const std::vector<importfile::ImportRow>& filas,
                               const Importacion& importacion) = 0;
  // The transaction has ended: `confirmada`, what it wrote stands for good. Also called after a commit that
  // failed; never throws.
  virtual void Terminada(bool confirmada) = 0;
};

}  // namespace liquidation
