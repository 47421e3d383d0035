#pragma once

#include "quindle/check/advice/Advisor.h"

namespace Zamt {

/// Advises on the parameters: on defaults that nearly name a class of the standard, and on those that
/// `checkQuindle` takes for unused and that are used all the same.
void adviseOnParameters(Advisor& advisor);

} // namespace Zamt
