#pragma once

#include "quindle/core/QuindleDocument.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Zamt::Host {

/// A comment with text that the canonical layout cannot leave in the block it stands in, or outside of all.
struct StrayComment {
  int line = 0; ///< On which it begins.
  /// The trigger at whose start it comes to stand; null if the layout has no place for it at all.
  const QuindleTrigger* movedTo = nullptr;
};

/// What a document does not hold of the text that it was read from.
struct Leftovers {
  std::vector<StrayComment> comments; ///< In the order of the text.
  int textBehindLine = 0; ///< Where something other than a comment follows the closing brace; 0 for nowhere.
};

/// Compares a text with the document that was read from it without errors; the triggers named in the result
/// belong to it. Comments without text don't count.
Leftovers findLeftovers(const std::string& text, const QuindleDocument& document);

} // namespace Zamt::Host
