#pragma once

#include "host/session/runClouds.h"
#include "host/verbs/Verb.h"

#include <string>
#include <vector>

/// @file
/// What the verbs share that take a condition on the command line in place of a Quindle.
namespace Zamt::Host {

/// The condition, what stands between it and the clouds, what `cloudOptions` are, `more` and "quindle".
/// Neither clouds nor outputs are needed by who only wants the Quindle.
std::vector<Option> oneLineOptions(std::vector<Option> between, std::vector<Option> more);

/// Makes the Quindle of `job` of the condition, for the class that is called `className`, and reads the rest
/// of what `cloudOptions` say, beside the clouds. False if that ends it, and `answer` holds the Quindle, as
/// was wanted, or what is wrong. Otherwise `answer` may hold advice, and goes on from there.
bool readOneLine(const Request& request, const std::string& className, const Context& context, Job& job,
                 Answer& answer);

/// Carries out a job that only selects, and adds to the answer how many points there are in each cloud and in
/// all.
Answer selectPoints(const Job& job, const Context& context, Answer answer);

/// What the JSON of those holds.
inline constexpr const char* selectedJsonHelp =
    "Print JSON: \"clouds\" with file, ok, points, counted and output of each, \"points\" and \"counted\" of "
    "all, \"failures\" with kind, clouds, first and why of those alike, and \"diagnostics\".";

} // namespace Zamt::Host
