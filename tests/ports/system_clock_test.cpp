#include "ports/system_clock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ctime>

namespace {

TEST(SystemClock, TellsTheMachinesLocalTimeToTheSecond) {
  const std::time_t before = std::time(nullptr);
  const std::tm local = *std::localtime(&before);
  const base::Fecha told = ports::SystemClock().Ahora();
  const double expected = base::FechaDe(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday).serie +
                          base::HoraDe(local.tm_hour, local.tm_min, local.tm_sec).serie;
  constexpr double kSecond = 1.0 / 86400;
  EXPECT_NEAR(told.serie, expected, 60 * kSecond);
  EXPECT_NEAR(told.serie * 86400, std::round(told.serie * 86400), 1e-3);
}

TEST(SystemClock, TodayHasNoTimeOfDay) {
  const base::Fecha today = ports::SystemClock().Hoy();
  EXPECT_EQ(today.serie, std::trunc(today.serie));
}

}  // namespace
