// A whole import, from the opening of the base to the commit, with reads that fail and pages that are
// damaged, one after the other, on both engines: the month is as before or as after a good run, and when it
// is not as after, the program says an error.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "base/file.h"
#include "failing_reads.h"
#include "mesa.h"

namespace {

constexpr std::size_t kPage = 4096;

class WholeImport : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    ASSERT_EQ(table_.Demo().codigo, 0);
    before_ = Bytes();
    rows_before_ = table_.Filas();
    good_ = Import();
    ASSERT_LE(good_.codigo, 1) << good_.err;
    after_ = Bytes();
    rows_after_ = table_.Filas();
    ASSERT_NE(rows_before_, rows_after_);
  }
  std::string Bytes() const { return *base::ReadWholeFile(table_.Base()); }
  // A base of these bytes, without what another run may have left beside it.
  void Put(const std::string& bytes) const {
    for (const char* beside : {"-wal", "-shm", "-journal", "-diario", ".corridas"})
      std::filesystem::remove(std::filesystem::u8path(table_.Base() + beside));
    ASSERT_TRUE(base::WriteWholeFile(table_.Base(), bytes));
  }
  prueba::Salida Import() const {
    // The embedded file is the company's base only when its reference says so.
    const std::string reference = Sqlite() ? table_.Ruta("ConfBase.cfg") : table_.Base();
    try {
      return table_.Correr({"importar", "--base", reference, "--archivo", table_.Ruta("horas.txt"), "--mes",
                            "2026-10", "--hoy", "2026-10-20"});
    } catch (const base::Error& e) {
      return {74, "", e.what()};
    }
  }
  bool Sqlite() const { return std::string(GetParam()) == "sqlite"; }

  prueba::Mesa table_{GetParam()};
  prueba::Salida good_;
  std::string before_, after_, rows_before_, rows_after_;
};

TEST_P(WholeImport, EachReadFailsOnce) {
  int faults = 0;
  for (const bool always : {false, true}) {
    for (int read = 1;; ++read) {
      SCOPED_TRACE(std::to_string(read) + (always ? " and all after it" : " once"));
      Put(before_);
      prueba::Salida run;
      bool reached = false;
      {
        prueba::FailingReads reads(table_.Carpeta() + "/Personal.");
        reads.FailAt(read, always);
        run = Import();
        reached = reads.Reached();
      }
      // The base as the next program finds it: what the embedded engine wrote may still stand in its log.
      const std::string now = table_.Filas();
      if (run.codigo != good_.codigo) {
        ++faults;
        EXPECT_GT(run.codigo, 1);
        EXPECT_NE(run.err, "");
        ASSERT_TRUE(now == rows_before_) << run.codigo << " " << run.err;
        EXPECT_TRUE(Sqlite() || Bytes() == before_);
      } else {
        EXPECT_EQ(run.out, good_.out);
        ASSERT_TRUE(now == rows_after_) << run.err;
        EXPECT_TRUE(Sqlite() || Bytes() == after_);
      }
      if (!reached) break;
    }
  }
  EXPECT_GT(faults, 40);
}

TEST_P(WholeImport, EachPageIsDamaged) {
  int faults = 0, good = 0;
  for (const int filling : {0xA5, 0}) {
    for (std::size_t at = 0; at < before_.size(); at += kPage) {
      SCOPED_TRACE("page " + std::to_string(at / kPage) + " is all " + std::to_string(filling));
      std::string damaged = before_;
      std::fill_n(damaged.begin() + static_cast<std::ptrdiff_t>(at), kPage, static_cast<char>(filling));
      Put(damaged);
      const prueba::Salida run = Import();
      std::string now = Bytes();
      if (run.codigo != good_.codigo) {
        ++faults;
        EXPECT_GT(run.codigo, 1);
        EXPECT_NE(run.err, "");
        ASSERT_TRUE(now == damaged) << run.codigo << " " << run.err;
        continue;
      }
      // The import had no need of the page: with it put right, all is as after a good run.
      ++good;
      EXPECT_EQ(run.out, good_.out);
      now.replace(at, kPage, after_, at, kPage);
      Put(now);
      ASSERT_TRUE(now == after_ || table_.Filas() == rows_after_) << run.err;
    }
  }
  EXPECT_GT(faults, 20);
  EXPECT_GT(good, 0);
}

INSTANTIATE_TEST_SUITE_P(Engines, WholeImport, testing::Values("mdb", "sqlite"),
                         [](const auto& engine) { return std::string(engine.param); });

}  // namespace
