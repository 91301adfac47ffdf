#include "db/next_id.h"
#include "support/quiet_connection.h"

#include <gtest/gtest.h>

namespace {

using base::Value;

// Answers every statement with one column of cells, or fails.
class FixedConnection final : public support::QuietConnection {
 public:
  explicit FixedConnection(std::vector<Value> cells, bool fails = false,
                           base::ErrorKind kind = base::ErrorKind::Statement)
      : cells_(std::move(cells)), fails_(fails), kind_(kind) {}

  db::Recordset Execute(std::string_view sql) override {
    last = std::string(sql);
    if (fails_) throw db::Error("no se pudo leer", 0, {}, kind_);
    return {std::make_shared<db::Columns>(db::Columns{{"maxcod", base::Type::Null}}), cells_};
  }

  std::string last;

 private:
  std::vector<Value> cells_;
  bool fails_;
  base::ErrorKind kind_;
};

std::int32_t Greatest(std::vector<Value> cells, bool fails = false) {
  FixedConnection connection(std::move(cells), fails);
  return db::NextId(connection, "Encabezados", "id_Enc");
}

TEST(NextId, AsksForTheLargest) {
  FixedConnection connection({Value(41)});
  EXPECT_EQ(db::NextId(connection, "Encabezados", "id_Enc"), 41);
  EXPECT_EQ(connection.last, "select max(id_Enc)as maxcod from Encabezados");
}

TEST(NextId, WhateverTheTypeOfTheColumn) {
  EXPECT_EQ(Greatest({Value(41.0)}), 41);
  EXPECT_EQ(Greatest({Value("41")}), 41);
  EXPECT_EQ(Greatest({Value(-3)}), -3);
  EXPECT_EQ(Greatest({Value(2147483647)}), 2147483647);
}

TEST(NextId, AnyErrorGives0) {
  EXPECT_EQ(Greatest({}), 0);                              // no row at all
  EXPECT_EQ(Greatest({}, true), 0);                        // the statement failed
  EXPECT_EQ(Greatest({Value(base::Null{})}), 0);           // the table is empty
  EXPECT_EQ(Greatest({Value("abc")}), 0);                  // no number
  EXPECT_EQ(Greatest({Value(std::int64_t{1} << 31)}), 0);  // beyond 32 bits
}

// The first number of a table that could not be read is not 1.
TEST(NextId, AFaultOfTheStorageTravelsOn) {
  FixedConnection connection({Value(41)}, true, base::ErrorKind::Storage);
  EXPECT_THROW(db::NextId(connection, "Encabezados", "id_Enc"), db::Error);
}

}  // namespace
