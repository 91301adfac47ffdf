// Programs that share no code with ours, asked about a file that ours wrote: the independent checker beside
// the checkout, and mdbtools. Where one is missing, its question is passed over.
#pragma once

#include <string>
#include <vector>

#include "mdb/pages/bytes.h"

namespace mdb_test {

bool HasChecker();   // the checker, and a Python to run it
bool HasMdbtools();  // mdb-tables, mdb-schema, mdb-export, mdb-queries

// What the checker finds wrong; empty when it finds nothing or is not there. `strict` is for files written
// by us from nothing.
std::string RunChecker(const mdb::Bytes& file, bool strict);

// Standard output of a program of mdbtools; the file stands last, or before `after`. Standard error is
// dropped.
std::string Mdbtools(const std::string& program, const std::string& options, const mdb::Bytes& file,
                     const std::string& after = {});

}  // namespace mdb_test
