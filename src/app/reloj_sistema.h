// The machine's clock, in local time.
#pragma once

#include "ports/clock.h"

namespace app {

class RelojSistema final : public ports::Clock {
 public:
  base::Fecha Ahora() const override;
};

}  // namespace app
