#pragma once

#include <string>

namespace Zamt {

/// Reads the regular file at `path` into `text`. False, with `text` empty, when it can't be read, is no
/// regular file or is larger than `maxQuindleBytes`. Never waits for a writer.
bool readTextFile(const std::string& path, std::string& text);

} // namespace Zamt
