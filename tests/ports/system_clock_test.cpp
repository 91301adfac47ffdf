#include "ports/system_clock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ctime>

namespace {

TEST(SystemClock, TellsTheMachinesLocalTimeToTheSecond) {
  const std::time_t before = std::time(nullptr);
  const std::tm local = *std::localtime(&before);
  const base::Date told = ports::SystemClock().Now();
  const double expected = base::MakeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday).serial +
                          base::MakeTime(local.tm_hour, local.tm_min, local.tm_sec).serial;
  constexpr double kSecond = 1.0 / 86400;
  EXPECT_NEAR(told.serial, expected, 60 * kSecond);
  EXPECT_NEAR(told.serial * 86400, std::round(told.serial * 86400), 1e-3);
}

TEST(SystemClock, TodayHasNoTimeOfDay) {
  const base::Date today = ports::SystemClock().Today();
  EXPECT_EQ(today.serial, std::trunc(today.serial));
}

}  // namespace
