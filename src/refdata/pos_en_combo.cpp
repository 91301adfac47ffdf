#include "refdata/concepts_catalogue.h"

namespace refdata {

int PosEnCombo(const formula::ListControl& combo, std::int64_t valor) {
  for (std::size_t i = combo.items.size(); i-- > 0;)
    if (combo.items[i].dato == valor) return static_cast<int>(i);
  return -1;
}

}  // namespace refdata
