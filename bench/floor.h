// The least that any program must do for the same result: read the file, split it, find each line's contract
// and concept, and insert the final rows, with nothing but SQLite and prepared statements.
#pragma once

#include <cstddef>
#include <string>

namespace bench {

struct Floor {
  double persons = 0;  // seconds: the contracts read and hashed
  double load = 0;     // the file read, split and matched
  double rows = 0;     // the final rows inserted
  double commit = 0;
  double Total() const { return persons + load + rows + commit; }
  std::size_t lines = 0, found = 0, inserted = 0;
};

// `final_base`: the base after the import. It is changed: the month's rows are taken out, which is not timed,
// and put back, which is.
Floor MeasureFloor(const std::string& final_base, const std::string& file, double month);

}  // namespace bench
