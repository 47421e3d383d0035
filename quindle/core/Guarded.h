#pragma once

#include "quindle/core/Diag.h"

#include <new>

/// @file
/// The one place where a lack of memory is caught: what the interface does with a Diag, it does in `guarded`.
namespace Zamt {

/// Adds the error that memory ran out, or nothing if there is not even memory for that.
void reportMemoryRanOut(Diag& diag) noexcept;

/// What `work` returns or, after an error as far as memory allows, `failure` if memory ran out in it. Any
/// other exception can only be one of the host's, from its scene or its resolver, and passes through.
template <class Result, class Work>
Result guarded(Diag& diag, Result failure, const Work& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    reportMemoryRanOut(diag);
  }
  return failure;
}

/// The same for work that has no result.
template <class Work>
void guarded(Diag& diag, const Work& work) {
  guarded(diag, false, [&work] {
    work();
    return true;
  });
}

/// Throws std::bad_alloc if that is what one of the errors says. For whoever asks the scene and takes "no"
/// for an answer: what it says for want of memory is none.
void passOnLackOfMemory(const Diag& diag);

/// What functions of the interface do, under the same names, for callers in the library that are guarded
/// themselves and would take a failure for a fault of the document: std::bad_alloc passes through.
namespace Unguarded {}

} // namespace Zamt
