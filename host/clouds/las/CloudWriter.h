#pragma once

#include "host/clouds/PointCloud.h"

#include <string>
#include <vector>

namespace Zamt::Host {

/// Writes the cloud's file with its classes as changed to `path`, which may be the cloud's own: the bytes of
/// the input with only the class bits patched. `addedNames` go into the classification lookup record, which
/// is added or enlarged where it has no room; a name for a number that has one replaces it. The file at
/// `path` is replaced as a whole or, when false comes with a sentence in `error`, not at all.
bool writeCloud(const PointCloud& cloud, const std::vector<ClassName>& addedNames, const std::string& path,
                std::string& error);

} // namespace Zamt::Host
