#pragma once

#include "files/Stop.h"
#include "host/clouds/ClassOverlay.h"
#include "host/clouds/las/KeptPoints.h"
#include "host/clouds/las/LasSource.h"
#include "host/clouds/laz/LazFile.h"

#include <string>
#include <vector>

namespace Zamt::Host {

/// Writes a LAZ file with other classes, as `CloudFormat::write` asks. Chunks that hold no changed point are
/// copied, of layered ones with changed points all layers but that of the classes. What moves with them
/// follows: the chunk table, records behind the points, waveforms, the COPC index.
bool writeLaz(const LazFile& input, const ClassOverlay& changed, const std::vector<ClassName>& addedNames,
              const std::string& path, const Stop& stop, std::string& error);

/// Writes those of the points of a COPC file that are kept, as `CloudFormat::extract` asks: in their nodes,
/// so that the tree is the same with fewer points.
bool writeKeptNodes(const LazFile& input, const KeptPoints& kept, const std::string& path, const Stop& stop,
                    std::string& error);

/// Writes the points of a source, with their classes as changed, as LAZ. All records stay but those that only
/// mean something to the points as they were stored.
bool writeAsLaz(const LasSource& source, const ClassOverlay& changed,
                const std::vector<ClassName>& addedNames, const std::string& path, const Stop& stop,
                std::string& error);

} // namespace Zamt::Host
