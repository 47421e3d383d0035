#include "quindle/core/AsciiText.h"
#include "quindle/library/QuindleFiles.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace Zamt {

namespace {

/// The settings behind which a new line goes.
constexpr std::array<std::string_view, 5> headWords{"description", "category", "shortcut", "tags", "param"};

std::vector<std::string_view> splitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

/// The first word of a line, up to white space.
std::string_view firstWord(std::string_view line) {
  const std::string_view text = trimmed(line);
  return text.substr(0, text.find_first_of(whiteSpace));
}

std::string_view indentOf(std::string_view line) {
  return line.substr(0, std::min(line.find_first_not_of(" \t"), line.size()));
}

/// Where the setting is, or is to go.
struct Place {
  bool inBlock = false;
  bool found = false;
  std::size_t line = 0; ///< Of the setting if it was found, else the number of lines in front of a new one.
};

Place findPlace(const std::vector<std::string_view>& lines) {
  Place place;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string_view word = firstWord(lines[i]);
    if (!place.inBlock) {
      if (lines[i].find('{') != std::string_view::npos) place = {true, false, i + 1};
    } else if (word == "enabled") {
      return {true, true, i};
    } else if (std::find(headWords.begin(), headWords.end(), word) != headWords.end()) {
      place.line = i + 1;
    }
  }
  return place;
}

} // namespace

bool setQuindleEnabled(std::string& text, bool enabled) {
  std::vector<std::string_view> lines = splitLines(text);
  const Place place = findPlace(lines);
  if (!place.inBlock) return false;
  if (!place.found && enabled) return true; // no line says it already
  std::string setting = enabled ? "enabled true" : "enabled false";
  if (place.found) {
    setting.insert(0, indentOf(lines[place.line]));
    lines[place.line] = setting;
  } else {
    setting.insert(0, "    ");
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(place.line), setting);
  }
  std::string changed;
  changed.reserve(text.size() + setting.size() + 2);
  for (const std::string_view line : lines) (changed += line) += '\n';
  text = std::move(changed);
  return true;
}

} // namespace Zamt
