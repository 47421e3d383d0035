#pragma once

#include "files/system.h"

#include <string>

namespace Zamt {

/// A file that one program at a time may change: held from before it is read until another one has its name,
/// so that of two that read it and write it anew neither undoes what the other did. Let go at the end of the
/// scope, and by a process that is killed.
class HeldFile {
public:
  /// Holds the file that `path` leads to. False, with a sentence in `error`, while somebody else does. Where
  /// nothing can be held, since there is no such file or none that may be changed, there is nothing to lose:
  /// true.
  bool hold(const std::string& path, std::string& error);

private:
  System::File file_;
};

} // namespace Zamt
