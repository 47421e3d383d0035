#pragma once

#include <span>
#include <string_view>

namespace Zamt::Host {

/// A page on what several commands have in common.
struct HelpTopic {
  std::string_view key;     ///< What "quindle help" finds it by.
  std::string_view title;   ///< What it is about, on one line, without a full stop.
  std::string_view section; ///< The heading that the manual page gives it.
  /// Lines of at most 78 bytes, with empty ones between paragraphs. Those that begin with two blanks stand as
  /// they are and end at 72. "  quindle ..." is an example that can be run after those of the pages before
  /// it, in a directory that holds one called "out".
  std::string_view body;
};

/// All topics in the order in which they are best read.
std::span<const HelpTopic> helpTopics();

/// The topic of that key; null if there is none.
const HelpTopic* findHelpTopic(std::string_view key);

} // namespace Zamt::Host
