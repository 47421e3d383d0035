#include "host/cli/help/manPage.h"

#include "host/cli/help/helpPages.h"
#include "host/cli/help/helpTopics.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace Zamt::Host {

namespace {

/// One line of text, so that every character stands for itself: ASCII signs keep their shape, and none at the
/// start is taken for a request.
std::string escaped(std::string_view line) {
  std::string text;
  if (line.starts_with('.')) text += "\\&";
  for (const char c : line) {
    switch (c) {
    case '\\': text += "\\e"; break;
    case '-': text += "\\-"; break;
    case '\'': text += "\\(aq"; break;
    case '"': text += "\\(dq"; break;
    case '`': text += "\\(ga"; break;
    case '^': text += "\\(ha"; break;
    case '~': text += "\\(ti"; break;
    default: text += c;
    }
  }
  return text;
}

std::string bold(std::string_view text) { return fmt::format("\\fB{}\\fR", escaped(text)); }

/// Takes the next line off the front of `text`.
std::string_view takeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

/// Paragraphs; lines that begin with two blanks stand as they are, in an example.
std::string bodyOf(std::string_view text) {
  std::string out;
  bool inExample = false;
  bool startsParagraph = true;
  while (!text.empty()) {
    const std::string_view line = takeLine(text);
    if (line.starts_with("  ") != inExample) {
      inExample = !inExample;
      out += inExample ? ".PP\n.EX\n" : ".EE\n";
      startsParagraph = true;
    }
    if (line.empty()) {
      startsParagraph = true;
      continue;
    }
    if (!inExample && startsParagraph) out += ".PP\n";
    startsParagraph = false;
    (out += escaped(line)) += '\n';
  }
  return inExample ? out + ".EE\n" : out;
}

/// What a section begins with needs no paragraph of its own.
std::string section(std::string_view title, std::string_view text) {
  std::string body = bodyOf(text);
  if (body.starts_with(".PP\n")) body.erase(0, 4);
  return fmt::format(".SH {}\n{}", title, body);
}

std::string describe(const Option& option, const Verb& verb) {
  return fmt::format(".TP\n{}\n{}\n", bold(spellingOf(option)), escaped(meaningOf(option, verb)));
}

/// Arguments first. Help is the same everywhere, and described once.
std::string optionsOf(const Verb& verb) {
  std::string arguments;
  std::string options;
  for (const Option& option : verb.options)
    if (!option.hidden) (option.argument ? arguments : options) += describe(option, verb);
  return arguments + options;
}

std::string verbEntry(const Program& program, const Verb& verb) {
  return fmt::format(".TP\n{}\n{}\n.RS\n{}{}.RE\n", bold(synopsisOf(program, verb)), escaped(verb.summary),
                     optionsOf(verb), bodyOf(verb.footer));
}

std::string commandsSection(const Program& program) {
  std::string out = ".SH COMMANDS\n";
  std::string group;
  for (const Verb& verb : program.verbs) {
    if (verb.group != group) out += fmt::format(".SS {}\n", escaped(group = verb.group));
    out += verbEntry(program, verb);
  }
  return out;
}

} // namespace

std::string manPage(const Program& program) {
  std::string out = fmt::format(".TH QUINDLE 1 \"\" \"{}\" \"User Commands\"\n", escaped(program.version));
  out += fmt::format(".SH NAME\n{} \\- edit point clouds with small programs\n", program.name);
  out += fmt::format(".SH SYNOPSIS\n{}\n", bold(synopsisOf(program)));
  out += section("DESCRIPTION", program.description);
  out += commandsSection(program);
  out += ".SH OPTIONS\n" + describe(program.help, {}) + describe(program.versionOption, {});
  // The first steps, which a newcomer is shown first, are the examples, which a manual page ends with.
  for (const HelpTopic& topic : helpTopics().subspan(1)) out += section(topic.section, topic.body);
  out += section(helpTopics().front().section, helpTopics().front().body);
  out += ".SH SEE ALSO\n\\fBless\\fR(1)\n";
  return out;
}

} // namespace Zamt::Host
