#pragma once

#include "host/clouds/cloudStats.h"
#include "host/session/cloudClasses.h"
#include "host/verbs/Data.h"

#include <string>

namespace Zamt::Host {

/// What "info --stats" prints behind the rest: a table of the fields, each with a histogram, and one of the
/// classes, which are called as `names` says.
std::string statsText(const CloudStats& stats, const CloudClasses& names);

/// The same for JSON: "fields" and "classes", and "all" for all points together.
Data statsData(const CloudStats& stats, const CloudClasses& names);

} // namespace Zamt::Host
