#pragma once

#include "host/cli/Program.h"

#include <string>
#include <vector>

namespace Zamt::Host {

/// What a word of a command line can be completed to.
struct Completions {
  /// Which files of the shell's own are offered too.
  enum class Files { None, Cloud, Picture, Quindle };

  struct Word {
    std::string text;
    std::string help{}; ///< A sentence or nothing.
  };

  Files files = Files::None;
  bool ends = true;        ///< A blank is to follow a word that was chosen.
  std::vector<Word> words; ///< All of them begin with what is there of the word.
};

/// What can stand in place of `word` behind `before`, the words of a command line without the first, which is
/// the program's name. Words are as the program would get them. A "=" between an option and its value may be
/// a word of its own, as some shells have it. Quindles are looked up by `quindles`, which may wait for none.
Completions completeWords(const Program& program, const std::vector<std::string>& before,
                          const std::string& word, const QuindleReader& quindles);

} // namespace Zamt::Host
