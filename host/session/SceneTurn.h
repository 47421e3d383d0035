#pragma once

namespace Zamt::Host {

/// A turn at the one graph of the process: whoever holds one has the graph to itself. Turns are given in the
/// order in which they were asked for.
class SceneTurn {
public:
  /// Waits for the turn. A thread that holds one and asks for another waits for ever.
  SceneTurn();
  /// Passes the turn on.
  ~SceneTurn();
  SceneTurn(const SceneTurn&) = delete;
  SceneTurn& operator=(const SceneTurn&) = delete;
};

} // namespace Zamt::Host
