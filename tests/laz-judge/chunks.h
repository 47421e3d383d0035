#pragma once

#include "tests/laz-judge/LazFile.h"

#include <cstddef>

namespace Zamt::Testing::Laz {

/// Decodes a chunk from the beginning of `bytes`, which may go on behind it, and appends its points. Gives
/// back its length. Throws LazError.
std::size_t decodeChunk(const LazFile& file, std::string_view bytes, std::uint64_t count,
                        std::string& points);

/// Encodes the records of one chunk, at least one.
std::string encodeChunk(const LazFile& file, std::string_view points);

} // namespace Zamt::Testing::Laz
