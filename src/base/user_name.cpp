#include "base/user_name.h"

#include "base/file.h"

#ifndef _WIN32
#include <pwd.h>
#include <unistd.h>

#include <vector>
#endif

namespace base {

std::string UserName() {
#ifdef _WIN32
  return EnvironmentValue("USERNAME");
#else
  std::vector<char> room(16384);
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(geteuid(), &entry, room.data(), room.size(), &found) == 0 && found != nullptr)
    return found->pw_name;
  return EnvironmentValue("USER");
#endif
}

}  // namespace base
