// Access files that the tests make, one of each kind: of all three formats, with all that a reader, a writer
// and a check must cope with. What was put in is known, and says what must be found.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "mdb/assembler/assembler.h"
#include "mdb/pages/page_file.h"

namespace mdb_test {

struct Sample {
  std::string name;
  assembler::File file;
  std::map<std::string, std::string> query_texts;  // what its queries say, by name
};

// Made on the first call, in a fixed order.
const std::vector<Sample>& Samples();
const Sample& SampleNamed(const std::string& name);
mdb::Bytes SampleBytes(const std::string& name);
std::unique_ptr<mdb::MemoryPages> LoadSample(const std::string& name);
// The sample as a file, in a folder that goes with the process.
std::string SamplePath(const std::string& name);
std::vector<std::string> SampleNames();

// The paths of the samples, and of the further files that IDM_CORPUS holds where it is here.
std::vector<std::string> EveryFile();
// Its name, as that of a case may be; a further file may be called like a sample.
std::string CaseName(const std::string& path);

// The rows that must be found in a table: those that are there, columns that are gone left out.
std::vector<mdb::Row> RowsPutIn(const assembler::Table& table);

}  // namespace mdb_test
