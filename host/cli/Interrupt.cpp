#include "host/cli/Interrupt.h"

#include "files/AtomicFile.h"

#include <atomic>
#include <csignal>
#include <string_view>
#include <unistd.h>

namespace Zamt::Host {

namespace {

/// A handler is given nothing but its signal.
std::atomic<Stop*> raised{nullptr};
static_assert(std::atomic<Stop*>::is_always_lock_free, "the handler may only touch lock-free memory");

/// The signal that asked to end; 0 if none did.
std::atomic<int> received{0};

/// Ends the process as if the signal had no handler, so that whoever started it sees what ended it.
[[noreturn]] void endBy(int signal) {
  std::signal(signal, SIG_DFL);
  sigset_t blocked;
  sigemptyset(&blocked);
  sigaddset(&blocked, signal);
  pthread_sigmask(SIG_UNBLOCK, &blocked, nullptr); // as it is within its handler
  raise(signal);
  _exit(128 + signal);
}

} // namespace

extern "C" {
static void onInterrupt(int signal) {
  received = signal;
  Stop& stop = *raised.load();
  if (!stop.request()) return;
  removeTemporaries();
  endBy(signal);
}

/// A mapped file has lost its end to another program, and what was to be read is not there.
static void onLostBytes(int /*signal*/) {
  static std::atomic<bool> ending{false};
  while (ending.exchange(true)) pause(); // several threads may read at once, and one of them speaks
  constexpr std::string_view sentence =
      "error: A cloud became shorter while it was read, so nothing was written. Run this again when no other "
      "program writes to the cloud.\n";
  [[maybe_unused]] const ssize_t said = write(STDERR_FILENO, sentence.data(), sentence.size());
  removeTemporaries();
  _exit(1);
}
}

void handleSignals(Stop& stop) {
  raised = &stop;
  struct sigaction action {};
  action.sa_handler = onInterrupt; // without SA_RESTART, so that a read that waits for input ends as well
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  action.sa_handler = onLostBytes;
  sigaction(SIGBUS, &action, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

void endIfInterrupted() {
  if (received != 0) endBy(received);
}

} // namespace Zamt::Host
