// A check of a whole file: everything that a reader, or Access, may trip over.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "mdb/pages/page_file.h"

namespace mdb {

struct Finding {
  enum class Severity { Error, Note };  // a note is what files of Access itself show
  Severity severity = Severity::Error;
  PageNumber page = 0;  // 0: none
  std::string text;     // Spanish, for an operator: what, where
};

struct Report {
  std::vector<Finding> findings;
  std::uint64_t tables = 0, rows = 0, indexes = 0, entries = 0, long_values = 0, pages = 0, free_pages = 0;
  bool IsSound() const;  // no error
};

// Never throws for what the file holds: damage becomes findings. `limit` ends the list.
Report Verify(PageFile& pages, std::size_t limit = 200);

}  // namespace mdb
