#include "db/next_id.h"

#include <string>

namespace db {

std::int32_t NextId(Connection& connection, std::string_view table, std::string_view field) {
  std::string sql = "select max(";
  sql.append(field).append(")as maxcod from ").append(table);
  std::int32_t largest = 0;
  base::PassOverError("NextId", nullptr,
                      [&] { largest = connection.Execute(sql).Field("maxcod").Integer(); });
  return largest;
}

}  // namespace db
