#include "host/cli/HelpFormatter.h"
#include "host/cli/Pager.h"
#include "host/cli/commands/commands.h"
#include "host/cli/helpTopics.h"
#include "host/cli/manPage.h"
#include "host/session/nearest.h"

#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

namespace Zamt::Host {

namespace {

struct HelpOptions {
  std::string word;
  bool man = false;
};

/// What "quindle --help" prints, and the topics.
std::string overview(const CLI::App& app) {
  std::string text = app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal);
  text += "\nTopics, shown by \"quindle help TOPIC\":\n";
  for (const HelpTopic& topic : helpTopics())
    text += nameAndText(std::string(topic.key), fmt::format("{}.", topic.title));
  return text;
}

/// Empty if the word is neither a command nor a topic.
std::string helpOn(const CLI::App& app, const std::string& word) {
  if (word.empty()) return overview(app);
  for (const CLI::App* const command : commandsOf(app))
    if (command->get_name() == word) return command->help(app.get_name());
  const HelpTopic* const topic = findHelpTopic(word);
  return topic == nullptr ? std::string() : fmt::format("{}\n\n{}", topic->title, topic->body);
}

std::string unknownWord(const CLI::App& app, const std::string& word) {
  std::vector<std::string> words;
  for (const CLI::App* const command : commandsOf(app)) words.push_back(command->get_name());
  for (const HelpTopic& topic : helpTopics()) words.emplace_back(topic.key);
  return fmt::format("There is no command and no topic called \"{}\".{} \"quindle help\" lists them all.",
                     word, didYouMean(word, words));
}

Exit showHelp(const CLI::App& app, const HelpOptions& options, Console& console) {
  if (options.man) {
    console.print(manPage(app));
    return Exit::Done;
  }
  const std::string text = helpOn(app, options.word);
  if (text.empty()) {
    console.error(unknownWord(app, options.word));
    return Exit::Failed;
  }
  if (!showPaged(text)) console.print(text);
  return Exit::Done;
}

} // namespace

void addHelpCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<HelpOptions>();
  CLI::App* verb = addVerb(app, "help", "Show the commands and topics, or the page on one.");
  verb->add_option("WORD", options->word, "A command or a topic.");
  // For the build, which makes the manual page with it.
  verb->add_flag("--man", options->man, "Print the manual page in roff.")->group("");
  verb->footer("On a terminal the text is shown by the command in PAGER, or \"less -R\".\n"
               "Example:\n  quindle help regions");
  verb->callback([&app, options, &session] { session.exit = showHelp(app, *options, session.console); });
}

} // namespace Zamt::Host
