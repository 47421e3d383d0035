#pragma once

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Host {

/// No line of help is longer, as far as its words allow.
inline constexpr std::size_t helpWidth = 80;

/// Lays help out: nothing wider than that, every option under one spelling, and in words what is only
/// taken together with another option or never with it.
class HelpFormatter : public CLI::Formatter {
public:
  std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
  std::string make_subcommand(const CLI::App* command) const override;
  std::string make_option(const CLI::Option* option, bool positional) const override;
};

/// The commands of `app`, in the order in which they were added.
std::vector<const CLI::App*> commandsOf(const CLI::App& app);

/// How a command is called: "quindle check [OPTIONS] Q...".
std::string synopsisOf(const CLI::App& command, const std::string& name);

/// An option with all its spellings and its value, "-o, --output OUT", or an argument by its name.
std::string spellingOf(const CLI::Option& option);

/// What an option does, and how it goes with others, in whole sentences.
std::string meaningOf(const CLI::Option& option);

/// The first sentence of a text.
std::string_view firstSentence(std::string_view text);

/// The text as lines of at most `width` bytes, broken at blanks, each with a line end. Lines that begin with
/// a blank are kept as they are; a longer word has a line of its own.
std::string wrapped(std::string_view text, std::size_t width);

/// `name`, and behind it in a column of its own the text, as lines for a terminal.
std::string nameAndText(const std::string& name, std::string_view text);

} // namespace Zamt::Host
