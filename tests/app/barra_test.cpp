#include "app/barra.h"

#include <gtest/gtest.h>

TEST(Barra, TheFirstCallFillsOneStep) {
  app::Barra barra;
  barra.ActuBarra(25);
  EXPECT_TRUE(barra.Visible());
  EXPECT_EQ(barra.Porcentaje(), 25.0F);
  barra.ActuBarra(-1);
  EXPECT_EQ(barra.Porcentaje(), 50.0F);
}

TEST(Barra, StaysAtAHundred) {
  app::Barra barra;
  barra.ActuBarra(40);
  for (int i = 0; i < 5; ++i) barra.ActuBarra(-1);
  EXPECT_EQ(barra.Porcentaje(), 100.0F);
}

TEST(Barra, AStepOfZeroHidesItEvenWhenItNeverShowed) {
  app::Barra barra;
  barra.ActuBarra(0);
  EXPECT_FALSE(barra.Visible());
  EXPECT_EQ(barra.Porcentaje(), 0.0F);
  barra.ActuBarra(50);
  barra.ActuBarra(0);
  EXPECT_FALSE(barra.Visible());
  EXPECT_EQ(barra.Porcentaje(), 0.0F);
}

TEST(Barra, StartsAnewWithEachStep) {
  app::Barra barra;
  barra.ActuBarra(60);
  barra.ActuBarra(10);
  EXPECT_EQ(barra.Porcentaje(), 10.0F);
}

TEST(Barra, YieldsToEventsUnlessToldNotTo) {
  struct Bomba final : ports::EventPump {
    void DoEvents() override { ++veces; }
    int veces = 0;
  } bomba;
  app::Barra barra(&bomba);
  barra.ActuBarra(10, true);
  EXPECT_EQ(bomba.veces, 0);
  barra.ActuBarra(-1);
  EXPECT_EQ(bomba.veces, 2);  // before and after painting
}

// A bar of very many items does not run the events for each.
TEST(Barra, YieldsAThousandTimesAtMostTwice) {
  struct Bomba final : ports::EventPump {
    void DoEvents() override { ++veces; }
    int veces = 0;
  } bomba;
  app::Barra barra(&bomba);
  barra.ActuBarra(100.0F / 200000.0F);
  for (int i = 1; i < 200000; ++i) barra.ActuBarra(-1);
  EXPECT_GT(bomba.veces, 1000);
  EXPECT_LE(bomba.veces, 2002);
}
