#include "host/cli/CommandLine.h"

#include "host/session/nearest.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Zamt::Host {

namespace {

/// The name of an option as the library takes it: "-o,--output", or "OUT" of an argument.
std::string declared(const Option& option) {
  if (option.argument) return option.placeholder;
  const std::string name = "--" + option.name;
  return option.letter == 0 ? name : fmt::format("-{},{}", option.letter, name);
}

/// The parser of one verb. It holds what the library writes the values into, and so stays where it is.
class VerbParser {
public:
  VerbParser(const Verb& verb, CLI::App& app) : verb_(verb), command_(*app.add_subcommand(verb.name)) {
    for (const Option& option : verb.options) add(option);
    for (const Option& option : verb.options) relate(option);
  }
  VerbParser(const VerbParser&) = delete;
  VerbParser& operator=(const VerbParser&) = delete;

  const Verb& verb() const { return verb_; }
  bool chosen() const { return command_.parsed(); }

  /// The options that the command line gave a value.
  Request request() const {
    Request request;
    for (const Slot& slot : slots_)
      if (slot.parsed->count() > 0) request.set(slot.option->name, slot.value);
    return request;
  }

private:
  struct Slot {
    const Option* option = nullptr;
    CLI::Option* parsed = nullptr;
    Request::Value value;
  };

  void add(const Option& option) {
    Slot& slot = slots_.emplace_back();
    slot.option = &option;
    slot.parsed = declare(option, slot.value);
    slot.parsed->required(option.required);
    if (option.hidden) slot.parsed->group("");
    if (!option.argument && option.kind != Option::Kind::Flag) slot.parsed->type_name(option.placeholder);
    byName_[option.name] = slot.parsed;
  }

  CLI::Option* declare(const Option& option, Request::Value& value) {
    const std::string name = declared(option);
    switch (option.kind) {
    case Option::Kind::Flag: return command_.add_flag(name, value.emplace<bool>(), "");
    case Option::Kind::Text: return command_.add_option(name, value.emplace<std::string>());
    case Option::Kind::Texts: {
      CLI::Option* const parsed = command_.add_option(name, value.emplace<std::vector<std::string>>());
      // Only an argument takes all words that follow.
      return option.argument ? parsed : parsed->allow_extra_args(false);
    }
    case Option::Kind::Number: {
      CLI::Option* const parsed = command_.add_option(name, value.emplace<std::uint64_t>());
      if (option.most != std::numeric_limits<std::uint64_t>::max())
        parsed->check(CLI::Range(option.least, option.most).description(""));
      return parsed;
    }
    case Option::Kind::Level: break;
    }
    return command_.add_option(name, value.emplace<int>())
        ->transform(CLI::Transformer(option.words).description(""));
  }

  void relate(const Option& option) {
    CLI::Option* const parsed = byName_.at(option.name);
    for (const std::string& other : option.needs) parsed->needs(byName_.at(other));
    for (const std::string& other : option.excludes) parsed->excludes(byName_.at(other));
  }

  const Verb& verb_;
  CLI::App& command_;
  std::deque<Slot> slots_;
  std::map<std::string, CLI::Option*> byName_;
};

/// An option that the verb has, where the first word that it does not know looks like one.
std::string nearestOption(const CLI::App& command, const Program& program) {
  const std::vector<std::string> words = command.remaining();
  const Verb* const verb = findVerb(program, command.get_name());
  if (words.empty() || verb == nullptr || !words.front().starts_with("--")) return {};
  std::vector<std::string> names{"--" + program.help.name};
  for (const Option& option : verb->options)
    if (!option.argument && !option.hidden) names.push_back("--" + option.name);
  return didYouMean(words.front().substr(0, words.front().find('=')), names);
}

/// What is wrong with the command line, in a sentence.
std::string complaint(const CLI::App& app, const Program& program, const CLI::ParseError& problem) {
  if (const std::vector<CLI::App*> chosen = app.get_subcommands(); !chosen.empty()) {
    const std::string offer = nearestOption(*chosen.front(), program);
    return offer.empty() ? problem.what() : fmt::format("{}.{}", problem.what(), offer);
  }
  const std::vector<std::string> words = app.remaining();
  if (words.empty()) return "No command is named.";
  std::vector<std::string> names;
  for (const Verb& verb : program.verbs) names.push_back(verb.name);
  return fmt::format("There is no command called \"{}\".{}", words.front(), didYouMean(words.front(), names));
}

/// Where to read about it.
std::string advice(const CLI::App& app) {
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  if (chosen.empty()) return "\"quindle help\" lists the commands.";
  return fmt::format("\"quindle help {}\" shows what can be written.", chosen.front()->get_name());
}

/// Help and version are asked for; anything else means that the command was called wrongly.
CommandLine endParsing(const CLI::App& app, const Program& program, const CLI::ParseError& problem) {
  if (dynamic_cast<const CLI::CallForVersion*>(&problem) != nullptr)
    return {.kind = CommandLine::Kind::Version};
  if (problem.get_exit_code() != 0)
    return {.kind = CommandLine::Kind::Misuse,
            .complaint = complaint(app, program, problem),
            .advice = advice(app)};
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  return {.kind = CommandLine::Kind::Help,
          .verb = chosen.empty() ? nullptr : findVerb(program, chosen.back()->get_name())};
}

} // namespace

CommandLine readCommandLine(int argc, const char* const* argv, const Program& program) {
  CLI::App app({}, program.name);
  app.set_help_flag(declared(program.help)); // before the verbs, which take it over
  app.set_version_flag(declared(program.versionOption), program.version);
  app.require_subcommand(1);
  std::deque<VerbParser> parsers;
  for (const Verb& verb : program.verbs) parsers.emplace_back(verb, app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& problem) {
    return endParsing(app, program, problem);
  }
  for (const VerbParser& parser : parsers)
    if (parser.chosen()) return {.verb = &parser.verb(), .request = parser.request()};
  return {.kind = CommandLine::Kind::Misuse, .complaint = "No command is named.", .advice = advice(app)};
}

} // namespace Zamt::Host
