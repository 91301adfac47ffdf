// The main of every program of unit tests that has none of its own.
#include <gtest/gtest.h>

#include "base/standard_streams.h"

int main(int argc, char** argv) {
  base::OpenStandardStreams();
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
