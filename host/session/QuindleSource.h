#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/QuindleDocument.h"

#include <string>

namespace Zamt::Host {

/// How commands describe the argument that names one.
inline constexpr const char* quindleHelp =
    "The Quindle: a file, the name of one in the collection, or - for standard input.";
inline constexpr const char* quindlesHelp =
    "The Quindles: files, names of some in the collection, or - for standard input.";

/// The bytes of a Quindle and what diagnostics call the place they came from.
struct QuindleSource {
  std::string label; ///< The path of the file, or "<stdin>".
  std::string text;
  bool installed = false; ///< Found by name, and not in the user's directory: not to be written.
};

/// Reads what `which` names: standard input if it is "-", a file of that path if there is one, else the
/// Quindle of that name in the collection. What holds a "/" or ends in ".quindle" is a path. False with an
/// error in `diag` when it can't be read.
bool readQuindleSource(const std::string& which, QuindleSource& source, Diag& diag);

/// Reads and parses a Quindle. False, with everything that is wrong in `diag`, when it can't be used.
bool loadQuindle(const std::string& which, QuindleDocument& document, Diag& diag);

} // namespace Zamt::Host
