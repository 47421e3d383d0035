#pragma once

#include <span>
#include <string_view>

namespace Zamt::Host {

/// What makes a shell complete the words of the command. It asks the command itself, by "completion" with
/// --words (those of the line as far as it is to be completed, one a line), for lines: the first names the
/// files that are offered too ("none", or endings) and whether a blank follows ("end" or "open"), the others
/// are words with their help behind a tab.
struct CompletionScript {
  std::string_view shell;
  std::string_view text;
};

/// Those for all shells that are known.
std::span<const CompletionScript> completionScripts();

} // namespace Zamt::Host
