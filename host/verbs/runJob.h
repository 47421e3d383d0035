#pragma once

#include "host/session/runClouds.h"
#include "host/verbs/Verb.h"

#include <vector>

namespace Zamt::Host {

/// What "run" and "preview" both take.
std::vector<Option> jobOptions();

/// Carries out what the two have in common: `job` comes with its clouds and the place of its picture, and
/// gets the rest from the request.
Answer runJob(const Request& request, Job job, const Context& context);

} // namespace Zamt::Host
