#pragma once

#include "host/cli/Program.h"

#include <string>

namespace Zamt::Host {

/// What the words of a command line ask for.
struct CommandLine {
  enum class Kind {
    Run,     ///< To run `verb` with `request`.
    Help,    ///< To show help on `verb`, or on the command as a whole if that is null.
    Version, ///< To show the version.
    Misuse   ///< Nothing that makes sense.
  };

  Kind kind = Kind::Run;
  const Verb* verb = nullptr; ///< Of the program.
  Request request{};
  std::string complaint{}; ///< What is wrong with it, in a sentence,
  std::string advice{};    ///< and where to read about it.
};

/// Reads the words of a command line, the first of which is the name of the program.
CommandLine readCommandLine(int argc, const char* const* argv, const Program& program);

} // namespace Zamt::Host
