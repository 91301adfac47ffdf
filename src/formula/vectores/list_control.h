// What a combo box or list holds, without a window.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace formula {

struct ItemLista {
  std::string texto;
  std::int64_t dato = 0;  // the item's numeric datum, or its value column
};

struct ListControl {
  std::vector<ItemLista> items;
  int ListIndex = -1;  // -1: none selected
  bool enabled = true;
  bool visible = true;

  const ItemLista* Elegido() const {
    return ListIndex >= 0 && ListIndex < static_cast<int>(items.size())
               ? &items[static_cast<std::size_t>(ListIndex)]
               : nullptr;
  }
};

}  // namespace formula
