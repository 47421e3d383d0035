#pragma once

#include <cstdint>
#include <string>

namespace Zamt {

/// Reads the regular file at `path` into `text`. False, with `text` empty, when it can't be read, is no
/// regular file or is larger than `maxBytes`. Never waits for a writer.
bool readTextFile(const std::string& path, std::uint64_t maxBytes, std::string& text);

} // namespace Zamt
