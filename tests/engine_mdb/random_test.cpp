// The same random statements on this engine and on the embedded one: the same rows, the same refusals, and a
// sound file at the end.
#include <random>

#include "engine_sqlite/sqlite_connection.h"
#include "test_bench.h"

namespace {

class AtRandom : public test::MdbTestBench {
 protected:
  void SetUp() override {
    NewDatabase();
    model_ = engine_sqlite::Open(":memory:");
    for (const char* sql :
         {"CREATE TABLE grupo (g LONG CONSTRAINT pk PRIMARY KEY, n TEXT(12))",
          "CREATE TABLE pieza (p LONG CONSTRAINT pk PRIMARY KEY, g LONG CONSTRAINT de REFERENCES grupo (g) "
          "ON UPDATE "
          "CASCADE ON DELETE CASCADE, t TEXT(30), m MEMO, d DOUBLE, f DATETIME, b YESNO)",
          "CREATE UNIQUE INDEX por_t ON pieza (t, b)", "CREATE INDEX por_f ON pieza (f DESC)"}) {
      base_->Execute(sql);
      model_->Execute(sql);
    }
  }

  int N(int to) { return static_cast<int>(random_() % static_cast<unsigned>(to)); }
  std::string Text() {
    static const char* const kTexts[] = {"Ñandú", "ñandu", "coté", "CÔTE", "O''Neil",
                                         "co-op", "",      "zz",   "Äther"};
    return "'" + std::string(kTexts[N(9)]) + std::to_string(N(40)) + "'";
  }
  std::string Memo() { return "String(" + std::to_string(N(4) == 0 ? N(9000) : N(60)) + ", 'mñ')"; }
  std::string Statement() {
    const std::string p = std::to_string(N(300)), g = std::to_string(N(12));
    switch (N(9)) {
      case 0:
        return "INSERT INTO grupo VALUES (" + g + ", " + Text() + ")";
      case 1:
        return "UPDATE grupo SET g = " + std::to_string(N(14)) + " WHERE g = " + g;
      case 2:
        return N(4) == 0 ? "DELETE FROM grupo WHERE g = " + g
                         : "UPDATE grupo SET n = " + Text() + " WHERE g < " + g;
      case 3:
        return "UPDATE pieza SET t = " + Text() + ", m = " + Memo() + " WHERE p = " + p;
      case 4:
        return "UPDATE pieza SET d = Iif(d Is Null, 0, d) + 1.5, b = Not b WHERE p < " + p;
      case 5:
        return "DELETE FROM pieza WHERE p = " + p;
      case 6:
        return "UPDATE pieza SET g = " + (N(3) == 0 ? std::string("Null") : g) + " WHERE p = " + p;
      default:
        return "INSERT INTO pieza VALUES (" + p + ", " + (N(5) == 0 ? std::string("Null") : g) + ", " +
               Text() + ", " + Memo() + ", " + std::to_string(N(1000)) + ".25, #01/" +
               std::to_string(N(28) + 1) + "/2024#, " + (N(2) == 0 ? "True" : "False") + ")";
    }
  }
  void RunInBoth(const std::string& sql) {
    const std::string a = FailureOfStep([&] { base_->Execute(sql); });
    const std::string b = FailureOfStep([&] { model_->Execute(sql); });
    ASSERT_EQ(a == "no error", b == "no error") << sql << "\n" << a << "\n" << b;
    if (a == "no error") ++done_;
    ASSERT_EQ(base_->AffectedRows(), model_->AffectedRows()) << sql;
  }
  void Compare() {
    for (const char* sql :
         {"SELECT * FROM grupo ORDER BY g", "SELECT * FROM pieza ORDER BY p",
          "SELECT Count(*) FROM pieza WHERE f > #01/14/2024#", "SELECT t, p FROM pieza ORDER BY t, p"})
      ASSERT_EQ(support::Rows(base_->Execute(sql)), support::Rows(model_->Execute(sql))) << sql;
  }

  std::mt19937 random_{20261120};
  std::unique_ptr<db::Connection> model_;
  int done_ = 0;
};

TEST_F(AtRandom, TheyGiveTheSameAsTheOtherEngine) {
  constexpr int kRounds = 120, kPerRound = 40;
  for (int round = 0; round < kRounds; ++round) {
    const bool transaction = N(3) != 0;
    if (transaction) {
      base_->BeginTrans();
      model_->BeginTrans();
    }
    for (int i = 0; i < (transaction ? kPerRound : 4); ++i) ASSERT_NO_FATAL_FAILURE(RunInBoth(Statement()));
    if (transaction) {
      const bool stays = N(4) != 0;
      stays ? base_->CommitTrans() : base_->RollbackTrans();
      stays ? model_->CommitTrans() : model_->RollbackTrans();
    }
    if (N(5) == 0) OpenConnection();
    ASSERT_NO_FATAL_FAILURE(Compare()) << round;
  }
  EXPECT_GT(done_, 1000);
  OpenConnection();
  ASSERT_NO_FATAL_FAILURE(Compare());
  Check();
}

}  // namespace
