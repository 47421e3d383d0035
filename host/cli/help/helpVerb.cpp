#include "host/cli/Program.h"
#include "host/cli/help/helpPages.h"
#include "host/cli/help/helpTopics.h"
#include "host/cli/help/manPage.h"
#include "host/session/nearest.h"

#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

namespace Zamt::Host {

namespace {

/// What "quindle --help" prints, and the topics.
std::string overview(const Program& program) {
  std::string text = overviewPage(program) + "\nTopics, shown by \"quindle help TOPIC\":\n";
  for (const HelpTopic& topic : helpTopics())
    text += nameAndText(std::string(topic.key), fmt::format("{}.", topic.title));
  return text;
}

/// Empty if the word is neither a command nor a topic.
std::string helpOn(const Program& program, const std::string& word) {
  if (word.empty()) return overview(program);
  if (const Verb* const verb = findVerb(program, word)) return verbPage(program, *verb);
  const HelpTopic* const topic = findHelpTopic(word);
  return topic == nullptr ? std::string() : fmt::format("{}\n\n{}", topic->title, topic->body);
}

std::string unknownWord(const Program& program, const std::string& word) {
  std::vector<std::string> words;
  for (const Verb& verb : program.verbs) words.push_back(verb.name);
  for (const HelpTopic& topic : helpTopics()) words.emplace_back(topic.key);
  return fmt::format("There is no command and no topic called \"{}\".{} \"quindle help\" lists them all.",
                     word, didYouMean(word, words));
}

Answer showHelp(const Program& program, const Request& request) {
  const bool manual = request.flag("man");
  const std::string& word = request.text("word");
  std::string text = manual ? manPage(program) : helpOn(program, word);
  if (text.empty()) return refused(Status::Failed, unknownWord(program, word));
  Answer answer = answerOf({{}, [text = std::move(text)] { return text; }, {}, {}});
  answer.isLong = !manual;
  return answer;
}

} // namespace

Verb helpVerb(const Program& program) {
  return {
      .name = "help",
      .summary = "Show the commands and topics, or the page on one.",
      .footer = "On a terminal the text is shown by the command in PAGER, or \"less -R\".\n"
                "Example:\n  quindle help regions",
      .options = {{.name = "word", .help = "A command or a topic.", .placeholder = "WORD", .argument = true},
                  // For the build, which makes the manual page with it.
                  {.name = "man",
                   .kind = Option::Kind::Flag,
                   .help = "Print the manual page in roff.",
                   .hidden = true}},
      .run = [&program](const Request& request, const Context& /*context*/) {
        return showHelp(program, request);
      }};
}

} // namespace Zamt::Host
