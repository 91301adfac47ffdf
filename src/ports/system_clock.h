// The machine's clock, in local time, to the second.
#pragma once

#include "ports/clock.h"

namespace ports {

class SystemClock final : public Clock {
 public:
  // Throws base::Error when the machine does not tell its time.
  base::Date Now() const override;
};

}  // namespace ports
