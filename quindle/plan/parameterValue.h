#pragma once

#include "quindle/core/QuindleDocument.h"

#include <map>
#include <optional>
#include <string>

namespace Zamt {

/// The value for one run of the parameter `param`, which is called `name` and may be null: the text supplied
/// in `args`, even if empty, else the default as plain text, else nothing. A name in `args` that is no
/// parameter has a value all the same.
std::optional<std::string> parameterValue(const std::string& name, const QuindleParam* param,
                                          const std::map<std::string, std::string>& args);

/// The sentence on a parameter that has no value for a run.
std::string noValueFor(const std::string& name, const QuindleParam* param);

} // namespace Zamt
