// Today and now, so that a run can be reproduced.
#pragma once

#include "base/date.h"

namespace ports {

class Clock {
 public:
  virtual ~Clock() = default;
  virtual base::Date Now() const = 0;
  base::Date Today() const;  // Now without its time of day
};

inline base::Date Clock::Today() const {
  const base::DateParts p = base::PartsOf(Now());
  return base::MakeDate(p.year, p.month, p.day);
}

class FixedClock final : public Clock {
 public:
  explicit FixedClock(base::Date now) : now_(now) {}
  base::Date Now() const override { return now_; }

 private:
  base::Date now_;
};

}  // namespace ports
