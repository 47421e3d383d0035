/// What the shells themselves make of the scripts that complete the words of the command.
#include "tests/cli/quindle.h"
#include "tests/support/environment.h"
#include "tests/support/realClouds.h"

#include <gtest/gtest.h>

namespace Zamt::Testing {
namespace {

/// A shell, and what makes it print, for each line among its arguments, what its last word is completed to.
struct Shell {
  std::string name;
  std::string driver;
};

const Shell shells[] = {
    {"bash", R"(source <(quindle completion bash)
      for line; do
        read -ra COMP_WORDS <<<"$line"; COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _quindle 2>/dev/null
        (IFS='|'; echo "${COMPREPLY[*]}")
      done)"},
    {"fish", R"(quindle completion fish | source
      for line in $argv; string join '|' -- (complete -C $line | string replace -r '\t.*' ''); end)"},
    // A shell of its own on a terminal of its own, whose line is shown by Ctrl-G.
    {"zsh", R"(quindle completion zsh >script; zmodload zsh/zpty; zpty z "TERM=dumb zsh -f -i"
      zpty -w z 'PROMPT=; autoload -Uz compinit; compinit -u -D; source ./script; bindkey "^I" complete-word'
      zpty -w z 'show() { print -r -- "<$BUFFER>"; BUFFER=; zle accept-line }; zle -N show; bindkey "^G" show'
      zpty -w z 'print re""ady'
      zpty -r z out '*ready*'
      for line; do
        zpty -w -n z "$line"$'\t\a'
        zpty -r z out '*<*>*'
        words=(${(z)${${out##*<}%%>*}})
        print -r -- ${(Q)words[-1]}
      done)"}};

class Completion : public testing::TestWithParam<Shell> {};

TEST_P(Completion, OffersCommandsOptionsNamesClassesParametersAndFiles) {
  const Shell& shell = GetParam();
  const std::string program = "/usr/bin/" + shell.name;
  if (!std::filesystem::exists(program)) {
    ASSERT_FALSE(inContinuousIntegration()) << "There is no " << program << ". Call tools/setup.";
    GTEST_SKIP() << "There is no " << program << ".";
  }
  const TemporaryDirectory directory;
  const std::string bin = std::filesystem::path(QUINDLE_COMMAND).parent_path();
  const Environment environment{{"HOME", directory.path()},
                                {"XDG_DATA_HOME", {}},
                                {"XDG_CONFIG_HOME", {}},
                                {"APPDATA", {}},
                                {"QUINDLE_DATA_DIRS", directory.path("share")},
                                {"PATH", bin + ":/usr/bin:/bin"}};
  std::filesystem::create_directories(directory.path("share"));
  std::filesystem::create_directory_symlink(QUINDLE_SOURCE_DIR "/examples", directory.path("share/quindles"));
  for (const char* const name : {"north.las", "notes.txt", "my lake.LAZ", "tile.quindle"})
    directory.write(name, "quindle \"T\" { param margin : Number }");

  const std::pair<std::string, std::string> cases[] = {
      {"quindle cla", "classify"},
      {"quindle run --in", "--in-place"},
      {"quindle show Res", "Restore class"},
      {"quindle preview Underw", "Underwater ground"},
      {"quindle check ti", "tile.quindle"},
      {"quindle classify Z in", "into"},
      {"quindle classify Z into Gr", "Ground"},
      {"quindle count Z --classes Ground,Bu", "Ground,Building"},
      {"quindle run tile.quindle north.las --set ma", "margin="},
      {"quindle info no", "north.las"},
      {"quindle info my", "my lake.LAZ"},
      {"quindle run tile.quindle north.las -o nor", "north.las"},
      {"quindle registry --level b", "beta"},
      {"quindle completion z", "zsh"},
  };
  std::vector<std::string> words{program, "-c", shell.driver};
  if (shell.name != "fish") words.push_back(shell.name);
  std::string expected;
  for (const auto& [line, completed] : cases) {
    words.push_back(line);
    expected += completed + '\n';
  }
  EXPECT_EQ(runCommand(words, directory.path()).out, expected);
}

INSTANTIATE_TEST_SUITE_P(, Completion, testing::ValuesIn(shells),
                         [](const auto& shell) { return shell.param.name; });

} // namespace
} // namespace Zamt::Testing
