#include "quindle/core/Guarded.h"

#include <algorithm>

namespace Zamt {

namespace {

constexpr const char* memoryRanOut =
    "Memory ran out before this was done. Free some, or work on less at a time, and try again.";

} // namespace

void reportMemoryRanOut(Diag& diag) noexcept {
  try {
    diag.error(memoryRanOut);
  } catch (const std::bad_alloc&) {
    return; // the caller's result has to say it alone
  }
}

void passOnLackOfMemory(const Diag& diag) {
  if (std::any_of(diag.entries.begin(), diag.entries.end(),
                  [](const Diag::Entry& entry) { return entry.message == memoryRanOut; }))
    throw std::bad_alloc();
}

} // namespace Zamt
