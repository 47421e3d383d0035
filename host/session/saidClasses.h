#pragma once

#include "quindle/core/QuindleDocument.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Host {

/// A class as one place of a Quindle says it.
struct SaidClass {
  std::string name;                   ///< Empty where only a number stands.
  std::optional<std::int32_t> number; ///< Nothing where only a name stands.
  bool isTarget = false;              ///< Points are put into it; else it is asked for.
  std::string file;                   ///< Of the Quindle; empty where there is none to name.
  std::int32_t line = 0;              ///< In that file; 0 for nowhere.
};

/// Appends the classes of a list with commas: names, and numbers where only digits stand.
void sayClasses(std::string_view list, std::vector<SaidClass>& said);

/// The classes that a Quindle and all those that it runs name or number: what they put points into, what
/// their conditions ask for, and what reaches these through parameters. `values` are those of the Quindle's
/// own parameters; `resolver`, which may be empty, finds the others.
std::vector<SaidClass> saidClasses(const QuindleDocument& document,
                                   const std::map<std::string, std::string>& values,
                                   const QuindleResolver& resolver);

} // namespace Zamt::Host
