#pragma once

#include "host/verbs/Verb.h"

#include <string>
#include <vector>

namespace Zamt::Host {

/// The command as a whole, as its command line and its help texts tell of it.
struct Program {
  std::string name;
  std::string version;     ///< The name and its number.
  std::string description; ///< What it does, in whole sentences.
  std::string footer;      ///< Where to go on, and an example.
  Option help;             ///< What it and every verb take.
  Option versionOption;    ///< What only the command itself takes.
  std::vector<Verb> verbs; ///< In the order in which they are listed, those of a group together.
};

/// The quindle command, with all verbs and "help".
const Program& quindleProgram();

/// The verb of that name; null if there is none.
const Verb* findVerb(const Program& program, const std::string& name);

/// "completion", which makes shells complete the words of all of them. The program must outlive it.
Verb completionVerb(const Program& program);

/// "help", which shows what the others say of themselves. The program must outlive it.
Verb helpVerb(const Program& program);

} // namespace Zamt::Host
