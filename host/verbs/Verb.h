#pragma once

#include "files/Stop.h"
#include "host/session/Progress.h"
#include "host/session/QuindleSource.h"
#include "host/verbs/Answer.h"
#include "host/verbs/Request.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Zamt::Host {

/// One thing that a verb can be told.
struct Option {
  enum class Kind {
    Flag,   ///< There or not.
    Text,   ///< The last one counts.
    Texts,  ///< One or more.
    Number, ///< From `least` to `most`, inclusive.
    Level   ///< One of `words`, or a number.
  };

  /// What its texts name, for faces that offer some and for refusing those that can't be meant.
  enum class Names {
    Anything,
    Cloud,       ///< A file to read points from.
    CloudOutput, ///< A file to write points to, or a directory.
    Picture,     ///< A PNG file to write.
    QuindleFile, ///< A file that holds a Quindle.
    Quindle,     ///< The same, or one of the collection.
    Entry,       ///< A Quindle of the collection.
    Class,       ///< A class.
    Classes,     ///< Several, separated by commas.
    Setting,     ///< A parameter and its value, "NAME=VALUE".
    Choice       ///< One of `choices`.
  };

  std::string name; ///< What a request calls it.
  Kind kind = Kind::Text;
  std::string help;                    ///< What it does, in whole sentences.
  std::string placeholder{};           ///< What stands for its value in a help text.
  char letter = 0;                     ///< A short name; 0 for none.
  bool argument = false;               ///< Known by its place; written without its name.
  bool required = false;               ///< Without it the verb can do nothing.
  bool hidden = false;                 ///< Left out of help texts.
  std::vector<std::string> needs{};    ///< Makes sense only together with these.
  std::vector<std::string> excludes{}; ///< Makes no sense together with these, and they none with it.
  std::uint64_t least = 0;
  std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
  std::optional<std::uint64_t> preset{}; ///< The number that is taken if it is left out.
  std::map<std::string, int> words{};    ///< Of a level.
  Names names = Names::Anything;
  std::vector<std::string> choices{}; ///< What it can be, as far as that is known beforehand.
};

/// Why a request can't be meant, whatever the verb: a cloud can't be read from standard input, and what is
/// written is what its name says. Empty if all is well.
std::string refusalOf(const std::vector<Option>& options, const Request& request);

/// What a verb may use of the world around the call.
struct Context {
  const Stop& stop;       ///< Long work ends early once this is requested.
  QuindleReader quindles; ///< Reads what an argument names.
  Progress progress{};    ///< Is told how far long work is; may be null.

  /// Takes the parts of an answer as they come, in their order; if it is null, the answer keeps them.
  std::function<void(Part)> part{};

  /// Hands a part on, or keeps it in the answer.
  void deliver(Answer& answer, Part partOfIt) const {
    if (part)
      part(std::move(partOfIt));
    else
      answer.parts.push_back(std::move(partOfIt));
  }
};

/// One thing that can be asked for, with all that a face needs to offer it: a command line its words and
/// help, a server its names and types. Running it prints nothing and knows of no face.
struct Verb {
  std::string name;
  std::string group{};         ///< The heading that it is listed under.
  std::string summary;         ///< What it does, in whole sentences; the first one stands for it in a list.
  std::string footer;          ///< What else is to be said, and an example: "Example:\n  quindle NAME ...".
  std::vector<Option> options; ///< In the order in which they are shown.
  std::string listName{}; ///< What the list of the parts' data is called; empty if there is but one part.
  std::function<Answer(const Request&, const Context&)> run;
};

} // namespace Zamt::Host
