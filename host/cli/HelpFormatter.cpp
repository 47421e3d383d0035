#include "host/cli/HelpFormatter.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <set>

namespace Zamt::Host {

namespace {

/// Where the texts begin; a longer name has a line of its own.
constexpr std::size_t textColumn = 24;

bool takesSeveral(const CLI::Option& option) {
  return option.get_expected_max() >= CLI::detail::expected_max_vector_size;
}

/// "--check or --write", in the same order wherever the options lie in memory.
std::string namesOf(const std::set<CLI::Option*>& options) {
  std::set<std::string> names;
  for (const CLI::Option* const option : options) names.insert(option->get_name());
  return fmt::format("{}", fmt::join(names, " or "));
}

std::string wrappedLine(std::string_view line, std::size_t width) {
  std::string text;
  std::size_t used = 0;
  while (!line.empty()) {
    const std::size_t end = std::min(line.find(' '), line.size());
    if (used != 0 && used + 1 + end > width) {
      text += '\n';
      used = 0;
    }
    if (used != 0) text += ' ';
    text += line.substr(0, end);
    used += end + (used == 0 ? 0 : 1);
    line.remove_prefix(std::min(end + 1, line.size()));
  }
  return text + '\n';
}

} // namespace

std::string wrapped(std::string_view text, std::size_t width) {
  std::string lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    if (line.starts_with(' '))
      (lines += line) += '\n';
    else
      lines += wrappedLine(line, width);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

std::string nameAndText(const std::string& name, std::string_view text) {
  std::string lines = "  " + name;
  if (lines.size() + 2 > textColumn) lines += '\n';
  const std::string column = wrapped(text, helpWidth - textColumn);
  for (std::string_view rest = column; !rest.empty();) {
    const std::size_t end = rest.find('\n') + 1;
    const std::size_t used = lines.size() - (lines.rfind('\n') + 1);
    (lines += std::string(textColumn - used, ' ')) += rest.substr(0, end);
    rest.remove_prefix(end);
  }
  return lines;
}

std::string_view firstSentence(std::string_view text) {
  const std::size_t end = text.find(". ");
  return end == std::string_view::npos ? text : text.substr(0, end + 1);
}

std::vector<const CLI::App*> commandsOf(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App*) { return true; });
}

std::string synopsisOf(const CLI::App& command, const std::string& name) {
  std::string text = name + " [OPTIONS]";
  for (const CLI::Option* const option : command.get_options()) {
    if (!option->get_positional()) continue;
    const std::string argument = option->get_name(true) + (takesSeveral(*option) ? "..." : "");
    text += option->get_required() ? ' ' + argument : " [" + argument + ']';
  }
  return commandsOf(command).empty() ? text : text + " COMMAND";
}

std::string spellingOf(const CLI::Option& option) {
  if (option.get_positional()) return option.get_name(true) + (takesSeveral(option) ? "..." : "");
  std::string text = option.get_name(false, true);
  if (const std::size_t comma = text.find(','); comma != std::string::npos) text.insert(comma + 1, " ");
  return option.get_expected_max() == 0 ? text : text + ' ' + option.get_type_name();
}

std::string meaningOf(const CLI::Option& option) {
  std::string text = option.get_description();
  if (!option.get_default_str().empty()) text += fmt::format(" {} if left out.", option.get_default_str());
  if (!option.get_needs().empty()) text += fmt::format(" Only with {}.", namesOf(option.get_needs()));
  if (!option.get_excludes().empty()) text += fmt::format(" Not with {}.", namesOf(option.get_excludes()));
  return text;
}

std::string HelpFormatter::make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const {
  const auto section = [&](const char* title, bool positional) {
    const std::vector<const CLI::Option*> options = app->get_options([&](const CLI::Option* option) {
      return option->get_positional() == positional && !option->get_group().empty();
    });
    return options.empty() ? std::string() : make_group(title, positional, options);
  };
  return wrapped(app->get_description(), helpWidth) + '\n' +
         wrapped("Usage: " + synopsisOf(*app, name), helpWidth) + section("Arguments", true) +
         section("Options", false) + make_subcommands(app, mode) + '\n' +
         wrapped(app->get_footer(), helpWidth);
}

std::string HelpFormatter::make_subcommand(const CLI::App* command) const {
  return nameAndText(command->get_name(), firstSentence(command->get_description()));
}

std::string HelpFormatter::make_option(const CLI::Option* option, bool /*positional*/) const {
  return nameAndText(spellingOf(*option), meaningOf(*option));
}

} // namespace Zamt::Host
