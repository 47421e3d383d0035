#pragma once

#include "files/Stop.h"
#include "host/clouds/ClassOverlay.h"
#include "host/clouds/las/LasFile.h"
#include "host/clouds/las/LasSource.h"

#include <string>
#include <vector>

namespace Zamt::Host {

/// Writes a LAS file with other classes, as `CloudFormat::write` asks: the bytes of the input with only the
/// class bits of the changed blocks patched. Names go into the classification lookup record, which is added
/// or enlarged where it has no room.
bool writeLas(const LasFile& input, const BlockTable& blocks, const ClassOverlay& changed,
              const std::vector<ClassName>& addedNames, const std::string& path, const Stop& stop,
              std::string& error);

/// Writes the points of a source, with their classes as changed, as LAS. All records stay but those that only
/// mean something to the points as they were stored.
bool writeAsLas(const LasSource& source, const ClassOverlay& changed,
                const std::vector<ClassName>& addedNames, const std::string& path, const Stop& stop,
                std::string& error);

} // namespace Zamt::Host
