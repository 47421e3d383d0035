#pragma once

#include "files/Stop.h"
#include "host/clouds/PointCloud.h"
#include "host/clouds/PointMask.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace Zamt::Host {

/// How the classes of a cloud in memory differ from those of its file, by whatever steps that came about.
struct ClassMoves {
  std::map<std::pair<std::uint8_t, std::uint8_t>, std::uint64_t> points; ///< By the class before and now.
  PointMask mask;                                                        ///< Those points.
};

/// Works that out. False, with a sentence in `problem`, when it was stopped or a block can't be read.
bool findClassMoves(const PointCloud& cloud, const Stop& stop, ClassMoves& moves, std::string& problem);

} // namespace Zamt::Host
