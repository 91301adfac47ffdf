// The table of the dialect's functions.
#include "jetsql/functions.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using jetsql::FindFunction;

TEST(Functions, AreFoundWhateverTheCaseOrTheTextSign) {
  for (const char* name : {"left", "LEFT", "Left", "LEFT$", "left$"}) {
    const jetsql::Function* f = FindFunction(name);
    ASSERT_NE(f, nullptr) << name;
    EXPECT_EQ(f->name, "LEFT");
    EXPECT_EQ(f->type, base::Type::Text);
    EXPECT_TRUE(f->tagged);
  }
}

TEST(Functions, TheTranslatorsOwnAndUnknownOnesAreNotThere) {
  for (const char* name : {"IIF", "SWITCH", "CHOOSE", "ISNULL", "SUM", "COUNT", "", "$", "NADA", "LEFTT",
                           "UNNOMBREMUYLARGODEVERDAD", "Lef"})
    EXPECT_EQ(FindFunction(name), nullptr) << name;
}

TEST(Functions, EachIsFoundByItsNameAndHasPossibleArguments) {
  ASSERT_FALSE(jetsql::Functions().empty());
  for (const jetsql::Function& f : jetsql::Functions()) {
    EXPECT_EQ(FindFunction(f.name), &f);
    EXPECT_GE(f.minimum, 0);
    EXPECT_TRUE(f.maximum == -1 || f.maximum >= f.minimum) << f.name;
  }
}

TEST(Functions, OnlyTheClockAndRandomnessChange) {
  std::string changing;
  for (const jetsql::Function& f : jetsql::Functions())
    if (!f.deterministic) changing += std::string(f.name) + " ";
  EXPECT_EQ(changing, "DATE NOW RND TIME TIMER ");
}

}  // namespace
