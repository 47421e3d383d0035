#include "host/cli/Pager.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace Zamt::Host {

namespace {

/// A shell ends so when the command it was given is no program, or one that can't be run.
constexpr int notExecutable = 126;

/// While it lives Ctrl-C does nothing here: it is for the pager, which may take it to stop a search.
class IgnoredInterrupt {
public:
  IgnoredInterrupt() {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGINT, &ignore, &before_);
  }
  IgnoredInterrupt(const IgnoredInterrupt&) = delete;
  IgnoredInterrupt& operator=(const IgnoredInterrupt&) = delete;
  ~IgnoredInterrupt() { sigaction(SIGINT, &before_, nullptr); }

private:
  struct sigaction before_ {};
};

/// Starts `command` in a shell that reads from `input`. -1 if that can't be.
pid_t startShell(std::string command, int input) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  // What this process ignores would stay ignored in the pager.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t defaults;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  sigaddset(&defaults, SIGINT);
  sigaddset(&defaults, SIGXFSZ);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  std::string shell = "sh";
  std::string option = "-c";
  const std::array<char*, 4> words{shell.data(), option.data(), command.data(), nullptr};
  pid_t child = -1;
  if (::posix_spawn(&child, "/bin/sh", &actions, &attributes, words.data(), environ) != 0) child = -1;
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return child;
}

/// Ends early when the reader goes away, which is how one leaves a pager.
void writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(file, text.data(), text.size());
    if (written >= 0)
      text.remove_prefix(static_cast<std::size_t>(written));
    else if (errno != EINTR)
      return;
  }
}

/// Waits until the pager ends; whether it was run at all.
bool waitForPager(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0)
    if (errno != EINTR) return true;
  return !WIFEXITED(status) || WEXITSTATUS(status) < notExecutable;
}

} // namespace

bool showPaged(const std::string& text) {
  if (::isatty(STDOUT_FILENO) != 1) return false;
  const char* const chosen = std::getenv("PAGER");
  const std::string command = chosen == nullptr ? "less -R" : chosen;
  std::array<int, 2> ends{};
  if (command.empty() || ::pipe2(ends.data(), O_CLOEXEC) != 0) return false;
  const IgnoredInterrupt whileShown;
  const pid_t child = startShell(command, ends[0]);
  ::close(ends[0]);
  if (child >= 0) writeAll(ends[1], text);
  ::close(ends[1]);
  return child >= 0 && waitForPager(child);
}

} // namespace Zamt::Host
