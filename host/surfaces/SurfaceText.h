#pragma once

#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Host {

/// What a text means where a surface is asked for.
struct SurfaceText {
  enum class Kind {
    File,    ///< A file that holds one.
    Classes, ///< "class:Ground, Water?longest=20": the points of classes of the cloud itself, triangulated.
    Level,   ///< "level:405.2": one height everywhere.
  };
  Kind kind = Kind::File;
  std::string path;                                         ///< Of a file.
  std::vector<std::string> classes;                         ///< As written, names or numbers, at least one.
  double longest = std::numeric_limits<double>::infinity(); ///< In plan, of a triangle's sides; positive.
  double level = 0;
};

/// Reads such a text. One that is the path of a file that exists is that file, whatever it looks like. False,
/// with a sentence in `problem`, when what stands behind "class:" or "level:" can't be used.
bool parseSurfaceText(std::string_view text, SurfaceText& surface, std::string& problem);

} // namespace Zamt::Host
