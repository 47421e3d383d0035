#include "quindle/library/keysOf.h"

#include "quindle/library/QuindleShortcuts.h"

#include <set>
#include <utility>

namespace Zamt {

std::vector<std::string> keysOf(const QuindleDocument& document) {
  std::vector<std::string> keys = shortcutKeys(document.shortcut);
  for (const QuindleTrigger& trigger : document.triggers)
    if (trigger.kind == QuindleTrigger::Kind::Key)
      for (std::string& key : shortcutKeys(trigger.key)) keys.push_back(std::move(key));
  std::set<std::string> seen;
  std::erase_if(keys, [&seen](const std::string& key) { return !seen.insert(key).second; });
  return keys;
}

} // namespace Zamt
