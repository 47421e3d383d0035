#pragma once

#include "host/session/runClouds.h"
#include "host/verbs/Data.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace Zamt::Host {

/// Why some of many clouds failed, those that failed alike told of together.
class Failures {
public:
  /// `said` are the diagnostics of a cloud that failed.
  void add(Failure failure, const std::string& cloud, const Diag& said);

  std::uint64_t count() const { return count_; }

  /// A line for each kind of failure: what could not be done, with how many clouds, and why.
  std::string text() const;

  /// The same as a list, with kind, clouds (their number), first (of them) and why of each.
  Data data() const;

private:
  struct Kind {
    std::uint64_t clouds = 0;
    std::string first;
    std::string why; ///< Of the first.
  };

  std::uint64_t count_ = 0;
  std::map<std::pair<Failure, std::string>, Kind> kinds_; ///< By what is common to their sentences.
};

} // namespace Zamt::Host
