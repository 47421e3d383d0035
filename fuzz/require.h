#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace Zamt::Fuzz {

/// Ends the fuzzer, naming the promise, when it does not hold.
inline void require(bool holds, const char* promise) {
  if (holds) return;
  std::fprintf(stderr, "Broken promise: %s\n", promise);
  std::abort();
}

/// What is refused is refused in a sentence.
inline void requireSentence(const std::string& problem) {
  require(!problem.empty() && problem.back() == '.', "a refusal is a sentence");
}

} // namespace Zamt::Fuzz
