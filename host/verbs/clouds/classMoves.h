#pragma once

#include "host/session/runClouds.h"
#include "host/verbs/Data.h"

#include <string>
#include <vector>

namespace Zamt::Host {

/// How many points went from one class to another, with the names of both.
struct NamedMove {
  ClassMove move;
  std::string fromName;
  std::string toName;
};

/// Those of one cloud.
std::vector<NamedMove> namedMoves(const Outcome& outcome);

/// Which classes went where, as a table of indented lines; nothing if none did.
std::string movesText(const std::vector<NamedMove>& moves);

/// The same as a list, with from, fromName, to, toName and points of each.
Data movesData(const std::vector<NamedMove>& moves);

} // namespace Zamt::Host
