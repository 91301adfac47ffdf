// Who runs the program.
#pragma once

#include <string>

namespace base {

// The name of the system's user; "" when the system does not say.
std::string UserName();

}  // namespace base
