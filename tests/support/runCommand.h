#pragma once

#include "tests/support/TemporaryDirectory.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
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

struct CommandInput {
  std::string directory = ".";                 ///< Where the command runs.
  std::string outputFile{};                    ///< Standard output goes here instead of to `out`.
  bool closeOutput = false;                    ///< Nobody reads what the command prints.
  bool waitOnInput = false;                    ///< Standard input stays open and silent.
  std::string input{};                         ///< Standard input, at most what a pipe holds (64 KiB).
  std::chrono::milliseconds interruptAfter{0}; ///< When to send SIGINT; 0 for never.
};

/// Runs a program and waits for it. Arguments are handed over as they are, without a shell.
inline CommandResult runCommand(const std::vector<std::string>& words, const CommandInput& how = {}) {
  std::array<std::array<int, 2>, 3> pipes{};
  for (auto& pipe : pipes)
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0) return {};
  const auto& [in, out, err] = pipes;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in[0], 0);
  posix_spawn_file_actions_adddup2(&actions, out[1], 1);
  if (!how.outputFile.empty())
    posix_spawn_file_actions_addopen(&actions, 1, how.outputFile.c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_adddup2(&actions, err[1], 2);
  posix_spawn_file_actions_addchdir_np(&actions, how.directory.c_str());
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  pid_t child = -1;
  if (how.closeOutput) ::close(out[0]); // before it starts, so that it cannot be quicker
  const int failed = ::posix_spawn(&child, words[0].c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  for (const int end : {in[0], out[1], err[1]}) ::close(end);
  CommandResult result;
  if (failed != 0) return result;

  if (!how.input.empty() && ::write(in[1], how.input.data(), how.input.size()) < 0)
    result.err = "no input taken";
  if (!how.waitOnInput) ::close(in[1]);
  std::array<pollfd, 2> ends{{{out[0], POLLIN, 0}, {err[0], POLLIN, 0}}};
  std::array<std::string*, 2> texts{&result.out, &result.err};
  if (how.closeOutput) ends[0].fd = -1;
  using Clock = std::chrono::steady_clock;
  const auto interruptAt = Clock::now() + how.interruptAfter;
  bool toInterrupt = how.interruptAfter.count() > 0;
  while (ends[0].fd >= 0 || ends[1].fd >= 0) {
    ::poll(ends.data(), ends.size(), toInterrupt ? 5 : -1);
    if (toInterrupt && Clock::now() >= interruptAt) {
      ::kill(child, SIGINT);
      toInterrupt = false;
    }
    for (std::size_t i = 0; i < ends.size(); ++i) {
      if (ends[i].fd < 0 || ends[i].revents == 0) continue;
      std::array<char, 4096> buffer;
      const ssize_t got = ::read(ends[i].fd, buffer.data(), buffer.size());
      if (got > 0) {
        texts[i]->append(buffer.data(), static_cast<std::size_t>(got));
      } else if (got == 0 || errno != EINTR) {
        ::close(ends[i].fd);
        ends[i].fd = -1;
      }
    }
  }
  if (how.waitOnInput) ::close(in[1]);
  int status = 0;
  ::waitpid(child, &status, 0);
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

} // namespace Zamt::Testing
