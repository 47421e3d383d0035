#pragma once

#include "host/cli/Program.h"

#include <string>
#include <string_view>

/// @file
/// Help texts, all of them made from what the program and its verbs say of themselves.
namespace Zamt::Host {

/// No line of help is longer, as far as its words allow.
inline constexpr std::size_t helpWidth = 80;

/// The help on the command as a whole, with its verbs.
std::string overviewPage(const Program& program);

/// The help on one of its verbs.
std::string verbPage(const Program& program, const Verb& verb);

/// How the command is called: "quindle [OPTIONS] COMMAND".
std::string synopsisOf(const Program& program);

/// How a verb is called: "quindle check [OPTIONS] QUINDLE...".
std::string synopsisOf(const Program& program, const Verb& verb);

/// An option with all its spellings and its value, "-o, --output OUT", or an argument by its name.
std::string spellingOf(const Option& option);

/// What an option of a verb does, and how it goes with others, in whole sentences.
std::string meaningOf(const Option& option, const Verb& verb);

/// `name`, and behind it in a column of its own the text, as lines for a terminal.
std::string nameAndText(const std::string& name, std::string_view text);

} // namespace Zamt::Host
