// What may run where only reading is allowed. The driver is not asked: many would run anything.
#pragma once

#include <string_view>

#include "jetsql/ast.h"

namespace engine_odbc {

// The tree of the text. Throws db::Error when it is not one SELECT of the dialect that can do nothing but
// read: another statement, SELECT … INTO, several statements, a text that the dialect does not know, a
// function that is not the dialect's (the driver's own may do anything), a mark that starts a comment for
// some drivers.
jetsql::Statement CheckOnlyReads(std::string_view sql);

}  // namespace engine_odbc
