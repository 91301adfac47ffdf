#include "ports/system_clock.h"

#include <ctime>

#include "base/error.h"

namespace ports {

base::Date SystemClock::Now() const {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
#ifdef _WIN32
  const bool told = localtime_s(&local, &now) == 0;
#else
  const bool told = localtime_r(&now, &local) != nullptr;
#endif
  if (!told) throw base::Error("El reloj del sistema no da la hora.");
  const double day = base::MakeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday).serial;
  return {day + base::MakeTime(local.tm_hour, local.tm_min, local.tm_sec).serial};
}

}  // namespace ports
