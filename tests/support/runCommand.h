#pragma once

#include "tests/support/TemporaryDirectory.h"

#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Zamt::Testing {

/// How a command ended and what it said.
struct CommandResult {
  int exitCode = -1; ///< 128 plus the signal if one ended it; -1 if it could not be started.
  std::string out;
  std::string err;
};

/// Runs a program in a directory, without input, and waits for it. Arguments are handed over as they are,
/// without a shell.
inline CommandResult runCommand(const std::vector<std::string>& words, const std::string& directory = ".") {
  const TemporaryDirectory said;
  const std::string out = said.path("out");
  const std::string err = said.path("err");
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  pid_t child = -1;
  const int failed = ::posix_spawn(&child, words[0].c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) return {};
  int status = 0;
  ::waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), readFile(out), readFile(err)};
}

} // namespace Zamt::Testing
