#pragma once

#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>

/// Documents of cases, each a text and all that comes of it:
///
///     ```case
///     the text
///     ---
///     what comes of it
///     ```
///
/// A block "```around" says what the texts of the cases behind it stand in, each in place of its "...". A
/// byte that could not be seen is written as its control picture. With QUINDLE_REFRESH_GOLDEN set, what comes
/// of the texts is written anew.
namespace Zamt::Testing {

inline std::string withPictures(const std::string& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool blank = (c == ' ' || c == '\t') && i + 1 < text.size() && text[i + 1] != '\n';
    const bool hidden = static_cast<unsigned char>(c) <= ' ' && c != '\n' && !blank;
    out += hidden ? std::string("\xe2\x90") + static_cast<char>(0x80 + c) : std::string(1, c);
  }
  return out;
}

inline std::string withoutPictures(std::string text) {
  for (std::size_t at = 0; (at = text.find("\xe2\x90", at)) != std::string::npos; ++at)
    text.replace(at, 3, 1, static_cast<char>(text.at(at + 2) & 0x3f));
  return text;
}

/// The lines up to one that is `end`, without the last line end.
inline std::string takeLines(std::istream& document, const std::string& end) {
  std::string text;
  for (std::string line; std::getline(document, line) && line != end;) text += line + '\n';
  return text.substr(0, text.empty() ? 0 : text.size() - 1);
}

inline std::string asLines(const std::string& text) { return text.empty() ? text : text + '\n'; }

/// Holds a text against the file `name` of tests/, which is written anew with QUINDLE_REFRESH_GOLDEN set.
inline void expectGolden(const std::string& name, const std::string& text) {
  const std::string golden = QUINDLE_SOURCE_DIR "/tests/" + name;
  if (std::getenv("QUINDLE_REFRESH_GOLDEN")) std::ofstream(golden, std::ios::binary) << text;
  EXPECT_EQ(text, readFile(golden)) << golden;
}

/// Holds what `outcome` makes of each text against the document `name` of tests/.
inline void expectCases(const std::string& name,
                        const std::function<std::string(const std::string&)>& outcome) {
  const std::string file = QUINDLE_SOURCE_DIR "/tests/" + name;
  const bool refreshing = std::getenv("QUINDLE_REFRESH_GOLDEN") != nullptr;
  std::istringstream document(readFile(file));
  std::string around = "...";
  std::string heading;
  std::string refreshed;
  std::size_t cases = 0;
  for (std::string line; std::getline(document, line);) {
    refreshed += line + '\n';
    if (line.starts_with('#')) heading = line;
    if (line == "```around") {
      around = takeLines(document, "```");
      refreshed += asLines(around) + "```\n";
    }
    if (line != "```case") continue;
    const std::string text = takeLines(document, "---");
    const std::string expected = takeLines(document, "```");
    std::string whole = around;
    whole.replace(whole.find("..."), 3, text);
    const std::string actual = withPictures(outcome(withoutPictures(whole)));
    EXPECT_EQ(actual, refreshing ? actual : expected) << name << ": " << heading << '\n' << text;
    refreshed += asLines(text) + "---\n" + asLines(actual) + "```\n";
    ++cases;
  }
  EXPECT_GT(cases, 0U) << file;
  if (refreshing) std::ofstream(file, std::ios::binary) << refreshed;
}

} // namespace Zamt::Testing
