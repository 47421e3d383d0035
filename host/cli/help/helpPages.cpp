#include "host/cli/help/helpPages.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <set>
#include <vector>

namespace Zamt::Host {

namespace {

/// Where the texts begin; a longer name has a line of its own.
constexpr std::size_t textColumn = 24;

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

/// The text as lines of at most `width` bytes, broken at blanks, each with a line end. Lines that begin with
/// a blank are kept as they are; a longer word has a line of its own.
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

std::string_view firstSentence(std::string_view text) {
  const std::size_t end = text.find(". ");
  return end == std::string_view::npos ? text : text.substr(0, end + 1);
}

/// How a sentence names an option.
std::string referenceTo(const std::string& name, const Verb& verb) {
  for (const Option& option : verb.options)
    if (option.argument && option.name == name) return option.placeholder;
  return "--" + name;
}

std::string referencesTo(const std::set<std::string>& names, const Verb& verb) {
  std::set<std::string> words;
  for (const std::string& name : names) words.insert(referenceTo(name, verb));
  return fmt::format("{}", fmt::join(words, " or "));
}

/// What an option is never written with, whichever of the two says so.
std::set<std::string> excludedBy(const Option& option, const Verb& verb) {
  std::set<std::string> names(option.excludes.begin(), option.excludes.end());
  for (const Option& other : verb.options)
    if (std::count(other.excludes.begin(), other.excludes.end(), option.name) != 0) names.insert(other.name);
  return names;
}

std::string optionLines(const Option& option, const Verb& verb) {
  return nameAndText(spellingOf(option), meaningOf(option, verb));
}

std::string argumentsSection(const Verb& verb) {
  std::string lines;
  for (const Option& option : verb.options)
    if (option.argument && !option.hidden) lines += optionLines(option, verb);
  return lines.empty() ? lines : "\nArguments:\n" + lines;
}

std::string optionsSection(const Program& program, const Verb& verb) {
  std::string lines = "\nOptions:\n" + optionLines(program.help, verb);
  for (const Option& option : verb.options)
    if (!option.argument && !option.hidden) lines += optionLines(option, verb);
  return lines;
}

std::string verbsSections(const Program& program) {
  std::string text;
  const std::string* group = nullptr;
  for (const Verb& verb : program.verbs) {
    if (group == nullptr || *group != verb.group) text += fmt::format("\n{}:\n", verb.group);
    group = &verb.group;
    text += nameAndText(verb.name, firstSentence(verb.summary));
  }
  return text;
}

/// A page from its head, which says what it is about, to its foot.
std::string page(const std::string& summary, const std::string& synopsis, const std::string& sections,
                 const std::string& footer) {
  return wrapped(summary, helpWidth) + '\n' + wrapped("Usage: " + synopsis, helpWidth) + sections + '\n' +
         wrapped(footer, helpWidth);
}

} // namespace

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

std::string spellingOf(const Option& option) {
  if (option.argument) return option.placeholder + (option.kind == Option::Kind::Texts ? "..." : "");
  const std::string letter = option.letter == 0 ? "" : fmt::format("-{}, ", option.letter);
  const std::string value = option.kind == Option::Kind::Flag ? "" : ' ' + option.placeholder;
  return fmt::format("{}--{}{}", letter, option.name, value);
}

std::string meaningOf(const Option& option, const Verb& verb) {
  std::string text = option.help;
  if (option.preset) text += fmt::format(" {} if left out.", *option.preset);
  const std::set<std::string> needs(option.needs.begin(), option.needs.end());
  if (!needs.empty()) text += fmt::format(" Only with {}.", referencesTo(needs, verb));
  const std::set<std::string> excluded = excludedBy(option, verb);
  if (!excluded.empty()) text += fmt::format(" Not with {}.", referencesTo(excluded, verb));
  return text;
}

std::string synopsisOf(const Program& program) { return program.name + " [OPTIONS] COMMAND"; }

std::string synopsisOf(const Program& program, const Verb& verb) {
  std::string text = fmt::format("{} {} [OPTIONS]", program.name, verb.name);
  for (const Option& option : verb.options)
    if (option.argument)
      text += option.required ? ' ' + spellingOf(option) : fmt::format(" [{}]", spellingOf(option));
  return text;
}

std::string overviewPage(const Program& program) {
  const std::string options =
      "\nOptions:\n" + optionLines(program.help, {}) + optionLines(program.versionOption, {});
  return page(program.description, synopsisOf(program), options + verbsSections(program), program.footer);
}

std::string verbPage(const Program& program, const Verb& verb) {
  return page(verb.summary, synopsisOf(program, verb), argumentsSection(verb) + optionsSection(program, verb),
              verb.footer);
}

} // namespace Zamt::Host
