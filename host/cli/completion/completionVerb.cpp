#include "host/cli/Program.h"
#include "host/cli/completion/completeWords.h"
#include "host/cli/completion/completionScripts.h"

#include <fmt/format.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace Zamt::Host {

namespace {

std::vector<std::string> shellNames() {
  std::vector<std::string> names;
  for (const CompletionScript& script : completionScripts()) names.emplace_back(script.shell);
  return names;
}

/// The last one may be empty.
std::vector<std::string> linesOf(const std::string& text) {
  std::istringstream stream(text + '\n');
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

const char* filesText(Completions::Files files) {
  switch (files) {
  case Completions::Files::None: break;
  case Completions::Files::Cloud: return " .las .laz";
  case Completions::Files::Picture: return " .png";
  case Completions::Files::Quindle: return " .quindle";
  }
  return "";
}

/// As the scripts read them. A line end in a name can't be told apart from the end of the name.
std::string answerText(const Completions& found) {
  const std::string endings = filesText(found.files);
  std::string text =
      fmt::format("{} {}{}\n", endings.empty() ? "none" : "files", found.ends ? "end" : "open", endings);
  for (const Completions::Word& word : found.words)
    if (word.text.find('\n') == std::string::npos)
      text += fmt::format("{}\t{}\n", word.text, word.help.substr(0, word.help.find('\n')));
  return text;
}

Answer textAnswer(std::string text) {
  return answerOf({{}, [text = std::move(text)] { return text; }, {}, {}});
}

Answer complete(const Program& program, const Request& request, const Context& context) {
  const std::string& shell = request.text("shell");
  for (const CompletionScript& script : completionScripts())
    if (script.shell == shell) return textAnswer(std::string(script.text));
  std::vector<std::string> words = linesOf(request.text("words"));
  if (shell.empty() && words.size() > 1) {
    const std::string word = std::move(words.back());
    words.pop_back();
    words.erase(words.begin());
    return textAnswer(answerText(completeWords(program, words, word, context.quindles)));
  }
  return refused(Status::Usage, fmt::format("Name a shell, one of {}.", fmt::join(shellNames(), ", ")));
}

} // namespace

Verb completionVerb(const Program& program) {
  return {
      .name = "completion",
      .summary = "Print what makes a shell complete the words of this command. It offers commands, options, "
                 "files, classes and the Quindles of the collection.",
      .footer = "An installation has it in place. Otherwise write it to a file that the shell reads at its "
                "start.\nExample:\n  quindle completion bash >quindle.bash",
      .options = {{.name = "shell",
                   .help = fmt::format("The shell: {}.", fmt::join(shellNames(), ", ")),
                   .placeholder = "SHELL",
                   .argument = true,
                   .names = Option::Names::Choice,
                   .choices = shellNames()},
                  // For those scripts.
                  {.name = "words", .help = "Words, a line each.", .placeholder = "WORDS", .hidden = true}},
      .run = [&program](const Request& request, const Context& context) {
        return complete(program, request, context);
      }};
}

} // namespace Zamt::Host
