// A new Access file.
#pragma once

#include "base/date.h"
#include "mdb/pages/bytes.h"

namespace mdb {

// The stored bytes of a Jet 4 file (Access 2000 to 2003) that holds its four system tables and nothing else.
//   order   LCID of all its text: 3082, 1034 or 1033; throws base::Error for another one
//   now   date of its objects
Bytes MakeDatabase(std::uint16_t order, base::Date now);

}  // namespace mdb
