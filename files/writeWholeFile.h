#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace Zamt {

/// Puts a file of these bytes at `path`, in place of what was there, as a whole or, when false comes with a
/// sentence in `error`, not at all. What no other file may take the place of is written over as `replaceFile`
/// does.
bool writeWholeFile(const std::string& path, std::span<const std::byte> bytes, std::string& error);

} // namespace Zamt
