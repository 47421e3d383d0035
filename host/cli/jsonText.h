#pragma once

#include "host/verbs/Data.h"

#include <string>

namespace Zamt::Host {

/// The data as JSON, indented, with a line end. Bytes that are no UTF-8 become U+FFFD.
std::string jsonText(const Data& data);

} // namespace Zamt::Host
