#pragma once

#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace Zamt::Testing {

/// Whether `work` comes out true in a child process of a user who owns nothing, if this one is the superuser,
/// whom no permission stops.
inline bool asNobody(const std::function<bool()>& work) {
  constexpr uid_t nobody = 65534;
  const pid_t child = ::fork();
  if (child == 0) ::_exit((::getuid() == 0 && ::setuid(nobody) != 0) || !work() ? 1 : 0);
  int status = 1;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace Zamt::Testing
