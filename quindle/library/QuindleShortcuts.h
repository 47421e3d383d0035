#pragma once

#include "quindle/core/Export.h"
#include "quindle/library/QuindleLibrary.h"

#include <map>
#include <string>
#include <vector>

/// The keys that Quindles ask for, worked out before a host binds any: a toolkit may run neither of two
/// actions that share a key and say nothing. std::bad_alloc passes through.
namespace Zamt {

/// One key of one Quindle.
struct QUINDLE_API QuindleShortcut {
  std::string key;  ///< In normal form.
  std::string name; ///< Of the Quindle that asks for it; its path if it has no name.
};

/// The one spelling of a key combination: its modifiers in the order Ctrl, Alt, Shift, Meta, each followed by
/// "+", then the key: one upper-case letter or sign, or a word with its first letter upper-case. "cmd",
/// "command", "win" and "windows" are Meta, "control" is Ctrl; the case of letters and white space do not
/// matter. Empty if `text` holds no key.
QUINDLE_API std::string normalizedShortcut(const std::string& text);

/// The normal forms of all combinations in a text, which stand apart by blanks. A combination is written
/// without blanks inside. Those without a key are left out, repeats are kept.
QUINDLE_API std::vector<std::string> shortcutKeys(const std::string& text);

/// All keys that runnable Quindles ask for, in their setting or their "on key" triggers, sorted by key and
/// then by name. A Quindle that asks twice for a key is there once.
QUINDLE_API std::vector<QuindleShortcut> quindleShortcuts(const QuindleLibrary& library);

/// Whether no runnable Quindle but the one called `name` asks for the combination `shortcut`, in any
/// spelling. True for a text without a key.
QUINDLE_API bool isShortcutFree(const QuindleLibrary& library, const std::string& shortcut,
                                const std::string& name);

/// Each key that is asked for more than once, with the names that ask, sorted. A name stands there twice when
/// two files bear it.
QUINDLE_API std::map<std::string, std::vector<std::string>> shortcutConflicts(const QuindleLibrary& library);

} // namespace Zamt
