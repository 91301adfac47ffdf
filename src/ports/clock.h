// Today and now, so that a run can be reproduced.
#pragma once

#include "base/date.h"

namespace ports {

class Clock {
 public:
  virtual ~Clock() = default;
  virtual base::Fecha Ahora() const = 0;
  base::Fecha Hoy() const;  // Ahora without its time of day
};

inline base::Fecha Clock::Hoy() const {
  const base::PartesFecha p = base::Partes(Ahora());
  return base::FechaDe(p.anio, p.mes, p.dia);
}

class RelojFijo final : public Clock {
 public:
  explicit RelojFijo(base::Fecha ahora) : ahora_(ahora) {}
  base::Fecha Ahora() const override { return ahora_; }

 private:
  base::Fecha ahora_;
};

}  // namespace ports
