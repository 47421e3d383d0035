#include "host/cli/Interrupt.h"

#include "host/points/AtomicFile.h"
#include "host/points/Interruption.h"

#include <csignal>
#include <unistd.h>

namespace Zamt::Host {

static_assert(std::atomic<bool>::is_always_lock_free, "the handler may only touch lock-free memory");

extern "C" {
static void onInterrupt(int /*signal*/) {
  if (!interrupted.exchange(true)) return;
  removeTemporaries();
  _exit(1);
}
}

void handleSignals() {
  struct sigaction action {};
  action.sa_handler = onInterrupt; // without SA_RESTART, so that a read that waits for input ends as well
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
}

} // namespace Zamt::Host
