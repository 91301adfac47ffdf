#include "base/text.h"
#include "relations/code_relations.h"

namespace relations {

std::string SinComasExternas(std::string_view externos) {
  const auto largo = static_cast<std::ptrdiff_t>(base::Length(externos));
  if (largo < 2 || !base::Contains(externos, ",")) return std::string(externos);
  return base::Mid(externos, 2, largo - 2);
}

}  // namespace relations
