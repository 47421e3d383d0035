#pragma once

#include "quindle/core/QuindleDocument.h"

#include <map>
#include <optional>
#include <string>

namespace Zamt {

/// The value of a parameter for one run: the text supplied in `args`, even if empty, else the default as
/// plain text, else nothing. A name in `args` that is no parameter of the document has a value all the same.
std::optional<std::string> parameterValue(const QuindleDocument& doc,
                                          const std::map<std::string, std::string>& args,
                                          const std::string& name);

} // namespace Zamt
