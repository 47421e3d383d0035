#include "quindle/library/QuindleShortcuts.h"

#include "quindle/core/AsciiText.h"
#include "quindle/library/entryNames.h"
#include "quindle/library/keysOf.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <tuple>

namespace Zamt {

namespace {

/// In the order in which they are written.
constexpr std::array<std::string_view, 4> modifiers{"Ctrl", "Alt", "Shift", "Meta"};

struct ModifierWord {
  std::string_view word;
  std::size_t modifier; ///< Its index in `modifiers`.
};

constexpr std::array<ModifierWord, 9> modifierWords{{
    {"ctrl", 0},
    {"control", 0},
    {"alt", 1},
    {"shift", 2},
    {"meta", 3},
    {"win", 3},
    {"windows", 3},
    {"cmd", 3},
    {"command", 3},
}};

const ModifierWord* findModifier(std::string_view piece) {
  const std::string word = lowered(piece);
  const auto found = std::find_if(modifierWords.begin(), modifierWords.end(),
                                  [&](const ModifierWord& entry) { return entry.word == word; });
  return found == modifierWords.end() ? nullptr : &*found;
}

std::string keyForm(std::string_view piece) {
  std::string key = lowered(piece);
  if (!key.empty()) key[0] = uppered(key[0]);
  return key;
}

/// A combination taken apart.
struct Combination {
  std::array<bool, modifiers.size()> pressed{};
  std::string key;
};

Combination readCombination(std::string_view text) {
  Combination combination;
  while (!text.empty()) {
    const std::size_t plus = text.find('+');
    const std::string_view piece = trimmed(text.substr(0, plus));
    if (plus == std::string_view::npos) {
      combination.key = keyForm(piece); // the last piece is the key, even if it spells a modifier
      break;
    }
    text.remove_prefix(plus + 1);
    if (piece.empty()) {
      if (text.empty()) combination.key.assign(1, '+');
    } else if (const ModifierWord* const modifier = findModifier(piece)) {
      combination.pressed[modifier->modifier] = true;
    } else {
      combination.key = keyForm(piece);
    }
  }
  return combination;
}

} // namespace

std::string normalizedShortcut(const std::string& text) {
  const Combination combination = readCombination(trimmed(text));
  if (combination.key.empty()) return {};
  std::string normal;
  for (std::size_t i = 0; i < modifiers.size(); ++i)
    if (combination.pressed[i]) (normal += modifiers[i]) += '+';
  return normal + combination.key;
}

std::vector<std::string> shortcutKeys(const std::string& text) {
  std::vector<std::string> keys;
  std::size_t begin = 0;
  while (begin <= text.size()) {
    const std::size_t end = std::min(text.find(' ', begin), text.size());
    std::string key = normalizedShortcut(text.substr(begin, end - begin));
    if (!key.empty()) keys.push_back(std::move(key));
    begin = end + 1;
  }
  return keys;
}

std::vector<QuindleShortcut> quindleShortcuts(const QuindleLibrary& library) {
  std::vector<QuindleShortcut> shortcuts;
  for (const QuindleLibraryEntry* const entry : library.runnable())
    for (const std::string& key : keysOf(entry->document)) shortcuts.push_back({key, displayName(*entry)});
  std::sort(shortcuts.begin(), shortcuts.end(), [](const QuindleShortcut& a, const QuindleShortcut& b) {
    return std::tie(a.key, a.name) < std::tie(b.key, b.name);
  });
  return shortcuts;
}

bool isShortcutFree(const QuindleLibrary& library, const std::string& shortcut, const std::string& name) {
  const std::string key = normalizedShortcut(shortcut);
  if (key.empty()) return true;
  const std::vector<QuindleShortcut> shortcuts = quindleShortcuts(library);
  return std::none_of(shortcuts.begin(), shortcuts.end(),
                      [&](const QuindleShortcut& taken) { return taken.key == key && taken.name != name; });
}

std::map<std::string, std::vector<std::string>> shortcutConflicts(const QuindleLibrary& library) {
  std::map<std::string, std::vector<std::string>> conflicts;
  for (QuindleShortcut& shortcut : quindleShortcuts(library))
    conflicts[shortcut.key].push_back(std::move(shortcut.name));
  std::erase_if(conflicts, [](const auto& entry) { return entry.second.size() < 2; });
  return conflicts;
}

} // namespace Zamt
