#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/QuindleDocument.h"

#include <cstddef>
#include <string>

namespace Zamt::Host {

/// A Quindle is a page or two of text. What is larger than this is the wrong file, or a device that never
/// ends.
constexpr std::size_t maxQuindleBytes = std::size_t{256} * 1024 * 1024;

/// The bytes of a Quindle and what diagnostics call the place they came from.
struct QuindleSource {
  std::string label;
  std::string text;
};

/// Reads the file called `which`, or standard input if that is "-". False with an error in `diag` when it
/// can't be read.
bool readQuindleSource(const std::string& which, QuindleSource& source, Diag& diag);

/// Reads and parses a Quindle. False, with everything that is wrong in `diag`, when it can't be used.
bool loadQuindle(const std::string& which, QuindleDocument& document, Diag& diag);

} // namespace Zamt::Host
