#pragma once

#include "host/verbs/Verb.h"

#include <vector>

namespace Zamt::Host {

/// All verbs in the order in which a list shows them, those of a group together.
std::vector<Verb> allVerbs();

/// @{
/// Each describes one verb; all of it but the group, which `allVerbs` adds.
Verb checkVerb();
Verb conditionsVerb();
Verb deleteVerb();
Verb disableVerb();
Verb enableVerb();
Verb explainVerb();
Verb fmtVerb();
Verb infoVerb();
Verb keysVerb();
Verb listVerb();
Verb planVerb();
Verb previewVerb();
Verb referenceVerb();
Verb registryVerb();
Verb runVerb();
Verb sampleVerb();
Verb saveVerb();
Verb searchVerb();
Verb showVerb();
/// @}

} // namespace Zamt::Host
