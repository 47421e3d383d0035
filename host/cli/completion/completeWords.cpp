#include "host/cli/completion/completeWords.h"

#include "host/session/Collection.h"
#include "quindle/core/PointVocabulary.h"
#include "quindle/library/entryNames.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Zamt::Host {

namespace {

using Names = Option::Names;
using Files = Completions::Files;

/// What stands for a help text where there is one line for it: no list, and no end.
std::string inShort(const std::string& text) {
  const std::size_t end = std::min(text.find(". "), text.find(": "));
  return end == std::string::npos && text.ends_with('.') ? text.substr(0, text.size() - 1)
                                                         : text.substr(0, end);
}

/// What is known of a command line in front of the word.
struct Place {
  const Verb* verb = nullptr;
  const Option* pending = nullptr; ///< The option whose value is next; null if none is.
  std::size_t arguments = 0;       ///< How many stand there already.
  std::string quindle;             ///< The value of the argument that names one.
};

/// The option that a word of its own names; null if it names none.
const Option* findOption(const Verb& verb, std::string_view word) {
  for (const Option& option : verb.options) {
    if (option.argument) continue;
    if (word == "--" + option.name || (option.letter != 0 && word == std::string("-") + option.letter))
      return &option;
  }
  return nullptr;
}

/// The argument at a place; the last one of several takes all that follow.
const Option* argumentAt(const Verb& verb, std::size_t place) {
  for (const Option& option : verb.options) {
    if (!option.argument) continue;
    if (place == 0 || option.kind == Option::Kind::Texts) return &option;
    --place;
  }
  return nullptr;
}

void takeWord(const std::string& word, Place& place) {
  if (word == "=") return;
  if (place.pending != nullptr) {
    place.pending = nullptr;
  } else if (word.starts_with('-') && word.size() > 1) {
    const Option* const option = findOption(*place.verb, word);
    if (option != nullptr && option->kind != Option::Kind::Flag) place.pending = option;
  } else {
    const Option* const argument = argumentAt(*place.verb, place.arguments++);
    if (argument != nullptr && argument->names == Names::Quindle) place.quindle = word;
  }
}

/// Collects what begins with what is there of a word.
class Collector {
public:
  Collector(std::string word, const QuindleReader& quindles) : word_(std::move(word)), quindles_(quindles) {}

  Completions& found() { return found_; }

  void offer(const std::string& text, const std::string& help = {}) {
    if (text.starts_with(word_)) found_.words.push_back({text, inShort(help)});
  }

  void offerVerbs(const Program& program) {
    for (const Verb& verb : program.verbs) offer(verb.name, verb.summary);
    for (const Option& option : {program.help, program.versionOption})
      if (word_.starts_with('-')) offer("--" + option.name, option.help);
  }

  void offerOptions(const Program& program, const Verb& verb) {
    for (const Option& option : verb.options)
      if (!option.argument && !option.hidden) offer("--" + option.name, option.help);
    offer("--" + program.help.name, program.help.help);
  }

  /// `place` tells the Quindle whose parameters can be set.
  void offerValues(const Option& option, const Place& place) {
    for (const std::string& choice : option.choices) offer(choice);
    for (const auto& [level, rank] : option.words) offer(level);
    switch (option.names) {
    case Names::Anything:
    case Names::Choice: return;
    case Names::Cloud:
    case Names::CloudOutput: found_.files = Files::Cloud; return;
    case Names::Picture: found_.files = Files::Picture; return;
    case Names::QuindleFile: found_.files = Files::Quindle; return;
    case Names::Quindle: found_.files = Files::Quindle; return offerEntries();
    case Names::Entry: return offerEntries();
    case Names::Class: return offerClasses({});
    case Names::Classes: return offerClasses(word_.substr(0, word_.rfind(',') + 1));
    case Names::Setting: return offerParameters(place.quindle);
    }
  }

private:
  void offerEntries() {
    const QuindleLibrary library = scanCollection();
    for (const QuindleLibraryEntry* const entry : library.search({}))
      offer(displayName(*entry), entry->document.description);
  }

  /// Behind those that stand there already.
  void offerClasses(const std::string& before) {
    for (const QuindleClass& known : standardQuindleClasses()) offer(before + known.name);
  }

  void offerParameters(const std::string& quindle) {
    Diag dropped;
    QuindleDocument document;
    if (quindle.empty() || quindle == "-" || !quindles_.load(quindle, document, dropped)) return;
    found_.ends = false;
    for (const QuindleParam& param : document.params) offer(param.name + '=', param.help);
  }

  const std::string word_;
  const QuindleReader& quindles_;
  Completions found_;
};

/// The value of "--option=value" in one word: what is found bears the option in front.
Completions completeJoined(const Verb& verb, const Place& place, const std::string& word, std::size_t equals,
                           const QuindleReader& quindles) {
  const Option* const option = findOption(verb, word.substr(0, equals));
  Collector collector(word.substr(equals + 1), quindles);
  if (option != nullptr) collector.offerValues(*option, place);
  Completions found = std::move(collector.found());
  found.files = Files::None;
  for (Completions::Word& one : found.words) one.text.insert(0, word, 0, equals + 1);
  return found;
}

} // namespace

Completions completeWords(const Program& program, const std::vector<std::string>& before,
                          const std::string& word, const QuindleReader& quindles) {
  Collector collector(word == "=" ? std::string() : word, quindles);
  if (before.empty()) {
    collector.offerVerbs(program);
    return std::move(collector.found());
  }
  Place place;
  place.verb = findVerb(program, before.front());
  if (place.verb == nullptr) return {};
  for (std::size_t i = 1; i < before.size(); ++i) takeWord(before[i], place);
  const std::size_t equals = word.find('=');
  if (place.pending == nullptr && word.starts_with("--") && equals != std::string::npos)
    return completeJoined(*place.verb, place, word, equals, quindles);
  if (place.pending == nullptr && word.starts_with('-'))
    collector.offerOptions(program, *place.verb);
  else if (const Option* const option =
               place.pending != nullptr ? place.pending : argumentAt(*place.verb, place.arguments))
    collector.offerValues(*option, place);
  return std::move(collector.found());
}

} // namespace Zamt::Host
