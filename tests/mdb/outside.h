// Programs that share no code with ours, asked about a file that ours wrote: the independent checker beside
// the checkout, and mdbtools. Where one is missing, its question is passed over.
#pragma once

#include <string>
#include <vector>

#include "mdb/pages/bytes.h"

namespace mdb_test {

bool HayControl();   // the checker, and a Python to run it
bool HayMdbtools();  // mdb-tables, mdb-schema, mdb-export, mdb-queries

// What the checker finds wrong; empty when it finds nothing or is not there. `estricto` is for files written
// by us from nothing.
std::string Controlar(const mdb::Bytes& archivo, bool estricto);

// Standard output of a program of mdbtools; the file stands last, or before `tras`. Standard error is
// dropped.
std::string Mdbtools(const std::string& programa, const std::string& opciones, const mdb::Bytes& archivo,
                     const std::string& tras = {});

}  // namespace mdb_test
