#pragma once

#include "host/verbs/Verb.h"

#include <map>
#include <string>
#include <vector>

/// @file
/// The options that several verbs share, told in the same words everywhere.
namespace Zamt::Host {

/// "quindle": one Quindle by its file or name.
Option quindleArgument();

/// "quindle": several of them.
Option quindlesArgument();

/// "name": an entry of the collection.
Option nameArgument();

/// "json": the answer is wanted as data, which `help` describes. Whoever shows the answer looks at it; a verb
/// gives the same answer with and without.
Option jsonOption(std::string help);

/// "set": values of parameters.
Option setOption();

/// The values of "set" by parameter. False, with a sentence in `problem`, when one is no "name=value".
bool readSettings(const std::vector<std::string>& settings, std::map<std::string, std::string>& values,
                  std::string& problem);

/// What "json" of the verbs that list Quindles says of itself.
inline constexpr const char* entriesJsonHelp = "Print JSON: \"quindles\" with name, category, description, "
                                               "tags, keys, path, own, usable, enabled, first (of its "
                                               "name) and error of each, and \"diagnostics\".";

} // namespace Zamt::Host
