#pragma once

#include "host/verbs/clouds/Failures.h"
#include "host/verbs/clouds/classMoves.h"

#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace Zamt::Host {

/// What a run on many clouds came to.
class RunSummary {
public:
  /// `said` are the diagnostics of the cloud.
  void add(const Outcome& outcome, const Diag& said);

  /// How many clouds there were, changed and failed, which classes went where in all of them, and why clouds
  /// failed.
  std::string text() const;

  /// The same as a field "summary".
  Data data() const;

private:
  std::vector<NamedMove> moves() const;

  bool preview_ = false;
  std::uint64_t changed_ = 0;
  std::uint64_t unchanged_ = 0;
  std::map<std::tuple<std::uint8_t, std::string, std::uint8_t, std::string>, std::uint64_t> points_;
  Failures failures_;
};

} // namespace Zamt::Host
