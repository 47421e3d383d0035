#pragma once

#include "host/session/cloudClasses.h"
#include "host/session/saidClasses.h"
#include "quindle/core/Diag.h"

#include "cadmer/LabelSet.h"

#include <functional>
#include <vector>

namespace Zamt::Host {

/// Finds out which classes the points are in. False if it was stopped.
using FindClassUse = std::function<bool(ClassUse& use)>;

/// Works out which classes there are for one command. Its clouds offer them together, so that a name is the
/// same number in each:
///
/// - What files define comes first. A class in which two files contradict each other is a number without a
///   name.
/// - The current table of the standard fills what they leave open, whatever the point format. It gives way to
///   what a Quindle numbers itself, unless points are in that class. Names of older tables stand where a
///   Quindle says them.
/// - The numbers that the standard keeps to itself have no name, but stand in the way of new classes where
///   points can hold more. So do numbers that points are in; labels that not all points can hold give way.
///
/// `said` is what the Quindles of the command say. Points are looked at, through `findUse`, only where it
/// matters whether a number is free. Warnings in `diag` tell where Quindles and the standard differ. False
/// with errors, and `labels` untouched, when files contradict each other in a class that is said, when one
/// number is said by two names, and when new classes find no number that all points can hold; false without
/// an error when `findUse` was stopped.
bool makeClassTable(const std::vector<CloudClasses>& clouds, const std::vector<SaidClass>& said,
                    const FindClassUse& findUse, LabelSet& labels, Diag& diag);

} // namespace Zamt::Host
