#pragma once

#include "files/Stop.h"
#include "host/sample/SampleScene.h"

#include <string>

namespace Zamt::Host {

/// Writes a scene as a LAS 1.4 file, compressed if its name says LAZ, with the extra fields "Amplitude" and,
/// of three components, "NormalVector", and its water as a PLY file. False, with a sentence in `problem`,
/// when one of them can't be written or it was stopped.
bool writeSample(const SampleScene& scene, const std::string& cloudPath, const std::string& surfacePath,
                 const Stop& stop, std::string& problem);

} // namespace Zamt::Host
