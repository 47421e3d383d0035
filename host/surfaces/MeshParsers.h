#pragma once

#include "host/surfaces/Surface.h"

#include <string>
#include <string_view>

namespace Zamt::Host {

/// One reader a format. Each fills an empty `mesh`, whose triangles may still name vertices that do not
/// exist, and gives what is wrong with the bytes as the main clause of a sentence, without its full stop;
/// empty when they are sound.
std::string parsePly(std::string_view bytes, Mesh& mesh);
std::string parseObj(std::string_view bytes, Mesh& mesh);
std::string parseTextStl(std::string_view bytes, Mesh& mesh);
std::string parseBinaryStl(std::string_view bytes, Mesh& mesh);

/// Whether the length of the bytes is what a binary STL file announces.
bool isBinaryStl(std::string_view bytes);

} // namespace Zamt::Host
